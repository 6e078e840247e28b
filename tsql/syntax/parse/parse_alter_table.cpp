#include "tsql/base/error_table.h"
#include "tsql/syntax/parse/parser_core.h"

namespace vicenter::tsql {

StatementPtr Parser::ParseAlterTable(Position start) {
    auto alter = Make<AlterTableStatement>(start);
    Expect(Keyword::kTable);
    alter->table = TakeObjectName();
    if (At(Keyword::kWith) && (At(Keyword::kCheck, 1) || At(Keyword::kNocheck, 1))) {
        Take();
        alter->withCheck = Take().keyword == Keyword::kCheck;
    }
    RefuseAlterTable(start);
    switch (Peek().keyword) {
        case Keyword::kAdd:
            ParseAlterTableAdd(*alter);
            break;
        case Keyword::kDrop:
            ParseAlterTableDrop(*alter);
            break;
        case Keyword::kAlter:
            Take();
            Expect(Keyword::kColumn);
            alter->action = AlterTableAction::kAlterColumn;
            alter->definition.columns.push_back(ParseColumnDefinition());
            SkipStorageOptions();
            break;
        case Keyword::kCheck:
        case Keyword::kNocheck:
            alter->action = Take().keyword == Keyword::kCheck ? AlterTableAction::kCheckConstraint
                                                              : AlterTableAction::kNoCheckConstraint;
            Expect(Keyword::kConstraint);
            if (Accept(Keyword::kAll)) {
                alter->all = true;
            } else {
                alter->names = TakeNames();
            }
            break;
        default:
            Fail();
    }
    return alter;
}

void Parser::ParseAlterTableAdd(AlterTableStatement& alter) {
    Take();
    alter.action = AlterTableAction::kAdd;
    do {
        if (At(Keyword::kDefault)) {
            alter.definition.constraints.push_back(ParseConstraint(nullptr));
        } else {
            ParseTableElement(alter.definition);
        }
    } while (Accept(Op::kComma));
}

// DROP COLUMN a, b; DROP COLUMN a, COLUMN b; DROP [CONSTRAINT] c [WITH (…)]
void Parser::ParseAlterTableDrop(AlterTableStatement& alter) {
    const Position start = Take().position;
    alter.action = AlterTableAction::kDropConstraint;
    if (Accept(Keyword::kColumn)) {
        alter.action = AlterTableAction::kDropColumn;
    } else {
        Accept(Keyword::kConstraint);
    }
    if (Accept(Keyword::kIf)) {
        Expect(Keyword::kExists);
        alter.ifExists = true;
    }
    do {
        const bool isColumn = alter.action == AlterTableAction::kDropColumn;
        if (isColumn ? At(Keyword::kConstraint) : At(Keyword::kColumn))
            throw MakeError(40510, start, {"ALTER TABLE … DROP of columns and constraints"});
        Accept(isColumn ? Keyword::kColumn : Keyword::kConstraint);
        alter.names.push_back(TakeName());
        SkipStorageOptions();
    } while (Accept(Op::kComma));
}

}  // namespace vicenter::tsql
