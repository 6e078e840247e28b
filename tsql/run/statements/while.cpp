#include "tsql/run/executor.h"

namespace vicenter::tsql::engine {

Flow Executor::While(const WhileStatement& statement) {
    while (IsTrue(*statement.condition)) {
        lastError_ = 0;
        const Flow flow = RunStatement(*statement.body);
        if (flow == Flow::kBreak) break;
        if (flow == Flow::kReturn || flow == Flow::kGoto) return flow;
    }
    return Flow::kNext;
}

}  // namespace vicenter::tsql::engine
