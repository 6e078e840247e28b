#include "tsql/run/system_procedures.h"

namespace vicenter::tsql::engine {

// Tables and views of the account set; the server's own views are not among them.
const SystemProcedure kSpTables = {"sp_tables", R"(create procedure sp_tables
    @table_name nvarchar(384) = null, @table_owner nvarchar(384) = null, @table_qualifier sysname = null,
    @table_type varchar(100) = null, @fUsePattern bit = 1
as
select TABLE_CATALOG as TABLE_QUALIFIER, TABLE_SCHEMA as TABLE_OWNER, TABLE_NAME,
    cast(case TABLE_TYPE when 'VIEW' then 'VIEW' else 'TABLE' end as varchar(32)) as TABLE_TYPE,
    cast(null as varchar(254)) as REMARKS
from information_schema.tables
where (@table_name is null or (@fUsePattern = 1 and TABLE_NAME like @table_name) or
        (@fUsePattern = 0 and TABLE_NAME = @table_name))
    and (@table_owner is null or TABLE_SCHEMA like @table_owner)
    and (@table_qualifier is null or TABLE_CATALOG = @table_qualifier)
    and (@table_type is null or charindex(case TABLE_TYPE when 'VIEW' then '''VIEW''' else '''TABLE''' end,
        upper(@table_type)) > 0)
order by 4, 1, 2, 3)"};

}  // namespace vicenter::tsql::engine
