// What the server takes and an account set does not: told by its name and place, so that sound T-SQL is never
// called wrong.

#include <algorithm>
#include <string_view>

#include "text/ascii.h"
#include "tsql/base/error_table.h"
#include "tsql/syntax/parse/parser_core.h"

namespace vicenter::tsql {

namespace {

std::string Upper(std::string_view word) {
    std::string upper(word);
    for (char& c : upper)
        c = text::UpperAscii(c);
    return upper;
}

template <std::size_t N>
bool IsOneOf(std::string_view word, const std::string_view (&words)[N]) {
    return std::any_of(std::begin(words), std::end(words),
                       [&](std::string_view other) { return IsWord(word, other); });
}

constexpr std::string_view kStatements[] = {"backup",      "bulk",
                                            "dbcc",        "kill",
                                            "reconfigure", "restore",
                                            "shutdown",    "readtext",
                                            "writetext",   "updatetext",
                                            "setuser",     "revert",
                                            "lineno",      "load",
                                            "dump",        "enable",
                                            "disable",     "send",
                                            "receive",     "get",
                                            "move",        "end_conversation"};
// Statements that only several words tell from others.
constexpr std::string_view kPhrases[] = {
    "add counter signature",
    "add sensitivity classification",
    "add signature",
    "begin atomic with",
    "begin conversation timer",
    "begin dialog",
    "begin distributed",
    "close all symmetric",
    "close master key",
    "close symmetric key",
    "drop sensitivity classification",
    "end conversation",
    "exec as",
    "execute as",
    "insert bulk",
    "open master key",
    "open symmetric key",
    "set fips_flagger",
    "set offsets",
    "update statistics",
    "with xmlnamespaces",
};
// What ALTER TABLE … does besides: the word behind the table's name.
constexpr std::string_view kTableActions[] = {
    "disable", "enable", "filetable_namespace", "merge", "rebuild", "set", "split", "switch"};
// What a column of a table may be besides, and what may stand in the place of a column.
constexpr std::string_view kColumnForms[] = {"column_set", "encrypted", "filestream", "generated",
                                             "hidden",     "index",     "masked"};
constexpr std::string_view kTableOptions[] = {"ignore_dup_key", "ledger", "system_versioning"};
// Calls whose arguments have a grammar of their own.
constexpr std::string_view kOwnGrammar[] = {"json_array",     "json_arrayagg", "json_object",
                                            "json_objectagg", "parse",         "try_parse"};
// What CREATE, ALTER and DROP may name besides tables, indexes, views and procedures.
constexpr std::string_view kObjects[] = {
    "aggregate",    "application", "assembly",   "asymmetric", "availability",  "broker",
    "certificate",  "column",      "contract",   "credential", "cryptographic", "database",
    "default",      "endpoint",    "event",      "external",   "federation",    "fulltext",
    "function",     "login",       "master",     "message",    "partition",     "queue",
    "remote",       "resource",    "role",       "route",      "rule",          "schema",
    "search",       "security",    "selective",  "sequence",   "server",        "service",
    "signature",    "spatial",     "statistics", "symmetric",  "synonym",       "trigger",
    "type",         "user",        "workload",   "xml",        "primary",       "columnstore",
    "authorization"};
constexpr std::string_view kMethodsOfXml[] = {"exist", "modify", "nodes", "query", "value"};
constexpr std::string_view kRowsets[] = {"containstable",
                                         "freetexttable",
                                         "opendatasource",
                                         "openquery",
                                         "openrowset",
                                         "openxml",
                                         "openjson",
                                         "predict",
                                         "changetable",
                                         "semantickeyphrasetable",
                                         "generate_series",
                                         "regexp_matches",
                                         "regexp_split_to_table",
                                         "semanticsimilaritydetailstable",
                                         "semanticsimilaritytable",
                                         "fn_builtin_permissions",
                                         "fn_dblog",
                                         "fn_dump_dblog",
                                         "fn_get_audit_file",
                                         "fn_get_sql",
                                         "fn_helpcollations",
                                         "fn_listextendedproperty",
                                         "fn_my_permissions",
                                         "fn_physloccracker",
                                         "fn_servershareddrives",
                                         "fn_trace_geteventinfo",
                                         "fn_trace_getfilterinfo",
                                         "fn_trace_getinfo",
                                         "fn_trace_gettable",
                                         "fn_virtualfilestats",
                                         "fn_virtualservernodes",
                                         "fn_xe_file_target_read_file"};
constexpr std::string_view kPseudoColumns[] = {"$action",  "$cuid",      "$edge_id", "$from_id",
                                               "$node_id", "$partition", "$rowguid", "$to_id"};
constexpr std::string_view kForms[] = {"xml", "json", "browse"};

[[noreturn]] void Refuse(Position where, const std::string& name) {
    throw MakeError(40510, where, {name});
}

}  // namespace

void Parser::RefuseStatement() {
    const Token& token = Peek();
    if (AtBrace("{")) Refuse(token.position, "{call }");
    if (token.kind != TokenKind::kIdentifier) return;
    if (At(Keyword::kBegin) && At(Keyword::kDistributed, 1)) Refuse(token.position, "BEGIN DISTRIBUTED TRAN");
    for (const std::string_view phrase : kPhrases) {
        if (AtPhrase(phrase)) Refuse(token.position, Upper(phrase));
    }
    if (At(Keyword::kWaitfor) && At(Op::kLeftParen, 1)) Refuse(token.position, "WAITFOR (…)");
    const bool followed = Peek(1).kind == TokenKind::kIdentifier || AtName(1) || At(Op::kLeftParen, 1) ||
                          token.keyword != Keyword::kNone;
    if (followed && IsOneOf(token.text, kStatements)) Refuse(token.position, Upper(token.text));
}

bool Parser::AtPhrase(std::string_view phrase) {
    for (std::size_t n = 0; !phrase.empty(); ++n) {
        const std::string_view word = phrase.substr(0, phrase.find(' '));
        const Token& token = Peek(n);
        if (token.kind != TokenKind::kIdentifier || !IsWord(token.text, word)) return false;
        phrase.remove_prefix(std::min(word.size() + 1, phrase.size()));
    }
    return true;
}

void Parser::RefuseAlterTable(Position start) {
    const Token& token = Peek();
    if (token.kind == TokenKind::kIdentifier && IsOneOf(token.text, kTableActions))
        Refuse(start, "ALTER TABLE … " + Upper(token.text));
    const bool adds = At(Keyword::kAdd) || At(Keyword::kDrop);
    if (adds && AtPhrase((At(Keyword::kAdd) ? "add" : "drop") + std::string(" period for")))
        Refuse(start, "ALTER TABLE … " + Upper(token.text) + " PERIOD");
    const bool column = At(Keyword::kAlter) && At(Keyword::kColumn, 1) && AtName(2);
    if (column && (At(Keyword::kAdd, 3) || At(Keyword::kDrop, 3)))
        Refuse(start, "ALTER TABLE … ALTER COLUMN … " + Upper(Peek(3).text));
}

void Parser::RefuseColumnForm(std::string_view statement) {
    const Token& token = Peek();
    if (AtPhrase("period for system_time")) Refuse(token.position, std::string(statement) + " … PERIOD");
    if (AtWord("connection") && At(Op::kLeftParen, 1))
        Refuse(token.position, std::string(statement) + " … CONNECTION");
    if (token.kind == TokenKind::kIdentifier && IsOneOf(token.text, kColumnForms))
        Refuse(token.position, std::string(statement) + " … " + Upper(token.text));
}

void Parser::RefuseObject(Position start, std::string_view verb) {
    const Token& token = Peek();
    const bool unique = At(Keyword::kUnique) || At(Keyword::kClustered) || At(Keyword::kNonclustered);
    if (token.kind == TokenKind::kIdentifier && !unique && IsOneOf(token.text, kObjects))
        Refuse(start, std::string(verb) + " " + Upper(token.text));
    if (At(Keyword::kIndex) && verb == "ALTER") Refuse(start, "ALTER INDEX");
}

void Parser::RefuseRowset() {
    const Token& token = Peek();
    // ::fn_helpcollations(), as it was written before there was a schema for it
    if (At(Op::kColon) && At(Op::kColon, 1) && AtName(2))
        Refuse(token.position, "::" + std::string(Peek(2).text));
    if (token.kind != TokenKind::kIdentifier) return;
    if (AtWord("sys") && At(Op::kDot, 1) && At(Op::kLeftParen, 3))
        Refuse(token.position, "sys." + std::string(Peek(2).text));
    if (!At(Op::kLeftParen, 1)) return;
    if (IsOneOf(token.text, kRowsets)) Refuse(token.position, Upper(token.text));
}

// How a table or an index is stored is skipped, but not what would change what it holds.
void Parser::RefuseTableOption(const Token& option) {
    const bool on = At(Op::kEqual) && At(Keyword::kOn, 1);
    if (on && option.kind == TokenKind::kIdentifier && IsOneOf(option.text, kTableOptions))
        Refuse(option.position, "WITH (" + Upper(option.text) + " = ON)");
}

// TRIM(characters FROM text)
void Parser::RefuseTrim(const FunctionExpr& call) {
    if (At(Keyword::kFrom) && IsWord(call.name.Object(), "trim")) Refuse(call.position, "TRIM … FROM");
}

void Parser::RefuseCall(Position start) {
    if (At(Keyword::kWith) && AtWord("result", 1)) Refuse(start, "EXECUTE … WITH RESULT SETS");
    if (At(Keyword::kAs) && (At(Keyword::kUser, 1) || AtWord("login", 1))) Refuse(start, "EXECUTE … AS");
    if (AtWord("at")) Refuse(start, "EXECUTE … AT");
}

// p;1 is the procedure itself; others of its number there are not.
void Parser::SkipProcedureNumber() {
    if (!At(Op::kSemicolon) || !At(TokenKind::kInteger, 1)) return;
    if (Peek(1).text != "1") Refuse(Peek().position, "numbered procedures");
    Take();
    Take();
}

void Parser::RefuseBehindSource() {
    if (At(Keyword::kTablesample)) Refuse(Peek().position, "TABLESAMPLE");
    if (AtWord("for") || (At(Keyword::kFor) && AtWord("system_time", 1)))
        Refuse(Peek().position, "FOR SYSTEM_TIME");
}

// FOR XML and COMPUTE end a query.
void Parser::RefuseBehindQuery() {
    if (At(Keyword::kFor) && (Peek(1).kind == TokenKind::kIdentifier) && IsOneOf(Peek(1).text, kForms))
        Refuse(Peek().position, "FOR " + Upper(Peek(1).text));
    if (At(Keyword::kCompute)) Refuse(Peek().position, "COMPUTE");
    if (AtWord("window") && AtName(1) && At(Keyword::kAs, 2)) Refuse(Peek().position, "WINDOW");
}

void Parser::RefusePredicate() {
    if (AtWord("match") && At(Op::kLeftParen, 1)) Refuse(Peek().position, "MATCH");
    if (At(Keyword::kContains) || At(Keyword::kFreetext) || At(Keyword::kTsequal))
        Refuse(Peek().position, Upper(Peek().text));
    if (At(Keyword::kUpdate) && At(Op::kLeftParen, 1)) Refuse(Peek().position, "UPDATE()");
}

// x AT TIME ZONE 'China Standard Time'
// x.value('(/a)[1]', 'int')
void Parser::RefuseMethod(const ObjectName& name) {
    if (name.parts.size() > 1 && IsOneOf(name.Object(), kMethodsOfXml))
        Refuse(name.parts.back().position, "." + text::LowerAscii(name.Object()) + "()");
}

void Parser::RefuseBehindValue() {
    if (At(Op::kDot) && At(Op::kLeftParen, 2) && IsOneOf(Peek(1).text, kMethodsOfXml))
        Refuse(Peek(1).position, "." + text::LowerAscii(Peek(1).text) + "()");
    // geometry::Point(1, 2, 0)
    if (At(Op::kColon) && At(Op::kColon, 1) && AtName(2))
        Refuse(previous_.position, std::string(previous_.text) + "::" + std::string(Peek(2).text));
    if (AtWord("at") && AtWord("time", 1) && AtWord("zone", 2)) Refuse(Peek().position, "AT TIME ZONE");
}

void Parser::RefuseValue() {
    const Token& token = Peek();
    if (AtWord("next") && AtWord("value", 1) && At(Keyword::kFor, 2))
        Refuse(token.position, "NEXT VALUE FOR");
    if (token.kind == TokenKind::kIdentifier && At(Op::kLeftParen, 1) && IsOneOf(token.text, kOwnGrammar))
        Refuse(token.position, Upper(token.text));
    if (At(Keyword::kCurrentDate) || At(Keyword::kOpendatasource)) Refuse(token.position, Upper(token.text));
    const bool hasSide = AtWord("leading", 2) || AtWord("trailing", 2) || AtWord("both", 2);
    if (AtWord("trim") && At(Op::kLeftParen, 1) && hasSide && !At(Op::kRightParen, 3) && !At(Op::kComma, 3))
        Refuse(token.position, "TRIM … FROM");
}

// Of the columns that have a sign instead of a name there are the identity column and what MERGE has done.
void Parser::RefusePseudoColumn() {
    const Token& token = Peek();
    if (At(Keyword::kIdentitycol) || IsWord(token.text, "$identity")) return;
    if (inMergeOutput_ && IsWord(token.text, "$action")) return;
    if (At(Keyword::kRowguidcol) || IsOneOf(token.text, kPseudoColumns))
        Refuse(token.position, Upper(token.text));
    throw MakeError(126, token.position, {token.text});
}

// OVER w names a window; IGNORE NULLS and RESPECT NULLS stand behind a window function.
void Parser::RefuseBehindCall() {
    if (At(Keyword::kOver) && AtName(1)) Refuse(Peek().position, "WINDOW");
    if ((AtWord("ignore") || AtWord("respect")) && AtWord("nulls", 1))
        Refuse(Peek().position, Upper(Peek().text) + " NULLS");
}

}  // namespace vicenter::tsql
