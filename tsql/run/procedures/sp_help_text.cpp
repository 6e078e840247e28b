#include "tsql/run/system_procedures.h"

namespace vicenter::tsql::engine {

// Line by line, each with its line end, longer ones in stretches of 255 characters.
const SystemProcedure kSpHelpText = {"sp_helptext", R"(create procedure sp_helptext
    @objname nvarchar(776), @columnname sysname = null
as
declare @id int = object_id(@objname)
if @id is null
begin
    declare @database nvarchar(128) = db_name()
    raiserror (15009, -1, -1, @objname, @database)
    return 1
end
declare @text nvarchar(max) = object_definition(@id)
if @columnname is not null
begin
    select @text = definition from sys.computed_columns where object_id = @id and name = @columnname
end
if @text is null
begin
    raiserror (15197, -1, -1, @objname)
    return 1
end
declare @lines table (number int identity, line nvarchar(255))
declare @end int
while datalength(@text) > 0
begin
    set @end = charindex(nchar(10), @text)
    if @end = 0 or @end > 255 set @end = 255
    insert into @lines (line) values (substring(@text, 1, @end))
    set @text = substring(@text, @end + 1, 2000000000)
end
select line as Text from @lines order by number
return 0)"};

}  // namespace vicenter::tsql::engine
