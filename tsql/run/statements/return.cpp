#include "tsql/run/executor.h"

namespace vicenter::tsql::engine {

Flow Executor::Return(const ReturnStatement& statement) {
    if (statement.value) {
        if (frame_->procedure.empty()) throw MakeError(178, statement.position);
        frame_->returnValue = EvaluateInt(*statement.value);
    }
    return Flow::kReturn;
}

}  // namespace vicenter::tsql::engine
