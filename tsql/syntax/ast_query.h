#pragma once

// Queries and table sources of the syntax tree; see ast.h for ownership.

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tsql/syntax/ast_expression.h"

namespace vicenter::tsql {

// ---- table sources ---------------------------------------------------------------------------------------

enum class SourceKind { kTable, kDerived, kValues, kFunction, kJoin, kPivot, kUnpivot };

struct TableSource {
    SourceKind kind;
    Position position;
    std::uint16_t depth = 1;  // as Expr::depth

    virtual ~TableSource() = default;

  protected:
    TableSource(SourceKind k, Position p) : kind(k), position(p) {}
    TableSource(const TableSource&) = delete;
    TableSource& operator=(const TableSource&) = delete;
};
using TableSourcePtr = std::unique_ptr<TableSource>;

// A table, view, #temporary table, or table variable (then the one part of the name starts with '@').
struct TableRef : TableSource {
    static constexpr SourceKind kKind = SourceKind::kTable;
    explicit TableRef(Position p) : TableSource(kKind, p) {}

    ObjectName name;
    Name alias;                      // empty when there is none
    std::vector<std::string> hints;  // WITH (nolock, updlock) or (nolock); lower case, as written otherwise
    bool IsVariable() const { return !name.IsEmpty() && name.parts.size() == 1 && name.Object()[0] == '@'; }
};

// (select …) alias (columns)
struct DerivedTable : TableSource {
    static constexpr SourceKind kKind = SourceKind::kDerived;
    explicit DerivedTable(Position p);
    ~DerivedTable() override;

    std::unique_ptr<Query> query;
    Name alias;
    std::vector<Name> columns;
};

// (values (1, 'a'), (2, 'b')) alias (columns)
struct ValuesTable : TableSource {
    static constexpr SourceKind kKind = SourceKind::kValues;
    explicit ValuesTable(Position p) : TableSource(kKind, p) {}

    std::vector<std::vector<ExprPtr>> rows;
    Name alias;
    std::vector<Name> columns;
};

// string_split(@s, ',') alias
struct FunctionTable : TableSource {
    static constexpr SourceKind kKind = SourceKind::kFunction;
    explicit FunctionTable(Position p) : TableSource(kKind, p) {}

    ObjectName name;
    std::vector<ExprPtr> arguments;
    Name alias;
    std::vector<Name> columns;
};

enum class JoinKind { kInner, kLeft, kRight, kFull, kCross, kCrossApply, kOuterApply };

struct JoinedTable : TableSource {
    static constexpr SourceKind kKind = SourceKind::kJoin;
    explicit JoinedTable(Position p) : TableSource(kKind, p) {}

    JoinKind join = JoinKind::kInner;
    TableSourcePtr left;
    TableSourcePtr right;
    ExprPtr on;  // none for cross joins and apply
};

// source PIVOT (sum(value) FOR spread IN ([a], [b])) AS alias
struct PivotTable : TableSource {
    static constexpr SourceKind kKind = SourceKind::kPivot;
    explicit PivotTable(Position p) : TableSource(kKind, p) {}

    TableSourcePtr source;
    ObjectName function;
    ObjectName value;  // the column that is aggregated
    ObjectName spread;
    std::vector<Name> columns;  // each is a value of the spread column, and the column that comes of it
    Name alias;
};

// source UNPIVOT (value FOR name IN (a, b)) AS alias
struct UnpivotTable : TableSource {
    static constexpr SourceKind kKind = SourceKind::kUnpivot;
    explicit UnpivotTable(Position p) : TableSource(kKind, p) {}

    TableSourcePtr source;
    Name value;
    Name name;
    std::vector<Name> columns;
    Name alias;
};

// ---- queries ---------------------------------------------------------------------------------------------

// How a value gets into a variable or column: '=' or a compound assignment.
enum class AssignOp { kSet, kAdd, kSubtract, kMultiply, kDivide, kModulo, kBitAnd, kBitOr, kBitXor };

enum class SelectItemKind { kExpression, kStar, kAssignment };

struct SelectItem {
    SelectItemKind kind = SelectItemKind::kExpression;
    Position position;
    ExprPtr expression;    // none for a star
    Name alias;            // e as a, e a, a = e, e 'a'
    ObjectName qualifier;  // t.*: t
    std::string variable;  // @v = e
    AssignOp assign = AssignOp::kSet;
};

struct TopClause {
    ExprPtr count;  // TOP 1, TOP (@n)
    bool parentheses = false;
    bool percent = false;
    bool withTies = false;
};

// What stands in GROUP BY when it is not a plain list of expressions.
enum class GroupingKind { kExpressions, kRollup, kCube, kSets };

// kExpressions: one expression, several in parentheses, or none for the group of all rows. The others hold
// parts.
struct GroupingItem {
    GroupingKind kind = GroupingKind::kExpressions;
    Position position;
    std::vector<ExprPtr> expressions;
    std::vector<GroupingItem> parts;
};

enum class QueryBodyKind { kSelect, kSetOperation };

struct QueryBody {
    QueryBodyKind kind;
    Position position;

    virtual ~QueryBody() = default;

  protected:
    QueryBody(QueryBodyKind k, Position p) : kind(k), position(p) {}
    QueryBody(const QueryBody&) = delete;
    QueryBody& operator=(const QueryBody&) = delete;
};
using QueryBodyPtr = std::unique_ptr<QueryBody>;

// One SELECT … FROM … WHERE … GROUP BY … HAVING.
struct SelectBody : QueryBody {
    static constexpr QueryBodyKind kKind = QueryBodyKind::kSelect;
    explicit SelectBody(Position p) : QueryBody(kKind, p) {}

    bool distinct = false;
    std::optional<TopClause> top;
    std::vector<SelectItem> items;
    ObjectName into;                   // SELECT … INTO, empty when there is none
    std::vector<TableSourcePtr> from;  // comma-separated sources
    ExprPtr where;
    std::vector<ExprPtr> groupBy;
    std::vector<GroupingItem> grouping;  // with ROLLUP and its kin; groupBy is empty then
    ExprPtr having;

    bool Assigns() const { return !items.empty() && items.front().kind == SelectItemKind::kAssignment; }
};

enum class SetOp { kUnion, kUnionAll, kExcept, kIntersect };

// first op1 body1 op2 body2 …, from left to right. INTERSECT binds closer and is a node of its own within.
struct SetOperation : QueryBody {
    static constexpr QueryBodyKind kKind = QueryBodyKind::kSetOperation;
    explicit SetOperation(Position p) : QueryBody(kKind, p) {}

    struct Term {
        SetOp op = SetOp::kUnion;
        QueryBodyPtr body;
    };
    QueryBodyPtr first;
    std::vector<Term> rest;  // at least one
};

// WITH name (columns) AS (select …)
struct CommonTable {
    Name name;
    std::vector<Name> columns;
    std::unique_ptr<Query> query;
};

// A whole query: what stands in a SELECT statement, a subquery, a derived table, a view, a cursor, INSERT …
// SELECT.
struct Query {
    Position position;
    std::vector<CommonTable> with;
    QueryBodyPtr body;
    std::vector<OrderItem> orderBy;
    ExprPtr offset;                    // OFFSET n ROWS
    ExprPtr fetch;                     // FETCH NEXT n ROWS ONLY
    std::vector<std::string> options;  // OPTION (recompile, maxrecursion 10): each as written in lower case

    // The SELECT, when the query is no set operation.
    const SelectBody* Select() const { return TryAs<SelectBody>(body.get()); }
};
using QueryPtr = std::unique_ptr<Query>;

}  // namespace vicenter::tsql
