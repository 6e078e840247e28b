#include "platform/system/windows_error.h"

#include "platform/system/windows_text.h"

namespace vicenter::system::os {

namespace {

class Category final : public std::error_category {
  public:
    const char* name() const noexcept override { return "windows"; }

    std::string message(int code) const override {
        wchar_t* text = nullptr;
        const DWORD length = FormatMessageW(
            FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
            nullptr, static_cast<DWORD>(code), 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
        std::wstring_view line(text, length);
        while (!line.empty() && (line.back() == L'\n' || line.back() == L'\r' || line.back() == L' '))
            line.remove_suffix(1);
        std::string result = line.empty() ? "Windows error " + std::to_string(code) : Narrow(line);
        LocalFree(text);
        return result;
    }

    std::error_condition default_error_condition(int code) const noexcept override {
        switch (code) {
            case ERROR_FILE_NOT_FOUND:
            case ERROR_PATH_NOT_FOUND:
            case ERROR_INVALID_DRIVE:
            case ERROR_BAD_NETPATH:
                return std::errc::no_such_file_or_directory;
            case ERROR_ACCESS_DENIED:
            case ERROR_SHARING_VIOLATION:
            case ERROR_LOCK_VIOLATION:
            case ERROR_USER_MAPPED_FILE:
                return std::errc::permission_denied;
            case ERROR_WRITE_PROTECT:
                return std::errc::read_only_file_system;
            case ERROR_FILE_EXISTS:
            case ERROR_ALREADY_EXISTS:
                return std::errc::file_exists;
            case ERROR_DISK_FULL:
            case ERROR_HANDLE_DISK_FULL:
                return std::errc::no_space_on_device;
            case ERROR_FILE_TOO_LARGE:
                return std::errc::file_too_large;
            case ERROR_NOT_ENOUGH_MEMORY:
            case ERROR_OUTOFMEMORY:
                return std::errc::not_enough_memory;
            default:
                return {code, *this};
        }
    }
};

}  // namespace

std::error_code LastError() {
    static const Category category;
    return {static_cast<int>(GetLastError()), category};
}

}  // namespace vicenter::system::os
