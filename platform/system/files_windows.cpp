#include "platform/system/files.h"
#include "platform/system/whole_path.h"
#include "platform/system/windows_error.h"
#include "platform/system/windows_text.h"

namespace vicenter::system {

namespace fs = std::filesystem;

namespace {

constexpr std::wstring_view kLong = L"\\\\?\\";
constexpr std::wstring_view kLongOnServer = L"\\\\?\\UNC\\";
constexpr std::wstring_view kDevice = L"\\\\.\\";
// A folder must leave room for a name of the old form, 8.3.
constexpr std::size_t kShortEnough = 240;

}  // namespace

fs::path PathFromUtf8(std::string_view text) {
    fs::path path(os::Wide(text));
    if (path.native().size() < kShortEnough) return path;
    std::error_code failed;
    const fs::path whole = WholePath(path, failed);
    if (failed) return path;
    // The long form is taken as it stands: no dots, no slashes.
    std::wstring name = whole.lexically_normal().make_preferred().native();
    if (name.starts_with(kLong) || name.starts_with(kDevice)) return path;
    if (name.starts_with(L"\\\\")) return std::wstring(kLongOnServer) + name.substr(2);
    return std::wstring(kLong) + name;
}

std::string PathToUtf8(const fs::path& path) {
    const std::wstring_view name = path.native();
    if (name.starts_with(kLongOnServer))
        return os::Narrow(std::wstring(L"\\\\") + std::wstring(name.substr(kLongOnServer.size())));
    return os::Narrow(name.starts_with(kLong) ? name.substr(kLong.size()) : name);
}

}  // namespace vicenter::system
