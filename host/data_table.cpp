#include "host/data_table.h"

#include "host/embedded_files.h"

namespace vicenter::host {

std::vector<std::string_view> SplitText(std::string_view text, char separator) {
    std::vector<std::string_view> pieces;
    if (text.empty()) return pieces;
    std::size_t at = 0;
    for (std::size_t end = text.find(separator); end != std::string_view::npos;
         end = text.find(separator, at)) {
        pieces.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    pieces.push_back(text.substr(at));
    return pieces;
}

std::vector<DataRecord> ReadDataTable(std::string_view path) {
    std::vector<DataRecord> records;
    for (std::string_view line : SplitText(EmbeddedText(path), '\n')) {
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        if (line.empty() || line.front() == '#') continue;
        records.push_back(SplitText(line, '\t'));
    }
    return records;
}

std::string_view DataField(const DataRecord& record, std::size_t index) {
    return index < record.size() ? record[index] : std::string_view();
}

}  // namespace vicenter::host
