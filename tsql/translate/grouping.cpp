// ROLLUP, CUBE and GROUPING SETS: each row is grouped once for each set, with NULL for what the set leaves
// out.

#include "tsql/functions/function.h"
#include "tsql/functions/volatile.h"
#include "tsql/syntax/ast_children.h"
#include "tsql/translate/rows_apart.h"
#include "tsql/translate/same_expression.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

namespace {

using GroupingSet = std::vector<const Expr*>;
using GroupingSets = std::vector<GroupingSet>;

// As the server has it: more sets than that no query has.
constexpr std::size_t kMostSets = 4096;

GroupingSet Joined(const GroupingSet& a, const GroupingSet& b) {
    GroupingSet both = a;
    both.insert(both.end(), b.begin(), b.end());
    return both;
}

GroupingSets SetsOf(const GroupingItem& item);

GroupingSets Product(const GroupingSets& a, const GroupingSets& b) {
    GroupingSets all;
    for (const GroupingSet& left : a) {
        for (const GroupingSet& right : b)
            all.push_back(Joined(left, right));
    }
    return all;
}

GroupingSet Plain(const GroupingItem& item) {
    GroupingSet set;
    for (const ExprPtr& expression : item.expressions)
        set.push_back(expression.get());
    return set;
}

GroupingSets SetsOf(const GroupingItem& item) {
    GroupingSets sets;
    switch (item.kind) {
        case GroupingKind::kExpressions:
            return {Plain(item)};
        case GroupingKind::kRollup:
            for (std::size_t count = item.parts.size() + 1; count-- > 0;) {
                GroupingSet set;
                for (std::size_t i = 0; i < count; ++i)
                    set = Joined(set, Plain(item.parts[i]));
                sets.push_back(std::move(set));
            }
            return sets;
        case GroupingKind::kCube: {
            constexpr std::size_t kMostParts = 12;
            if (item.parts.size() > kMostParts) throw MakeError(10703, item.position);
            for (std::size_t left = 0; left < std::size_t{1} << item.parts.size(); ++left) {
                GroupingSet set;
                for (std::size_t i = 0; i < item.parts.size(); ++i) {
                    if ((left >> i & 1) == 0) set = Joined(set, Plain(item.parts[i]));
                }
                sets.push_back(std::move(set));
            }
            return sets;
        }
        case GroupingKind::kSets:
            for (const GroupingItem& part : item.parts) {
                for (GroupingSet& set : SetsOf(part))
                    sets.push_back(std::move(set));
            }
            return sets;
    }
    return sets;
}

// ROLLUP and CUBE take expressions and lists of them, nothing else.
void CheckParts(const GroupingItem& item) {
    for (const GroupingItem& part : item.parts) {
        const bool nested = part.kind != GroupingKind::kExpressions;
        if (nested && item.kind != GroupingKind::kSets)
            throw MakeError(102, part.position, {part.kind == GroupingKind::kRollup ? "rollup" : "cube"});
        CheckParts(part);
    }
}

}  // namespace

const Scope::SetMember* Translator::FindSetMember(const Scope& scope, const Expr& expression) const {
    for (const Scope::SetMember& member : scope.setMembers) {
        if (SameWithTheseLiterals(context_, *member.expression, expression)) return &member;
    }
    return nullptr;
}

void Translator::GroupBySets(const SelectBody& select, Scope& scope, std::string& tail) {
    GroupingSets sets = {{}};
    for (const GroupingItem& item : select.grouping) {
        CheckParts(item);
        sets = Product(sets, SetsOf(item));
        if (sets.size() > kMostSets) throw MakeError(10703, item.position);
    }
    const Position where = select.grouping.front().position;
    // All rows as one group stand there without any row, too, or they do not: that is asked of no row here.
    bool hasWhole = false;
    for (const GroupingSet& set : sets)
        hasWhole = hasWhole || set.empty();
    if (hasWhole && scope.outer != nullptr) throw MakeError(40510, where, {"ROLLUP in a subquery"});
    if (select.from.empty()) throw MakeError(40510, where, {"ROLLUP without FROM"});
    // Each row comes once for each set, with what it is.
    if (IsVolatile(tail)) {
        SetRowsApart(scope, tail, " LIMIT -1 OFFSET 0", "rows$");
        scope.whereAt = tail.size();
    }
    const std::string rows = tail;

    std::string numbers;
    for (std::size_t i = 0; i < sets.size(); ++i)
        numbers += (i == 0 ? "(" : ", (") + std::to_string(i) + ")";
    const std::size_t condition = scope.whereAt;
    tail = rows.substr(0, condition) + ", (VALUES " + numbers + ") AS \"set$\"" + rows.substr(condition);

    std::vector<Scope::SetMember> members;
    for (std::size_t i = 0; i < sets.size(); ++i) {
        for (const Expr* expression : sets[i]) {
            bool known = false;
            for (const Scope::SetMember& member : members)
                known = known || SameWithTheseLiterals(context_, *member.expression, *expression);
            if (known) continue;
            if (HasAggregate(*expression) || HoldsQuery(*expression))
                throw MakeError(144, expression->position);
            Scope::SetMember member;
            member.expression = expression;
            for (std::size_t other = i; other < sets.size(); ++other) {
                bool holds = false;
                for (const Expr* one : sets[other])
                    holds = holds || SameWithTheseLiterals(context_, *one, *expression);
                if (holds) member.isIn += (member.isIn.empty() ? "" : ", ") + std::to_string(other);
            }
            member.isIn = "\"set$\".column1 IN (" + member.isIn + ")";
            const Operand value = Value(*expression, scope);
            if (!NamesOf(*expression, scope).own) throw MakeError(164, expression->position);
            member.operand =
                Computed("(CASE WHEN " + member.isIn + " THEN " + Render(value) + " END)", value.type);
            members.push_back(std::move(member));
        }
    }
    tail += " GROUP BY \"set$\".column1";
    for (const Scope::SetMember& member : members)
        tail += ", " + Sorted(member.operand);
    if (hasWhole) {
        // A text of its own, before the number of rows is known to be none.
        scope.someRows =
            kSomeRowsCall.Call({"(SELECT 1" + rows + " LIMIT 1)", QuotedText("ROLLUP of no rows")});
    }
    scope.setMembers = std::move(members);
    scope.grouped = true;
}

}  // namespace vicenter::tsql::engine
