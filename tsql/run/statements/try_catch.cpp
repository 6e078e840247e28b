#include "tsql/run/executor.h"

namespace vicenter::tsql::engine {

Flow Executor::TryCatch(const TryCatchStatement& statement) {
    Frame* const frame = frame_;
    ResultSink* const sink = sink_;
    ++tryDepth_;
    try {
        const Flow flow = RunList(statement.tried);
        --tryDepth_;
        return flow;
    } catch (const Abort& abort) {
        --tryDepth_;
        frame_ = frame;
        sink_ = sink;
        // A lost connection to the disk is nothing that code could go on after, nor is a cancel.
        if (abort.error.Details().severity >= 20 || abort.error.Number() == kCancelledBatch) throw;
        // What this text names and there is not was never run, so that nothing in it could be caught.
        if (abort.unboundIn == frame) throw;
        if (transactions_.Count() > 0 && Dooms(abort)) transactions_.Doom();
        caught_.push_back(abort.error.Details());
    } catch (...) {
        --tryDepth_;
        throw;
    }
    try {
        const Flow flow = RunList(statement.caught);
        caught_.pop_back();
        return flow;
    } catch (...) {
        caught_.pop_back();
        throw;
    }
}

}  // namespace vicenter::tsql::engine
