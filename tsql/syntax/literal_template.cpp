#include "tsql/syntax/literal_template.h"

#include <cstring>

#include "text/ascii.h"
#include "text/hex.h"
#include "tsql/base/diagnostic.h"
#include "tsql/syntax/literal_finder.h"

namespace vicenter::tsql {

namespace {

using text::IsDigit;
using text::IsHexDigit;

bool IsBlank(char c) {
    return c > '\0' && c <= ' ';
}

// Part of a word, or beyond ASCII.
bool IsWordByte(char c) {
    return text::IsLetter(c) || IsDigit(c) || c == '_' || c == '#' || c == '@' || c == '$' ||
           (static_cast<unsigned char>(c) & 0x80U) != 0;
}

// A literal next to such a byte might read as one token with it: 1a, 'x''y', N'x'. Cutting there would let a
// template match what the lexer takes for something else.
bool Clings(char c) {
    return IsWordByte(c) || c == '.' || c == '\'' || c == '"' || c == '[' || c == ']';
}

bool StartsNumber(std::string_view text, std::size_t at) {
    if (at >= text.size()) return false;
    return IsDigit(text[at]) || (text[at] == '.' && at + 1 < text.size() && IsDigit(text[at + 1]));
}

// 'text' from behind its first apostrophe; the offset behind the last, or npos when there is none. Most bytes
// of a batch stand in texts, so that their end is searched for, not walked to.
std::size_t ScanText(std::string_view text, std::size_t at, LiteralValue* literal) {
    const std::size_t from = at;
    for (;;) {
        at = text.find('\'', at);
        if (at == std::string_view::npos) return at;
        if (at + 1 >= text.size() || text[at + 1] != '\'') break;
        literal->doubled = true;
        at += 2;
    }
    literal->text = text.substr(from, at - from);
    return at + 1;
}

std::size_t ScanDigits(std::string_view text, std::size_t at) {
    while (at < text.size() && IsDigit(text[at]))
        ++at;
    return at;
}

// A number without its sign; the offset behind it, or npos for what only the lexer should judge.
std::size_t ScanNumber(std::string_view text, std::size_t at, LiteralValue* literal) {
    const std::size_t from = at;
    if (text[at] == '0' && at + 1 < text.size() && (text[at + 1] | 0x20) == 'x') {
        at += 2;
        while (at < text.size() && IsHexDigit(text[at]))
            ++at;
        literal->kind = LiteralKind::kBinary;
        literal->text = text.substr(from + 2, at - from - 2);
        return at;
    }
    literal->kind = LiteralKind::kInteger;
    at = ScanDigits(text, at);
    if (at < text.size() && text[at] == '.') {
        literal->kind = LiteralKind::kDecimal;
        at = ScanDigits(text, at + 1);
    }
    if (at < text.size() && (text[at] | 0x20) == 'e') {
        literal->kind = LiteralKind::kFloat;
        ++at;
        if (at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
        // 1e and 1e+ are whatever the lexer makes of them.
        if (at >= text.size() || !IsDigit(text[at])) return std::string_view::npos;
        at = ScanDigits(text, at);
    }
    literal->text = text.substr(from, at - from);
    return at;
}

// Reads one literal as the lexer would, byte by byte: this is most of the time that a long batch of INSERTs
// takes, and a token each would double it. Gives the offset behind it, or `at` when there is none; what it
// leaves in `literal` then does not count.
std::size_t ScanLiteral(std::string_view text, std::size_t at, bool value, LiteralValue* literal) {
    constexpr std::string_view kNull = "null";
    const std::size_t start = at;
    if (at >= text.size()) return start;
    literal->negative = false;
    literal->doubled = false;
    literal->offset = static_cast<std::uint32_t>(at);
    const bool letterN = (text[at] | 0x20) == 'n';
    const bool national = letterN && at + 1 < text.size() && text[at + 1] == '\'';
    if (text[at] == '\'' || national) {
        literal->kind = national ? LiteralKind::kNString : LiteralKind::kString;
        const std::size_t end = ScanText(text, at + (national ? 2 : 1), literal);
        return end == std::string_view::npos ? start : end;
    }
    if (value && letterN) {
        if (!IsWord(text.substr(at, kNull.size()), kNull)) return start;
        literal->kind = LiteralKind::kNull;
        literal->text = {};
        at += kNull.size();
    } else {
        // Where no subtraction can be meant the sign is the literal's own, so that 5 and -5 may take turns.
        if (value && text[at] == '-' && StartsNumber(text, at + 1)) {
            literal->negative = true;
            literal->offset = static_cast<std::uint32_t>(++at);
        }
        if (!StartsNumber(text, at)) return start;
        at = ScanNumber(text, at, literal);
        if (at == std::string_view::npos) return start;
    }
    return at < text.size() && Clings(text[at]) ? start : at;
}

// What a value ends with: a minus behind it takes away, any other one turns the value behind it around.
bool EndsValue(const Token& token) {
    switch (token.kind) {
        case TokenKind::kOperator:
            return token.op == Op::kRightParen;
        case TokenKind::kIdentifier:
            return token.keyword == Keyword::kNone || token.keyword == Keyword::kNull;
        default:
            return true;
    }
}

// "… values (1) union …" begins as a repetition does: only what can follow a complete statement ends it.
bool EndsWell(std::string_view text, std::size_t at) {
    while (at < text.size() && IsBlank(text[at]))
        ++at;
    if (at >= text.size() || text[at] == ';') return true;
    std::size_t end = at;
    while (end < text.size() && IsWordByte(text[end]))
        ++end;
    return end > at && StartsNextStatement(FindKeyword(text.substr(at, end - at)));
}

}  // namespace

std::optional<LiteralTemplate> LiteralTemplate::Make(std::string_view statement) {
    LiteralTemplate result;
    try {
        Lexer lexer(statement);
        LiteralFinder finder;
        Token token = lexer.Next();
        if (token.position.offset != 0 || !StartsDataStatement(token)) return std::nullopt;
        std::size_t from = 0;
        Token previous;
        Token beforePrevious;
        while (token.kind != TokenKind::kEnd) {
            const Token next = lexer.Next();
            const LiteralFinder::Answer answer = finder.Look(token, next);
            // - 5 and -(5): the tree would hold the sign of a literal that is matched without it.
            const bool turns = previous.op == Op::kMinus && !EndsValue(beforePrevious);
            bool isSign = false;
            if (answer != LiteralFinder::Answer::kFixed) {
                std::size_t begin = token.position.offset;
                const std::size_t end = token.EndOffset();
                const bool isNumber = token.kind == TokenKind::kInteger ||
                                      token.kind == TokenKind::kDecimal || token.kind == TokenKind::kFloat;
                Slot slot;
                slot.value = answer == LiteralFinder::Answer::kValue;
                // A sign directly before the number belongs to it when it is no subtraction.
                const bool sign = isNumber && previous.op == Op::kMinus && previous.EndOffset() == begin &&
                                  OpensValue(beforePrevious);
                isSign = sign;
                if (sign) {
                    begin = previous.position.offset;
                    slot.value = true;
                }
                if (begin == 0 || begin < from || Clings(statement[begin - 1])) return std::nullopt;
                if (end < statement.size() && Clings(statement[end])) return std::nullopt;
                slot.before = std::string(statement.substr(from, begin - from));
                result.slots_.push_back(std::move(slot));
                from = end;
            }
            if (turns && !isSign) return std::nullopt;
            beforePrevious = previous;
            previous = token;
            token = next;
        }
        if (result.slots_.empty()) return std::nullopt;
        result.after_ = std::string(statement.substr(from));
    } catch (const SqlError&) {
        return std::nullopt;
    }
    // A comment at the end would swallow what follows: the text behind it is another one in each run.
    if (result.after_.find("--") != std::string::npos) return std::nullopt;
    return result;
}

std::optional<std::uint32_t> LiteralTemplate::Match(std::string_view text, std::uint32_t offset,
                                                    std::vector<LiteralValue>* literals,
                                                    std::uint32_t* start) const {
    std::size_t at = offset;
    while (at < text.size() && (IsBlank(text[at]) || text[at] == ';'))
        ++at;
    if (start) *start = static_cast<std::uint32_t>(at);
    literals->resize(slots_.size());
    for (std::size_t i = 0; i < slots_.size(); ++i) {
        const Slot& slot = slots_[i];
        if (text.size() - at < slot.before.size() ||
            std::memcmp(text.data() + at, slot.before.data(), slot.before.size()) != 0) {
            return std::nullopt;
        }
        at += slot.before.size();
        const std::size_t end = ScanLiteral(text, at, slot.value, &(*literals)[i]);
        if (end == at) return std::nullopt;
        at = end;
    }
    if (text.size() - at < after_.size() ||
        std::memcmp(text.data() + at, after_.data(), after_.size()) != 0) {
        return std::nullopt;
    }
    at += after_.size();
    // The last byte must not run into a longer word or number.
    if (at < text.size() && at > 0 && Clings(text[at - 1]) && Clings(text[at])) return std::nullopt;
    if (!EndsWell(text, at)) return std::nullopt;
    return static_cast<std::uint32_t>(at);
}

Position Advance(std::string_view text, Position from, std::uint32_t offset) {
    std::int64_t lineStart =
        static_cast<std::int64_t>(from.offset) - (static_cast<std::int64_t>(from.column) - 1);
    std::uint32_t line = from.line;
    std::size_t at = from.offset;
    while (at < offset) {
        const void* found = std::memchr(text.data() + at, '\n', offset - at);
        if (!found) break;
        at = static_cast<std::size_t>(static_cast<const char*>(found) - text.data()) + 1;
        ++line;
        lineStart = static_cast<std::int64_t>(at);
    }
    return {offset, line, static_cast<std::uint32_t>(static_cast<std::int64_t>(offset) - lineStart + 1)};
}

}  // namespace vicenter::tsql
