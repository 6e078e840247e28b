#include "host/cli/json_syntax.h"

#include <algorithm>
#include <set>

#include "support/vbs_json.h"
#include "text/hex.h"

namespace vicenter::host {

namespace {

using text::IsDigit;
using text::IsHexDigit;

// Every step returns false once a fault is found and leaves its place and reason behind.
class Scanner {
  public:
    explicit Scanner(std::string_view text) : text_(text) {}

    std::optional<JsonFault> Run() {
        SkipBlanks();
        if (Peek() != '{') {
            Refuse("应为一个 JSON 对象");
        } else if (Object(1)) {
            SkipBlanks();
            if (at_ < text_.size()) Refuse("JSON 对象之后不应再有内容");
        }
        if (reason_.empty()) return std::nullopt;
        return Fault();
    }

  private:
    char Peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
    bool AtEnd() const { return at_ >= text_.size(); }

    void SkipBlanks() { at_ = std::min(text_.find_first_not_of(" \t\r\n", at_), text_.size()); }

    bool Refuse(const char* reason) {
        reason_ = reason;
        if (AtEnd() && !text_.empty()) reason_ += "，内容到此中断";
        return false;
    }

    JsonFault Fault() const {
        const std::string_view before = text_.substr(0, at_);
        const std::size_t lineBreak = before.rfind('\n');
        const std::string_view line =
            lineBreak == std::string_view::npos ? before : before.substr(lineBreak + 1);
        JsonFault fault;
        fault.line += static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
        // Bytes that continue a character are none of their own.
        fault.column += static_cast<std::size_t>(std::count_if(
            line.begin(), line.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
        fault.text = reason_;
        return fault;
    }

    bool Value(int depth) {
        switch (Peek()) {
            case '{':
                return Object(depth + 1);
            case '[':
                return Array(depth + 1);
            case '"':
                return Text();
            default:
                return Word() || Number();
        }
    }

    bool Object(int depth) {
        if (depth > support::VbsJson::kMaxDepth) return Refuse("嵌套过深");
        ++at_;
        SkipBlanks();
        if (Peek() == '}') return ++at_, true;
        std::set<std::string_view> names;
        while (true) {
            if (Peek() != '"') return Refuse("应为双引号括起的字段名");
            const std::size_t start = at_;
            if (!Text()) return false;
            if (!names.insert(text_.substr(start, at_ - start)).second) {
                at_ = start;
                return Refuse("字段名重复");
            }
            SkipBlanks();
            if (Peek() != ':') return Refuse("应为冒号");
            ++at_;
            SkipBlanks();
            if (!Value(depth)) return false;
            SkipBlanks();
            if (Peek() == '}') return ++at_, true;
            if (Peek() != ',') return Refuse("应为逗号或“}”");
            ++at_;
            SkipBlanks();
        }
    }

    bool Array(int depth) {
        if (depth > support::VbsJson::kMaxDepth) return Refuse("嵌套过深");
        ++at_;
        SkipBlanks();
        if (Peek() == ']') return ++at_, true;
        while (true) {
            if (!Value(depth)) return false;
            SkipBlanks();
            if (Peek() == ']') return ++at_, true;
            if (Peek() != ',') return Refuse("应为逗号或“]”");
            ++at_;
            SkipBlanks();
        }
    }

    bool Text() {
        for (++at_; !AtEnd(); ++at_) {
            const auto byte = static_cast<unsigned char>(text_[at_]);
            if (byte == '"') return ++at_, true;
            if (byte < 0x20) return Refuse("文本中的换行、制表符等控制字符应写作 \\n、\\t 等");
            if (byte == '\\' && !Escape()) return false;
        }
        return Refuse("文本没有结束的双引号");
    }

    // Ends on the escape's last character.
    bool Escape() {
        ++at_;
        if (AtEnd()) return Refuse("文本没有结束的双引号");
        if (text_[at_] == 'u') {
            for (int i = 0; i < 4; ++i) {
                ++at_;
                if (!IsHexDigit(Peek())) return Refuse("\\u 之后应为四位十六进制数字");
            }
            return true;
        }
        if (std::string_view("\"\\/bfnrt").find(text_[at_]) == std::string_view::npos)
            return Refuse("无效的转义字符");
        return true;
    }

    bool Word() {
        for (const std::string_view word : {"null", "true", "false"}) {
            if (text_.substr(at_, word.size()) != word) continue;
            at_ += word.size();
            return true;
        }
        return false;
    }

    bool Number() {
        const std::size_t start = at_;
        std::size_t at = at_;
        const auto digits = [&] {
            const std::size_t first = at;
            while (at < text_.size() && IsDigit(text_[at]))
                ++at;
            return at > first;
        };
        if (Peek() == '-') ++at;
        if (at < text_.size() && text_[at] == '0') {
            ++at;
        } else if (!digits()) {
            return Refuse("应为一个值（文本要用双引号括起）");
        }
        if (at < text_.size() && text_[at] == '.') {
            ++at;
            if (!digits()) return Refuse("无效的数字");
        }
        if (at < text_.size() && (text_[at] == 'e' || text_[at] == 'E')) {
            ++at;
            if (at < text_.size() && (text_[at] == '+' || text_[at] == '-')) ++at;
            if (!digits()) return Refuse("无效的数字");
        }
        if (at < text_.size() && IsDigit(text_[at])) return Refuse("无效的数字");  // 01
        at_ = at;
        return at_ > start;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    std::string reason_;
};

}  // namespace

std::optional<JsonFault> FindJsonFault(std::string_view text) {
    return Scanner(text).Run();
}

}  // namespace vicenter::host
