// MERGE.

#include "tsql/base/error_table.h"
#include "tsql/syntax/parse/parser_core.h"

namespace vicenter::tsql {

StatementPtr Parser::ParseMerge(std::vector<CommonTable> with) {
    auto merge = Make<MergeStatement>(with.empty() ? Peek().position : with.front().name.position);
    merge->with = std::move(with);
    Expect(Keyword::kMerge);
    if (At(Keyword::kTop)) merge->top = ParseTop();
    Accept(Keyword::kInto);
    if (At(TokenKind::kVariable)) {
        const Token variable = Take();
        merge->target.parts.push_back(Name{std::string(variable.text), variable.position, false});
    } else {
        merge->target = TakeObjectName();
    }
    if (AtHints()) merge->hints = ParseHints();
    if (!AtWord("using")) ParseAlias(merge->alias);
    ExpectWord("using");
    merge->source = ParseJoins(ParseSource());
    Expect(Keyword::kOn);
    merge->on = ParseCondition();
    if (!At(Keyword::kWhen)) Fail();
    while (At(Keyword::kWhen)) {
        MergeClause clause = ParseMergeClause();
        CheckMergeClause(merge->clauses, clause);
        merge->clauses.push_back(std::move(clause));
    }
    if (AtWord("output")) {
        inMergeOutput_ = true;
        merge->output = ParseOutput();
        inMergeOutput_ = false;
    }
    SkipOptionClause();
    if (!At(Op::kSemicolon)) throw MakeError(10713, merge->position);
    return merge;
}

// WHEN [NOT] MATCHED [BY TARGET | BY SOURCE] [AND condition] THEN UPDATE … | DELETE | INSERT …
MergeClause Parser::ParseMergeClause() {
    MergeClause clause;
    clause.position = Expect(Keyword::kWhen).position;
    const bool negated = Accept(Keyword::kNot);
    ExpectWord("matched");
    if (negated) clause.match = MergeMatch::kNotMatchedByTarget;
    if (negated && Accept(Keyword::kBy)) {
        if (AcceptWord("source")) {
            clause.match = MergeMatch::kNotMatchedBySource;
        } else {
            ExpectWord("target");
        }
    }
    if (Accept(Keyword::kAnd)) clause.condition = ParseCondition();
    Expect(Keyword::kThen);
    const bool inserts = clause.match == MergeMatch::kNotMatchedByTarget;
    if (At(Keyword::kInsert)) {
        if (!inserts) throw MakeError(10711, Peek().position, {"INSERT", WhenText(clause.match)});
        ParseMergeInsert(clause);
    } else if (At(Keyword::kDelete)) {
        if (inserts) throw MakeError(10711, Peek().position, {"DELETE", WhenText(clause.match)});
        Take();
        clause.action = MergeAction::kDelete;
    } else {
        if (inserts) throw MakeError(10711, Peek().position, {"UPDATE", WhenText(clause.match)});
        Expect(Keyword::kUpdate);
        Expect(Keyword::kSet);
        do {
            clause.assignments.push_back(ParseAssignment());
        } while (Accept(Op::kComma));
    }
    return clause;
}

// Each kind of WHEN has one clause for each action, and the last of them alone may do without a condition.
void Parser::CheckMergeClause(const std::vector<MergeClause>& before, const MergeClause& clause) {
    static constexpr const char* kActions[] = {"UPDATE", "DELETE", "INSERT"};
    const char* when = WhenText(clause.match);
    for (const MergeClause& other : before) {
        if (other.match != clause.match) continue;
        if (other.action == clause.action)
            throw MakeError(10714, clause.position, {kActions[static_cast<int>(clause.action)], when});
        if (!other.condition) throw MakeError(5324, clause.position, {when, when});
    }
}

const char* Parser::WhenText(MergeMatch match) {
    switch (match) {
        case MergeMatch::kMatched:
            return "WHEN MATCHED";
        case MergeMatch::kNotMatchedByTarget:
            return "WHEN NOT MATCHED";
        case MergeMatch::kNotMatchedBySource:
            return "WHEN NOT MATCHED BY SOURCE";
    }
    return "";
}

void Parser::ParseMergeInsert(MergeClause& clause) {
    Expect(Keyword::kInsert);
    clause.action = MergeAction::kInsert;
    if (At(Op::kLeftParen)) clause.columns = TakeNamesInParentheses();
    if (Accept(Keyword::kDefault)) {
        Expect(Keyword::kValues);
        clause.defaultValues = true;
        return;
    }
    Expect(Keyword::kValues);
    Expect(Op::kLeftParen);
    do {
        if (At(Keyword::kDefault)) {
            clause.values.push_back(
                std::make_unique<LiteralExpr>(Take().position, LiteralKind::kDefault, ""));
        } else {
            clause.values.push_back(ParseValue());
        }
    } while (Accept(Op::kComma));
    Expect(Op::kRightParen);
}

}  // namespace vicenter::tsql
