#include "platform/office/workbook_file.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "platform/office/limits.h"
#include "platform/office/xls_reader.h"
#include "platform/office/xls_writer.h"
#include "platform/office/xlsx_reader.h"
#include "platform/office/xlsx_writer.h"
#include "platform/system/file_replacement.h"

namespace vicenter::office {

namespace {

std::filesystem::path PathOf(const std::string& fileName) {
    return {reinterpret_cast<const char8_t*>(fileName.c_str())};
}

}  // namespace

std::unique_ptr<Workbook> ReadWorkbook(const std::string& fileName, FileKind* kind) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(PathOf(fileName), error)) {
        throw automation::Error(kExcelError, "找不到文件：" + fileName);
    }
    std::array<char, 8> head{};
    std::ifstream file(PathOf(fileName), std::ios::binary);
    if (!file) throw automation::Error(kExcelError, "不能访问文件：" + fileName);
    file.read(head.data(), head.size());
    const std::string_view mark(head.data(), static_cast<std::size_t>(file.gcount()));
    file.close();
    const bool zip = mark.starts_with("PK\x03\x04");
    if (!zip && mark != "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1") FailDamaged("格式无法识别");
    if (kind != nullptr) *kind = zip ? FileKind::Xlsx : FileKind::Xls;
    return zip ? ReadXlsx(fileName) : ReadXls(fileName);
}

void WriteWorkbook(const Workbook& workbook, const std::string& fileName, FileKind kind) {
    system::FileReplacement file(fileName);
    if (kind == FileKind::Xls) {
        WriteXls(workbook, file.Path());
    } else {
        WriteXlsx(workbook, file.Path());
    }
    // Whoever needs it to outlast a power cut copies it on from here.
    file.PutInPlace(system::Durable::No);
}

}  // namespace vicenter::office
