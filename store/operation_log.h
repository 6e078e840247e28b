#pragma once

// The operation log as the account set holds it: where the host keeps it in t_Log. Read only; what is written
// goes through the host's own object. User-interface thread.

#include <cstdint>
#include <string>
#include <vector>

#include "platform/ado/recordset.h"

namespace vicenter::store {

// Which entries; what is empty does not narrow.
struct LogFilter {
    std::string from;  // yyyy-mm-dd, that day included
    std::string to;
    std::string user;
    std::string kind;          // 1 asked for, 2 closed, 3 done, 4 failed
    std::string templateName;  // named in the text
};

struct LogEntry {
    std::string date;  // "yyyy-mm-dd hh:mm:ss"
    std::int32_t userId = 0;
    std::int32_t kind = 0;
    std::string text;
    // How many lines the template held that an import or a generation wrote, where the account set still
    // knows it: "12 行". The texts of entries are what they always were.
    std::string counts;
};

struct LogAnswer {
    enum class State {
        Read,
        Off,         // the host keeps none there
        Unreadable,  // the account set does not answer
    };
    State state = State::Unreadable;
    std::vector<LogEntry> entries;  // oldest first
};

// All columns of the entries, oldest first.
std::string LogQuestion(const LogFilter& filter);
LogAnswer ReadOperationLog(const LogFilter& filter);

// The template that an entry says was imported or generated; empty for every other.
std::string WrittenTemplate(const LogEntry& entry);

}  // namespace vicenter::store
