#include "platform/office/workbook_file.h"

#include <filesystem>
#include <fstream>
#include <string>

#include "platform/office/foreign_file.h"
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
    std::string head(kHeadBytes, '\0');
    std::ifstream file(PathOf(fileName), std::ios::binary);
    if (!file) throw automation::Error(kExcelError, "不能访问文件：" + fileName);
    file.read(head.data(), static_cast<std::streamsize>(head.size()));
    if (file.bad()) throw automation::Error(kExcelError, "不能访问文件：" + fileName);
    head.resize(static_cast<std::size_t>(file.gcount()));
    file.close();
    const bool zip = head.starts_with("PK\x03\x04");
    if (!zip && !head.starts_with("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1")) {
        throw automation::Error(kExcelError, WhyNoWorkbook(head));
    }
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
