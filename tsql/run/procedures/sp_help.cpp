#include "tsql/run/system_procedures.h"

namespace vicenter::tsql::engine {

// Without a name all objects; of a table its columns, identity, indexes and constraints.
const SystemProcedure kSpHelp = {"sp_help", R"(create procedure sp_help @objname nvarchar(776) = null
as
if @objname is null
begin
    select name as Name, cast('dbo' as nvarchar(128)) as Owner,
        cast(case type when 'U' then 'user table' when 'V' then 'view' when 'P' then 'stored procedure'
            when 'PK' then 'primary key cns' when 'UQ' then 'unique cns' when 'F' then 'foreign key cns'
            when 'C' then 'check cns' else 'default (maybe cns)' end as nvarchar(31)) as Object_type
    from sys.objects order by 2, 3 desc, 1
    return 0
end
declare @id int = object_id(@objname)
if @id is null
begin
    declare @database nvarchar(128) = db_name()
    raiserror (15009, -1, -1, @objname, @database)
    return 1
end
if objectproperty(@id, 'TableIsTemporary') = 1
begin
    raiserror (40510, 16, 1, 'sp_help of a temporary table')
    return 1
end
if objectproperty(@id, 'IsTable') = 0
begin
    raiserror (40510, 16, 1, 'sp_help of what is no table')
    return 1
end
select name as Name, cast('dbo' as nvarchar(128)) as Owner, cast('user table' as nvarchar(31)) as Type,
    create_date as Created_datetime
from sys.objects where object_id = @id
select c.name as Column_name, t.name as Type,
    cast(case c.is_computed when 1 then 'yes' else 'no' end as varchar(35)) as Computed,
    cast(c.max_length as int) as Length,
    cast(case when t.name in ('tinyint', 'smallint', 'int', 'bigint', 'decimal', 'money', 'smallmoney', 'float',
        'real') then convert(varchar(5), c.precision) else '' end as char(5)) as Prec,
    cast(case when t.name in ('tinyint', 'smallint', 'int', 'bigint', 'decimal', 'money', 'smallmoney')
        then convert(varchar(5), c.scale) when t.name in ('float', 'real') then 'NULL' else '' end as char(5)) as Scale,
    cast(case c.is_nullable when 1 then 'yes' else 'no' end as varchar(35)) as Nullable,
    cast(case when t.name in ('char', 'varchar', 'binary', 'varbinary') then 'no' else '(n/a)' end as varchar(35))
        as TrimTrailingBlanks,
    cast(case when t.name not in ('char', 'varchar', 'binary', 'varbinary') then '(n/a)'
        when c.is_nullable = 1 then 'yes' else 'no' end as varchar(35)) as FixedLenNullInSource,
    c.collation_name as Collation
from sys.columns as c join sys.types as t on t.user_type_id = c.user_type_id
where c.object_id = @id order by c.column_id
if exists (select * from sys.identity_columns where object_id = @id)
    select name as [Identity], cast(seed_value as decimal(38, 0)) as Seed,
        cast(increment_value as decimal(38, 0)) as Increment, 0 as [Not For Replication]
    from sys.identity_columns where object_id = @id
else
    select cast('No identity column defined.' as nvarchar(128)) as [Identity], cast(null as decimal(38, 0)) as Seed,
        cast(null as decimal(38, 0)) as Increment, cast(null as int) as [Not For Replication]
select cast('No rowguidcol column defined.' as nvarchar(128)) as [RowGuidCol]
select cast('PRIMARY' as nvarchar(128)) as Data_located_on_filegroup
exec sp_helpindex @objname
if exists (select * from sys.objects where parent_object_id = @id)
begin
    declare @rows table (number int identity, kind nvarchar(146), name nvarchar(128), on_delete nvarchar(11),
        on_update nvarchar(11), enabled varchar(8), replicated varchar(19), keys nvarchar(2126))
    insert into @rows (kind, name, on_delete, on_update, enabled, replicated, keys)
    select N'CHECK on column or table', name, N'(n/a)', N'(n/a)', 'Enabled', 'Is_For_Replication', definition
    from sys.check_constraints where parent_object_id = @id order by name
    insert into @rows (kind, name, on_delete, on_update, enabled, replicated, keys)
    select N'DEFAULT on column ' + col_name(@id, parent_column_id), name, N'(n/a)', N'(n/a)', '(n/a)', '(n/a)',
        definition
    from sys.default_constraints where parent_object_id = @id order by name
    insert into @rows (kind, name, on_delete, on_update, enabled, replicated, keys)
    select N'FOREIGN KEY', f.name, replace(f.delete_referential_action_desc, N'_', N' '),
        replace(f.update_referential_action_desc, N'_', N' '), 'Enabled', 'Is_For_Replication',
        (select string_agg(col_name(@id, k.parent_column_id), N', ') within group (order by k.constraint_column_id)
            from sys.foreign_key_columns as k where k.constraint_object_id = f.object_id) + N' REFERENCES ' +
        object_name(f.referenced_object_id) + N' (' +
        (select string_agg(col_name(k.referenced_object_id, k.referenced_column_id), N', ')
                within group (order by k.constraint_column_id)
            from sys.foreign_key_columns as k where k.constraint_object_id = f.object_id) + N')'
    from sys.foreign_keys as f where f.parent_object_id = @id order by f.name
    insert into @rows (kind, name, on_delete, on_update, enabled, replicated, keys)
    select case k.type when 'PK' then N'PRIMARY KEY (clustered)' else N'UNIQUE (non-clustered)' end, k.name,
        N'(n/a)', N'(n/a)', '(n/a)', '(n/a)',
        (select string_agg(col_name(@id, c.column_id) + case c.is_descending_key when 1 then N'(-)' else N'' end,
                N', ') within group (order by c.key_ordinal)
            from sys.index_columns as c where c.object_id = @id and c.index_id = k.unique_index_id)
    from sys.key_constraints as k where k.parent_object_id = @id order by k.name
    select kind as constraint_type, name as constraint_name, on_delete as delete_action, on_update as update_action,
        enabled as status_enabled, replicated as status_for_replication, keys as constraint_keys
    from @rows order by number
end
else
    print 'No constraints are defined on object ''' + @objname + ''', or you do not have permissions.'
return 0)"};

}  // namespace vicenter::tsql::engine
