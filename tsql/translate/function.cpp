// Calls by name: the arguments are translated here, what becomes of them says the function's own type rule.

#include "tsql/functions/function.h"

#include "automation/object.h"
#include "text/ascii.h"
#include "tsql/base/text_units.h"
#include "tsql/functions/volatile.h"
#include "tsql/translate/same_expression.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

using automation::SameName;

// One call as its type rule sees it.
class Translator::CallBinding final : public Binding {
  public:
    CallBinding(Translator& translator, const FunctionEntry& entry, const FunctionExpr& call, Scope& scope,
                std::string name)
        : Binding(entry, call, std::move(name)), translator_(translator), call_(call), scope_(scope) {
        const bool aggregate = entry.kind == FunctionKind::kAggregate && !call.over;
        if (aggregate && translator_.aggregateDepth_ > 0) throw MakeError(130, call.position);
        const bool window = aggregate || call.over;
        if (aggregate) ++translator_.aggregateDepth_;
        if (window) ++translator_.windowDepth_;
        for (std::size_t i = 0; i < call.arguments.size(); ++i) {
            operands_.push_back(i < entry.firstValue ? Operand()
                                                     : translator_.Value(*call.arguments[i], scope));
        }
        if (aggregate) --translator_.aggregateDepth_;
        if (window) --translator_.windowDepth_;
    }

    const SqlType& Type(std::size_t i) const override { return operands_[i].type; }
    std::string Plain(std::size_t i) override { return translator_.Render(operands_[i]); }
    std::string As(std::size_t i, const SqlType& type, bool isExplicit) override {
        return translator_.RenderAs(operands_[i], type, isExplicit);
    }
    std::string Chosen(std::size_t i, const SqlType& type) override {
        return translator_.RenderChosen(operands_[i], type);
    }
    std::string Collated(std::size_t i) override { return translator_.Collated(operands_[i]); }
    std::string Condition(std::size_t i) override {
        return translator_.ConditionText(*call_.arguments[i], scope_);
    }
    std::string NullIf(std::size_t i, std::size_t j) override {
        return translator_.NullIf(operands_[i], operands_[j], Where());
    }
    const LiteralExpr* Literal(std::size_t i) const override { return operands_[i].literal; }
    void Pin(std::size_t i) override {
        if (operands_[i].literal != nullptr) translator_.context_.PinLiteral(*operands_[i].literal);
    }

  private:
    Translator& translator_;
    const FunctionExpr& call_;
    Scope& scope_;
    std::vector<Operand> operands_;
};

namespace {

void CheckCount(const FunctionEntry& entry, const FunctionExpr& function) {
    const std::size_t count = function.star && entry.takesStar ? 1 : function.arguments.size();
    if (count >= entry.least && count <= entry.most) return;
    const auto least = static_cast<std::int32_t>(entry.least);
    if (entry.least == entry.most) throw MakeError(174, function.position, {entry.name, least});
    throw MakeError(189, function.position, {entry.name, least, static_cast<std::int32_t>(entry.most)});
}

}  // namespace

// STRING_AGG … WITHIN GROUP (ORDER BY …): the aggregate sorts by the keys behind its own arguments, each with
// a letter for how it compares.
std::string Translator::OrderedAggregate(const FunctionExpr& function, Scope& scope) {
    std::string kinds;
    std::string keys;
    for (const OrderItem& item : function.withinGroup) {
        const Operand key = Value(*item.expression, scope);
        char kind = key.type.IsText() ? 't' : key.type.IsExact() ? 'n' : 'p';
        if (item.descending) kind = text::UpperAscii(kind);
        kinds += kind;
        keys += ", " + Render(key);
    }
    return QuotedText(kinds) + keys;
}

// GROUPING(a) is 1 where a is left out of the set; GROUPING_ID(a, b) has a bit for each.
Operand Translator::Grouping(const FunctionExpr& function, Scope& scope) {
    const bool isId = LowerAscii(function.name.Object()) == "grouping_id";
    if (function.arguments.empty() || (!isId && function.arguments.size() != 1))
        throw MakeError(174, function.position, {function.name.Object(), 1});
    std::string sql;
    for (const ExprPtr& argument : function.arguments) {
        std::string isIn;
        if (const Scope::SetMember* member = FindSetMember(scope, *argument)) {
            isIn = member->isIn;
        } else {
            for (std::size_t i = 0; scope.groupExpressions != nullptr && i < scope.groupExpressions->size();
                 ++i) {
                if (SameWithTheseLiterals(context_, *(*scope.groupExpressions)[i], *argument)) isIn = "1";
            }
        }
        if (isIn.empty()) throw MakeError(8161, function.position, {function.name.Object()});
        const std::string bit = "CASE WHEN " + isIn + " THEN 0 ELSE 1 END";
        sql = sql.empty() ? bit : "(" + sql + ") * 2 + " + bit;
    }
    return Staged(scope, Computed("(" + sql + ")", isId ? SqlType::Int() : SqlType::Of(TypeKind::kTinyInt)));
}

Operand Translator::Function(const FunctionExpr& function, Scope& scope) {
    std::string name = LowerAscii(function.name.Object());
    if (scope.grouped && (name == "grouping" || name == "grouping_id")) return Grouping(function, scope);
    if (name == "identity") throw MakeError(177, function.position);
    const FunctionEntry* entry = FindFunction(name);
    if (entry == nullptr) {
        if (function.name.parts.size() == 1 && IsServerFunction(name))
            throw MakeError(40510, function.position, {UpperAscii(name)});
        if (SameName(function.name.Schema(), "sys"))
            throw MakeError(40510, function.position, {function.name.Text()});
        if (function.name.parts.size() > 1)
            throw MakeError(4121, function.position, {function.name.Schema(), function.name.Text()});
        throw MakeError(195, function.position, {function.name.Object(), "built-in function name"});
    }
    CheckCount(*entry, function);
    const bool isWindow = entry->kind == FunctionKind::kWindow;
    const bool isAggregate = entry->kind == FunctionKind::kAggregate;
    if (function.over && !isWindow && (!isAggregate || name == "string_agg"))
        throw MakeError(4113, function.position, {function.name.Object()});
    CheckOver(function, isWindow, isAggregate || entry->takesFrame, name);
    if (!function.withinGroup.empty() && name != "string_agg")
        throw MakeError(10757, function.position, {function.name.Object()});
    if (!isAggregate && !function.over) return Call(*entry, function, scope, std::move(name));
    const Scope& owner = function.over ? scope : OwnerOf(function, scope);
    if (&owner != &scope) return OuterAggregate(function, owner);
    ++scope.belowStage;
    const Operand value = Call(*entry, function, scope, std::move(name));
    --scope.belowStage;
    return Staged(scope, value);
}

Operand Translator::Call(const FunctionEntry& entry, const FunctionExpr& function, Scope& scope,
                         std::string name) {
    CallBinding call(*this, entry, function, scope, std::move(name));
    Bound bound = entry.bind(call);
    if (!function.withinGroup.empty()) {
        ++aggregateDepth_;
        const std::string keys = OrderedAggregate(function, scope);
        --aggregateDepth_;
        bound.sql = kOrderedTextsCall.Call({call.Text(0), call.Text(1), keys});
    }
    // The same number in all rows; in a CHECK SQLite takes no query.
    if (entry.body != nullptr && entry.body->name == std::string_view(kRandName) && !inlineLiterals_)
        bound.sql = "(SELECT " + bound.sql + ")";
    if (function.over) bound.sql += " OVER (" + WindowText(*function.over, scope) + ")";
    if (bound.isSystem) return System(std::move(bound.sql), bound.type);
    return Computed(bound.before + bound.sql + bound.behind, bound.type);
}

}  // namespace vicenter::tsql::engine
