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
constexpr std::string_view kRowsets[] = {
    "containstable", "freetexttable", "opendatasource", "openquery",   "openrowset",
    "openxml",       "openjson",      "predict",        "changetable", "semantickeyphrasetable"};
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
    if (At(Keyword::kUpdate) && At(Keyword::kStatistics, 1)) Refuse(token.position, "UPDATE STATISTICS");
    const bool followed = Peek(1).kind == TokenKind::kIdentifier || AtName(1) || At(Op::kLeftParen, 1) ||
                          token.keyword != Keyword::kNone;
    if (followed && IsOneOf(token.text, kStatements)) Refuse(token.position, Upper(token.text));
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
    if (token.kind == TokenKind::kIdentifier && At(Op::kLeftParen, 1) && IsOneOf(token.text, kRowsets))
        Refuse(token.position, Upper(token.text));
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
    if (At(Keyword::kContains) || At(Keyword::kFreetext) || At(Keyword::kTsequal))
        Refuse(Peek().position, Upper(Peek().text));
    if (At(Keyword::kUpdate) && At(Op::kLeftParen, 1)) Refuse(Peek().position, "UPDATE()");
}

// x AT TIME ZONE 'China Standard Time'
void Parser::RefuseBehindValue() {
    if (AtWord("at") && AtWord("time", 1) && AtWord("zone", 2)) Refuse(Peek().position, "AT TIME ZONE");
}

void Parser::RefuseValue() {
    const Token& token = Peek();
    if (AtWord("next") && AtWord("value", 1) && At(Keyword::kFor, 2))
        Refuse(token.position, "NEXT VALUE FOR");
    if ((AtWord("parse") || AtWord("try_parse")) && At(Op::kLeftParen, 1))
        Refuse(token.position, Upper(token.text));
}

// Of the columns that have a sign instead of a name there is the identity column alone.
void Parser::RefusePseudoColumn() {
    const Token& token = Peek();
    if (At(Keyword::kIdentitycol) || IsWord(token.text, "$identity")) return;
    if (At(Keyword::kRowguidcol) || IsOneOf(token.text, kPseudoColumns))
        Refuse(token.position, Upper(token.text));
    throw MakeError(126, token.position, {token.text});
}

// IGNORE NULLS and RESPECT NULLS behind a window function.
void Parser::RefuseBehindCall() {
    if ((AtWord("ignore") || AtWord("respect")) && AtWord("nulls", 1))
        Refuse(Peek().position, Upper(Peek().text) + " NULLS");
}

}  // namespace vicenter::tsql
