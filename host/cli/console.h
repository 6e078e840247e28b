#pragma once

// Message boxes and the template center's view for a terminal.

#include <chrono>
#include <iosfwd>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "center/frame/silent_view.h"
#include "platform/system/surroundings.h"

namespace vicenter::host {

struct ShownMessage {
    std::string title;
    std::string text;
    std::string file = {};                  // that the message is about; empty where a command has no files
    std::string label = {};                 // what stands before it on a terminal
    std::vector<std::string> reasons = {};  // what stands below it there, a line each
};

// Keeps the messages for the end of the command and asks questions at once.
class ConsoleMessages final : public system::MessageBoxes {
  public:
    // Questions are asked on `prompt`, below the messages so far unless those go into a document.
    ConsoleMessages(std::istream& in, std::ostream& prompt, std::optional<bool> answer, bool intoDocument)
        : in_(in), prompt_(prompt), answer_(answer), intoDocument_(intoDocument) {}

    system::MessageResult Show(const std::string& text, system::MessageButtons buttons,
                               system::MessageIcon icon, const std::string& title) override;

    // What is said from now on is about that file, which a terminal is told by the label; none: about none.
    void SpeakOf(const std::string& file, const std::string& label) {
        file_ = file;
        label_ = label;
    }
    // Below the last message, unless one about the same file has said it.
    void AddReason(const std::string& reason);

    // Questions are among them.
    const std::vector<ShownMessage>& Shown() const { return shown_; }
    // Prints those that have not been printed yet, line breaks as the terminal has them.
    void Print(std::ostream& out);

  private:
    bool Ask();

    std::istream& in_;
    std::ostream& prompt_;
    std::optional<bool> answer_;
    bool intoDocument_;
    std::string file_;
    std::string label_;
    std::vector<ShownMessage> shown_;
    std::size_t printed_ = 0;
};

// Says once that the command waits: for an account set that others have locked, for a server.
class ConsoleWait final : public system::LongWork {
  public:
    ConsoleWait(std::ostream& err, std::chrono::milliseconds untilTold) : err_(err), untilTold_(untilTold) {}

    bool GoOn(std::chrono::milliseconds taken) override;
    void Done() noexcept override {}

  private:
    std::ostream& err_;
    std::chrono::milliseconds untilTold_;
    bool told_ = false;
};

// A window that shows nothing: what matters arrives as messages and in the account set.
class ConsoleView final : public center::SilentView {
  public:
    void StartLabelEdit() override { editingLabel_ = true; }

    // The presenter has asked for the selected node's label to be edited.
    bool IsEditingLabel() const { return editingLabel_; }

  private:
    bool editingLabel_ = false;
};

}  // namespace vicenter::host
