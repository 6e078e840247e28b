#include "tsql/run/executor.h"

namespace vicenter::tsql::engine {

Flow Executor::If(const IfStatement& statement) {
    const bool yes = IsTrue(*statement.condition);
    lastError_ = 0;
    rowCount_ = 0;
    if (yes) return RunStatement(*statement.then);
    return statement.otherwise ? RunStatement(*statement.otherwise) : Flow::kNext;
}

}  // namespace vicenter::tsql::engine
