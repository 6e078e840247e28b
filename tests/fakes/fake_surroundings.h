#pragma once

// Surroundings that answer from a script and record what they were asked. In place from construction to
// destruction.

#include <deque>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "automation/error.h"
#include "platform/system/files.h"
#include "platform/system/surroundings.h"

namespace vicenter::fakes {

struct ShownMessage {
    std::string text;
    system::MessageButtons buttons = system::MessageButtons::Ok;
    system::MessageIcon icon = system::MessageIcon::None;
    std::string title;
};

class RecordingMessageBoxes : public system::MessageBoxes {
  public:
    system::MessageResult Show(const std::string& text, system::MessageButtons buttons,
                               system::MessageIcon icon, const std::string& title) override {
        shown.push_back({text, buttons, icon, title});
        // What others do while the user reads: once.
        if (buttons != system::MessageButtons::Ok && !meanwhile.empty()) {
            const std::function<void()> act = meanwhile.front();
            meanwhile.pop_front();
            if (act) act();
        }
        if (answers.empty()) {
            // Unscripted questions are declined, as a user who closes the box would.
            if (buttons == system::MessageButtons::YesNo) return system::MessageResult::No;
            return buttons == system::MessageButtons::OkCancel ? system::MessageResult::Cancel
                                                               : system::MessageResult::Ok;
        }
        const system::MessageResult answer = answers.front();
        answers.pop_front();
        return answer;
    }
    std::vector<std::string> Texts() const {
        std::vector<std::string> texts;
        for (const ShownMessage& message : shown)
            texts.push_back(message.text);
        return texts;
    }

    std::vector<ShownMessage> shown;
    std::deque<system::MessageResult> answers;
    std::deque<std::function<void()>> meanwhile;  // one a question; none: nothing happens
};

class ScriptedFileDialogs : public system::FileDialogs {
  public:
    std::optional<std::string> ChooseFileToOpen(const system::FileRequest& request) override {
        requests.push_back(request);
        return Next();
    }
    std::optional<std::string> ChooseFileToSave(const system::FileRequest& request) override {
        requests.push_back(request);
        return Next();
    }

    std::vector<system::FileRequest> requests;
    std::deque<std::optional<std::string>> choices;  // none left: cancelled

  private:
    std::optional<std::string> Next() {
        if (choices.empty()) return std::nullopt;
        auto choice = choices.front();
        choices.pop_front();
        return choice;
    }
};

class FixedClock : public system::Clock {
  public:
    automation::DateTime Now() override { return now; }
    automation::DateTime now = *automation::DateTime::Parse("2026-01-31 08:00:00");
};

class RecordingProcesses : public system::Processes {
  public:
    std::int32_t CurrentProcessId() override { return processId; }
    void Start(const std::string& commandLine) override {
        started.push_back(commandLine);
        if (startError != 0) throw automation::Error(startError);
    }
    void OpenDocument(const std::string& path) override {
        opened.push_back(path);
        if (openError != 0) throw automation::Error(openError);
    }

    std::int32_t processId = 4711;
    std::int32_t startError = 0;
    std::int32_t openError = 0;
    std::vector<std::string> started;
    std::vector<std::string> opened;
};

// Counts up; none when exhausted is set.
class CountingGuids : public system::Guids {
  public:
    std::optional<std::string> New() override {
        if (exhausted) return std::nullopt;
        std::string digits = std::to_string(++count);
        digits.insert(0, 12 - digits.size(), '0');
        return "{00000000-0000-4000-8000-" + digits + "}";
    }
    bool exhausted = false;
    int count = 0;
};

class RecordingScreen : public system::Screen {
  public:
    void SetMousePointer(system::MousePointer pointer) override { pointers.push_back(pointer); }
    void Repaint() override { ++repaints; }
    std::vector<system::MousePointer> pointers;
    int repaints = 0;
};

class FixedFolders : public system::Folders {
  public:
    std::string Temporary() override { return temporary; }
    std::string UserData() override { return data; }
    std::string Component() override { return component; }
    std::string temporary;
    std::string data;  // made by whoever needs it
    std::string component = "C:\\Vela\\Component";
};

// A folder that is there until the end of the scope.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        static int count = 0;
        const auto base = std::filesystem::temp_directory_path();
        const std::string guid = *system::Surroundings::OfSystem().guids->New();
        path_ = base / ("vicenter-test-" + guid.substr(1, 8) + "-" + std::to_string(++count));
        std::filesystem::create_directories(path_);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    const std::filesystem::path& Path() const { return path_; }
    std::string Text() const { return system::PathToUtf8(path_); }
    std::string File(const std::string& name) const {
        return system::PathToUtf8(path_ / system::PathFromUtf8(name));
    }

  private:
    std::filesystem::path path_;
};

class FakeSurroundings {
  public:
    FakeSurroundings() : scope_({messageBoxes, fileDialogs, clock, processes, guids, screen, folders}) {
        const system::Surroundings real = system::Surroundings::OfSystem();
        folders->temporary = real.folders->Temporary();
        // What one test leaves for its user is not the next one's.
        folders->data = folders->temporary + "/vicenter-test-data-" + real.guids->New()->substr(1, 8);
    }
    FakeSurroundings(const FakeSurroundings&) = delete;
    FakeSurroundings& operator=(const FakeSurroundings&) = delete;
    ~FakeSurroundings() {
        std::error_code ignored;
        std::filesystem::remove_all(system::PathFromUtf8(folders->data), ignored);
    }

    std::shared_ptr<RecordingMessageBoxes> messageBoxes = std::make_shared<RecordingMessageBoxes>();
    std::shared_ptr<ScriptedFileDialogs> fileDialogs = std::make_shared<ScriptedFileDialogs>();
    std::shared_ptr<FixedClock> clock = std::make_shared<FixedClock>();
    std::shared_ptr<RecordingProcesses> processes = std::make_shared<RecordingProcesses>();
    std::shared_ptr<CountingGuids> guids = std::make_shared<CountingGuids>();
    std::shared_ptr<RecordingScreen> screen = std::make_shared<RecordingScreen>();
    std::shared_ptr<FixedFolders> folders = std::make_shared<FixedFolders>();

  private:
    system::SurroundingsScope scope_;
};

}  // namespace vicenter::fakes
