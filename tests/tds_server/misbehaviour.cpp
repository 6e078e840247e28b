#include "tds_server/misbehaviour.h"

namespace vicenter::tds_server {

std::optional<tsql::Diagnostic> FailBatch::RefusesBatch(std::string_view /*text*/) {
    if (--left_ != 0) return std::nullopt;
    tsql::Diagnostic error;
    error.number = number_;
    switch (number_) {
        case 1205:
            error.severity = 13;
            error.state = 51;
            error.text =
                "Transaction (Process ID 51) was deadlocked on lock resources with another process and has "
                "been chosen as the deadlock victim. Rerun the transaction.";
            break;
        case 1222:
            error.severity = 16;
            error.state = 45;
            error.text = "Lock request time out period exceeded.";
            break;
        default:
            error.severity = 16;
            error.text = "Snapshot isolation transaction aborted due to update conflict.";
            break;
    }
    return error;
}

}  // namespace vicenter::tds_server
