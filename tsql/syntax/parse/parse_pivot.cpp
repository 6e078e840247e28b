// PIVOT and UNPIVOT behind a source.

#include "tsql/syntax/parse/parser_core.h"

namespace vicenter::tsql {

TableSourcePtr Parser::ParsePivots(TableSourcePtr source) {
    for (;;) {
        if (At(Keyword::kPivot)) {
            source = ParsePivot(std::move(source));
        } else if (At(Keyword::kUnpivot)) {
            source = ParseUnpivot(std::move(source));
        } else {
            return source;
        }
    }
}

// PIVOT (sum(value) FOR spread IN ([a], [b])) AS alias
TableSourcePtr Parser::ParsePivot(TableSourcePtr source) {
    auto pivot = std::make_unique<PivotTable>(Expect(Keyword::kPivot).position);
    pivot->depth = static_cast<std::uint16_t>(source->depth + 1);
    pivot->source = std::move(source);
    Expect(Op::kLeftParen);
    pivot->function = TakeObjectName();
    Expect(Op::kLeftParen);
    pivot->value = TakeObjectName();
    Expect(Op::kRightParen);
    Expect(Keyword::kFor);
    pivot->spread = TakeObjectName();
    Expect(Keyword::kIn);
    pivot->columns = TakeNamesInParentheses();
    Expect(Op::kRightParen);
    ParseAlias(pivot->alias);
    if (pivot->alias.IsEmpty()) Fail();
    return pivot;
}

// UNPIVOT (value FOR name IN (a, b)) AS alias
TableSourcePtr Parser::ParseUnpivot(TableSourcePtr source) {
    auto unpivot = std::make_unique<UnpivotTable>(Expect(Keyword::kUnpivot).position);
    unpivot->depth = static_cast<std::uint16_t>(source->depth + 1);
    unpivot->source = std::move(source);
    Expect(Op::kLeftParen);
    unpivot->value = TakeName();
    Expect(Keyword::kFor);
    unpivot->name = TakeName();
    Expect(Keyword::kIn);
    unpivot->columns = TakeNamesInParentheses();
    Expect(Op::kRightParen);
    ParseAlias(unpivot->alias);
    if (unpivot->alias.IsEmpty()) Fail();
    return unpivot;
}

}  // namespace vicenter::tsql
