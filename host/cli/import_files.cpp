#include "host/cli/import_files.h"

#include <algorithm>
#include <filesystem>

#include "automation/error.h"
#include "platform/system/files.h"
#include "text/ascii.h"

namespace vicenter::host {

namespace fs = std::filesystem;
using store::LineFault;
using system::PathFromUtf8;
using system::PathToUtf8;

namespace {

bool IsWorkbook(const fs::path& path) {
    const std::string extension = text::LowerAscii(PathToUtf8(path.extension()));
    return extension == ".xls" || extension == ".xlsx";
}

// What a program leaves beside a workbook that it has open ("~$a.xlsx"), and what a file system of another
// kind keeps of one ("._a.xlsx"): named like workbooks, and none.
bool IsCompanion(const fs::path& path) {
    const std::string name = PathToUtf8(path.filename());
    return name.starts_with("~$") || name.starts_with("._");
}

}  // namespace

FilesToImport FindFilesToImport(const std::string& given) {
    std::error_code failed;
    if (!fs::is_directory(PathFromUtf8(given), failed)) return {false, {given}, 0};
    FilesToImport found{true, {}, 0};
    // By hand, since an increment without a place for its failure throws what no edge expects.
    for (fs::directory_iterator entry(PathFromUtf8(given), failed); !failed && entry != fs::end(entry);
         entry.increment(failed)) {
        std::error_code unreadable;
        if (!entry->is_regular_file(unreadable) || !IsWorkbook(entry->path())) continue;
        if (IsCompanion(entry->path())) {
            ++found.skipped;
        } else {
            found.files.push_back(PathToUtf8(entry->path()));
        }
    }
    if (failed) throw automation::Error(automation::error_number::kPathNotFound, "文件夹不能读取：" + given);
    std::sort(found.files.begin(), found.files.end());
    if (found.files.empty()) {
        throw automation::Error(automation::error_number::kFileNotFound, "文件夹中没有工作簿：" + given);
    }
    return found;
}

VariantArray FaultObjects(const std::vector<LineFault>& faults) {
    VariantArray list;
    for (const LineFault& fault : faults) {
        list.push_back(JsonObject({{"row", fault.row},
                                   {"column", fault.column},
                                   {"header", fault.header},
                                   {"value", fault.value},
                                   {"reason", fault.reason}}));
    }
    return list;
}

std::string FaultSentence(const LineFault& fault) {
    const std::string value = fault.value.empty() ? "" : " “" + fault.value + "”";
    const std::string column = fault.header.empty() ? "" : " " + fault.header;
    return "第 " + std::to_string(fault.row) + " 行" + column + value + "：" + fault.reason;
}

}  // namespace vicenter::host
