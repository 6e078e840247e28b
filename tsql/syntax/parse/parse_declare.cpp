// DECLARE and SET.

#include <algorithm>

#include "text/ascii.h"
#include "tsql/base/error_table.h"
#include "tsql/syntax/parse/parser_core.h"

namespace vicenter::tsql {
namespace {

// Options that are on or off.
bool IsSwitch(const std::string& option) {
    static constexpr std::string_view kSwitches[] = {"ansi_defaults",
                                                     "ansi_null_dflt_off",
                                                     "ansi_null_dflt_on",
                                                     "ansi_nulls",
                                                     "ansi_padding",
                                                     "ansi_warnings",
                                                     "arithabort",
                                                     "arithignore",
                                                     "cursor_close_on_commit",
                                                     "concat_null_yields_null",
                                                     "fmtonly",
                                                     "forceplan",
                                                     "implicit_transactions",
                                                     "nocount",
                                                     "noexec",
                                                     "numeric_roundabort",
                                                     "parseonly",
                                                     "quoted_identifier",
                                                     "remote_proc_transactions",
                                                     "showplan_all",
                                                     "showplan_text",
                                                     "showplan_xml",
                                                     "xact_abort",
                                                     "no_browsetable"};
    return std::find(std::begin(kSwitches), std::end(kSwitches), option) != std::end(kSwitches);
}

// Options that take a value.
bool IsSetting(const std::string& option) {
    static constexpr std::string_view kSettings[] = {"datefirst", "dateformat",   "deadlock_priority",
                                                     "language",  "lock_timeout", "query_governor_cost_limit",
                                                     "rowcount",  "textsize",     "context_info"};
    return std::find(std::begin(kSettings), std::end(kSettings), option) != std::end(kSettings);
}

}  // namespace

StatementPtr Parser::ParseDeclare() {
    const Position start = Take().position;
    if (!At(TokenKind::kVariable)) return ParseDeclareCursor(start);
    auto declare = Make<DeclareStatement>(start);
    do {
        declare->variables.push_back(ParseVariableDeclaration());
    } while (Accept(Op::kComma));
    return declare;
}

VariableDeclaration Parser::ParseVariableDeclaration() {
    VariableDeclaration variable;
    variable.position = Peek().position;
    variable.name = TakeVariable();
    Accept(Keyword::kAs);
    if (Accept(Keyword::kTable)) {
        variable.kind = VariableDeclaration::Kind::kTable;
        variable.table = ParseTableDefinition();
    } else if (Accept(Keyword::kCursor)) {
        variable.kind = VariableDeclaration::Kind::kCursor;
    } else {
        variable.type = TakeType();
        if (Accept(Op::kEqual)) variable.initial = ParseValue();
    }
    return variable;
}

StatementPtr Parser::ParseSet() {
    const Position start = Take().position;
    if (At(TokenKind::kVariable)) return ParseSetVariable(start);
    auto set = Make<SetOptionStatement>(start);
    const auto onOff = [&] {
        set->on = At(Keyword::kOn);
        if (!Accept(Keyword::kOn)) Expect(Keyword::kOff);
    };
    if (Accept(Keyword::kTransaction)) {
        set->options.emplace_back("transaction isolation level");
        ExpectWord("isolation");
        ExpectWord("level");
        if (AtWord("snapshot") || AtWord("serializable")) {
            set->word = text::LowerAscii(Take().text);
        } else if (AcceptWord("repeatable")) {
            Expect(Keyword::kRead);
            set->word = "repeatable read";
        } else {
            Expect(Keyword::kRead);
            if (!AtWord("committed")) {
                if (!AtWord("uncommitted")) Fail();
            }
            set->word = "read " + text::LowerAscii(Take().text);
        }
        return set;
    }
    if (Accept(Keyword::kIdentityInsert)) {
        set->options.emplace_back("identity_insert");
        set->table = TakeObjectName();
        onOff();
        return set;
    }
    if (Accept(Keyword::kStatistics)) {  // SET STATISTICS IO, TIME ON
        do {
            set->options.push_back("statistics " + text::LowerAscii(TakeName().text));
        } while (Accept(Op::kComma));
        onOff();
        return set;
    }
    if (!At(TokenKind::kIdentifier)) Fail();
    const std::string option = text::LowerAscii(Peek().text);
    if (IsSetting(option)) {
        Take();
        set->options.push_back(option);
        if (AtName()) {
            set->word = text::LowerAscii(TakeName().text);
        } else if (At(TokenKind::kVariable)) {
            set->value = ParseValue();
        } else {
            set->value = ParseConstant();
        }
        return set;
    }
    do {
        if (!At(TokenKind::kIdentifier)) Fail();
        const Token token = Peek();
        if (!IsSwitch(text::LowerAscii(token.text))) {
            if (token.keyword != Keyword::kNone) Fail();
            throw MakeError(195, token.position, {token.text, "SET option"});
        }
        set->options.push_back(text::LowerAscii(Take().text));
    } while (Accept(Op::kComma));
    onOff();
    return set;
}

StatementPtr Parser::ParseSetVariable(Position start) {
    const std::string name = TakeVariable();
    usedVariables_.push_back(Name{name, start, false});
    const std::optional<AssignOp> op = AssignmentAhead(0);
    if (!op) Fail();
    Take();
    if (At(Keyword::kCursor)) {
        if (*op != AssignOp::kSet) Fail();
        auto set = Make<SetCursorStatement>(start);
        set->variable = name;
        set->cursor = ParseCursorDefinition();
        return set;
    }
    auto set = Make<SetVariableStatement>(start);
    set->name = name;
    set->op = *op;
    set->value = ParseValue();
    return set;
}

}  // namespace vicenter::tsql
