// Search conditions: they become SQLite's own, which know the same three truth values.

#include "tsql/functions/function.h"
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

std::string Translator::Compare(const char* op, const Operand& left, const Operand& right,
                                Position position) {
    const SqlType common = CommonType(left.type, right.type);
    try {
        const bool isMember = isAlternative_ && op[0] == '=';
        const std::string a =
            left.pending && isMember ? RenderMember(left, common) : RenderCompared(left, common);
        const std::string b = isMember ? RenderMember(right, common) : RenderCompared(right, common);
        const bool needsCollation = common.IsText() || common.IsExact();
        // A converted column is no column any more.
        const auto natural = [&](const Operand& operand) {
            return operand.column && operand.type.IsText() == common.IsText() &&
                   operand.type.IsExact() == common.IsExact();
        };
        // SQLite compares as the column on the left says, within a CAST as well: an integer column that is
        // converted would have decimals compared byte by byte.
        if (!needsCollation || natural(left)) return a + " " + op + " " + b;
        return a + " COLLATE " + (common.IsText() ? kTextCollationName : kNumberCollationName) + " " + op +
               " " + b;
    } catch (SqlError& error) {
        error.SetLine(static_cast<std::int32_t>(position.line));
        throw;
    }
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
            const Operand operand = Value(*between.operand, scope);
            const Operand low = Value(*between.low, scope);
            const Operand high = Value(*between.high, scope);
            const std::string sql = "(" + Compare(">=", operand, low, condition.position) + " AND " +
                                    Compare("<=", operand, high, condition.position) + ")";
            return between.negated ? "NOT " + sql : sql;
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
        common = CommonType(common, members.back().type);
    }
    std::string list;
    for (const Operand& member : members)
        list += (list.empty() ? "" : ", ") + RenderMember(member, common);
    std::string left = RenderCompared(operand, common);
    const bool natural = operand.column && operand.type.IsText() == common.IsText() &&
                         operand.type.IsExact() == common.IsExact();
    if (!natural && common.IsText()) left += std::string(" COLLATE ") + kTextCollationName;
    if (!natural && common.IsExact()) left += std::string(" COLLATE ") + kNumberCollationName;
    return left + word + list + ")";
}

// a > ALL (q): no member for which it is not so; a > ANY (q): a member for which it is so.
std::string Translator::Quantified(const QuantifiedExpr& quantified, Scope& scope) {
    const Operand operand = Value(*quantified.operand, scope);
    const QueryText query = QueryOf(*quantified.query, &scope, false);
    if (query.columns.size() != 1) throw MakeError(116, quantified.query->position);
    const std::string comparison = Compare(Sign(quantified.op), operand,
                                           Computed("q.c1", query.columns.front().type), quantified.position);
    if (quantified.all) {
        return "NOT EXISTS(SELECT 1 FROM (" + query.sql + ") AS q WHERE NOT coalesce(" + comparison + ", 0))";
    }
    return "EXISTS(SELECT 1 FROM (" + query.sql + ") AS q WHERE " + comparison + ")";
}

}  // namespace vicenter::tsql::engine
