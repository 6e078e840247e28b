#include "center/frame/own_settings.h"

#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>

#include "automation/error.h"
#include "platform/system/file_replacement.h"
#include "platform/system/files.h"
#include "platform/system/surroundings.h"

namespace vicenter::center {

namespace fs = std::filesystem;

namespace {

using Lines = std::map<std::string, std::string, std::less<>>;

fs::path Folder() {
    return system::PathFromUtf8(system::Surroundings::Current().folders->UserData());
}

// Nothing when the file is there and cannot be read.
std::optional<Lines> Read() {
    Lines lines;
    const fs::path file = Folder() / "window.settings";
    std::error_code failed;
    if (fs::status(file, failed).type() == fs::file_type::not_found) return lines;
    std::ifstream in(file, std::ios::binary);
    if (!in) return std::nullopt;
    for (std::string line; std::getline(in, line);) {
        const std::size_t equals = line.find('=');
        if (equals != std::string::npos) lines[line.substr(0, equals)] = line.substr(equals + 1);
    }
    if (in.bad()) return std::nullopt;
    return lines;
}

void Write(const Lines& lines) {
    std::error_code failed;
    fs::create_directories(Folder(), failed);
    try {
        system::FileReplacement file(system::PathToUtf8(Folder() / "window.settings"));
        {
            std::ofstream out(system::PathFromUtf8(file.Path()), std::ios::binary | std::ios::trunc);
            for (const auto& [key, value] : lines)
                out << key << '=' << value << '\n';
            out.close();
            if (!out) return;
        }
        file.PutInPlace(system::Durable::No);
    } catch (const automation::Error&) {
        // How somebody likes to work is not worth a message.
    }
}

}  // namespace

std::string OwnSettings::Text(std::string_view key) const {
    if (userId_.empty()) return {};
    const Lines lines = Read().value_or(Lines());
    const auto found = lines.find(userId_ + "." + std::string(key));
    return found == lines.end() ? std::string() : found->second;
}

bool OwnSettings::IsOn(std::string_view key, bool otherwise) const {
    const std::string value = Text(key);
    return value.empty() ? otherwise : value == "1";
}

void OwnSettings::Put(std::string_view key, const std::string& value) const {
    if (userId_.empty()) return;
    std::optional<Lines> lines = Read();
    if (!lines) return;  // what was not read is not written: the others' settings stand there, too
    const std::string name = userId_ + "." + std::string(key);
    if (value.empty()) {
        lines->erase(name);
    } else {
        (*lines)[name] = value;
    }
    Write(*lines);
}

}  // namespace vicenter::center
