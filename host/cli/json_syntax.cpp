#include "host/cli/json_syntax.h"

#include <algorithm>
#include <set>
#include <vector>

#include <rapidjson/memorystream.h>
#include <rapidjson/reader.h>

#include "support/vbs_json.h"

namespace vicenter::host {

namespace {

namespace rj = rapidjson;

struct Refusal {
    std::size_t at = 0;
    std::string reason;
};

// Refuses what the parser takes: fields that stand twice, and more nesting than the codec reads.
class Watcher : public rj::BaseReaderHandler<rj::UTF8<>, Watcher> {
  public:
    Watcher(std::string_view text, const rj::MemoryStream& stream) : text_(text), stream_(stream) {}

    bool StartObject() {
        fields_.emplace_back();
        return Enter();
    }
    bool EndObject(rj::SizeType) {
        fields_.pop_back();
        --depth_;
        return true;
    }
    bool StartArray() { return Enter(); }
    bool EndArray(rj::SizeType) {
        --depth_;
        return true;
    }
    bool Key(const char*, rj::SizeType, bool) {
        const std::size_t end = stream_.Tell();
        const std::size_t start = StartOfText(end - 1);
        if (fields_.back().insert(text_.substr(start, end - start)).second) return true;
        refusal_ = {start, "字段名重复"};
        return false;
    }

    const Refusal& Said() const { return refusal_; }

  private:
    bool Enter() {
        if (++depth_ <= support::VbsJson::kMaxDepth) return true;
        refusal_ = {stream_.Tell() - 1, "嵌套过深"};
        return false;
    }

    // From the closing quote back to the opening one, which no backslash stands before.
    std::size_t StartOfText(std::size_t closing) const {
        std::size_t at = closing;
        std::size_t marks = 0;
        do {
            at = text_.rfind('"', at - 1);
            const std::size_t before = text_.find_last_not_of('\\', at - 1);
            marks = at - 1 - before;
        } while (marks % 2 != 0);
        return at;
    }

    std::string_view text_;
    const rj::MemoryStream& stream_;
    std::vector<std::set<std::string_view>> fields_;
    int depth_ = 0;
    Refusal refusal_;
};

// Where a number, or a word that is none, begins.
std::size_t StartOfToken(std::string_view text, std::size_t at) {
    const std::size_t before = text.find_last_of(" \t\r\n:,[{", at == 0 ? 0 : at - 1);
    return before == std::string_view::npos ? 0 : before + 1;
}

bool IsDigit(std::string_view text, std::size_t at) {
    return at < text.size() && text[at] >= '0' && text[at] <= '9';
}

// The parser's word in ours. It places a fault where it has stopped, we place one of a number at its
// beginning.
Refusal InWords(std::string_view text, rj::ParseErrorCode code, std::size_t at) {
    switch (code) {
        case rj::kParseErrorDocumentEmpty:
            return {at, "应为一个 JSON 对象"};
        case rj::kParseErrorDocumentRootNotSingular:
            return {at, "JSON 对象之后不应再有内容"};
        case rj::kParseErrorObjectMissName:
            return {at, "应为双引号括起的字段名"};
        case rj::kParseErrorObjectMissColon:
            return {at, "应为冒号"};
        case rj::kParseErrorObjectMissCommaOrCurlyBracket:
        case rj::kParseErrorArrayMissCommaOrSquareBracket:
            // Digits behind a leading zero.
            if (IsDigit(text, at) && at > 0 && IsDigit(text, at - 1))
                return {StartOfToken(text, at), "无效的数字"};
            return {at,
                    code == rj::kParseErrorObjectMissCommaOrCurlyBracket ? "应为逗号或“}”" : "应为逗号或“]”"};
        case rj::kParseErrorStringUnicodeEscapeInvalidHex:
            at = std::min(text.find_first_not_of("0123456789abcdefABCDEF", at + 2), text.size());
            return {at, "\\u 之后应为四位十六进制数字"};
        case rj::kParseErrorStringUnicodeSurrogateInvalid:
            return {at, "\\u 转义的字符不完整"};
        case rj::kParseErrorStringEscapeInvalid:
            if (text[at] != '\\') break;
            if (at + 1 >= text.size()) return {text.size(), "文本没有结束的双引号"};
            return {at + 1, "无效的转义字符"};
        case rj::kParseErrorStringMissQuotationMark:
            if (at < text.size()) break;  // a NUL
            return {at, "文本没有结束的双引号"};
        case rj::kParseErrorNumberMissFraction:
        case rj::kParseErrorNumberMissExponent:
            return {StartOfToken(text, at), "无效的数字"};
        case rj::kParseErrorNumberTooBig:
            return {at, "数字过大"};
        default:
            return {StartOfToken(text, at), "应为一个值（文本要用双引号括起）"};
    }
    return {at, "文本中的换行、制表符等控制字符应写作 \\n、\\t 等"};
}

JsonFault FaultAt(std::string_view text, Refusal refusal) {
    if (refusal.at >= text.size() && !text.empty()) refusal.reason += "，内容到此中断";
    const std::string_view before = text.substr(0, refusal.at);
    const std::string_view line = before.substr(before.rfind('\n') + 1);
    JsonFault fault;
    fault.line += static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
    // Bytes that continue a character are none of their own.
    fault.column += static_cast<std::size_t>(std::count_if(
        line.begin(), line.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
    fault.text = refusal.reason;
    return fault;
}

}  // namespace

std::optional<JsonFault> FindJsonFault(std::string_view text) {
    constexpr const char* kBlanks = " \t\r\n";
    const std::size_t first = std::min(text.find_first_not_of(kBlanks), text.size());
    if (first == text.size() || text[first] != '{') return FaultAt(text, {first, "应为一个 JSON 对象"});
    rj::MemoryStream stream(text.data(), text.size());
    Watcher watcher(text, stream);
    const rj::ParseResult result = rj::Reader().Parse<rj::kParseNumbersAsStringsFlag>(stream, watcher);
    if (result.Code() == rj::kParseErrorTermination) return FaultAt(text, watcher.Said());
    if (result.IsError()) return FaultAt(text, InWords(text, result.Code(), result.Offset()));
    // A NUL looks like the end to the parser.
    if (stream.Tell() < text.size()) {
        return FaultAt(text, InWords(text, rj::kParseErrorDocumentRootNotSingular, stream.Tell()));
    }
    return std::nullopt;
}

}  // namespace vicenter::host
