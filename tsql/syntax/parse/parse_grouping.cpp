// GROUP BY with ROLLUP, CUBE and GROUPING SETS.

#include "tsql/base/error_table.h"
#include "tsql/syntax/parse/parser_core.h"

namespace vicenter::tsql {

namespace {

bool IsPlain(const GroupingItem& item) {
    return item.kind == GroupingKind::kExpressions && item.expressions.size() == 1;
}

}  // namespace

// A plain list stays one; everything else is items.
void Parser::ParseGroupBy(SelectBody& select) {
    const Position start = Expect(Keyword::kGroup).position;
    Expect(Keyword::kBy);
    if (At(Keyword::kAll)) throw MakeError(40510, start, {"GROUP BY ALL"});
    std::vector<GroupingItem> items;
    do {
        items.push_back(ParseGroupingItem());
    } while (Accept(Op::kComma));
    bool plain = true;
    for (const GroupingItem& item : items)
        plain = plain && IsPlain(item);
    // The older form: GROUP BY a, b WITH ROLLUP
    if (At(Keyword::kWith) && (AtWord("rollup", 1) || AtWord("cube", 1))) {
        if (!plain) Fail();
        Take();
        GroupingItem whole;
        whole.position = start;
        whole.kind = AcceptWord("rollup") ? GroupingKind::kRollup : GroupingKind::kCube;
        if (whole.kind == GroupingKind::kCube) Take();
        whole.parts = std::move(items);
        select.grouping.push_back(std::move(whole));
        return;
    }
    if (!plain) {
        select.grouping = std::move(items);
        return;
    }
    for (GroupingItem& item : items)
        select.groupBy.push_back(std::move(item.expressions.front()));
}

GroupingItem Parser::ParseGroupingItem() {
    const Level level(*this);
    GroupingItem item;
    item.position = Peek().position;
    const auto parts = [&](GroupingKind kind) {
        item.kind = kind;
        Expect(Op::kLeftParen);
        do {
            item.parts.push_back(ParseGroupingItem());
        } while (Accept(Op::kComma));
        Expect(Op::kRightParen);
    };
    if (AtWord("rollup") && At(Op::kLeftParen, 1)) {
        Take();
        parts(GroupingKind::kRollup);
    } else if (AtWord("cube") && At(Op::kLeftParen, 1)) {
        Take();
        parts(GroupingKind::kCube);
    } else if (AtWord("grouping") && AtWord("sets", 1)) {
        Take();
        Take();
        parts(GroupingKind::kSets);
    } else if (At(Op::kLeftParen) && At(Op::kRightParen, 1)) {
        Take();
        Take();
    } else if (At(Op::kLeftParen) && !At(Keyword::kSelect, 1)) {
        // (a, b) is a list, (a + b) * c a value that begins with a parenthesis.
        const State state = Save();
        Take();
        item.expressions = ParseValueList();
        Expect(Op::kRightParen);
        if (item.expressions.size() == 1) {
            Restore(state);
            item.expressions.clear();
            item.expressions.push_back(ParseValue());
        }
    } else {
        item.expressions.push_back(ParseValue());
    }
    return item;
}

}  // namespace vicenter::tsql
