#include "platform/system/line_file.h"

#include <filesystem>
#include <fstream>

#include "automation/error.h"
#include "platform/system/files.h"
#include "platform/system/os.h"

namespace vicenter::system {

namespace {

// Empty or ending with a line's end.
bool IsWhole(const std::string& file) {
    std::ifstream in(PathFromUtf8(file), std::ios::binary);
    if (!in.seekg(-1, std::ios::end)) return true;
    return in.get() == '\n';
}

}  // namespace

void ForEachLine(const std::string& file, const std::function<bool(std::string_view, std::size_t)>& take) {
    std::ifstream in(PathFromUtf8(file), std::ios::binary);
    std::size_t place = 0;
    for (std::string line; std::getline(in, line) && !in.eof(); ++place) {
        if (!take(line, place)) return;
    }
}

void AddLine(const std::string& file, std::string_view line) {
    std::error_code ignored;
    const bool isNew = !std::filesystem::exists(PathFromUtf8(file), ignored);
    // What somebody broke off becomes a line of its own.
    std::string text = IsWhole(file) ? "" : "\n";
    text.append(line).append("\n");
    if (!os::Append(file, text) || !os::SyncFile(file))
        throw automation::Error(automation::error_number::kPermissionDenied,
                                "无法写入文件，磁盘可能已满或没有权限！");
    if (isNew) os::SyncFolder(PathToUtf8(PathFromUtf8(file).parent_path()));
}

}  // namespace vicenter::system
