#include "platform/system/file_names.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "automation/object.h"
#include "platform/system/os.h"

namespace vicenter::system {

namespace {

// File systems take 255 bytes or UTF-16 units; an extension and a number have to follow.
constexpr std::size_t kMostBytes = 200;

// Devices of Windows, with any extension.
constexpr std::array<std::string_view, 22> kDevices = {
    "CON",  "PRN",  "AUX",  "NUL",  "COM1", "COM2", "COM3", "COM4", "COM5", "COM6", "COM7",
    "COM8", "COM9", "LPT1", "LPT2", "LPT3", "LPT4", "LPT5", "LPT6", "LPT7", "LPT8", "LPT9"};

bool IsDevice(std::string_view name) {
    const std::string_view stem = name.substr(0, name.find('.'));
    return std::any_of(kDevices.begin(), kDevices.end(),
                       [stem](std::string_view device) { return automation::SameName(stem, device); });
}

}  // namespace

std::string SafeFileName(std::string_view name) {
    std::string result(name);
    for (char& c : result) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte == 0x7F || std::string_view("/\\:*?\"<>|").find(c) != std::string_view::npos)
            c = '_';
    }
    if (result.size() > kMostBytes) {
        std::size_t end = kMostBytes;
        while (end > 0 && (static_cast<unsigned char>(result[end]) & 0xC0) == 0x80)
            --end;
        result.resize(end);
    }
    while (!result.empty() && (result.back() == '.' || result.back() == ' '))
        result.pop_back();
    if (result.empty() || IsDevice(result)) result += '_';
    return result;
}

std::vector<std::string> NamesIn(const std::string& folder) {
    return os::NamesIn(folder);
}

}  // namespace vicenter::system
