#include "platform/office/xlsx_package.h"

#include <vector>

#include <zip.h>

#include "platform/office/foreign_file.h"
#include "platform/office/limits.h"

namespace vicenter::office {

XlsxPart::~XlsxPart() {
    zip_fclose(file_);
}

std::size_t XlsxPart::Read(char* buffer, std::size_t size) {
    const zip_int64_t count = zip_fread(file_, buffer, size);
    if (count < 0) FailDamaged("压缩数据");
    total_ += static_cast<std::uint64_t>(count);
    if (total_ > kMaxPartBytes) FailTooLarge();
    return static_cast<std::size_t>(count);
}

XlsxPackage::XlsxPackage(const std::string& fileName) {
    int error = 0;
    archive_ = zip_open(fileName.c_str(), ZIP_RDONLY, &error);
    if (archive_ != nullptr) return;
    // The directory of a package stands at its end: where there is none, the end is missing.
    if (error == ZIP_ER_NOZIP || error == ZIP_ER_INCONS) FailTruncated();
    if (error == ZIP_ER_MEMORY) throw automation::Error(automation::error_number::kOutOfMemory);
    FailDamaged("不是有效的压缩包");
}

XlsxPackage::~XlsxPackage() {
    zip_discard(archive_);
}

std::unique_ptr<XlsxPart> XlsxPackage::Open(const std::string& name) const {
    zip_int64_t index = zip_name_locate(archive_, name.c_str(), ZIP_FL_ENC_RAW);
    if (index < 0) index = zip_name_locate(archive_, name.c_str(), ZIP_FL_NOCASE);
    if (index < 0) return nullptr;
    zip_file* file = zip_fopen_index(archive_, static_cast<zip_uint64_t>(index), 0);
    if (file == nullptr) {
        const int code = zip_error_code_zip(zip_get_error(archive_));
        if (code == ZIP_ER_NOPASSWD || code == ZIP_ER_ENCRNOTSUPP) FailEncrypted();
        FailDamaged("压缩数据");
    }
    return std::make_unique<XlsxPart>(file);
}

std::string ResolvePartName(std::string_view base, std::string_view target) {
    std::vector<std::string_view> folders;
    const auto walk = [&folders](std::string_view path, bool dropLast) {
        while (true) {
            const std::size_t slash = path.find('/');
            const std::string_view piece = path.substr(0, slash);
            const bool last = slash == std::string_view::npos;
            if (last && dropLast) return;
            if (piece == "..") {
                if (!folders.empty()) folders.pop_back();
            } else if (!piece.empty() && piece != ".") {
                folders.push_back(piece);
            }
            if (last) return;
            path.remove_prefix(slash + 1);
        }
    };
    if (!target.starts_with('/')) walk(base, true);
    walk(target, false);
    std::string result;
    for (const std::string_view folder : folders) {
        if (!result.empty()) result += '/';
        result += folder;
    }
    return result;
}

}  // namespace vicenter::office
