#pragma once

// The demo ledger's tables: text files with one record a line, fields between tabs, "#" before a comment.

#include <string>
#include <string_view>
#include <vector>

namespace vicenter::host {

using DataRecord = std::vector<std::string_view>;

// The records of an embedded file; blank lines and comments are left out. Views into the embedded text.
std::vector<DataRecord> ReadDataTable(std::string_view path);

// A field of a record; the empty text past its end.
std::string_view DataField(const DataRecord& record, std::size_t index);

// The pieces of a text between separators; none for the empty text.
std::vector<std::string_view> SplitText(std::string_view text, char separator);

}  // namespace vicenter::host
