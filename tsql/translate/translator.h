#pragma once

// Turns one statement's tree into SQLite SQL, with the static types of T-SQL: every expression gets a type,
// implicit conversions become calls, names are resolved against the catalog. Literals, variables and values
// of the session become parameters, so that one translation serves many runs.
//
// A translator serves one statement. It is spread over the sources of this folder by what they translate.

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tsql/base/error_table.h"
#include "tsql/catalog/catalog.h"
#include "tsql/catalog/system_views.h"
#include "tsql/functions/function.h"
#include "tsql/translate/translation.h"

namespace vicenter::tsql::engine {

// What the translator asks of the session around it.
class TranslateContext {
  public:
    TranslateContext() = default;
    TranslateContext(const TranslateContext&) = delete;
    TranslateContext& operator=(const TranslateContext&) = delete;
    virtual ~TranslateContext() = default;

    // The type of a variable declared before that place; nothing when there is none.
    virtual std::optional<SqlType> VariableType(std::string_view name) const = 0;
    // The table behind a table variable or temporary table name as the running code sees it.
    virtual const TableInfo* FindTable(std::string_view name) const = 0;
    // The query of a view, parsed.
    virtual const CreateViewStatement* ViewDefinition(std::string_view name) = 0;
    // The number of a literal that may have another text in the next run; -1 for one that is fixed.
    virtual int LiteralOrdinal(const LiteralExpr& literal) const = 0;
    // SET IDENTITY_INSERT is on for this table.
    virtual bool TakesIdentity(const TableInfo& table) const = 0;
    // The literal has decided how the statement was translated: another text needs another translation.
    virtual void PinLiteral(const LiteralExpr& literal) = 0;
};

// A translated expression.
struct Operand {
    std::string sql;
    SqlType type;
    bool column = false;               // a column, whose collation SQLite knows
    std::optional<Parameter> pending;  // not yet in the text: its conversion happens when it is bound
    const LiteralExpr* literal = nullptr;
};

struct SourceColumn {
    std::string name;
    SqlType type;
    std::string sql;
    bool natural = true;  // SQLite knows the collation
};

struct Source {
    std::string exposedName;
    std::string tableName;
    const TableInfo* table = nullptr;
    std::string alias;  // quoted
    std::vector<SourceColumn> columns;
};

// The names that an expression may use, innermost first.
struct Scope {
    const Scope* outer = nullptr;
    std::vector<Source> sources;
    // Set while the select list, HAVING and ORDER BY of a grouped query are translated.
    bool grouped = false;
    std::vector<std::string> groupColumns;
    const std::vector<ExprPtr>* groupExpressions = nullptr;
};

// A SELECT taken apart, so that a UNION can agree on types before the texts are made.
struct SelectParts {
    std::string head;  // SELECT, SELECT DISTINCT
    std::vector<Operand> items;
    std::vector<std::string> names;
    std::string tail;   // FROM … HAVING …
    std::string order;  // ORDER BY …
    std::string limit;  // LIMIT …
    std::vector<VariableAssignment> assignments;
    bool singleRow = false;
};

// A query in parentheses, without them.
struct QueryText {
    std::string sql;
    std::vector<ResultColumn> columns;
    std::vector<bool> natural;
    std::vector<VariableAssignment> assignments;
    bool singleRow = false;
};

class Translator {
  public:
    explicit Translator(TranslateContext& context) : context_(context) {}

    // Statements, a source each.
    Translation Select(const Query& query);
    Translation Insert(const InsertStatement& statement);
    // INSERT of rows that come from elsewhere: one parameter per column, filled by the caller.
    Translation InsertRow(const TableInfo& table, const std::vector<Name>& columns,
                          const std::vector<SqlType>& types);
    Translation InsertQuery(const TableInfo& table, const std::vector<Name>& columns, const Query& query);
    Translation Update(const UpdateStatement& statement);
    Translation Delete(const DeleteStatement& statement);
    // One value, and one condition as 1, 0 or NULL.
    Translation Expression(const Expr& expression);
    Translation Assignment(std::string_view variable, const SqlType& type, AssignOp op,
                           const Expr& expression);
    Translation Condition(const Expr& condition);
    // A condition over the columns of one table, as SQLite keeps it: without parameters.
    std::string CheckText(const TableInfo& table, const Expr& condition);
    // The rows that an UPDATE changes as they are to be: each row's number and every stored column.
    Translation UpdatedRows(const UpdateStatement& statement);
    // UPDATE t SET c = value [WHERE c IS NULL]: fills a new column or changes a column's type.
    Translation FillColumn(const TableInfo& table, const ColumnInfo& column, const Expr& value);
    Translation RewriteColumn(const TableInfo& table, const ColumnInfo& column, const SqlType& from);

    // The type of a computed column.
    SqlType ComputedType(const TableInfo& table, const std::string& text);

    // The type that a definition names; errors 2715 and its kin.
    static SqlType ResolveType(const TypeName& type);
    // Throws 40510 for a collation under which texts would compare otherwise than they do here.
    static void CheckCollation(const Name& collation);

  private:
    class CallBinding;

    // expression.cpp
    Operand Value(const Expr& expression, Scope& scope);
    Operand ValueInner(const Expr& expression, Scope& scope);
    Operand Literal(const LiteralExpr& literal);
    Operand Variable(const VariableExpr& variable);
    Operand System(std::string name, SqlType type);
    Operand Column(const ColumnExpr& column, Scope& scope);
    // Throws 8120 for a column of a grouped query by which the query is not grouped.
    void CheckGrouped(const Scope& scope, const std::string& sql, Position position, const Source& source,
                      const SourceColumn& column) const;
    Operand Case(const CaseExpr& expression, Scope& scope);
    Operand Cast(const CastExpr& expression, Scope& scope);
    Operand Subquery(const SubqueryExpr& expression, Scope& scope);

    // operator.cpp
    Operand Unary(const UnaryExpr& unary, Scope& scope);
    Operand Binary(BinaryOp op, Position position, const Operand& left, const Operand& right);
    Operand SumOfTexts(const Operand& left, const Operand& right);
    Operand SumOfBytes(const Operand& left, const Operand& right);
    Operand DatePlus(BinaryOp op, Position position, const Operand& left, const Operand& right);
    Operand OfDecimals(BinaryOp op, const SqlType& common, const Operand& left, const Operand& right);

    // function.cpp
    Operand Function(const FunctionExpr& function, Scope& scope);
    std::string WindowText(const OverClause& over, Scope& scope);

    // condition.cpp
    std::string ConditionText(const Expr& condition, Scope& scope);
    std::string Compare(const char* op, const Operand& left, const Operand& right, Position position);
    std::string In(const InExpr& in, Scope& scope);
    // As RenderCompared, for what SQLite may put into a set.
    std::string RenderMember(const Operand& operand, const SqlType& common);
    std::string Like(const LikeExpr& like, Scope& scope);
    std::string Quantified(const QuantifiedExpr& quantified, Scope& scope);

    // operand.cpp: the text of an operand, as it is or as a value of another type.
    std::string Render(const Operand& operand);
    std::string RenderAs(const Operand& operand, const SqlType& type, bool isExplicit = false);
    std::string RenderCompared(const Operand& operand, const SqlType& common);
    std::string RenderStored(const Operand& operand, const TableInfo& table, const ColumnInfo& column,
                             const char* operation);
    // With the collation that SQLite does not know by itself.
    std::string Collated(const Operand& operand);
    std::string AddParameter(Parameter parameter);
    std::string ConvertCall(const std::string& sql, const SqlType& from, const SqlType& to,
                            int style = 0) const;
    static Operand Computed(std::string sql, SqlType type) {
        return {std::move(sql), type, false, {}, nullptr};
    }

    // select.cpp
    QueryText QueryOf(const Query& query, const Scope* outer, bool ordered);
    SelectParts SelectOf(const SelectBody& select, const Query* orderFrom, const Scope* outer);
    SelectParts BodyOf(const QueryBody& body, const Query* orderFrom, const Scope* outer);
    void AddItem(const SelectItem& item, Scope& scope, SelectParts& parts);
    void AddStar(const SelectItem& item, Scope& scope, SelectParts& parts);
    void CheckGroupBy(const SelectBody& select, Scope& scope, std::string& tail);
    QueryText Finish(SelectParts parts);

    // set_operation.cpp
    SelectParts SetOf(const SetOperation& operation, const Query* orderFrom, const Scope* outer);
    std::string MemberText(SelectParts& member, const std::vector<SqlType>& types, bool inSetOfTexts);
    std::string Assemble(SelectParts& parts, const std::vector<SqlType>* types);

    // order.cpp
    std::string OrderBy(const Query& query, const SelectBody& select, Scope& scope, const SelectParts& parts);
    void OrderRowsFirst(const Query& query, const SelectBody& select, Scope& scope, SelectParts& parts);
    std::string OrderItemText(const OrderItem& item, const std::string& sql, const Operand& operand);
    // The number of rows that TOP, OFFSET or FETCH names.
    std::string RowCount(const Expr& expression, Scope& scope, RowLimit limit);
    std::string LimitOf(const SelectBody* select, const Query* query, Scope& scope);

    // source.cpp
    const TableInfo* FindTable(std::string_view name);
    std::string From(const std::vector<TableSourcePtr>& sources, Scope& scope);
    std::string SourceText(const TableSource& source, Scope& scope);
    std::string Joined(const JoinedTable& join, Scope& scope);
    std::string Table(const TableRef& table, Scope& scope);
    std::string Derived(const std::string& sql, const QueryText& query, const std::string& alias,
                        const std::vector<Name>& columns, Scope& scope, Position position);
    void AddSource(Source source, Scope& scope, Position position);
    Source SourceOf(const TableInfo& table, const std::string& exposedName);
    // What WITH names; error 239 for a name that stands there twice.
    void AddCommonTables(const std::vector<CommonTable>& tables);
    const CommonTable* FindCommonTable(const std::string& name) const;

    // target.cpp
    void Begin(const TableInfo& table, const char* operation);
    const TableInfo& TargetTable(const ObjectName& name);
    [[noreturn]] static void RefuseView(const ObjectName& name, const Query& query);
    const Source& ChangedSource(const ObjectName& name, Position where, Scope& scope, std::string& from);
    std::string Output(const OutputClause& output, const TableInfo& table, const char* pseudoTable);

    // insert.cpp
    std::vector<const ColumnInfo*> TargetColumns(const TableInfo& table, const std::vector<Name>& columns);
    // The columns that get a value besides the given ones, and the texts of those values.
    void AddDefaults(const TableInfo& table, std::vector<const ColumnInfo*>& columns,
                     std::vector<std::string>& values);
    Operand DefaultOf(const ColumnInfo& column);
    std::string InsertHead(const TableInfo& table, const std::vector<const ColumnInfo*>& columns) const;

    // update.cpp
    struct Assigned {
        const ColumnInfo* column;
        Operand value;
    };
    struct UpdateParts;
    UpdateParts PartsOf(const UpdateStatement& statement);
    std::vector<Assigned> Assignments(const UpdateStatement& statement, const TableInfo& table, Scope& scope,
                                      const std::string& alias);

    Translation Finished(std::string sql);
    static std::string Where(const std::string& condition) {
        return condition.empty() ? std::string() : " WHERE " + condition;
    }

    TranslateContext& context_;
    Translation translation_;
    std::vector<const std::vector<CommonTable>*> commonTables_;
    std::vector<std::unique_ptr<Expr>> ownedExpressions_;  // defaults and the like, parsed here
    int aggregateDepth_ = 0;
    bool aggregateAllowed_ = false;
    bool inlineLiterals_ = false;
    std::string assigning_;       // variables assigned by this SELECT, each between blanks
    bool isAlternative_ = false;  // one of several conditions with OR, of which SQLite may make a set
    int aliasNumber_ = 0;
    int viewDepth_ = 0;
    int foreignDepth_ = 0;  // inside a text of the catalog, whose literals are not those of the batch
};

// Trees that mean the same within one query.
bool SameExpression(const Expr& a, const Expr& b);
// The query holds an aggregate of its own.
bool HasAggregate(const Expr& expression);

}  // namespace vicenter::tsql::engine
