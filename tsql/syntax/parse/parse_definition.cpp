// CREATE INDEX, CREATE VIEW, CREATE PROCEDURE and DROP.

#include "tsql/base/error_table.h"
#include "tsql/syntax/parse/parser_core.h"

namespace vicenter::tsql {

StatementPtr Parser::ParseCreateIndex(Position start) {
    auto create = Make<CreateIndexStatement>(start);
    create->unique = Accept(Keyword::kUnique);
    create->clustered = AcceptClustered();
    if (AtWord("columnstore")) throw MakeError(40510, start, {"CREATE COLUMNSTORE INDEX"});
    Expect(Keyword::kIndex);
    create->name = TakeName();
    Expect(Keyword::kOn);
    create->table = TakeObjectName();
    create->columns = ParseIndexColumns();
    if (AcceptWord("include")) create->include = TakeNamesInParentheses();
    if (Accept(Keyword::kWhere)) create->where = ParseCondition();
    SkipStorageOptions();
    return create;
}

// Alone in its batch.
StatementPtr Parser::ParseCreateView(Position start, bool alter, bool createOrAlter) {
    if (nested_) Fail();
    if (!first_) throw MakeError(111, start, {alter ? "ALTER VIEW" : "CREATE VIEW"});
    auto view = Make<CreateViewStatement>(start);
    view->alter = alter;
    view->createOrAlter = createOrAlter;
    Expect(Keyword::kView);
    view->name = TakeObjectName();
    if (At(Op::kLeftParen)) view->columns = TakeNamesInParentheses();
    if (Accept(Keyword::kWith)) {
        for (Name& option : TakeNames())
            view->options.push_back(std::move(option.text));
    }
    Expect(Keyword::kAs);
    std::vector<CommonTable> with;
    if (At(Keyword::kWith)) with = ParseCommonTables();
    view->query = ParseNestedQuery();
    view->query->with = std::move(with);
    if (At(Keyword::kWith) && At(Keyword::kCheck, 1)) {
        Take();
        Take();
        Expect(Keyword::kOption);
        view->withCheckOption = true;
    }
    SkipSemicolons();
    if (!AtEnd()) Fail();
    return view;
}

// The body is the rest of the batch.
StatementPtr Parser::ParseCreateProcedure(Position start, bool alter, bool createOrAlter) {
    if (nested_) Fail();
    if (!first_) throw MakeError(111, start, {"CREATE/ALTER PROCEDURE"});
    auto procedure = Make<CreateProcedureStatement>(start);
    procedure->alter = alter;
    procedure->createOrAlter = createOrAlter;
    Take();
    procedure->name = TakeObjectName();
    SkipProcedureNumber();
    const bool parentheses = At(Op::kLeftParen);
    if (parentheses) Take();
    if (At(TokenKind::kVariable)) {
        do {
            procedure->parameters.push_back(ParseProcedureParameter());
        } while (Accept(Op::kComma));
    }
    if (parentheses) Expect(Op::kRightParen);
    if (Accept(Keyword::kWith)) {
        do {
            std::string option;
            if (Accept(Keyword::kExec) || Accept(Keyword::kExecute)) {  // EXECUTE AS OWNER
                Expect(Keyword::kAs);
                option = "execute as " + (AtString() ? TokenValue(Take()) : TakeName().text);
            } else {
                option = TakeName().text;
            }
            procedure->options.push_back(std::move(option));
        } while (Accept(Op::kComma));
    }
    if (Accept(Keyword::kFor)) Expect(Keyword::kReplication);
    Expect(Keyword::kAs);
    if (At(Keyword::kExternal)) throw MakeError(40510, start, {"CREATE PROCEDURE … EXTERNAL NAME"});
    procedure_ = true;
    nested_ = true;
    procedure->body = ParseStatements();
    procedure_ = false;
    if (procedure->body.empty() || !AtEnd()) Fail();
    return procedure;
}

// @name [AS] type [VARYING] [= default] [OUTPUT] [READONLY]
ProcedureParameter Parser::ParseProcedureParameter() {
    ProcedureParameter parameter;
    parameter.position = Peek().position;
    parameter.name = TakeVariable();
    Accept(Keyword::kAs);
    if (Accept(Keyword::kCursor)) {
        Expect(Keyword::kVarying);
        parameter.cursor = true;
    } else {
        parameter.type = TakeType();
    }
    if (Accept(Keyword::kNot)) {
        Expect(Keyword::kNull);
    } else {
        Accept(Keyword::kNull);
    }
    if (Accept(Op::kEqual)) parameter.defaultValue = ParseConstant();
    parameter.output = AcceptWord("output") || AcceptWord("out");
    parameter.readOnly = AcceptWord("readonly");
    return parameter;
}

StatementPtr Parser::ParseDrop() {
    const Position start = Take().position;
    auto drop = Make<DropStatement>(start);
    switch (Peek().keyword) {
        case Keyword::kTable:
            drop->object = DropKind::kTable;
            break;
        case Keyword::kIndex:
            drop->object = DropKind::kIndex;
            break;
        case Keyword::kView:
            drop->object = DropKind::kView;
            break;
        case Keyword::kProc:
        case Keyword::kProcedure:
            drop->object = DropKind::kProcedure;
            break;
        case Keyword::kFunction:
            drop->object = DropKind::kFunction;
            break;
        case Keyword::kTrigger:
            drop->object = DropKind::kTrigger;
            break;
        default:
            RefuseObject(start, "DROP");
            Fail();
    }
    Take();
    if (Accept(Keyword::kIf)) {
        Expect(Keyword::kExists);
        drop->ifExists = true;
    }
    do {
        drop->names.push_back(TakeObjectName());
        if (drop->object == DropKind::kIndex && Accept(Keyword::kOn)) {
            drop->onTables.resize(drop->names.size() - 1);
            drop->onTables.push_back(TakeObjectName());
            SkipStorageOptions();
        }
    } while (Accept(Op::kComma));
    if (!drop->onTables.empty()) drop->onTables.resize(drop->names.size());
    return drop;
}

}  // namespace vicenter::tsql
