#include "tsql/translate/rows_apart.h"

namespace vicenter::tsql::engine {

void SetRowsApart(Scope& scope, std::string& tail, const std::string& orderAndLimit,
                  const std::string& name) {
    std::string columns;
    int number = 0;
    for (Source& source : scope.sources) {
        for (SourceColumn& column : source.columns) {
            const std::string own = "k" + std::to_string(++number);
            columns += (columns.empty() ? "" : ", ") + column.sql + " AS " + own;
            column.sql = "\"" + name + "\"." + own;
        }
    }
    tail = " FROM (SELECT " + columns + tail + orderAndLimit + ") AS \"" + name + "\"";
}

}  // namespace vicenter::tsql::engine
