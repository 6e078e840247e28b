// Calls by name: the arguments are translated here, what becomes of them says the function's own type rule.

#include "tsql/functions/function.h"

#include "tsql/base/text_units.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

// One call as its type rule sees it.
class Translator::CallBinding final : public Binding {
  public:
    CallBinding(Translator& translator, const FunctionEntry& entry, const FunctionExpr& call, Scope& scope,
                std::string name)
        : Binding(entry, call, std::move(name)), translator_(translator), call_(call), scope_(scope) {
        const bool aggregate = entry.kind == FunctionKind::kAggregate && !call.over;
        if (aggregate && translator_.aggregateDepth_ > 0) throw MakeError(130, call.position);
        if (aggregate) ++translator_.aggregateDepth_;
        for (std::size_t i = 0; i < call.arguments.size(); ++i) {
            operands_.push_back(i < entry.firstValue ? Operand()
                                                     : translator_.Value(*call.arguments[i], scope));
        }
        if (aggregate) --translator_.aggregateDepth_;
    }

    const SqlType& Type(std::size_t i) const override { return operands_[i].type; }
    std::string Plain(std::size_t i) override { return translator_.Render(operands_[i]); }
    std::string As(std::size_t i, const SqlType& type, bool isExplicit) override {
        return translator_.RenderAs(operands_[i], type, isExplicit);
    }
    std::string Collated(std::size_t i) override { return translator_.Collated(operands_[i]); }
    std::string Condition(std::size_t i) override {
        return translator_.ConditionText(*call_.arguments[i], scope_);
    }
    std::string Equal(std::size_t i, std::size_t j) override {
        return translator_.Compare("=", operands_[i], operands_[j], Where());
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

Operand Translator::Function(const FunctionExpr& function, Scope& scope) {
    std::string name = LowerAscii(function.name.Object());
    const FunctionEntry* entry = FindFunction(name);
    if (entry == nullptr)
        throw MakeError(195, function.position, {function.name.Object(), "built-in function name"});
    CheckCount(*entry, function);
    CallBinding call(*this, *entry, function, scope, std::move(name));
    Bound bound = entry->bind(call);
    Operand result = bound.isSystem ? System(std::move(bound.sql), bound.type)
                                    : Computed(std::move(bound.sql), bound.type);
    if (function.over) result.sql += " OVER (" + WindowText(*function.over, scope) + ")";
    return result;
}

std::string Translator::WindowText(const OverClause& over, Scope& scope) {
    std::string window;
    for (const ExprPtr& expression : over.partitionBy)
        window += (window.empty() ? "PARTITION BY " : ", ") + Collated(Value(*expression, scope));
    for (std::size_t i = 0; i < over.orderBy.size(); ++i) {
        const OrderItem& item = over.orderBy[i];
        window += i == 0 ? " ORDER BY " : ", ";
        window += Collated(Value(*item.expression, scope)) + (item.descending ? " DESC" : "");
    }
    return window;
}

}  // namespace vicenter::tsql::engine
