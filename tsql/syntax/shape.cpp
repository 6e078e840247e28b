#include "tsql/syntax/shape.h"

#include <algorithm>
#include <charconv>

#include "tsql/base/diagnostic.h"
#include "tsql/base/text_units.h"
#include "tsql/syntax/literal_finder.h"

namespace vicenter::tsql {

namespace {

// Stands around the mark of a literal in a key; a text with this character in it has no shape.
constexpr char kMark = '\x01';

// The same parts that a template's scan finds without tokens: what runs with them cannot tell the two apart.
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
            // 0.10 has another type than 0.1, and 01.5 the same as 1.5.
            const std::size_t point = value.text.find('.');
            key += 'd';
            AppendNumber(key, withoutZeros(value.text.substr(0, point)).size());
            key += '.';
            AppendNumber(key, value.text.size() - point - 1);
            break;
        }
        case LiteralKind::kFloat:  // all of one type
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

// What a definition says is kept as it stands, literals and all: the next one of its shape says another
// thing.
bool Defines(const Token& token, const Token& next) {
    if (token.keyword == Keyword::kCreate || token.keyword == Keyword::kAlter) return true;
    // DECLARE @t AS TABLE, but not DROP TABLE.
    const bool isNamed = token.kind == TokenKind::kVariable || token.keyword == Keyword::kAs;
    return isNamed && next.keyword == Keyword::kTable;
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

std::optional<StatementShape> ShapeOf(std::string_view text) {
    if (text.size() > kLongestShape || text.find(kMark) != std::string_view::npos) return std::nullopt;
    StatementShape shape;
    shape.key.reserve(text.size());
    try {
        Lexer lexer(text);
        LiteralFinder finder;
        Token token = lexer.Next();
        // Only the first statement is looked at: what follows it in the text is part of the shape.
        if (!StartsDataStatement(token) && token.keyword != Keyword::kDeclare) return std::nullopt;
        std::size_t from = 0;
        while (token.kind != TokenKind::kEnd) {
            const Token next = lexer.Next();
            if (Defines(token, next)) return std::nullopt;
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

}  // namespace vicenter::tsql
