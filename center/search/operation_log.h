#pragma once

// The operation log in a window: its entries, the latest first, narrowed by days, user, kind and template as
// the command line does it. One object per use. User-interface thread.

#include <string>
#include <vector>

#include "store/operation_log.h"
#include "store/user_names.h"

namespace vicenter::center {

// For users: 请求, 关闭, 成功, 失败; the number for any other.
std::string LogKindText(std::int32_t kind);

class OperationLog {
  public:
    // Reads all. False when there is nothing to show: the user has been told why.
    bool Load();
    // Reads those entries; a user is given by number or name. A day that is none and a user whom nobody knows
    // are told, and nothing changes.
    void Narrow(const store::LogFilter& filter);

    const std::vector<store::LogEntry>& Entries() const { return entries_; }
    std::string Note() const;
    // Number and name.
    std::string UserText(const store::LogEntry& entry) const { return users_.WithNumber(entry.userId); }

  private:
    bool Read(const store::LogFilter& filter);

    std::vector<store::LogEntry> entries_;
    store::UserNames users_;
};

}  // namespace vicenter::center
