#pragma once

// The operation log in a window: its entries, the latest first, narrowed by days, user, kind and template as
// the command line does it. One object per use. User-interface thread.

#include <string>
#include <vector>

#include "store/operation_log.h"

namespace vicenter::center {

// For users: 请求, 关闭, 成功, 失败; the number for any other.
std::string LogKindText(std::int32_t kind);

class OperationLog {
  public:
    // Reads all. False when there is nothing to show: the user has been told why.
    bool Load();
    // Reads those entries; a day that is none is told, and nothing changes.
    void Narrow(const store::LogFilter& filter);

    const std::vector<store::LogEntry>& Entries() const { return entries_; }
    std::string Note() const;

  private:
    bool Read(const store::LogFilter& filter);

    std::vector<store::LogEntry> entries_;
};

}  // namespace vicenter::center
