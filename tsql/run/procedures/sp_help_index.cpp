#include "tsql/run/system_procedures.h"

namespace vicenter::tsql::engine {

const SystemProcedure kSpHelpIndex = {"sp_helpindex", R"(create procedure sp_helpindex @objname nvarchar(776)
as
declare @id int = object_id(@objname, 'U')
if @id is null
begin
    declare @database nvarchar(128) = db_name()
    raiserror (15009, -1, -1, @objname, @database)
    return 1
end
if objectproperty(@id, 'TableIsTemporary') = 1
begin
    raiserror (40510, 16, 1, 'sp_helpindex of a temporary table')
    return 1
end
if not exists (select * from sys.indexes where object_id = @id and index_id > 0)
begin
    print 'The object ''' + @objname + ''' does not have any indexes, or you do not have permissions.'
    return 0
end
select i.name as index_name,
    cast(case i.index_id when 1 then 'clustered' else 'nonclustered' end +
        case i.is_unique when 1 then ', unique' else '' end +
        case i.is_primary_key when 1 then ', primary key' else '' end +
        case i.is_unique_constraint when 1 then ', unique key' else '' end +
        ' located on PRIMARY' as varchar(210)) as index_description,
    (select cast(string_agg(c.name + case k.is_descending_key when 1 then N'(-)' else N'' end, N', ')
            within group (order by k.key_ordinal) as nvarchar(2078))
        from sys.index_columns as k
        join sys.columns as c on c.object_id = k.object_id and c.column_id = k.column_id
        where k.object_id = i.object_id and k.index_id = i.index_id) as index_keys
from sys.indexes as i
where i.object_id = @id and i.index_id > 0
order by i.name
return 0)"};

}  // namespace vicenter::tsql::engine
