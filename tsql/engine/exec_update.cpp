#include "tsql/engine/executor.h"

namespace vicenter::tsql::engine {

void Executor::Update(const UpdateStatement& statement) {
    const TableInfo* table = FindTable(statement.target.Object());
    Modify(
        &statement, table != nullptr && table->temporary,
        [&](Translator& translator) { return translator.Update(statement); },
        statement.output ? &*statement.output : nullptr);
}

}  // namespace vicenter::tsql::engine
