#include "platform/system/surroundings.h"

#include <chrono>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <utility>

#include "automation/error.h"
#include "automation/lasting.h"
#include "platform/system/files.h"
#include "platform/system/os.h"
#include "platform/system/program.h"

namespace vicenter::system {

namespace {

class UnattendedMessageBoxes : public MessageBoxes {
  public:
    MessageResult Show(const std::string&, MessageButtons buttons, MessageIcon, const std::string&) override {
        switch (buttons) {
            case MessageButtons::Ok:
                return MessageResult::Ok;
            case MessageButtons::OkCancel:
                return MessageResult::Cancel;
            case MessageButtons::YesNo:
                return MessageResult::No;
        }
        return MessageResult::Cancel;
    }
};

class UnattendedFileDialogs : public FileDialogs {
  public:
    std::optional<std::string> ChooseFileToOpen(const FileRequest&) override { return std::nullopt; }
    std::optional<std::string> ChooseFileToSave(const FileRequest&) override { return std::nullopt; }
};

class SystemClock : public Clock {
  public:
    automation::DateTime Now() override {
        const auto now = std::chrono::system_clock::now();
        const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
        const auto fraction =
            std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()) % 1000;
        std::tm local{};
#ifdef _WIN32
        localtime_s(&local, &seconds);
#else
        localtime_r(&seconds, &local);
#endif
        automation::DateTimeParts parts;
        parts.year = local.tm_year + 1900;
        parts.month = local.tm_mon + 1;
        parts.day = local.tm_mday;
        parts.hour = local.tm_hour;
        parts.minute = local.tm_min;
        parts.second = local.tm_sec > 59 ? 59 : local.tm_sec;  // a leap second is the minute's last
        parts.millisecond = static_cast<int>(fraction.count());
        return automation::DateTime::FromParts(parts).value_or(automation::DateTime());
    }
};

// Words of a command line; quotation marks keep blanks together.
std::vector<std::string> SplitCommandLine(const std::string& line) {
    std::vector<std::string> words;
    std::string word;
    bool inWord = false;
    bool quoted = false;
    for (const char c : line) {
        if (c == '"') {
            quoted = !quoted;
            inWord = true;
        } else if (c == ' ' && !quoted) {
            if (inWord) words.push_back(std::exchange(word, {}));
            inWord = false;
        } else {
            word += c;
            inWord = true;
        }
    }
    if (inWord) words.push_back(word);
    return words;
}

class SystemProcesses : public Processes {
  public:
    std::int32_t CurrentProcessId() override { return os::ProcessId(); }

    void Start(const std::string& commandLine) override {
        std::vector<std::string> words = SplitCommandLine(commandLine);
        if (words.empty()) throw automation::Error(automation::error_number::kInvalidProcedureCall);
        const std::string program = words.front();
        words.erase(words.begin());
        if (!os::StartProgram(program, words))
            throw automation::Error(automation::error_number::kFileNotFound);
    }

    void OpenDocument(const std::string& path) override {
        std::error_code error;
        if (!std::filesystem::exists(PathFromUtf8(path), error) || !os::OpenWithDesktop(path)) {
            throw automation::Error(automation::error_number::kFileNotFound);
        }
    }
};

class SystemGuids : public Guids {
  public:
    std::optional<std::string> New() override {
        auto bytes = os::RandomBytes();
        if (!bytes) return std::nullopt;
        auto& b = *bytes;
        b[6] = static_cast<unsigned char>((b[6] & 0x0F) | 0x40);  // version 4: random
        b[8] = static_cast<unsigned char>((b[8] & 0x3F) | 0x80);
        char text[40];
        std::snprintf(
            text, sizeof text, "{%02X%02X%02X%02X-%02X%02X-%02X%02X-%02X%02X-%02X%02X%02X%02X%02X%02X}", b[0],
            b[1], b[2], b[3], b[4], b[5], b[6], b[7], b[8], b[9], b[10], b[11], b[12], b[13], b[14], b[15]);
        return std::string(text);
    }
};

class NoScreen : public Screen {
  public:
    void SetMousePointer(MousePointer) override {}
    void Repaint() override {}
};

// The variable that leads nowhere, for whoever can change it.
std::string NoTemporaryFolder() {
    for (const char* name : {"TMPDIR", "TMP", "TEMP", "TEMPDIR"}) {
        if (const auto value = EnvironmentVariable(name))
            return std::string("临时文件夹不存在或不是文件夹：") + *value + "（环境变量 " + name + "）";
    }
    return "临时文件夹不存在或不是文件夹。";
}

class SystemFolders : public Folders {
  public:
    std::string Temporary() override {
        std::error_code failed;
        std::string path = PathToUtf8(std::filesystem::temp_directory_path(failed));
        if (failed) throw automation::Error(automation::error_number::kPathNotFound, NoTemporaryFolder());
        while (path.size() > 1 && (path.back() == '/' || path.back() == '\\'))
            path.pop_back();
        return path;
    }
    std::string UserData() override {
        const auto folder = PathFromUtf8(os::UserDataFolder()) / "vicenter";
        return PathToUtf8(folder);
    }
    std::string Component() override { return os::ProgramFolder(); }
};

}  // namespace

Surroundings Surroundings::OfSystem() {
    return {std::make_shared<UnattendedMessageBoxes>(),
            std::make_shared<UnattendedFileDialogs>(),
            std::make_shared<SystemClock>(),
            std::make_shared<SystemProcesses>(),
            std::make_shared<SystemGuids>(),
            std::make_shared<NoScreen>(),
            std::make_shared<SystemFolders>()};
}

Surroundings& Surroundings::Current() {
    static const automation::Lasting<Surroundings> current(OfSystem());
    return *current;
}

SurroundingsScope::SurroundingsScope(Surroundings replacement)
    : saved_(std::exchange(Surroundings::Current(), std::move(replacement))) {}

SurroundingsScope::~SurroundingsScope() {
    Surroundings::Current() = std::move(saved_);
}

}  // namespace vicenter::system
