// What ODBC clients write in braces, which the server takes as it stands: {d '…'}, {t '…'}, {ts '…'}, {guid
// '…'}, {fn name(…)} and {oj … left join …}. Each becomes what T-SQL has for it.

#include <algorithm>

#include "text/ascii.h"
#include "tsql/base/error_table.h"
#include "tsql/syntax/parse/parser_core.h"

namespace vicenter::tsql {

using text::LowerAscii;

namespace {

// How a call is written in T-SQL.
enum class Form {
    kSame,      // with the arguments as they are
    kPart,      // the name of a part before them
    kInterval,  // SQL_TSI_DAY and the like as the first argument
    kPlus,      // a + b
    kModulo,    // a % b
    kTruncate,  // with 1 behind them
    kDay,       // as a text of ten characters, by style 120
};

struct OdbcFunction {
    std::string_view name;
    Form form;
    std::string_view own;
    std::string_view part = {};
};

constexpr OdbcFunction kFunctions[] = {
    {"char_length", Form::kSame, "len"},
    {"character_length", Form::kSame, "len"},
    {"concat", Form::kPlus, ""},
    {"curdate", Form::kDay, "getdate"},
    {"current_date", Form::kDay, "getdate"},
    {"database", Form::kSame, "db_name"},
    {"dayname", Form::kPart, "datename", "weekday"},
    {"dayofmonth", Form::kSame, "day"},
    {"dayofweek", Form::kPart, "datepart", "weekday"},
    {"dayofyear", Form::kPart, "datepart", "dayofyear"},
    {"hour", Form::kPart, "datepart", "hour"},
    {"ifnull", Form::kSame, "isnull"},
    {"insert", Form::kSame, "stuff"},
    {"lcase", Form::kSame, "lower"},
    {"length", Form::kSame, "len"},
    {"locate", Form::kSame, "charindex"},
    {"minute", Form::kPart, "datepart", "minute"},
    {"mod", Form::kModulo, ""},
    {"monthname", Form::kPart, "datename", "month"},
    {"now", Form::kSame, "getdate"},
    {"octet_length", Form::kSame, "datalength"},
    {"quarter", Form::kPart, "datepart", "quarter"},
    {"repeat", Form::kSame, "replicate"},
    {"second", Form::kPart, "datepart", "second"},
    {"timestampadd", Form::kInterval, "dateadd"},
    {"timestampdiff", Form::kInterval, "datediff"},
    {"truncate", Form::kTruncate, "round"},
    {"ucase", Form::kSame, "upper"},
    {"user", Form::kSame, "user_name"},
    {"week", Form::kPart, "datepart", "week"},
};
// Called alike on both sides.
constexpr std::string_view kAlike[] = {
    "abs",   "acos",    "ascii", "asin",    "atan", "ceiling",   "char",  "cos",
    "cot",   "degrees", "exp",   "floor",   "left", "log",       "log10", "ltrim",
    "month", "pi",      "power", "radians", "rand", "replace",   "right", "round",
    "rtrim", "sign",    "sin",   "space",   "sqrt", "substring", "tan",   "year"};

ObjectName NameOf(std::string_view text, Position where) {
    ObjectName name;
    name.parts.push_back(Name{std::string(text), where, false});
    return name;
}

ExprPtr Number(std::string_view digits, Position where) {
    return std::make_unique<LiteralExpr>(where, LiteralKind::kInteger, std::string(digits));
}

// CONVERT(type, operand, style); style 121 is the form of ODBC's dates.
std::unique_ptr<CastExpr> Converted(ExprPtr operand, std::string_view type, std::string_view style) {
    const Position where = operand->position;
    auto cast = std::make_unique<CastExpr>(where);
    cast->convert = true;
    cast->type.name = std::string(type);
    cast->type.position = where;
    cast->operand = std::move(operand);
    if (!style.empty()) cast->style = Number(style, where);
    return cast;
}

std::unique_ptr<FunctionExpr> Call(std::string_view name, Position where) {
    return std::make_unique<FunctionExpr>(where, NameOf(name, where));
}

// The text of ten characters of today's date.
std::unique_ptr<CastExpr> Today(Position where) {
    auto today = Converted(Call("getdate", where), "varchar", "120");
    today->type.length = 10;
    return today;
}

}  // namespace

bool Parser::AtBrace(std::string_view brace) {
    return At(TokenKind::kUnknown) && Peek().text == brace;
}

void Parser::ExpectBraceEnd() {
    if (!AtBrace("}")) Fail();
    Take();
}

ExprPtr Parser::ParseBraces() {
    const Level level(*this);
    Take();
    const Token word = Peek();
    const std::string kind = LowerAscii(word.text);
    if (kind == "fn" && !At(TokenKind::kEnd, 1)) {
        Take();
        ExprPtr call = ParseOdbcCall();
        ExpectBraceEnd();
        return call;
    }
    if (!AtString(1)) throw MakeError(40510, word.position, {"{" + std::string(word.text) + " }"});
    Take();
    ExprPtr value = ParseLiteral();
    ExpectBraceEnd();
    if (kind == "d" || kind == "ts") {
        value = Converted(std::move(value), "datetime", "121");
    } else if (kind == "t") {
        const Position where = value->position;
        auto blank = std::make_unique<LiteralExpr>(where, LiteralKind::kString, " ");
        auto day = std::make_unique<BinaryExpr>(where, BinaryOp::kAdd, Today(where), std::move(blank));
        day->opPosition = where;
        Deepen(*day, day->left);
        auto moment = std::make_unique<BinaryExpr>(where, BinaryOp::kAdd, std::move(day), std::move(value));
        moment->opPosition = where;
        Deepen(*moment, moment->left);
        value = Converted(std::move(moment), "datetime", "121");
    } else if (kind == "guid") {
        value = Converted(std::move(value), "uniqueidentifier", "");
    } else {
        throw MakeError(40510, word.position, {"{" + std::string(word.text) + " }"});
    }
    Deepen(*value, As<CastExpr>(*value).operand);
    return value;
}

ExprPtr Parser::ParseOdbcCall() {
    // Some of the names are reserved words.
    const Token token = Take();
    if (!At(Op::kLeftParen)) FailAt(token);
    const std::string name = LowerAscii(token.text);
    const auto entry = std::find_if(std::begin(kFunctions), std::end(kFunctions),
                                    [&](const OdbcFunction& other) { return other.name == name; });
    const bool alike = std::find(std::begin(kAlike), std::end(kAlike), name) != std::end(kAlike);
    if (entry == std::end(kFunctions) && !alike)
        throw MakeError(40510, token.position, {"{fn " + std::string(token.text) + " }"});
    const Form form = alike ? Form::kSame : entry->form;
    ExprPtr parsed = ParseCall(NameOf(alike ? std::string_view(name) : entry->own, token.position));
    std::vector<ExprPtr>& arguments = static_cast<FunctionExpr&>(*parsed).arguments;
    switch (form) {
        case Form::kSame:
            return parsed;
        case Form::kPart:
            arguments.insert(arguments.begin(), std::make_unique<ColumnExpr>(
                                                    token.position, NameOf(entry->part, token.position)));
            return parsed;
        case Form::kTruncate:
            arguments.push_back(Number("1", token.position));
            return parsed;
        case Form::kDay:
            return Today(token.position);
        case Form::kInterval: {
            constexpr std::string_view kPrefix = "sql_tsi_";
            const auto* unit = arguments.empty() ? nullptr : TryAs<ColumnExpr>(arguments.front().get());
            const std::string text = unit != nullptr ? LowerAscii(unit->name.Object()) : std::string();
            if (!text.starts_with(kPrefix) || text == "sql_tsi_frac_second")
                throw MakeError(40510, token.position, {"{fn " + std::string(token.text) + " }"});
            arguments.front() = std::make_unique<ColumnExpr>(
                token.position, NameOf(text.substr(kPrefix.size()), token.position));
            return parsed;
        }
        case Form::kPlus:
        case Form::kModulo:
            break;
    }
    if (arguments.size() != 2) throw MakeError(174, token.position, {name, 2});
    auto binary =
        std::make_unique<BinaryExpr>(token.position, form == Form::kPlus ? BinaryOp::kAdd : BinaryOp::kModulo,
                                     std::move(arguments[0]), std::move(arguments[1]));
    binary->opPosition = token.position;
    Deepen(*binary, binary->left);
    Deepen(*binary, binary->right);
    return binary;
}

}  // namespace vicenter::tsql
