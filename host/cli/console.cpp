#include "host/cli/console.h"

#include <algorithm>
#include <istream>
#include <ostream>

namespace vicenter::host {

using system::MessageButtons;
using system::MessageIcon;
using system::MessageResult;

namespace {

std::string WithLineFeeds(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c != '\r') result += c;
    }
    return result;
}

std::string OnTerminal(const ShownMessage& message) {
    std::string text = message.label.empty() ? "" : message.label + "：";
    text += WithLineFeeds(message.text);
    if (message.reasons.empty()) return text;
    while (text.ends_with('\n'))
        text.pop_back();
    for (const std::string& reason : message.reasons)
        text += "\n  " + WithLineFeeds(reason);
    return text;
}

}  // namespace

MessageResult ConsoleMessages::Show(const std::string& text, MessageButtons buttons, MessageIcon,
                                    const std::string& title) {
    shown_.push_back({title, text, file_, label_, {}});
    if (buttons == MessageButtons::Ok) return MessageResult::Ok;
    const bool agreed = answer_ ? *answer_ : Ask();
    if (buttons == MessageButtons::YesNo) return agreed ? MessageResult::Yes : MessageResult::No;
    return agreed ? MessageResult::Ok : MessageResult::Cancel;
}

bool ConsoleMessages::Ask() {
    if (!intoDocument_) {
        // What was said before belongs above the question.
        const ShownMessage question = shown_.back();
        shown_.pop_back();
        Print(prompt_);
        shown_.push_back(question);
        printed_ = shown_.size();
    }
    prompt_ << OnTerminal(shown_.back()) << " [y/n] " << std::flush;
    std::string line;
    // The end of the input is a refusal: nobody is there to agree.
    if (!std::getline(in_, line)) {
        prompt_ << "\n";
        return false;
    }
    const std::size_t first = line.find_first_not_of(" \t");
    if (first == std::string::npos) return false;
    return line[first] == 'y' || line[first] == 'Y' || line.compare(first, 3, "是") == 0;
}

void ConsoleMessages::AddReason(const std::string& reason) {
    const auto says = [&](const ShownMessage& message) {
        return message.file == file_ && message.text.find(reason) != std::string::npos;
    };
    if (shown_.empty() || std::any_of(shown_.begin(), shown_.end(), says)) return;
    shown_.back().reasons.push_back(reason);
}

void ConsoleMessages::Print(std::ostream& out) {
    for (; printed_ < shown_.size(); ++printed_)
        out << OnTerminal(shown_[printed_]) << "\n";
}

bool ConsoleWait::GoOn(std::chrono::milliseconds taken) {
    if (!told_ && taken >= untilTold_) {
        told_ = true;
        err_ << "正在执行，请稍后...（按 Ctrl+C 中止）" << std::endl;
    }
    return true;
}

}  // namespace vicenter::host
