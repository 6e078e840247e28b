// Search conditions: they become SQLite's own, which know the same three truth values.

#include "tsql/functions/function.h"
#include "tsql/translate/comparable.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

namespace {

const char* Sign(ComparisonOp op) {
    switch (op) {
        case ComparisonOp::kEqual:
            return "=";
        case ComparisonOp::kNotEqual:
            return "<>";
        case ComparisonOp::kLess:
            return "<";
        case ComparisonOp::kLessEqual:
            return "<=";
        case ComparisonOp::kGreater:
            return ">";
        case ComparisonOp::kGreaterEqual:
            return ">=";
    }
    return "=";
}

// SQLite takes a long row of conditions for as many levels of one and refuses beyond a thousand: such a row
// is halved again and again.
std::string InARow(const std::vector<std::string>& parts, std::size_t from, std::size_t to,
                   const char* word) {
    constexpr std::size_t kMostInARow = 100;
    if (to - from > kMostInARow) {
        const std::size_t middle = from + (to - from) / 2;
        return "(" + InARow(parts, from, middle, word) + ")" + word + "(" + InARow(parts, middle, to, word) +
               ")";
    }
    std::string sql;
    for (std::size_t i = from; i < to; ++i)
        sql += (i == from ? "" : word) + parts[i];
    return sql;
}

}  // namespace

Translation Translator::Condition(const Expr& condition) {
    Scope scope;
    translation_.columns.push_back({"", SqlType::Of(TypeKind::kBit)});
    // As the condition of something: of a value SQLite works out both sides of AND and OR in any case.
    return Finished("SELECT CASE WHEN " + ConditionText(condition, scope) + " THEN 1 ELSE 0 END");
}

// SQLite compares as the column on the left says, within a CAST as well: an integer column that is converted
// would have decimals compared byte by byte. A converted column is no column any more.
static std::string LeftCollation(const Operand& left, const SqlType& common) {
    const bool isNatural =
        left.column && left.type.IsText() == common.IsText() && left.type.IsExact() == common.IsExact();
    if (isNatural || !(common.IsText() || common.IsExact())) return {};
    return std::string(" COLLATE ") + (common.IsText() ? kTextCollationName : kNumberCollationName);
}

// The same where the order counts: that of uniqueidentifiers is not that of their texts.
static std::string OrderCollation(const Operand& left, const SqlType& common) {
    return common.IsGuid() ? std::string(" COLLATE ") + kGuidCollationName : LeftCollation(left, common);
}

std::string Translator::Compare(const char* op, const Operand& left, const Operand& right,
                                Position position) {
    CheckCompared(left.type, op, right.type, position);
    const SqlType common = CommonType(left.type, right.type);
    return AtLine(position, [&] {
        const bool isMember = isAlternative_ && op[0] == '=';
        const std::string a =
            left.pending && isMember ? RenderMember(left, common) : RenderCompared(left, common);
        const std::string b = isMember ? RenderMember(right, common) : RenderCompared(right, common);
        const bool isOrder = std::string_view(op) != "=" && std::string_view(op) != "<>";
        return a + (isOrder ? OrderCollation(left, common) : LeftCollation(left, common)) + " " + op + " " +
               b;
    });
}

std::string Translator::ComparedLeft(const Operand& left, const SqlType& common) {
    return RenderCompared(left, common) + LeftCollation(left, common);
}

// Integers are among decimals what they are among themselves.
std::vector<SqlType> Translator::CommonTypes(const Operand& left, const std::vector<Operand>& others) {
    std::vector<SqlType> commons;
    SqlType exact;
    bool areExact = true;
    for (const Operand& other : others) {
        const SqlType common = CommonType(left.type, other.type);
        areExact = areExact && (common.IsExact() || common.IsInteger()) && !left.type.IsText();
        if (common.IsExact()) exact = common;
        commons.push_back(common);
    }
    if (!areExact || exact.IsUnknown()) return commons;
    for (SqlType& common : commons) {
        if (common.IsInteger()) common = exact;
    }
    return commons;
}

std::optional<std::string> Translator::ComparedOnce(const Operand& left,
                                                    const std::vector<SqlType>& commons) {
    const SqlType& first = commons.front();
    if (left.pending) {
        // What it is converted to when it is bound.
        for (const SqlType& common : commons) {
            const bool isAsFirst = common.IsExact() && first.IsExact() && !left.type.IsText();
            if (!(common == first) && !isAsFirst) return std::nullopt;
        }
        return ComparedLeft(left, first);
    }
    std::string text = ComparedLeft(left, first);
    for (const SqlType& common : commons) {
        if (!(common == first) && ComparedLeft(left, common) != text) return std::nullopt;
    }
    return text;
}

std::vector<std::string> Translator::ComparedApart(const Operand& left, const std::vector<Operand>& others) {
    std::vector<std::string> arguments;
    const auto add = [&](const Operand& operand) {
        // The type stands in the text.
        if (operand.literal != nullptr) context_.PinLiteral(*operand.literal);
        arguments.push_back(Render(operand));
        arguments.push_back(Code(operand.type));
    };
    add(left);
    for (const Operand& other : others) {
        const SqlType common = CommonType(left.type, other.type);
        CheckConversion(left.type, common, false);
        CheckConversion(other.type, common, false);
        add(other);
    }
    return arguments;
}

std::string Translator::Between(const BetweenExpr& between, Scope& scope) {
    const Operand operand = Value(*between.operand, scope);
    const std::vector<Operand> bounds = {Value(*between.low, scope), Value(*between.high, scope)};
    for (std::size_t i = 0; i < bounds.size(); ++i)
        CheckCompared(operand.type, i == 0 ? ">=" : "<=", bounds[i].type, between.position);
    const std::vector<SqlType> commons = CommonTypes(operand, bounds);
    return AtLine(between.position, [&]() -> std::string {
        if (const auto once = ComparedOnce(operand, commons)) {
            const std::string order =
                commons.front().IsGuid() ? std::string(" COLLATE ") + kGuidCollationName : "";
            return "(" + *once + order + " BETWEEN " + RenderCompared(bounds[0], commons[0]) + " AND " +
                   RenderCompared(bounds[1], commons[1]) + ")";
        }
        if (operand.pending || operand.isPlain) {
            return "(" + Compare(">=", operand, bounds[0], between.position) + " AND " +
                   Compare("<=", operand, bounds[1], between.position) + ")";
        }
        return kBetweenCall.Call(ComparedApart(operand, bounds));
    });
}

std::string Translator::NullIf(const Operand& value, const Operand& other, Position position) {
    CheckCompared(value.type, "=", other.type, position);
    const SqlType common = CommonType(value.type, other.type);
    return AtLine(position, [&]() -> std::string {
        if (value.pending || (value.isPlain && RenderCompared(value, common) != value.sql)) {
            const std::string equal = Compare("=", value, other, position);
            return "(CASE WHEN " + equal + " THEN NULL ELSE " + Render(value) + " END)";
        }
        if (RenderCompared(value, common) == value.sql)
            return "nullif(" + ComparedLeft(value, common) + ", " + RenderCompared(other, common) + ")";
        return kNullIfCall.Call(ComparedApart(value, {other}));
    });
}

std::string Translator::ConditionText(const Expr& condition, Scope& scope) {
    switch (condition.kind) {
        case ExprKind::kComparison: {
            const auto& comparison = As<ComparisonExpr>(condition);
            const Operand left = Value(*comparison.left, scope);
            const Operand right = Value(*comparison.right, scope);
            return Compare(Sign(comparison.op), left, right, condition.position);
        }
        case ExprKind::kLogical: {
            const auto& logical = As<LogicalExpr>(condition);
            const bool wasAlternative = isAlternative_;
            std::vector<std::string> parts;
            for (const ExprPtr& operand : logical.operands) {
                isAlternative_ = !logical.isAnd;
                parts.push_back("(" + ConditionText(*operand, scope) + ")");
            }
            isAlternative_ = wasAlternative;
            return InARow(parts, 0, parts.size(), logical.isAnd ? " AND " : " OR ");
        }
        case ExprKind::kNot:
            return "NOT (" + ConditionText(*As<NotExpr>(condition).operand, scope) + ")";
        case ExprKind::kBetween: {
            const auto& between = As<BetweenExpr>(condition);
            return (between.negated ? "NOT " : "") + Between(between, scope);
        }
        case ExprKind::kLike:
            return Like(As<LikeExpr>(condition), scope);
        case ExprKind::kIn:
            return In(As<InExpr>(condition), scope);
        case ExprKind::kExists:
            return "EXISTS(" + QueryOf(*As<ExistsExpr>(condition).query, &scope, false).sql + ")";
        case ExprKind::kIsNull: {
            const auto& test = As<IsNullExpr>(condition);
            return Render(Value(*test.operand, scope)) + (test.negated ? " IS NOT NULL" : " IS NULL");
        }
        case ExprKind::kQuantified:
            return Quantified(As<QuantifiedExpr>(condition), scope);
        default:
            throw MakeError(4145, condition.position, {""});
    }
}

std::string Translator::Like(const LikeExpr& like, Scope& scope) {
    const SqlType text = SqlType::NVarChar(kMaxLength);
    const auto asText = [&](const Operand& operand) {
        return operand.type.IsText() ? Render(operand) : RenderAs(operand, text, true);
    };
    const Operand operand = Value(*like.operand, scope);
    const Operand pattern = Value(*like.pattern, scope);
    bool unicode = operand.type.IsUnicode() || pattern.type.IsUnicode();
    std::vector<std::string> arguments{asText(operand), asText(pattern)};
    if (like.escape) {
        const Operand escape = Value(*like.escape, scope);
        unicode = unicode || escape.type.IsUnicode();
        arguments.push_back(asText(escape));
    }
    const std::string sql = (unicode ? kUnicodeLikeCall : kLikeCall).Call(arguments);
    return like.negated ? "NOT " + sql : sql;
}

std::string Translator::In(const InExpr& in, Scope& scope) {
    const Operand operand = Value(*in.operand, scope);
    const char* word = in.negated ? " NOT IN (" : " IN (";
    if (in.query) {
        const QueryText query = QueryOf(*in.query, &scope, false);
        if (query.columns.size() != 1) throw MakeError(116, in.query->position);
        const SqlType member = query.columns.front().type;
        CheckCompared(operand.type, "=", member, in.position);
        const SqlType common = CommonType(operand.type, member);
        const Operand column = Computed("c1", member);
        const std::string converted = RenderMember(column, common);
        // A descending index in the place of the members has its NULLs at the wrong end: SQLite looks for
        // them at the first entry alone. What is no column is searched in no index.
        const char* own = in.negated ? "+" : "";
        const std::string inner = converted == "c1" && !in.negated
                                      ? query.sql
                                      : "SELECT " + (own + converted) + " FROM (" + query.sql + ")";
        std::string left = RenderCompared(operand, common);
        if (common.IsText()) left += std::string(" COLLATE ") + kTextCollationName;
        if (common.IsExact()) left += std::string(" COLLATE ") + kNumberCollationName;
        return left + word + inner + ")";
    }
    std::vector<Operand> members;
    SqlType common = operand.type;
    for (const ExprPtr& member : in.list) {
        members.push_back(Value(*member, scope));
        CheckCompared(operand.type, "=", members.back().type, in.position);
        common = CommonType(common, members.back().type);
    }
    std::string list;
    for (const Operand& member : members)
        list += (list.empty() ? "" : ", ") + RenderMember(member, common);
    return ComparedLeft(operand, common) + word + list + ")";
}

// a > ALL (q): no member for which it is not so; a > ANY (q): a member for which it is so.
std::string Translator::Quantified(const QuantifiedExpr& quantified, Scope& scope) {
    const Operand operand = Value(*quantified.operand, scope);
    const QueryText query = QueryOf(*quantified.query, &scope, false);
    if (query.columns.size() != 1) throw MakeError(116, quantified.query->position);
    // Worked out once, and not for every member: the bound keeps SQLite from merging it with the query
    // around.
    const bool isOnce = !operand.pending && !operand.isPlain && !HasAggregate(*quantified.operand) &&
                        !HasWindow(*quantified.operand);
    const std::string once =
        isOnce ? "(SELECT " + Render(operand) + " AS v LIMIT -1 OFFSET 0) AS \"once$\" CROSS JOIN " : "";
    const Operand left = isOnce ? Computed("\"once$\".v", operand.type) : operand;
    const std::string comparison =
        Compare(Sign(quantified.op), left, Computed("q.c1", query.columns.front().type), quantified.position);
    const std::string from = "EXISTS(SELECT 1 FROM " + once + "(" + query.sql + ") AS q WHERE ";
    if (quantified.all) return "NOT " + from + "NOT coalesce(" + comparison + ", 0))";
    return from + comparison + ")";
}

}  // namespace vicenter::tsql::engine
