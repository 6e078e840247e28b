#include "host/batch_reader.h"

#include <charconv>

#include "automation/error.h"
#include "text/blanks.h"

namespace vicenter::host {

namespace {

std::string_view Trimmed(std::string_view text) {
    return text::Trimmed(text, text::kAllBlanks);
}

// The repeat count of a GO line; nothing for any other line.
std::optional<int> ReadGo(std::string_view line) {
    line = Trimmed(line);
    if (line.size() < 2 || (line[0] != 'g' && line[0] != 'G') || (line[1] != 'o' && line[1] != 'O'))
        return std::nullopt;
    std::string_view rest = line.substr(2);
    if (!rest.empty() && rest[0] == ';') rest.remove_prefix(1);
    if (!rest.empty() && rest.find_first_of(" \t-") != 0) return std::nullopt;
    rest = Trimmed(rest);
    if (rest.empty() || rest.starts_with("--")) return 1;
    int count = 0;
    const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), count);
    if (error != std::errc() || count < 0) return std::nullopt;
    rest = Trimmed(rest.substr(static_cast<std::size_t>(end - rest.data())));
    if (!rest.empty() && !rest.starts_with("--")) return std::nullopt;
    return count;
}

}  // namespace

std::optional<ScriptBatch> BatchReader::Next() {
    ScriptBatch batch;
    batch.firstLine = line_ + 1;
    std::string line;
    while (std::getline(script_, line)) {
        ++line_;
        if (line_ == 1 && line.starts_with("\xEF\xBB\xBF")) line.erase(0, 3);
        if (state_ == State::Plain) {
            if (const std::optional<int> repeat = ReadGo(line)) {
                if (*repeat > 0 && !Trimmed(batch.text).empty()) {
                    batch.repeat = *repeat;
                    return batch;
                }
                batch.text.clear();
                batch.firstLine = line_ + 1;
                continue;
            }
        }
        Scan(line);
        batch.text += line;
        batch.text += '\n';
    }
    // A stream swallows what fails beneath it, memory too. What was not read to its end is not run.
    if (script_.bad())
        throw automation::Error(automation::error_number::kPermissionDenied,
                                "脚本没有读完，其余部分没有执行！");
    if (Trimmed(batch.text).empty()) return std::nullopt;
    return batch;
}

void BatchReader::Scan(std::string_view line) {
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        const char next = i + 1 < line.size() ? line[i + 1] : '\0';
        switch (state_) {
            case State::Plain:
                if (c == '-' && next == '-') return;
                if (c == '/' && next == '*') {
                    state_ = State::BlockComment;
                    commentDepth_ = 1;
                    ++i;
                } else if (c == '\'') {
                    state_ = State::Text;
                } else if (c == '"') {
                    state_ = State::QuotedName;
                } else if (c == '[') {
                    state_ = State::BracketName;
                }
                break;
            case State::BlockComment:
                if (c == '*' && next == '/') {
                    ++i;
                    if (--commentDepth_ == 0) state_ = State::Plain;
                } else if (c == '/' && next == '*') {
                    ++i;
                    ++commentDepth_;
                }
                break;
            // A doubled closing mark leaves the state and enters it again.
            case State::Text:
                if (c == '\'') state_ = State::Plain;
                break;
            case State::QuotedName:
                if (c == '"') state_ = State::Plain;
                break;
            case State::BracketName:
                if (c == ']') state_ = State::Plain;
                break;
        }
    }
}

}  // namespace vicenter::host
