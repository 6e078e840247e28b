#include "tsql/syntax/parse/parser_core.h"

#include <algorithm>

#include "text/ascii.h"
#include "tsql/base/error_table.h"

namespace vicenter::tsql {
namespace {

constexpr std::size_t kLongestName = 128;  // characters
constexpr std::size_t kMostNameParts = 4;

// What an error message shows of a token: its value, without quotes.
std::string Shown(const Token& token) {
    return std::string(FirstCharacters(TokenValue(token), kLongestName));
}

bool IsOneOf(std::string_view lower, std::initializer_list<std::string_view> names) {
    return std::find(names.begin(), names.end(), lower) != names.end();
}

// Whether the name is one of this database, which is all there is. What the server keeps in databases of its
// own is here as well: temporary tables, its views and procedures.
bool IsHere(const ObjectName& name) {
    if (name.parts.size() == kMostNameParts && !name.parts.front().text.empty()) return false;
    const std::string database = text::LowerAscii(name.Database());
    if (database.empty() || database == "accountset") return true;
    const std::string object = text::LowerAscii(name.Object());
    if (database == "tempdb" && object.starts_with('#')) return true;
    if (!IsOneOf(database, {"master", "tempdb", "model", "msdb"})) return false;
    return IsOneOf(text::LowerAscii(name.Schema()), {"sys", "information_schema"}) ||
           object.starts_with("sys") || object.starts_with("sp_") || object.starts_with("xp_");
}

}  // namespace

Parser::Level::Level(Parser& parser, int places) : parser_(parser), places_(places) {
    if (parser_.level_ + places > kNestingLimit * kParenthesesOfLevel)
        throw MakeError(191, parser_.Peek().position);
    parser_.level_ += places;
}

const Token& Parser::Peek(std::size_t n) {
    while (aheadCount_ <= n)
        ahead_[aheadCount_++] = lexer_.Next();
    return ahead_[n];
}

Token Parser::Take() {
    Peek();
    const Token token = ahead_[0];
    --aheadCount_;
    for (std::size_t i = 0; i < aheadCount_; ++i)
        ahead_[i] = ahead_[i + 1];
    if (token.kind != TokenKind::kEnd) previous_ = token;
    return token;
}

void Parser::Restore(const State& state) {
    lexer_ = state.lexer;
    ahead_ = state.ahead;
    aheadCount_ = state.aheadCount;
    previous_ = state.previous;
}

void Parser::Seek(Position where) {
    lexer_ = Lexer(lexer_.Text(), where);
    aheadCount_ = 0;
    first_ = false;
}

bool Parser::AtWord(std::string_view lower, std::size_t n) {
    const Token& token = Peek(n);
    return token.kind == TokenKind::kIdentifier && token.keyword == Keyword::kNone &&
           IsWord(token.text, lower);
}

static bool IsName(const Token& token) {
    // PRECISION means something behind DOUBLE only, and the server's own views have a column of that name.
    return token.kind == TokenKind::kQuotedIdentifier ||
           (token.kind == TokenKind::kIdentifier &&
            (token.keyword == Keyword::kNone || token.keyword == Keyword::kPrecision));
}

// What stands before a label ends there, though a name could go on with it; two colons make no label.
bool Parser::AtName(std::size_t n) {
    return IsName(Peek(n)) && !AtLabel(n);
}

bool Parser::AtLabel(std::size_t n) {
    return At(Op::kColon, n + 1) && !At(Op::kColon, n + 2) && IsName(Peek(n));
}

bool Parser::AcceptWord(std::string_view lower) {
    if (!AtWord(lower)) return false;
    Take();
    return true;
}

void Parser::ExpectWord(std::string_view lower) {
    if (!AcceptWord(lower)) Fail();
}

void Parser::Fail() {
    Peek();
    FailAt(ahead_[0]);
}

// Where something is missing at the end of the text, the error points at the last word there is.
void Parser::FailAt(const Token& token) {
    if (token.kind == TokenKind::kEnd) throw MakeError(102, previous_.position, {Shown(previous_)});
    if (token.keyword != Keyword::kNone) throw MakeError(156, token.position, {token.text});
    throw MakeError(
        102, token.position,
        {token.kind == TokenKind::kMoney || token.kind == TokenKind::kBinary ? std::string(token.text)
                                                                             : Shown(token)});
}

Name Parser::TakeName() {
    if (!AtName()) Fail();
    return NameFrom(Take());
}

Name Parser::NameFrom(const Token& token) {
    Name name{TokenValue(token), token.position, token.kind == TokenKind::kQuotedIdentifier};
    if (FirstCharacters(name.text, kLongestName).size() < name.text.size()) {
        throw MakeError(103, token.position, {"identifier", Shown(token), static_cast<int>(kLongestName)});
    }
    if (name.text.empty()) throw MakeError(1038, token.position);
    return name;
}

std::vector<Name> Parser::TakeNames() {
    std::vector<Name> names;
    do {
        names.push_back(TakeName());
    } while (Accept(Op::kComma));
    return names;
}

std::vector<Name> Parser::TakeNamesInParentheses() {
    Expect(Op::kLeftParen);
    std::vector<Name> names = TakeNames();
    Expect(Op::kRightParen);
    return names;
}

ObjectName Parser::TakeObjectName() {
    ObjectName name = TakeNameParts();
    CheckIsHere(name);
    return name;
}

// The server's views that have rows for the tables of a session.
static bool IsViewOfTemporary(const std::string& schema, std::string_view object) {
    if (IsWord(schema, "information_schema")) return IsOneOf(object, {"tables", "columns"});
    if (IsOneOf(object, {"sysobjects", "syscolumns"})) return true;
    return IsWord(schema, "sys") &&
           IsOneOf(object, {"objects", "all_objects", "tables", "columns", "all_columns"});
}

void Parser::CheckIsHere(const ObjectName& name) {
    const std::string object = text::LowerAscii(name.Object());
    const bool isProcedure = object.starts_with("sp_") || object.starts_with("xp_");
    const bool isKnown = object.starts_with('#') || isProcedure || IsViewOfTemporary(name.Schema(), object);
    if (IsWord(name.Database(), "tempdb") && !isKnown && IsHere(name))
        throw MakeError(40510, name.Where(), {name.Text()});
    if (!IsHere(name)) throw MakeError(40515, name.Where(), {name.Text()});
}

// table.column, schema.table.column, database.schema.table.column
ObjectName Parser::TakeColumnName() {
    ObjectName name = TakeNameParts();
    CheckColumnIsHere(name);
    return name;
}

void Parser::CheckColumnIsHere(const ObjectName& name) {
    if (name.parts.size() < kMostNameParts) return;
    const std::string& database = name.parts.front().text;
    if (!database.empty() && !IsWord(database, "accountset"))
        throw MakeError(40515, name.Where(), {name.Text()});
}

// Empty parts stand between dots: db..table.
ObjectName Parser::TakeNameParts() {
    ObjectName name;
    const Position start = Peek().position;
    name.parts.push_back(TakeName());
    while (At(Op::kDot) && (AtName(1) || At(Op::kDot, 1))) {
        Take();
        if (At(Op::kDot)) {
            name.parts.push_back(Name{"", Peek().position, false});
        } else {
            name.parts.push_back(TakeName());
        }
    }
    if (name.parts.size() > kMostNameParts) {
        throw MakeError(117, start, {"object", name.Text(), static_cast<int>(kMostNameParts) - 1});
    }
    return name;
}

std::string Parser::TakeVariable() {
    return std::string(Expect(TokenKind::kVariable).text);
}

TypeName Parser::TakeType() {
    TypeName type;
    type.position = Peek().position;
    if (At(Keyword::kNational) || At(Keyword::kDouble)) {
        type.name = text::LowerAscii(Take().text);
        if (type.name == "double") {
            type.name += ' ' + text::LowerAscii(Expect(Keyword::kPrecision).text);
        } else {
            type.name += ' ' + text::LowerAscii(TakeName().text);
        }
    } else {
        const ObjectName name = TakeObjectName();  // sys.int and dbo.usertype
        type.name = text::LowerAscii(name.Object());
    }
    if (At(Keyword::kVarying)) type.name += ' ' + text::LowerAscii(Take().text);
    if (!Accept(Op::kLeftParen)) return type;
    const auto number = [&] {
        const Token token = Expect(TokenKind::kInteger);
        constexpr std::size_t kDigits = 9;
        if (token.text.size() > kDigits) FailAt(token);
        return std::stoi(std::string(token.text));
    };
    if (AcceptWord("max")) {
        type.length = TypeName::kMax;
    } else {
        type.length = number();
        if (Accept(Op::kComma)) type.scale = number();
    }
    Expect(Op::kRightParen);
    return type;
}

void Parser::SkipParentheses() {
    Expect(Op::kLeftParen);
    for (int open = 1; open > 0;) {
        if (AtEnd()) Fail();
        const Token token = Take();
        RefuseTableOption(token);
        if (token.op == Op::kLeftParen) ++open;
        if (token.op == Op::kRightParen) --open;
    }
}

void Parser::SkipStorageOptions() {
    for (;;) {
        if (At(Keyword::kWith) && At(Op::kLeftParen, 1)) {
            Take();
            SkipParentheses();
        } else if (At(Keyword::kWith) && At(Keyword::kFillfactor, 1)) {
            Take();
            Take();
            Expect(Op::kEqual);
            Expect(TokenKind::kInteger);
        } else if (AtWord("textimage_on") ||
                   (At(Keyword::kOn) && (AtName(1) || At(Keyword::kPrimary, 1)) && !At(Op::kDot, 2))) {
            Take();
            const Token place = Take();
            if (At(Op::kLeftParen)) throw MakeError(40510, place.position, {"ON partition scheme"});
        } else {
            return;
        }
    }
}

std::optional<bool> Parser::AcceptClustered() {
    if (Accept(Keyword::kClustered)) return true;
    if (Accept(Keyword::kNonclustered)) return false;
    return std::nullopt;
}

void Parser::Deepen(Expr& parent, const ExprPtr& child) {
    if (!child) return;
    if (child->depth >= kDepthLimit) throw MakeError(191, parent.position);
    parent.depth = std::max<std::uint16_t>(parent.depth, static_cast<std::uint16_t>(child->depth + 1));
}

}  // namespace vicenter::tsql
