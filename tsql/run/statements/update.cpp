#include "tsql/run/executor.h"

namespace vicenter::tsql::engine {

namespace {

bool IsDuplicate(const SqlError& error) {
    return error.Number() == 2627 || error.Number() == 2601;
}

bool TellsRows(const UpdateStatement& statement) {
    if (statement.output) return true;
    for (const Assignment& assignment : statement.assignments) {
        if (!assignment.variable.empty()) return true;
    }
    return false;
}

}  // namespace

void Executor::Update(const UpdateStatement& statement) {
    const TableInfo* table = FindTable(statement.target.Object());
    const bool temporary = table != nullptr && table->temporary;
    try {
        Modify(
            &statement, temporary, [&](Translator& translator) { return translator.Update(statement); },
            statement.output ? &*statement.output : nullptr);
    } catch (const SqlError& error) {
        // SQLite looks at keys row by row, the server when all rows are changed: FNo = FNo + 1 is no
        // duplicate.
        if (!IsDuplicate(error) || TellsRows(statement) || !RewriteRows(statement, temporary)) throw;
    }
}

}  // namespace vicenter::tsql::engine
