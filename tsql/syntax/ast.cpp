#include "tsql/syntax/ast.h"

#include "text/ascii.h"

namespace vicenter::tsql {

std::string ObjectName::Text() const {
    std::string text;
    for (const Name& part : parts) {
        if (&part != &parts.front()) text += '.';
        text += part.text;
    }
    return text;
}

bool ColumnExpr::IsIdentity() const {
    const Name& last = name.parts.back();
    return !last.quoted &&
           (text::SameAscii(last.text, "$identity") || text::SameAscii(last.text, "identitycol"));
}

// Nodes that hold a query: out of line, where Query is complete.
InExpr::InExpr(Position p) : Expr(kKind, p) {}
InExpr::~InExpr() = default;
ExistsExpr::ExistsExpr(Position p) : Expr(kKind, p) {}
ExistsExpr::~ExistsExpr() = default;
QuantifiedExpr::QuantifiedExpr(Position p) : Expr(kKind, p) {}
QuantifiedExpr::~QuantifiedExpr() = default;
SubqueryExpr::SubqueryExpr(Position p) : Expr(kKind, p) {}
SubqueryExpr::~SubqueryExpr() = default;
DerivedTable::DerivedTable(Position p) : TableSource(kKind, p) {}
DerivedTable::~DerivedTable() = default;

}  // namespace vicenter::tsql
