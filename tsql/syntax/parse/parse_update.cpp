#include "tsql/base/error_table.h"
#include "tsql/syntax/parse/parser_core.h"

namespace vicenter::tsql {

StatementPtr Parser::ParseUpdate(std::vector<CommonTable> with) {
    auto update = Make<UpdateStatement>(with.empty() ? Peek().position : with.front().name.position);
    update->with = std::move(with);
    Expect(Keyword::kUpdate);
    if (At(Keyword::kTop)) update->top = ParseTop();
    if (At(TokenKind::kVariable)) {
        const Token variable = Take();
        update->target.parts.push_back(Name{std::string(variable.text), variable.position, false});
    } else {
        RefuseRowset();
        update->target = TakeObjectName();
    }
    if (AtHints()) update->hints = ParseHints();
    Expect(Keyword::kSet);
    do {
        update->assignments.push_back(ParseAssignment());
    } while (Accept(Op::kComma));
    if (AtWord("output")) update->output = ParseOutput();
    if (At(Keyword::kFrom)) update->from = ParseFrom();
    ParseWhere(update->where, update->currentOf);
    SkipOptionClause();
    return update;
}

// column = e, @v = e, @v = column = e, with any assignment operator for the last '='.
Assignment Parser::ParseAssignment() {
    Assignment assignment;
    assignment.position = Peek().position;
    if (At(TokenKind::kVariable)) {
        assignment.variable = TakeVariable();
        if (At(Op::kEqual) && AtName(1)) {
            const State state = Save();
            Take();
            assignment.column = TakeColumnName();
            if (!AssignmentAhead(0)) {  // the value is a column
                assignment.column = {};
                Restore(state);
            }
        }
    } else {
        assignment.column = TakeColumnName();
    }
    // column.WRITE(text, from, length)
    if (At(Op::kLeftParen) && !assignment.column.IsEmpty() && IsWord(assignment.column.Object(), "write"))
        throw MakeError(40510, assignment.position, {"UPDATE … .WRITE"});
    const std::optional<AssignOp> op = AssignmentAhead(0);
    if (!op) Fail();
    Take();
    assignment.op = *op;
    if (At(Keyword::kDefault)) {
        assignment.value = std::make_unique<LiteralExpr>(Take().position, LiteralKind::kDefault, "");
    } else {
        assignment.value = ParseValue();
    }
    return assignment;
}

// WHERE condition, or WHERE CURRENT OF cursor
void Parser::ParseWhere(ExprPtr& where, Name& currentOf) {
    if (!Accept(Keyword::kWhere)) return;
    if (!At(Keyword::kCurrent)) {
        where = ParseCondition();
        return;
    }
    Take();
    Expect(Keyword::kOf);
    currentOf = TakeCursorName().name;
}

}  // namespace vicenter::tsql
