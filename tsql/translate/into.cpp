// SELECT … INTO: the table that comes of a query, and IDENTITY(type, seed, increment) in its list.

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/functions/function.h"
#include "tsql/syntax/ast_children.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

namespace {

constexpr std::size_t kMostDigits = 9;

// A whole number, with or without its sign.
std::int64_t WholeNumber(const Expr& expression) {
    const auto* unary = TryAs<UnaryExpr>(&expression);
    const bool negative = unary != nullptr && unary->op == UnaryOp::kMinus;
    const auto* literal = TryAs<LiteralExpr>(unary != nullptr ? unary->operand.get() : &expression);
    if (literal == nullptr || literal->literal != LiteralKind::kInteger || literal->text.size() > kMostDigits)
        throw MakeError(40510, expression.position, {"IDENTITY of an expression"});
    const std::int64_t number = std::stoll(literal->text);
    return negative ? -number : number;
}

// The type stands in the place of an argument.
TypeName TypeOf(const Expr& expression) {
    TypeName type;
    type.position = expression.position;
    if (const auto* column = TryAs<ColumnExpr>(&expression)) type.name = LowerAscii(column->name.Object());
    if (const auto* call = TryAs<FunctionExpr>(&expression)) {
        type.name = LowerAscii(call->name.Object());
        if (!call->arguments.empty()) type.length = static_cast<int>(WholeNumber(*call->arguments[0]));
        if (call->arguments.size() > 1) type.scale = static_cast<int>(WholeNumber(*call->arguments[1]));
    }
    return type;
}

}  // namespace

void Translator::AddIdentity(const FunctionExpr& call, const SelectItem& item, SelectParts& parts) {
    if (translation_.identity) throw MakeError(2744, call.position, {""});
    if (item.alias.IsEmpty()) throw MakeError(177, call.position);
    if (call.arguments.empty() || call.arguments.size() == 2 || call.arguments.size() > 3)
        throw MakeError(174, call.position, {"identity", 3});
    Translation::IdentityItem identity;
    identity.type = ResolveType(TypeOf(*call.arguments[0]));
    const bool counts =
        identity.type.IsInteger() || (identity.type.kind == TypeKind::kDecimal && identity.type.scale == 0);
    if (!counts) throw MakeError(2749, call.position, {item.alias.text});
    for (std::size_t i = 1; i < call.arguments.size(); ++i) {
        const Expr& number = *call.arguments[i];
        if (const auto* literal = TryAs<LiteralExpr>(&number)) context_.PinLiteral(*literal);
        (i == 1 ? identity.seed : identity.increment) = WholeNumber(number);
    }
    identity.place = parts.items.size();
    translation_.identity = identity;
    if (fillsInto_) return;
    parts.items.push_back(Computed("0", identity.type));
    parts.names.push_back(item.alias.text);
}

Translation Translator::SelectInto(const Query& query) {
    into_ = &FirstSelect(*query.body);
    return Select(query);
}

Translation Translator::FillInto(const TableInfo& table, const std::vector<Name>& columns,
                                 const Query& query) {
    into_ = &FirstSelect(*query.body);
    fillsInto_ = true;
    return InsertQuery(table, columns, query);
}

}  // namespace vicenter::tsql::engine
