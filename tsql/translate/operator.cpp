// Arithmetic: the type of a result, and the call that works it out.

#include <algorithm>

#include "tsql/functions/function.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

namespace {

char OperatorLetter(BinaryOp op) {
    switch (op) {
        case BinaryOp::kAdd:
            return '+';
        case BinaryOp::kSubtract:
            return '-';
        case BinaryOp::kMultiply:
            return '*';
        case BinaryOp::kDivide:
            return '/';
        case BinaryOp::kModulo:
            return '%';
        case BinaryOp::kBitAnd:
            return '&';
        case BinaryOp::kBitOr:
            return '|';
        case BinaryOp::kBitXor:
            return '^';
    }
    return '?';
}

// As the calls of operators take it.
std::string OperatorMark(BinaryOp op) {
    return std::string("'") + OperatorLetter(op) + "'";
}

const char* OperatorName(BinaryOp op) {
    switch (op) {
        case BinaryOp::kAdd:
            return "add";
        case BinaryOp::kSubtract:
            return "subtract";
        case BinaryOp::kMultiply:
            return "multiply";
        case BinaryOp::kDivide:
            return "divide";
        case BinaryOp::kModulo:
            return "modulo";
        case BinaryOp::kBitAnd:
            return "'&'";
        case BinaryOp::kBitOr:
            return "'|'";
        case BinaryOp::kBitXor:
            return "'^'";
    }
    return "";
}

// A whole number that stands in the text counts with its own digits among decimals.
SqlType ArithmeticType(const Operand& operand) {
    if (operand.literal != nullptr && operand.type.kind == TypeKind::kInt) {
        return SqlType::Decimal(static_cast<int>(operand.literal->text.size()), 0);
    }
    return operand.type;
}

SqlType TextSum(const SqlType& a, const SqlType& b) {
    SqlType type = SqlType::Of(a.IsUnicode() || b.IsUnicode() ? TypeKind::kNVarChar : TypeKind::kVarChar);
    if (a.IsMax() || b.IsMax()) {
        type.length = kMaxLength;
    } else {
        const int limit = type.IsUnicode() ? kLongestNVarChar : kLongestVarChar;
        type.length = a.length + b.length < limit ? a.length + b.length : limit;
    }
    return type;
}

}  // namespace

Operand Translator::Unary(const UnaryExpr& unary, Scope& scope) {
    Operand operand = Value(*unary.operand, scope);
    if (unary.op == UnaryOp::kPlus) return operand;
    if (unary.op == UnaryOp::kBitNot) {
        if (!operand.type.IsInteger())
            throw MakeError(8117, unary.position, {MessageName(operand.type), "'~'"});
        if (operand.type.kind == TypeKind::kBit)
            return Computed("(1 - " + Render(operand) + ")", operand.type);
        return Computed("(~" + Render(operand) + ")", operand.type);
    }
    if (operand.type.IsUnknown()) return operand;
    if (!operand.type.IsNumber() || operand.type.kind == TypeKind::kBit) {
        throw MakeError(8117, unary.position, {MessageName(operand.type), "minus"});
    }
    if (operand.pending && operand.literal != nullptr) {
        operand.pending->negated = !operand.pending->negated;
        return operand;
    }
    SqlType type = operand.type;
    if (type.kind == TypeKind::kTinyInt) type = SqlType::Of(TypeKind::kSmallInt);
    return Computed(kNegateCall.Call({Render(operand), Code(type)}), type);
}

Operand Translator::Binary(BinaryOp op, Position position, const Operand& left, const Operand& right) {
    const SqlType& a = left.type;
    const SqlType& b = right.type;
    if (a.IsUnknown() && b.IsUnknown()) return Computed("NULL", SqlType::Int());
    if (op == BinaryOp::kAdd && (a.IsText() || a.IsUnknown()) && (b.IsText() || b.IsUnknown()))
        return SumOfTexts(left, right);
    if (op == BinaryOp::kAdd && a.IsBinary() && b.IsBinary()) return SumOfBytes(left, right);
    const SqlType common = CommonType(a, b);
    if (common.IsText()) {
        throw MakeError(a.IsUnknown() || b.IsUnknown() ? 8117 : 402, position,
                        {MessageName(a.IsUnknown() ? b : a),
                         a.IsUnknown() || b.IsUnknown() ? OperatorName(op) : b.Name(), OperatorName(op)});
    }
    if (common.IsDate()) return DatePlus(op, position, left, right);
    if (!common.IsNumber()) throw MakeError(8117, position, {MessageName(common), OperatorName(op)});
    const bool bitwise = op == BinaryOp::kBitAnd || op == BinaryOp::kBitOr || op == BinaryOp::kBitXor;
    if (bitwise && !common.IsInteger()) {
        throw MakeError(402, position, {MessageName(a), MessageName(b), OperatorName(op)});
    }
    if (common.IsFloat()) {
        if (op == BinaryOp::kModulo)
            throw MakeError(402, position, {MessageName(a), MessageName(b), "modulo"});
        return OfFloats(op, common, left, right);
    }
    if (!common.IsInteger()) return OfDecimals(op, common, left, right);
    if (common.kind == TypeKind::kBit && !bitwise && (a.IsText() || b.IsText()))
        throw MakeError(402, position, {MessageName(a), MessageName(b), OperatorName(op)});
    if (common.kind == TypeKind::kBit && !bitwise) {
        throw MakeError(8117, position, {"bit", OperatorName(op)});
    }
    // SQLite goes on in floating point where an integer overflows, the server fails: so no operator of
    // SQLite's.
    const std::string leftText = RenderAs(left, common);
    const std::string rightText = RenderAs(right, common);
    return Chained('i', op, {left, leftText}, {right, rightText}, common,
                   kIntegerCall.Call({OperatorMark(op), leftText, rightText, Code(common)}));
}

// Calls within each other are SQLite's to nest, up to this many; longer rows are one call, which takes so
// many values.
Operand Translator::Chained(char kind, BinaryOp op, const Side& left, const Side& right, const SqlType& type,
                            std::string own, bool isTyped) {
    constexpr int kMostNested = 4;
    const auto chainOf = [kind](const Side& side) -> const Chain* {
        const Chain* chain = side.operand.chain.get();
        const bool goesOn = chain != nullptr && chain->kind == kind && side.text == side.operand.sql;
        return goesOn ? chain : nullptr;
    };
    const auto levelsOf = [&](const Side& side) {
        const Chain* chain = chainOf(side);
        return chain != nullptr ? chain->levels : 0;
    };
    auto chain = std::make_shared<Chain>();
    chain->kind = kind;
    chain->levels = std::max(levelsOf(left), levelsOf(right)) + 1;
    Operand result = Computed(std::move(own), type);
    if (chain->levels > kMostNested) {
        chain->levels = kMostNested;
        const auto countOf = [&](const Side& side) {
            const Chain* inner = chainOf(side);
            return inner != nullptr && inner->count > 0 ? inner->count : 1;
        };
        const bool isFull = countOf(left) + countOf(right) >= kMostInOneCall;
        const bool leftGoesOn = !isFull || countOf(left) < countOf(right);
        const auto add = [&](const Side& side, bool goesOn) {
            const Chain* inner = chainOf(side);
            const bool isOpen = goesOn && inner != nullptr && inner->count > 0;
            chain->program += isOpen ? inner->program : "#";
            chain->values += (chain->values.empty() ? "" : ", ") + (isOpen ? inner->values : side.text);
            chain->count += isOpen ? inner->count : 1;
        };
        add(left, leftGoesOn);
        add(right, !isFull || !leftGoesOn);
        chain->program += OperatorLetter(op);
        chain->program += kind + (isTyped ? Code(type) : "0") + ";";
        result.sql = kChainCall.Call({"'" + chain->program + "'", chain->values});
    }
    result.chain = std::move(chain);
    return result;
}

Operand Translator::OfFloats(BinaryOp op, const SqlType& common, const Operand& left, const Operand& right) {
    const std::string a = RenderAs(left, SqlType::Float());
    const std::string b = RenderAs(right, SqlType::Float());
    const std::string sql = kRealCall.Call({OperatorMark(op), a, b});
    // A sum of two reals is worked out as a float and rounded once.
    if (common.kind == TypeKind::kReal) return Computed(ConvertCall(sql, SqlType::Float(), common), common);
    return Chained('r', op, {left, a}, {right, b}, common, sql);
}

// The type of the sum depends on the lengths of both, which for a literal are its own.
Operand Translator::SumOfTexts(const Operand& left, const Operand& right) {
    for (const Operand* operand : {&left, &right}) {
        if (operand->literal != nullptr) context_.PinLiteral(*operand->literal);
    }
    const SqlType type = TextSum(left.type, right.type);
    const std::string a = Render(left);
    const std::string b = Render(right);
    const std::string sql = "(" + a + " || " + b + ")";
    // What is beyond the longest text of the type is cut.
    const bool isCut = !type.IsMax() && left.type.length + right.type.length > type.length;
    return Chained('t', BinaryOp::kAdd, {left, a}, {right, b}, type,
                   isCut ? ConvertCall(sql, SqlType::Of(type.kind, kMaxLength), type) : sql, isCut);
}

Operand Translator::SumOfBytes(const Operand& left, const Operand& right) {
    SqlType type = SqlType::Of(TypeKind::kVarBinary, kMaxLength);
    if (!left.type.IsMax() && !right.type.IsMax())
        type.length = std::min(left.type.length + right.type.length, kLongestVarChar);
    const std::string sql = "CAST(" + Render(left) + " || " + Render(right) + " AS BLOB)";
    return Computed(ConvertCall(sql, SqlType::Of(TypeKind::kVarBinary, kMaxLength), type), type);
}

// Only the older types take days with + and -, and only a date may stand before the minus.
Operand Translator::DatePlus(BinaryOp op, Position position, const Operand& left, const Operand& right) {
    const SqlType common = CommonType(left.type, right.type);
    if (op != BinaryOp::kAdd && op != BinaryOp::kSubtract) {
        throw MakeError(8117, position, {MessageName(common), OperatorName(op)});
    }
    if (common.kind == TypeKind::kDate || common.kind == TypeKind::kTime ||
        common.kind == TypeKind::kDateTime2) {
        throw MakeError(206, position, {MessageName(left.type), MessageName(right.type)});
    }
    const SqlType datetime = SqlType::DateTime();
    const bool dateFirst = left.type.IsDate();
    const Operand& date = dateFirst ? left : right;
    const Operand& other = dateFirst ? right : left;
    const std::string days = other.type.IsDate() || other.type.IsText()
                                 ? ConvertCall(RenderAs(other, datetime), datetime, SqlType::Float())
                                 : RenderAs(other, SqlType::Float());
    if (op == BinaryOp::kSubtract && !dateFirst)
        throw MakeError(8117, position, {MessageName(right.type), "subtract"});
    return Computed(kDatePlusCall.Call({RenderAs(date, datetime), days, op == BinaryOp::kAdd ? "1" : "-1"}),
                    datetime);
}

// The precision of a result follows from those of both sides, which for a literal are its digits.
Operand Translator::OfDecimals(BinaryOp op, const SqlType& common, const Operand& left,
                               const Operand& right) {
    static constexpr Arithmetic kArithmetic[] = {Arithmetic::kAdd, Arithmetic::kSubtract,
                                                 Arithmetic::kMultiply, Arithmetic::kDivide,
                                                 Arithmetic::kModulo};
    for (const Operand* operand : {&left, &right}) {
        if (operand->literal != nullptr) context_.PinLiteral(*operand->literal);
    }
    // A text or NULL takes the other side's type; money stays money.
    const auto exact = [&](const Operand& operand) {
        if (operand.type.IsExact()) return Render(operand);
        if (operand.type.IsInteger()) return RenderAs(operand, AsDecimal(ArithmeticType(operand)));
        return RenderAs(operand, common);
    };
    const SqlType leftType = left.type.IsNumber() ? ArithmeticType(left) : common;
    const SqlType rightType = right.type.IsNumber() ? ArithmeticType(right) : common;
    const SqlType type = common.IsMoney()
                             ? common
                             : DecimalResult(kArithmetic[static_cast<std::size_t>(op)], leftType, rightType);
    const std::string leftText = exact(left);
    const std::string rightText = exact(right);
    return Chained('d', op, {left, leftText}, {right, rightText}, type,
                   kDecimalCall.Call({OperatorMark(op), leftText, rightText, Code(type)}));
}

}  // namespace vicenter::tsql::engine
