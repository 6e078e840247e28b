// OVER: partitions, orders and frames.

#include "tsql/functions/function.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

namespace {

const char* BoundText(FrameBoundKind kind) {
    switch (kind) {
        case FrameBoundKind::kUnboundedPreceding:
            return "UNBOUNDED PRECEDING";
        case FrameBoundKind::kPreceding:
            return " PRECEDING";
        case FrameBoundKind::kCurrentRow:
            return "CURRENT ROW";
        case FrameBoundKind::kFollowing:
            return " FOLLOWING";
        case FrameBoundKind::kUnboundedFollowing:
            return "UNBOUNDED FOLLOWING";
    }
    return "";
}

std::string_view Words(std::string_view bound) {
    return bound.front() == ' ' ? bound.substr(1) : bound;
}

// A frame ends no sooner than it starts, by the kinds of its bounds.
void CheckBounds(const WindowFrame& frame, Position where) {
    const FrameBoundKind start = frame.start.kind;
    const FrameBoundKind end = frame.end ? frame.end->kind : FrameBoundKind::kCurrentRow;
    const bool sound = start != FrameBoundKind::kUnboundedFollowing &&
                       end != FrameBoundKind::kUnboundedPreceding && start <= end &&
                       (frame.end || start != FrameBoundKind::kFollowing);
    if (sound) return;
    const std::string text =
        "BETWEEN " + std::string(Words(BoundText(start))) + " AND " + std::string(Words(BoundText(end)));
    throw MakeError(4193, where, {text});
}

}  // namespace

void Translator::CheckOver(const FunctionExpr& function, bool isWindow, bool takesFrame,
                           const std::string& name) {
    if (isWindow && !function.over) throw MakeError(10753, function.position, {name});
    if (!function.over) return;
    if (windowDepth_ > 0) throw MakeError(4109, function.position);
    const OverClause& over = *function.over;
    if (isWindow && over.orderBy.empty()) throw MakeError(4112, function.position, {name});
    if (function.distinct) throw MakeError(10759, function.position);
    if (!over.frame) return;
    if (!takesFrame) throw MakeError(10752, function.position, {name});
    if (over.orderBy.empty()) throw MakeError(10756, function.position);
    const bool counts = over.frame->start.rows || (over.frame->end && over.frame->end->rows);
    if (!over.frame->isRows && counts) throw MakeError(4194, function.position);
    CheckBounds(*over.frame, function.position);
}

std::string Translator::FrameText(const WindowFrame& frame) {
    // SQLite takes nothing but constants here, so another number needs another plan.
    const auto bound = [this](const FrameBound& one) {
        std::string text;
        if (one.rows) {
            const auto& literal = As<LiteralExpr>(*one.rows);
            context_.PinLiteral(literal);
            text = literal.text;
        }
        return text + BoundText(one.kind);
    };
    const std::string unit = frame.isRows ? " ROWS " : " RANGE ";
    if (!frame.end) return unit + bound(frame.start);
    return unit + "BETWEEN " + bound(frame.start) + " AND " + bound(*frame.end);
}

std::string Translator::WindowText(const OverClause& over, Scope& scope) {
    std::string window;
    ++windowDepth_;
    for (const ExprPtr& expression : over.partitionBy)
        window += (window.empty() ? "PARTITION BY " : ", ") + Sorted(Value(*expression, scope));
    for (std::size_t i = 0; i < over.orderBy.size(); ++i) {
        const OrderItem& item = over.orderBy[i];
        if (const auto* literal = TryAs<LiteralExpr>(item.expression.get())) {
            const bool isIndex = literal->literal == LiteralKind::kInteger;
            throw MakeError(isIndex ? 5308 : 5309, item.expression->position);
        }
        window += i == 0 ? " ORDER BY " : ", ";
        window += Sorted(Value(*item.expression, scope)) + (item.descending ? " DESC" : "");
    }
    --windowDepth_;
    if (over.frame) window += FrameText(*over.frame);
    return window;
}

}  // namespace vicenter::tsql::engine
