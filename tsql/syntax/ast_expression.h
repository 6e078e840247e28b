#pragma once

// Expressions and search conditions of the syntax tree; see ast.h for ownership.
//
// Search conditions share the node type with value expressions: the parser only builds a condition where SQL
// Server takes one, so whoever translates need not tell them apart again.

#include <cassert>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tsql/base/position.h"

namespace vicenter::tsql {

struct Query;  // ast_query.h

// An identifier without its quotes.
struct Name {
    std::string text;
    Position position;
    bool quoted = false;  // written as [name] or "name"

    bool IsEmpty() const { return text.empty(); }
};

// A name of one to four parts: server.database.schema.object; parts left out between dots are empty.
struct ObjectName {
    std::vector<Name> parts;

    bool IsEmpty() const { return parts.empty(); }
    const std::string& Object() const { return parts.back().text; }
    const std::string& Schema() const { return Part(2); }
    const std::string& Database() const { return Part(3); }
    Position Where() const { return parts.empty() ? Position{} : parts.front().position; }
    // As written, without quotes: "dbo.t".
    std::string Text() const;

  private:
    const std::string& Part(std::size_t fromEnd) const {
        static const std::string kNone;
        return parts.size() < fromEnd ? kNone : parts[parts.size() - fromEnd].text;
    }
};

// A type as written. Whether it exists is the engine's business.
struct TypeName {
    static constexpr int kMax = -1;  // varchar(max)

    std::string name;  // lower case, one blank between words: "int", "nvarchar", "double precision"
    Position position;
    std::optional<int> length;  // length or precision; kMax for (max)
    std::optional<int> scale;
};

enum class ExprKind {
    kLiteral,
    kVariable,
    kColumn,
    kUnary,
    kBinary,
    kComparison,
    kLogical,
    kNot,
    kBetween,
    kLike,
    kIn,
    kExists,
    kIsNull,
    kQuantified,
    kCase,
    kFunction,
    kCast,
    kCollate,
    kSubquery,
};

struct Expr {
    ExprKind kind;
    // Where the expression starts, parentheses around it not counted; for a binary operation its left
    // operand.
    Position position;
    // Levels of nodes below and including this one, bounded by the parser: recursion over a tree is safe.
    std::uint16_t depth = 1;

    virtual ~Expr() = default;

  protected:
    Expr(ExprKind k, Position p) : kind(k), position(p) {}
    Expr(const Expr&) = delete;
    Expr& operator=(const Expr&) = delete;
};
using ExprPtr = std::unique_ptr<Expr>;

// The node as its own type. T is the type that belongs to node.kind (or Node itself by kKind).
template <class T, class Node>
const T& As(const Node& node) {
    assert(node.kind == T::kKind);
    return static_cast<const T&>(node);
}
template <class T, class Node>
const T* TryAs(const Node* node) {
    return node && node->kind == T::kKind ? static_cast<const T*>(node) : nullptr;
}

enum class LiteralKind {
    kNull,
    kInteger,  // digits only, any length: past bigint it is a numeric
    kDecimal,  // digits with a point
    kFloat,    // with an exponent
    kMoney,    // $1.5; text without the sign of the currency
    kString,   // '…'; text with doubled apostrophes undone
    kNString,  // N'…'
    kBinary,   // 0x…; text is the hexadecimal digits
    kDefault,  // the keyword DEFAULT in VALUES, SET or as an argument of EXEC
};

struct LiteralExpr : Expr {
    static constexpr ExprKind kKind = ExprKind::kLiteral;
    LiteralExpr(Position p, LiteralKind k, std::string t) : Expr(kKind, p), literal(k), text(std::move(t)) {}

    LiteralKind literal;
    std::string text;
};

// @name, @@rowcount, @@fetch_status, … ; the name keeps its marks and the case in which it was written.
struct VariableExpr : Expr {
    static constexpr ExprKind kKind = ExprKind::kVariable;
    VariableExpr(Position p, std::string n) : Expr(kKind, p), name(std::move(n)) {}

    std::string name;
    bool IsGlobal() const { return name.size() > 1 && name[1] == '@'; }
};

// column, table.column, schema.table.column, …; $identity and IDENTITYCOL in the place of a name are the
// identity column.
struct ColumnExpr : Expr {
    static constexpr ExprKind kKind = ExprKind::kColumn;
    ColumnExpr(Position p, ObjectName n) : Expr(kKind, p), name(std::move(n)) {}

    ObjectName name;
    bool IsIdentity() const;
};

enum class UnaryOp { kPlus, kMinus, kBitNot };

struct UnaryExpr : Expr {
    static constexpr ExprKind kKind = ExprKind::kUnary;
    UnaryExpr(Position p, UnaryOp o, ExprPtr e) : Expr(kKind, p), op(o), operand(std::move(e)) {}

    UnaryOp op;
    ExprPtr operand;
};

enum class BinaryOp { kAdd, kSubtract, kMultiply, kDivide, kModulo, kBitAnd, kBitOr, kBitXor };

struct BinaryExpr : Expr {
    static constexpr ExprKind kKind = ExprKind::kBinary;
    BinaryExpr(Position p, BinaryOp o, ExprPtr l, ExprPtr r)
        : Expr(kKind, p), op(o), left(std::move(l)), right(std::move(r)) {}

    BinaryOp op;
    Position opPosition;
    ExprPtr left;
    ExprPtr right;
};

// != is kNotEqual, !< kGreaterEqual and !> kLessEqual.
enum class ComparisonOp { kEqual, kNotEqual, kLess, kLessEqual, kGreater, kGreaterEqual };

struct ComparisonExpr : Expr {
    static constexpr ExprKind kKind = ExprKind::kComparison;
    ComparisonExpr(Position p, ComparisonOp o, ExprPtr l, ExprPtr r)
        : Expr(kKind, p), op(o), left(std::move(l)), right(std::move(r)) {}

    ComparisonOp op;
    ExprPtr left;
    ExprPtr right;
};

// a AND b AND c, or a OR b OR c: at least two operands, so that a long chain is no deep tree.
struct LogicalExpr : Expr {
    static constexpr ExprKind kKind = ExprKind::kLogical;
    LogicalExpr(Position p, bool all) : Expr(kKind, p), isAnd(all) {}

    bool isAnd;
    std::vector<ExprPtr> operands;
};

struct NotExpr : Expr {
    static constexpr ExprKind kKind = ExprKind::kNot;
    NotExpr(Position p, ExprPtr e) : Expr(kKind, p), operand(std::move(e)) {}

    ExprPtr operand;
};

struct BetweenExpr : Expr {
    static constexpr ExprKind kKind = ExprKind::kBetween;
    explicit BetweenExpr(Position p) : Expr(kKind, p) {}

    bool negated = false;
    ExprPtr operand;
    ExprPtr low;
    ExprPtr high;
};

struct LikeExpr : Expr {
    static constexpr ExprKind kKind = ExprKind::kLike;
    explicit LikeExpr(Position p) : Expr(kKind, p) {}

    bool negated = false;
    ExprPtr operand;
    ExprPtr pattern;
    ExprPtr escape;  // none without ESCAPE
};

struct InExpr : Expr {
    static constexpr ExprKind kKind = ExprKind::kIn;
    explicit InExpr(Position p);
    ~InExpr() override;

    bool negated = false;
    ExprPtr operand;
    std::vector<ExprPtr> list;     // IN (a, b, …)
    std::unique_ptr<Query> query;  // IN (select …), then list is empty
};

struct ExistsExpr : Expr {
    static constexpr ExprKind kKind = ExprKind::kExists;
    explicit ExistsExpr(Position p);
    ~ExistsExpr() override;

    std::unique_ptr<Query> query;
};

struct IsNullExpr : Expr {
    static constexpr ExprKind kKind = ExprKind::kIsNull;
    explicit IsNullExpr(Position p) : Expr(kKind, p) {}

    bool negated = false;
    ExprPtr operand;
};

// a > ALL (select …), a = ANY (select …); SOME is ANY.
struct QuantifiedExpr : Expr {
    static constexpr ExprKind kKind = ExprKind::kQuantified;
    explicit QuantifiedExpr(Position p);
    ~QuantifiedExpr() override;

    ComparisonOp op = ComparisonOp::kEqual;
    bool all = false;
    ExprPtr operand;
    std::unique_ptr<Query> query;
};

struct CaseExpr : Expr {
    static constexpr ExprKind kKind = ExprKind::kCase;
    explicit CaseExpr(Position p) : Expr(kKind, p) {}

    struct Branch {
        ExprPtr when;  // a value when there is an operand, else a condition
        ExprPtr then;
    };
    ExprPtr operand;  // none in CASE WHEN …
    std::vector<Branch> branches;
    ExprPtr otherwise;  // none without ELSE
};

struct OrderItem {
    ExprPtr expression;
    bool descending = false;
};

enum class FrameBoundKind { kUnboundedPreceding, kPreceding, kCurrentRow, kFollowing, kUnboundedFollowing };

struct FrameBound {
    FrameBoundKind kind = FrameBoundKind::kCurrentRow;
    ExprPtr rows;  // of n PRECEDING and n FOLLOWING
};

// ROWS or RANGE, from a bound to another; a frame of one bound ends at the current row.
struct WindowFrame {
    bool isRows = false;
    FrameBound start;
    std::optional<FrameBound> end;  // of BETWEEN … AND …
};

// OVER (PARTITION BY … ORDER BY … ROWS …)
struct OverClause {
    std::vector<ExprPtr> partitionBy;
    std::vector<OrderItem> orderBy;
    std::optional<WindowFrame> frame;
};

// Every call by name, aggregates included. COALESCE, NULLIF, IIF, LEFT and RIGHT are calls too, and so are
// the functions without parentheses (CURRENT_TIMESTAMP, USER, …), then with hasParentheses false. The first
// argument of DATEADD, DATEDIFF, DATENAME and DATEPART is a ColumnExpr of one part.
struct FunctionExpr : Expr {
    static constexpr ExprKind kKind = ExprKind::kFunction;
    FunctionExpr(Position p, ObjectName n) : Expr(kKind, p), name(std::move(n)) {}

    ObjectName name;
    bool hasParentheses = true;
    bool distinct = false;  // count(distinct a)
    bool star = false;      // count(*), then no arguments
    std::vector<ExprPtr> arguments;
    std::vector<OrderItem> withinGroup;  // WITHIN GROUP (ORDER BY …)
    std::optional<OverClause> over;
};

// CAST(e AS t), CONVERT(t, e [, style]), TRY_CAST, TRY_CONVERT.
struct CastExpr : Expr {
    static constexpr ExprKind kKind = ExprKind::kCast;
    explicit CastExpr(Position p) : Expr(kKind, p) {}

    bool convert = false;
    bool tryOnly = false;
    TypeName type;
    ExprPtr operand;
    ExprPtr style;  // of CONVERT, or none
};

struct CollateExpr : Expr {
    static constexpr ExprKind kKind = ExprKind::kCollate;
    CollateExpr(Position p, ExprPtr e, Name c)
        : Expr(kKind, p), operand(std::move(e)), collation(std::move(c)) {}

    ExprPtr operand;
    Name collation;  // also "database_default"
};

// (select …) as a value.
struct SubqueryExpr : Expr {
    static constexpr ExprKind kKind = ExprKind::kSubquery;
    explicit SubqueryExpr(Position p);
    ~SubqueryExpr() override;

    std::unique_ptr<Query> query;
};

}  // namespace vicenter::tsql
