#include "tsql/run/system_procedures.h"

namespace vicenter::tsql::engine {

// Columns of tables, with the numbers that ODBC gives to types.
const SystemProcedure kSpColumns = {"sp_columns", R"(create procedure sp_columns
    @table_name nvarchar(384), @table_owner nvarchar(384) = null, @table_qualifier sysname = null,
    @column_name nvarchar(384) = null, @ODBCVer int = 2, @fUsePattern bit = 1
as
if exists (select * from sys.views where name = @table_name)
    raiserror (40510, 16, 1, 'sp_columns of a view')
if left(@table_name, 1) = '#'
    raiserror (40510, 16, 1, 'sp_columns of a temporary table')
select db_name() as TABLE_QUALIFIER, cast('dbo' as nvarchar(128)) as TABLE_OWNER, o.name as TABLE_NAME,
    c.name as COLUMN_NAME,
    cast(case t.name when 'bit' then -7 when 'tinyint' then -6 when 'smallint' then 5 when 'int' then 4
        when 'bigint' then -5 when 'decimal' then 3 when 'money' then 3 when 'smallmoney' then 3
        when 'float' then 6 when 'real' then 7 when 'datetime' then 11 when 'smalldatetime' then 11
        when 'char' then 1 when 'varchar' then 12 when 'text' then -1 when 'nchar' then -8
        when 'ntext' then -10 when 'binary' then -2 when 'varbinary' then -3 when 'uniqueidentifier' then -11
        else -9 end as smallint) as DATA_TYPE,
    cast(t.name + case c.is_identity when 1 then N' identity' else N'' end as nvarchar(128)) as TYPE_NAME,
    case t.name when 'float' then 15 when 'real' then 7 when 'uniqueidentifier' then 36
        when 'text' then 2147483647 when 'ntext' then 1073741823
        when 'nchar' then c.max_length / 2 when 'nvarchar' then case c.max_length when -1 then 0 else c.max_length / 2 end
        when 'char' then c.max_length when 'varchar' then case c.max_length when -1 then 0 else c.max_length end
        when 'binary' then c.max_length when 'varbinary' then case c.max_length when -1 then 0 else c.max_length end
        else c.precision end as PRECISION,
    case t.name when 'decimal' then c.precision + 2 when 'money' then 21 when 'smallmoney' then 12
        when 'datetime' then 16 when 'smalldatetime' then 16 when 'text' then 2147483647
        when 'ntext' then 2147483646 when 'date' then 20 when 'time' then 32 when 'datetime2' then 54
        else case c.max_length when -1 then 0 else c.max_length end end as LENGTH,
    cast(case when t.name in ('bit', 'tinyint', 'smallint', 'int', 'bigint', 'decimal', 'money', 'smallmoney',
        'datetime', 'time', 'datetime2') then c.scale when t.name = 'smalldatetime' then 0 end as smallint) as SCALE,
    cast(case when t.name in ('tinyint', 'smallint', 'int', 'bigint', 'decimal', 'money', 'smallmoney', 'float',
        'real') then 10 end as smallint) as RADIX,
    cast(c.is_nullable as smallint) as NULLABLE, cast(null as varchar(254)) as REMARKS,
    cast(d.definition as nvarchar(4000)) as COLUMN_DEF,
    cast(case t.name when 'bit' then -7 when 'tinyint' then -6 when 'smallint' then 5 when 'int' then 4
        when 'bigint' then -5 when 'decimal' then 3 when 'money' then 3 when 'smallmoney' then 3
        when 'float' then 6 when 'real' then 7 when 'datetime' then 9 when 'smalldatetime' then 9
        when 'char' then 1 when 'varchar' then 12 when 'text' then -1 when 'nchar' then -8
        when 'ntext' then -10 when 'binary' then -2 when 'varbinary' then -3 when 'uniqueidentifier' then -11
        else -9 end as smallint) as SQL_DATA_TYPE,
    cast(case when t.name in ('datetime', 'smalldatetime') then 3 end as smallint) as SQL_DATETIME_SUB,
    case t.name when 'text' then 2147483647 when 'ntext' then 2147483646
        else case when c.collation_name is not null or t.name in ('binary', 'varbinary')
            then case c.max_length when -1 then 0 else c.max_length end end end as CHAR_OCTET_LENGTH,
    c.column_id as ORDINAL_POSITION,
    cast(case c.is_nullable when 1 then 'YES' else 'NO' end as varchar(254)) as IS_NULLABLE,
    cast(case t.name when 'bit' then 50 when 'text' then 35 when 'ntext' then 35 when 'uniqueidentifier' then 37
        when 'varbinary' then 37 when 'varchar' then 39 when 'nvarchar' then 39
        when 'binary' then case c.is_nullable when 1 then 37 else 45 end
        when 'char' then case c.is_nullable when 1 then 39 else 47 end
        when 'nchar' then case c.is_nullable when 1 then 39 else 47 end
        when 'tinyint' then case c.is_nullable when 1 then 38 else 48 end
        when 'smallint' then case c.is_nullable when 1 then 38 else 52 end
        when 'int' then case c.is_nullable when 1 then 38 else 56 end
        when 'bigint' then case c.is_nullable when 1 then 108 else 63 end
        when 'decimal' then case c.is_nullable when 1 then 106 else 55 end
        when 'money' then case c.is_nullable when 1 then 110 else 60 end
        when 'smallmoney' then case c.is_nullable when 1 then 110 else 122 end
        when 'float' then case c.is_nullable when 1 then 109 else 62 end
        when 'real' then case c.is_nullable when 1 then 109 else 59 end
        when 'datetime' then case c.is_nullable when 1 then 111 else 61 end
        when 'smalldatetime' then case c.is_nullable when 1 then 111 else 58 end
        else 0 end as tinyint) as SS_DATA_TYPE
from sys.tables as o
join sys.columns as c on c.object_id = o.object_id
join sys.types as t on t.user_type_id = c.user_type_id
left join sys.default_constraints as d on d.object_id = c.default_object_id
where ((@fUsePattern = 1 and o.name like @table_name) or (@fUsePattern = 0 and o.name = @table_name))
    and (@table_owner is null or 'dbo' like @table_owner)
    and (@table_qualifier is null or db_name() = @table_qualifier)
    and (@column_name is null or c.name like @column_name)
order by 3, 17)"};

}  // namespace vicenter::tsql::engine
