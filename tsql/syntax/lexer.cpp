#include "tsql/syntax/lexer.h"

#include <array>
#include <cstring>

#include "text/hex.h"
#include "text/utf8.h"
#include "tsql/base/error_table.h"

namespace vicenter::tsql {
namespace {

// What the error messages show at most of a text.
constexpr std::size_t kShownCharacters = 128;

enum CharClass : std::uint8_t {
    kOther = 0,
    kBlank = 1,
    kWordStart = 2,  // letters, '_', '#'
    kWordPart = 4,   // letters, digits, '_', '#', '@', '$'
    kDigit = 8,
    kWide = 16,  // part of a character beyond ASCII
};

constexpr std::array<std::uint8_t, 256> MakeClasses() {
    std::array<std::uint8_t, 256> classes{};
    for (int c = 1; c <= ' '; ++c)
        classes[static_cast<std::size_t>(c)] = kBlank;
    for (char c = 'a'; c <= 'z'; ++c)
        classes[static_cast<unsigned char>(c)] = kWordStart | kWordPart;
    for (char c = 'A'; c <= 'Z'; ++c)
        classes[static_cast<unsigned char>(c)] = kWordStart | kWordPart;
    for (char c = '0'; c <= '9'; ++c)
        classes[static_cast<unsigned char>(c)] = kDigit | kWordPart;
    for (const unsigned char c : {'_', '#'})
        classes[c] = kWordStart | kWordPart;
    for (const unsigned char c : {'@', '$'})
        classes[c] = kWordPart;
    for (int c = 0x80; c < 0x100; ++c)
        classes[static_cast<std::size_t>(c)] = kWide;
    return classes;
}

constexpr std::array<std::uint8_t, 256> kClasses = MakeClasses();

std::uint8_t ClassOf(char c) {
    return kClasses[static_cast<unsigned char>(c)];
}
using text::IsDigit;
using text::IsHexDigit;

// The bytes of the character at `at`, 1 for a broken one, and its code point (0 for a broken one).
std::size_t CharacterLength(std::string_view text, std::size_t at, std::uint32_t* codePoint) {
    const text::CodePoint read = text::ReadUtf8(text, at);
    *codePoint = read.valid ? read.code : 0;
    return read.length;
}

// Letters of names. Punctuation, blanks and symbols beyond ASCII are not; everything else that a person types
// is.
bool IsLetter(std::uint32_t c) {
    struct Range {
        std::uint32_t first, last;
    };
    static constexpr Range kNoLetters[] = {
        {0x0000, 0x00A9},    {0x00AB, 0x00B4}, {0x00B6, 0x00B9}, {0x00BB, 0x00BF}, {0x00D7, 0x00D7},
        {0x00F7, 0x00F7},    {0x2000, 0x206F}, {0x20A0, 0x20CF}, {0x2190, 0x245F}, {0x2500, 0x2BFF},
        {0x2E00, 0x2E7F},    {0x3000, 0x3004}, {0x3008, 0x3020}, {0x3030, 0x3030}, {0xD800, 0xF8FF},
        {0xFE10, 0xFE1F},    {0xFE30, 0xFE6F}, {0xFEFF, 0xFEFF}, {0xFF00, 0xFF0F}, {0xFF1A, 0xFF20},
        {0xFF3B, 0xFF3E},    {0xFF40, 0xFF40}, {0xFF5B, 0xFF65}, {0xFFE0, 0xFFFF}, {0x1F000, 0x1FAFF},
        {0xE0000, 0x10FFFF},
    };
    for (const Range& range : kNoLetters) {
        if (c >= range.first && c <= range.last) return false;
    }
    return true;
}

}  // namespace

std::size_t Lexer::WordEnd(std::size_t from) const {
    const char* const text = text_.data();
    const std::size_t size = text_.size();
    std::size_t at = from;
    for (;;) {
        while (at < size && (ClassOf(text[at]) & kWordPart))
            ++at;
        if (at >= size || !(ClassOf(text[at]) & kWide)) return at;
        std::uint32_t codePoint = 0;
        const std::size_t length = CharacterLength(text_, at, &codePoint);
        if (!IsLetter(codePoint)) return at;
        at += length;
    }
}

void Lexer::AdvanceOverLines(std::size_t end) {
    while (at_ < end) {
        const void* found = std::memchr(text_.data() + at_, '\n', end - at_);
        if (!found) break;
        at_ = static_cast<std::size_t>(static_cast<const char*>(found) - text_.data()) + 1;
        ++line_;
        lineStart_ = static_cast<std::int64_t>(at_);
    }
    at_ = end;
}

// Comments nest.
void Lexer::SkipBlockComment() {
    const Position start = Where();
    int level = 0;
    std::size_t at = at_;
    while (at + 1 < text_.size()) {
        if (text_[at] == '/' && text_[at + 1] == '*') {
            ++level;
            at += 2;
        } else if (text_[at] == '*' && text_[at + 1] == '/') {
            at += 2;
            if (--level == 0) {
                AdvanceOverLines(at);
                return;
            }
        } else {
            ++at;
        }
    }
    throw MakeError(113, start);
}

void Lexer::SkipBlanksAndComments() {
    const char* const text = text_.data();
    const std::size_t size = text_.size();
    std::size_t at = at_;
    for (; at < size; ++at) {
        const char c = text[at];
        if (static_cast<unsigned char>(c) > '/') break;  // most tokens: no blank and no comment starts so
        if (c == '\n') {
            ++line_;
            lineStart_ = static_cast<std::int64_t>(at + 1);
        } else if (ClassOf(c) & kBlank) {
            continue;
        } else if (c == '-' && at + 1 < size && text[at + 1] == '-') {
            const std::size_t end = text_.find('\n', at);
            if (end == std::string_view::npos) {
                at = size;
                break;
            }
            at = end - 1;
        } else if (c == '/' && at + 1 < size && text[at + 1] == '*') {
            at_ = at;
            SkipBlockComment();
            at = at_ - 1;
        } else {
            break;
        }
    }
    at_ = at;
}

Token Lexer::Finish(Token token, std::size_t end) {
    token.position = PositionAt(at_);
    token.text = text_.substr(at_, end - at_);
    at_ = end;
    return token;
}

Token Lexer::ReadQuoted(TokenKind kind, std::size_t open, char close) {
    Token token;
    token.kind = kind;
    token.position = PositionAt(at_);
    std::size_t at = open + 1;
    for (;;) {
        const void* found =
            at < text_.size() ? std::memchr(text_.data() + at, close, text_.size() - at) : nullptr;
        if (!found) {
            throw MakeError(105, token.position, {FirstCharacters(text_.substr(open + 1), kShownCharacters)});
        }
        at = static_cast<std::size_t>(static_cast<const char*>(found) - text_.data()) + 1;
        if (at < text_.size() && text_[at] == close) {
            ++at;
            continue;
        }
        break;
    }
    token.text = text_.substr(at_, at - at_);
    AdvanceOverLines(at);
    return token;
}

Token Lexer::ReadNumber() {
    Token token;
    std::size_t at = at_;
    const auto digits = [&] {
        while (at < text_.size() && IsDigit(text_[at]))
            ++at;
    };
    if (text_[at] == '0' && at + 1 < text_.size() && (text_[at + 1] | 0x20) == 'x') {
        at += 2;
        while (at < text_.size() && IsHexDigit(text_[at]))
            ++at;
        token.kind = TokenKind::kBinary;
        return Finish(token, at);
    }
    token.kind = TokenKind::kInteger;
    digits();
    if (at < text_.size() && text_[at] == '.') {
        token.kind = TokenKind::kDecimal;
        ++at;
        digits();
    }
    if (at < text_.size() && (text_[at] | 0x20) == 'e') {
        // "1e" alone is a float, too; "1else" is not.
        std::size_t exponent = at + 1;
        if (exponent < text_.size() && (text_[exponent] == '+' || text_[exponent] == '-')) ++exponent;
        const bool hasDigits = exponent < text_.size() && IsDigit(text_[exponent]);
        const bool alone = at + 1 >= text_.size() || !(ClassOf(text_[at + 1]) & (kWordPart | kWide));
        if (hasDigits || alone) {
            token.kind = TokenKind::kFloat;
            at = hasDigits ? exponent : at + 1;
            digits();
        }
    }
    return Finish(token, at);
}

Token Lexer::ReadMoney() {
    Token token;
    token.kind = TokenKind::kMoney;
    std::size_t at = at_ + 1;
    while (at < text_.size() && IsDigit(text_[at]))
        ++at;
    if (at < text_.size() && text_[at] == '.') {
        ++at;
        while (at < text_.size() && IsDigit(text_[at]))
            ++at;
    }
    return Finish(token, at);
}

Token Lexer::ReadWord(TokenKind kind) {
    Token token;
    token.kind = kind;
    const std::size_t end = WordEnd(at_ + 1);
    if (kind == TokenKind::kIdentifier) token.keyword = FindKeyword(text_.substr(at_, end - at_));
    return Finish(token, end);
}

Token Lexer::ReadSimple(Op op) {
    Token token;
    token.kind = TokenKind::kOperator;
    token.op = op;
    return Finish(token, at_ + 1);
}

namespace {

// An operator of one character, and what it becomes with an equals sign behind it.
struct Sign {
    char character;
    Op alone;
    Op withEqual = Op::kNone;
};
constexpr Sign kSigns[] = {
    {'+', Op::kPlus, Op::kPlusEqual},
    {'-', Op::kMinus, Op::kMinusEqual},
    {'*', Op::kStar, Op::kStarEqual},
    {'/', Op::kSlash, Op::kSlashEqual},
    {'%', Op::kPercent, Op::kPercentEqual},
    {'&', Op::kAmpersand, Op::kAmpersandEqual},
    {'|', Op::kPipe, Op::kPipeEqual},
    {'^', Op::kCaret, Op::kCaretEqual},
    {'<', Op::kLess, Op::kLessEqual},
    {'>', Op::kGreater, Op::kGreaterEqual},
    {'!', Op::kNone, Op::kNotEqual},
    {'~', Op::kTilde},
    {'=', Op::kEqual},
    {'(', Op::kLeftParen},
    {')', Op::kRightParen},
    {',', Op::kComma},
    {'.', Op::kDot},
    {';', Op::kSemicolon},
    {':', Op::kColon},
};

// What !< and !> have always stood for.
Op OpOfPair(char first, char second) {
    if (first == '<' && second == '>') return Op::kNotEqual;
    if (first == '!' && second == '<') return Op::kGreaterEqual;
    if (first == '!' && second == '>') return Op::kLessEqual;
    if (second != '=') return Op::kNone;
    for (const Sign& sign : kSigns) {
        if (sign.character == first) return sign.withEqual;
    }
    return Op::kNone;
}

Op OpOfOne(char character) {
    for (const Sign& sign : kSigns) {
        if (sign.character == character) return sign.alone;
    }
    return Op::kNone;
}

}  // namespace

Token Lexer::ReadOperator() {
    Token token;
    token.kind = TokenKind::kOperator;
    std::size_t length = 2;
    token.op = at_ + 1 < text_.size() ? OpOfPair(text_[at_], text_[at_ + 1]) : Op::kNone;
    if (token.op == Op::kNone) {
        length = 1;
        token.op = OpOfOne(text_[at_]);
    }
    if (token.op == Op::kNone) {
        token.kind = TokenKind::kUnknown;
        std::uint32_t codePoint = 0;
        length = CharacterLength(text_, at_, &codePoint);
    }
    return Finish(token, at_ + length);
}

Token Lexer::Next() {
    SkipBlanksAndComments();
    if (at_ >= text_.size()) {
        Token end;
        end.position = Where();
        end.text = text_.substr(text_.size());
        return end;
    }
    const char c = text_[at_];
    const char next = at_ + 1 < text_.size() ? text_[at_ + 1] : '\0';
    if (c == ',') return ReadSimple(Op::kComma);
    const std::uint8_t kind = ClassOf(c);
    if (kind & kWordStart) {
        if (next == '\'' && (c == 'N' || c == 'n')) return ReadQuoted(TokenKind::kNString, at_ + 1, '\'');
        return ReadWord(TokenKind::kIdentifier);
    }
    if (c == '\'') return ReadQuoted(TokenKind::kString, at_, '\'');
    if ((kind & kDigit) || (c == '.' && IsDigit(next))) return ReadNumber();
    if (c == '@') return ReadWord(TokenKind::kVariable);
    if (c == '[') return ReadQuoted(TokenKind::kQuotedIdentifier, at_, ']');
    if (c == '"') return ReadQuoted(TokenKind::kQuotedIdentifier, at_, '"');
    if (c == '$' && (ClassOf(next) & kWordStart)) return ReadWord(TokenKind::kPseudoColumn);
    if (c == '$') return ReadMoney();
    if (kind & kWide) {
        std::uint32_t codePoint = 0;
        CharacterLength(text_, at_, &codePoint);
        if (IsLetter(codePoint)) {
            Token token;
            token.kind = TokenKind::kIdentifier;
            return Finish(token, WordEnd(at_));
        }
    }
    return ReadOperator();
}

std::string TokenValue(const Token& token) {
    std::string_view text = token.text;
    switch (token.kind) {
        case TokenKind::kNString:
            text.remove_prefix(1);
            break;
        case TokenKind::kString:
        case TokenKind::kQuotedIdentifier:
            break;
        case TokenKind::kMoney:
            return std::string(text.substr(1));
        case TokenKind::kBinary:
            return std::string(text.substr(2));
        default:
            return std::string(text);
    }
    const char close = text.back();
    text = text.substr(1, text.size() - 2);
    std::string value;
    value.reserve(text.size());
    for (std::size_t from = 0;;) {
        const std::size_t mark = text.find(close, from);
        if (mark == std::string_view::npos) {
            value += text.substr(from);
            return value;
        }
        value += text.substr(from, mark + 1 - from);
        from = mark + 2;  // a mark within is always doubled
    }
}

std::string QuoteString(std::string_view text, bool national) {
    std::string quoted = national ? "N'" : "'";
    for (const char c : text) {
        quoted += c;
        if (c == '\'') quoted += '\'';
    }
    quoted += '\'';
    return quoted;
}

std::string_view FirstCharacters(std::string_view text, std::size_t count) {
    std::size_t at = 0;
    std::uint32_t codePoint = 0;
    for (; count > 0 && at < text.size(); --count)
        at += CharacterLength(text, at, &codePoint);
    return text.substr(0, at);
}

}  // namespace vicenter::tsql
