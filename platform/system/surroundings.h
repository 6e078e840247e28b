#pragma once

// What the component needs of the machine and of the person in front of it, as interfaces.
//
// One Surroundings serves the process: Current() is the operating system's until a window system, a command
// line or a test puts another in place. Message boxes, file choices, the clock and process starts all go this
// way, so that no test ever meets a modal dialog. User-interface thread only.

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "automation/date_time.h"

namespace vicenter::system {

enum class MessageButtons { Ok, OkCancel, YesNo };
enum class MessageIcon { None, Information, Question, Exclamation, Critical };
enum class MessageResult { Ok, Cancel, Yes, No };

// Modal message boxes. Text and title are UTF-8; line breaks in the text are CR LF.
class MessageBoxes {
  public:
    virtual ~MessageBoxes() = default;
    virtual MessageResult Show(const std::string& text, MessageButtons buttons, MessageIcon icon,
                               const std::string& title) = 0;
};

struct FileFilter {
    std::string description;
    std::string pattern;  // "*.xls"
};

struct FileRequest {
    std::string title;
    std::string proposedName;
    std::vector<FileFilter> filters;
    std::size_t selectedFilter = 0;
    std::uint32_t flags = 0;  // of the common dialog: 0x2 overwrite prompt, 0x4 hide read-only, 0x800 path
                              // must exist, 0x1000 file must exist, 0x80000 explorer style
};

// Modal file choices; nothing when the user cancelled.
class FileDialogs {
  public:
    virtual ~FileDialogs() = default;
    virtual std::optional<std::string> ChooseFileToOpen(const FileRequest& request) = 0;
    // None when the user cancelled; one at most where a dialog takes no more.
    virtual std::vector<std::string> ChooseFilesToOpen(const FileRequest& request) {
        const std::optional<std::string> file = ChooseFileToOpen(request);
        return file && !file->empty() ? std::vector<std::string>{*file} : std::vector<std::string>();
    }
    virtual std::optional<std::string> ChooseFileToSave(const FileRequest& request) = 0;
};

class Clock {
  public:
    virtual ~Clock() = default;
    virtual automation::DateTime Now() = 0;  // local time
};

class Processes {
  public:
    virtual ~Processes() = default;
    virtual std::int32_t CurrentProcessId() = 0;
    // Starts a command line without waiting. Throws automation::Error (53) when the program is not found.
    virtual void Start(const std::string& commandLine) = 0;
    // Opens a document in the desktop's browser. Throws automation::Error when that is impossible.
    virtual void OpenDocument(const std::string& path) = 0;
};

class Guids {
  public:
    virtual ~Guids() = default;
    // "{8-4-4-4-12}" in upper-case hexadecimal digits; nothing when the system gives none.
    virtual std::optional<std::string> New() = 0;
};

enum class MousePointer { Default = 0, Hourglass = 11 };

class Screen {
  public:
    virtual ~Screen() = default;
    virtual void SetMousePointer(MousePointer pointer) = 0;
    // Lets windows repaint without taking user input.
    virtual void Repaint() = 0;
};

// Told of work that whoever asked for it waits for, on the user-interface thread and again and again: what
// is shown may be kept alive and a wish to stop taken. Nothing of the work may be started from here again.
class LongWork {
  public:
    virtual ~LongWork() = default;
    // How long it has taken so far; false when it is to be stopped.
    virtual bool GoOn(std::chrono::milliseconds taken) = 0;
    // It is over. Called once behind one or several GoOn().
    virtual void Done() noexcept = 0;
};

class Folders {
  public:
    virtual ~Folders() = default;
    virtual std::string Temporary() = 0;  // the system's temporary folder, without a final separator
    virtual std::string UserData() = 0;   // where this user's account sets live
    virtual std::string Component() = 0;  // the folder that the component itself was loaded from
};

struct Surroundings {
    std::shared_ptr<MessageBoxes> messageBoxes;
    std::shared_ptr<FileDialogs> fileDialogs;
    std::shared_ptr<Clock> clock;
    std::shared_ptr<Processes> processes;
    std::shared_ptr<Guids> guids;
    std::shared_ptr<Screen> screen;
    std::shared_ptr<Folders> folders;
    std::shared_ptr<LongWork> longWork = nullptr;  // none where nobody watches

    static Surroundings& Current();
    // The operating system's services; message boxes answer Ok/No and file dialogs cancel, since nobody is
    // there.
    static Surroundings OfSystem();
};

// Replaces the process's surroundings until the end of the scope.
class SurroundingsScope {
  public:
    explicit SurroundingsScope(Surroundings replacement);
    SurroundingsScope(const SurroundingsScope&) = delete;
    SurroundingsScope& operator=(const SurroundingsScope&) = delete;
    ~SurroundingsScope();

  private:
    Surroundings saved_;
};

}  // namespace vicenter::system
