#include "platform/office/foreign_file.h"

#include <algorithm>

#include "platform/office/limits.h"
#include "text/ascii.h"

namespace vicenter::office {

namespace {

constexpr std::string_view kOldVersion = "不支持 Excel 95 及更早版本的文件";
constexpr std::string_view kAdvice = "，请用 Excel 打开后另存为“Excel 工作簿（.xlsx）”！";

bool Holds(const std::string& text, std::string_view part) {
    return text.find(part) != std::string::npos;
}

// Letters of the head in small ones; the zeros of 16-bit characters and a byte order mark are left out.
std::string Letters(std::string_view head) {
    std::string letters;
    for (const char c : head) {
        if (c != '\0' && static_cast<unsigned char>(c) < 0x80) letters += c;
    }
    return text::LowerAscii(letters);
}

// The records of the versions that had no container around them begin with their own mark.
bool IsOldStream(std::string_view head) {
    return head.size() >= 4 && head[0] == '\x09' && head[2] <= '\x08' && head[3] == '\0' &&
           (head[1] == '\0' || head[1] == '\x02' || head[1] == '\x04' || head[1] == '\x08');
}

bool IsText(std::string_view head) {
    return std::none_of(head.begin(), head.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x20 && c != '\t' && c != '\r' && c != '\n' && c != '\f';
    });
}

}  // namespace

std::string WhyNoWorkbook(std::string_view head) {
    if (head.empty()) return "文件是空的，没有任何内容！";
    if (IsOldStream(head)) return std::string(kOldVersion) + std::string(kAdvice);
    if (std::all_of(head.begin(), head.end(), [](char c) { return c == '\0'; })) {
        return "文件内容全部为零，可能没有下载或复制完，请重新取得该文件！";
    }
    const std::string letters = Letters(head);
    const std::size_t first = std::min(letters.find_first_not_of(" \t\r\n"), letters.size());
    const std::string_view start = std::string_view(letters).substr(first);
    if (start.starts_with("%pdf")) return "文件实际上是 PDF 文档，不是 Excel 工作簿！";
    if (start.starts_with("mime-version:")) {
        return "文件实际上是网页归档（MHTML），不是 Excel 工作簿" + std::string(kAdvice);
    }
    if (start.starts_with("<")) {
        if (Holds(letters, "progid=\"excel.sheet\"") || Holds(letters, "office:spreadsheet")) {
            return "文件实际上是 XML 表格（Excel 2003），不是 Excel 工作簿" + std::string(kAdvice);
        }
        if (Holds(letters, "<html") || Holds(letters, "<table") || Holds(letters, "<!doctype html")) {
            return "文件实际上是网页（HTML），不是 Excel 工作簿" + std::string(kAdvice);
        }
    }
    if (IsText(head)) return "文件实际上是文本，不是 Excel 工作簿" + std::string(kAdvice);
    return "文件不是 Excel 工作簿！";
}

void FailForeignKind(const std::string& what) {
    throw automation::Error(kExcelError, "文件实际上是" + what + std::string(kAdvice));
}

void FailOtherDocument(const std::string& what) {
    throw automation::Error(kExcelError, "文件实际上是" + what + "，不是 Excel 工作簿！");
}

void FailEncrypted() {
    throw automation::Error(kExcelError,
                            "文件已加密，请在 Excel 中取消打开密码（xls 文件还有工作簿保护）后另存！");
}

void FailOldVersion() {
    throw automation::Error(kExcelError, std::string(kOldVersion) + std::string(kAdvice));
}

void FailTruncated() {
    throw automation::Error(kExcelError, "文件不完整，可能没有下载或复制完，请重新取得该文件！");
}

}  // namespace vicenter::office
