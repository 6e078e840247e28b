#include "tsql/syntax/shape.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "text/hex.h"
#include "tsql/base/diagnostic.h"
#include "tsql/base/text_units.h"
#include "tsql/syntax/lexer.h"

namespace vicenter::tsql {
namespace {

// Stands around the mark of a literal in a key; a text with this character in it has no shape.
constexpr char kMark = '\x01';

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

bool StartsDataStatement(const Token& first) {
    switch (first.keyword) {
        case Keyword::kSelect:
        case Keyword::kInsert:
        case Keyword::kUpdate:
        case Keyword::kDelete:
        case Keyword::kExec:
        case Keyword::kExecute:
        case Keyword::kIf:
            return true;
        default:
            return false;
    }
}

// Words that can only start the next statement behind a complete one. WITH, FETCH, ELSE and the like could go
// on.
bool StartsNextStatement(Keyword word) {
    switch (word) {
        case Keyword::kSelect:
        case Keyword::kInsert:
        case Keyword::kUpdate:
        case Keyword::kDelete:
        case Keyword::kExec:
        case Keyword::kExecute:
        case Keyword::kIf:
        case Keyword::kWhile:
        case Keyword::kDeclare:
        case Keyword::kSet:
        case Keyword::kPrint:
        case Keyword::kReturn:
        case Keyword::kBegin:
        case Keyword::kCommit:
        case Keyword::kRollback:
        case Keyword::kCreate:
        case Keyword::kAlter:
        case Keyword::kDrop:
        case Keyword::kTruncate:
            return true;
        default:
            return false;
    }
}

bool IsTypeWithLength(const Token& token) {
    static constexpr std::string_view kTypes[] = {
        "char", "varchar", "nchar", "nvarchar",  "binary",         "varbinary", "decimal", "numeric",
        "dec",  "float",   "time",  "datetime2", "datetimeoffset", "character", "varying", "double"};
    if (token.keyword == Keyword::kVarying || token.keyword == Keyword::kIdentity) return true;
    std::string_view word = token.text;
    if (token.kind == TokenKind::kQuotedIdentifier && word.size() > 2) word = word.substr(1, word.size() - 2);
    return (token.kind == TokenKind::kIdentifier || token.kind == TokenKind::kQuotedIdentifier) &&
           std::any_of(std::begin(kTypes), std::end(kTypes),
                       [&](std::string_view t) { return IsWord(word, t); });
}

// Walks the tokens of a statement and tells which of them are literals that may vary. It knows no grammar,
// only what stands before a token: what is not surely a value counts as part of the text, at the price of one
// more plan. A literal that is taken for a value though it decides a type is no fault either, since the
// translator pins it.
class LiteralFinder {
  public:
    enum class Answer { kFixed, kLiteral, kValue };

    // `next` is the token after `token`.
    Answer Look(const Token& token, const Token& next) {
        const Answer answer = Classify(token, next);
        if (token.op == Op::kLeftParen) {
            parens_.push_back(fixedDepth_ || previous_.keyword == Keyword::kTop ||
                              IsTypeWithLength(previous_));
        } else if (token.op == Op::kRightParen) {
            if (!parens_.empty()) parens_.pop_back();
            if (sorting_ && parens_.size() < sortingLevel_) sorting_ = false;
        } else if (token.keyword == Keyword::kBy) {
            sorting_ = true;
            sortingLevel_ = parens_.size();
        } else if (sorting_ && parens_.size() == sortingLevel_ && StartsNextStatement(token.keyword)) {
            sorting_ = false;
        }
        fixedDepth_ = !parens_.empty() && parens_.back();
        if (StartsNextStatement(token.keyword)) {
            calling_ = token.keyword == Keyword::kExec || token.keyword == Keyword::kExecute;
        }
        previous_ = token;
        return answer;
    }

  private:
    bool AfterComparison() const {
        switch (previous_.op) {
            case Op::kEqual:
            case Op::kNotEqual:
            case Op::kLess:
            case Op::kLessEqual:
            case Op::kGreater:
            case Op::kGreaterEqual:
                return true;
            default:
                return false;
        }
    }

    bool AfterOperator() const {
        switch (previous_.op) {
            case Op::kNone:
            case Op::kRightParen:
            case Op::kDot:
            case Op::kSemicolon:
            case Op::kColon:
                return false;
            default:
                return true;
        }
    }

    bool AfterValueKeyword() const {
        switch (previous_.keyword) {
            case Keyword::kLike:
            case Keyword::kEscape:
            case Keyword::kBetween:
            case Keyword::kAnd:
            case Keyword::kOr:
            case Keyword::kNot:
            case Keyword::kWhere:
            case Keyword::kOn:
            case Keyword::kIf:
            case Keyword::kCase:
            case Keyword::kWhen:
            case Keyword::kThen:
            case Keyword::kElse:
            case Keyword::kSelect:
            case Keyword::kDistinct:
                return true;
            default:
                return false;
        }
    }

    Answer Classify(const Token& token, const Token& next) const {
        bool isText = false;
        switch (token.kind) {
            case TokenKind::kString:
            case TokenKind::kNString:
                isText = true;
                break;
            case TokenKind::kInteger:
            case TokenKind::kDecimal:
            case TokenKind::kFloat:
            case TokenKind::kBinary:
                break;
            default:
                if (token.keyword != Keyword::kNull) return Answer::kFixed;
                break;
        }
        if (fixedDepth_ || sorting_) return Answer::kFixed;
        const bool open = previous_.op == Op::kLeftParen || previous_.op == Op::kComma || AfterComparison();
        if (token.keyword == Keyword::kNull) return open ? Answer::kValue : Answer::kFixed;
        // 'alias' = value, in a select list.
        if (isText && next.op == Op::kEqual &&
            (previous_.op == Op::kComma || previous_.keyword == Keyword::kSelect ||
             previous_.keyword == Keyword::kDistinct)) {
            return Answer::kFixed;
        }
        if (open) return Answer::kValue;
        if (AfterOperator() || AfterValueKeyword()) return Answer::kLiteral;
        // EXEC procedure literal; anywhere else a text behind a name is an alias.
        const bool afterName =
            previous_.kind == TokenKind::kQuotedIdentifier ||
            (previous_.kind == TokenKind::kIdentifier && previous_.keyword == Keyword::kNone);
        return calling_ && afterName ? Answer::kLiteral : Answer::kFixed;
    }

    Token previous_;
    std::vector<bool> parens_;  // each: literals within it are fixed
    bool fixedDepth_ = false;
    bool sorting_ = false;
    std::size_t sortingLevel_ = 0;
    bool calling_ = false;
};

// Whether a minus behind that token is a sign rather than a subtraction.
bool IsSign(const Token& before) {
    switch (before.op) {
        case Op::kLeftParen:
        case Op::kComma:
        case Op::kEqual:
        case Op::kNotEqual:
        case Op::kLess:
        case Op::kLessEqual:
        case Op::kGreater:
        case Op::kGreaterEqual:
            return true;
        default:
            return false;
    }
}

LiteralValue ToValue(const Token& token) {
    LiteralValue value;
    value.offset = token.position.offset;
    value.text = token.text;
    switch (token.kind) {
        case TokenKind::kInteger:
            value.kind = LiteralKind::kInteger;
            break;
        case TokenKind::kDecimal:
            value.kind = LiteralKind::kDecimal;
            break;
        case TokenKind::kFloat:
            value.kind = LiteralKind::kFloat;
            break;
        case TokenKind::kBinary:
            value.kind = LiteralKind::kBinary;
            value.text.remove_prefix(2);
            break;
        case TokenKind::kString:
        case TokenKind::kNString: {
            const bool national = token.kind == TokenKind::kNString;
            value.kind = national ? LiteralKind::kNString : LiteralKind::kString;
            value.text.remove_prefix(national ? 2 : 1);
            value.text.remove_suffix(1);
            value.doubled = value.text.find('\'') != std::string_view::npos;
            break;
        }
        default:
            value.kind = LiteralKind::kNull;
            value.text = {};
            break;
    }
    return value;
}

// Reads one literal as the lexer would, byte by byte: this loop is most of the time that a long batch of
// INSERTs takes, and a token each would double it. Gives the offset behind it, or `at` when there is none.
std::size_t ScanLiteral(std::string_view text, std::size_t at, bool value, LiteralValue* literal) {
    const std::size_t start = at;
    if (at >= text.size()) return start;
    literal->negative = false;
    literal->doubled = false;
    char c = text[at];
    const bool national = (c == 'N' || c == 'n') && at + 1 < text.size() && text[at + 1] == '\'';
    if (c == '\'' || national) {
        literal->kind = national ? LiteralKind::kNString : LiteralKind::kString;
        literal->offset = static_cast<std::uint32_t>(at);
        at += national ? 2 : 1;
        const std::size_t from = at;
        for (;;) {
            const void* found =
                at < text.size() ? std::memchr(text.data() + at, '\'', text.size() - at) : nullptr;
            if (!found) return start;
            at = static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
            if (at + 1 < text.size() && text[at + 1] == '\'') {
                literal->doubled = true;
                at += 2;
                continue;
            }
            literal->text = text.substr(from, at - from);
            return at + 1;
        }
    }
    if (value && (c == 'N' || c == 'n')) {
        constexpr std::size_t kLength = 4;
        if (!IsWord(text.substr(at, kLength), "null")) return start;
        if (at + kLength < text.size() && Clings(text[at + kLength])) return start;
        literal->kind = LiteralKind::kNull;
        literal->offset = static_cast<std::uint32_t>(at);
        literal->text = {};
        return at + kLength;
    }
    if (value && c == '-' && at + 1 < text.size() && (IsDigit(text[at + 1]) || text[at + 1] == '.')) {
        literal->negative = true;
        c = text[++at];
    }
    const std::size_t from = at;
    literal->offset = static_cast<std::uint32_t>(at);
    const auto digits = [&] {
        while (at < text.size() && IsDigit(text[at]))
            ++at;
    };
    if (!IsDigit(c) && !(c == '.' && at + 1 < text.size() && IsDigit(text[at + 1]))) return start;
    if (c == '0' && at + 1 < text.size() && (text[at + 1] | 0x20) == 'x') {
        at += 2;
        while (at < text.size() && IsHexDigit(text[at]))
            ++at;
        literal->kind = LiteralKind::kBinary;
        literal->text = text.substr(from + 2, at - from - 2);
    } else {
        literal->kind = LiteralKind::kInteger;
        digits();
        if (at < text.size() && text[at] == '.') {
            literal->kind = LiteralKind::kDecimal;
            ++at;
            digits();
        }
        if (at < text.size() && (text[at] | 0x20) == 'e') {
            literal->kind = LiteralKind::kFloat;
            ++at;
            if (at < text.size() && (text[at] == '+' || text[at] == '-')) ++at;
            if (at >= text.size() || !IsDigit(text[at])) return start;  // leave such curiosities to the lexer
            digits();
        }
        literal->text = text.substr(from, at - from);
    }
    if (at < text.size() && Clings(text[at])) return start;
    return at;
}

bool EndsWell(std::string_view text, std::size_t at) {
    while (at < text.size() && IsBlank(text[at]))
        ++at;
    if (at >= text.size() || text[at] == ';') return true;
    std::size_t end = at;
    while (end < text.size() && IsWordByte(text[end]))
        ++end;
    return end > at && StartsNextStatement(FindKeyword(text.substr(at, end - at)));
}

void AppendNumber(std::string& key, std::size_t number) {
    char digits[24];
    key.append(digits, std::to_chars(digits, digits + sizeof digits, number).ptr);
}

// A doubled apostrophe is one character.
std::size_t UnitsOf(const LiteralValue& value) {
    const auto doubled = value.doubled ? std::count(value.text.begin(), value.text.end(), '\'') / 2 : 0;
    return engine::UnitCount(value.text) - static_cast<std::size_t>(doubled);
}

// The mark of a literal says all that its type depends on: '1001' and '1002.01' are varchars of two lengths,
// and a plan that was made for the one would cut the other.
void AppendMark(std::string& key, const LiteralValue& value) {
    const auto withoutZeros = [](std::string_view digits) {
        const std::size_t first = digits.find_first_not_of('0');
        return digits.substr(std::min(first, digits.size()));
    };
    key += kMark;
    switch (value.kind) {
        case LiteralKind::kInteger: {
            // Up to int, and past it a decimal of as many digits.
            constexpr std::string_view kMax = "2147483647";
            const std::string_view digits = withoutZeros(value.text);
            if (digits.size() < kMax.size() || (digits.size() == kMax.size() && digits <= kMax)) {
                key += 'i';
            } else {
                key += 'I';
                AppendNumber(key, digits.size());
            }
            break;
        }
        case LiteralKind::kDecimal: {
            const std::size_t point = value.text.find('.');
            key += 'd';
            AppendNumber(key, withoutZeros(value.text.substr(0, point)).size());
            key += '.';
            AppendNumber(key, value.text.size() - point - 1);
            break;
        }
        case LiteralKind::kFloat:
            key += 'f';
            break;
        case LiteralKind::kString:
        case LiteralKind::kNString:
            key += value.kind == LiteralKind::kString ? 's' : 'n';
            AppendNumber(key, UnitsOf(value));
            break;
        case LiteralKind::kBinary:
            key += 'b';
            AppendNumber(key, (value.text.size() + 1) / 2);
            break;
        default:
            key += '0';
            break;
    }
    key += kMark;
}

}  // namespace

std::string LiteralValue::Text() const {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        result += text[i];
        if (doubled && text[i] == '\'') ++i;
    }
    return result;
}

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
            if (answer != LiteralFinder::Answer::kFixed) {
                std::size_t begin = token.position.offset;
                const std::size_t end = token.EndOffset();
                const bool isNumber = token.kind == TokenKind::kInteger ||
                                      token.kind == TokenKind::kDecimal || token.kind == TokenKind::kFloat;
                Slot slot;
                slot.value = answer == LiteralFinder::Answer::kValue;
                // A sign directly before the number belongs to it when it is no subtraction.
                const bool sign = isNumber && previous.op == Op::kMinus && previous.EndOffset() == begin &&
                                  IsSign(beforePrevious);
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

std::optional<StatementShape> ShapeOf(std::string_view text) {
    if (text.size() > kLongestShape || text.find(kMark) != std::string_view::npos) return std::nullopt;
    StatementShape shape;
    shape.key.reserve(text.size());
    try {
        Lexer lexer(text);
        LiteralFinder finder;
        Token token = lexer.Next();
        if (!StartsDataStatement(token)) return std::nullopt;
        std::size_t from = 0;
        while (token.kind != TokenKind::kEnd) {
            const Token next = lexer.Next();
            if (finder.Look(token, next) != LiteralFinder::Answer::kFixed) {
                shape.key += text.substr(from, token.position.offset - from);
                shape.literals.push_back(ToValue(token));
                AppendMark(shape.key, shape.literals.back());
                from = token.EndOffset();
            }
            token = next;
        }
        shape.key += text.substr(from);
    } catch (const SqlError&) {
        return std::nullopt;
    }
    return shape;
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
