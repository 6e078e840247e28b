#pragma once

// Turns one statement's tree into SQLite SQL, with the static types of T-SQL: every expression gets a type,
// implicit conversions become calls, names are resolved against the catalog. Literals, variables and values
// of the session become parameters, so that one translation serves many runs.
//
// A translator serves one statement. It is spread over the sources of this folder by what they translate.

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tsql/base/error_table.h"
#include "tsql/catalog/catalog.h"
#include "tsql/catalog/system_views.h"
#include "tsql/functions/function.h"
#include "tsql/translate/query_parts.h"
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

class Translator {
  public:
    explicit Translator(TranslateContext& context, const Ways& ways = {}) : context_(context), ways_(ways) {}

    // Statements, a source each.
    Translation Select(const Query& query);
    // With the numbers of its rows behind the columns where they are those of one table.
    Translation CursorQuery(const Query& query);
    // SELECT … INTO: what the new table is made of, and what fills it.
    Translation SelectInto(const Query& query);
    Translation FillInto(const TableInfo& table, const std::vector<Name>& columns, const Query& query);
    Translation Insert(const InsertStatement& statement);
    // INSERT of rows that come from elsewhere: one parameter per column, filled by the caller.
    Translation InsertRow(const TableInfo& table, const std::vector<Name>& columns,
                          const std::vector<SqlType>& types);
    Translation InsertQuery(const TableInfo& table, const std::vector<Name>& columns, const Query& query);
    Translation Update(const UpdateStatement& statement);
    Translation Delete(const DeleteStatement& statement);
    // The rows that MERGE joins, and those of its target that nothing is joined to.
    Translation MergeRows(const MergeStatement& statement);
    Translation MissedRows(const MergeStatement& statement);
    // How many of `rows`, which the caller hands in, TOP leaves.
    Translation TopOf(const TopClause& top);
    // One value, and one condition as 1, 0 or NULL.
    Translation Expression(const Expr& expression);
    Translation Assignment(std::string_view variable, const SqlType& type, AssignOp op,
                           const Expr& expression);
    Translation Condition(const Expr& condition);
    // A condition over the columns of one table, as SQLite keeps it: without parameters.
    std::string CheckText(const TableInfo& table, const Expr& condition);
    // What DEFAULT gives a column, as SQLite keeps it.
    std::string DefaultText(const TableInfo& table, const ColumnInfo& column);
    // The rows that an UPDATE changes as they are to be: each row's number and every stored column.
    Translation UpdatedRows(const UpdateStatement& statement);
    // A row for each that is none of a view's, by the numbers that the caller hands in as a list of JSON.
    Translation RowsBesideView(const ObjectName& view);
    // The rows that a DELETE finds: each row's number.
    Translation DeletedRows(const DeleteStatement& statement);
    // DELETE of the rows whose numbers the caller hands in, as a list of JSON.
    Translation DeleteByNumber(const TableInfo& table);
    // All columns of the row whose number the caller hands in.
    Translation WholeRow(const TableInfo& table);
    // What OUTPUT tells of one row. The caller hands in all columns of the table as they are and as they
    // were, those of the sources, and for MERGE what was done.
    Translation OutputOfRow(const OutputClause& output, const TableInfo& table,
                            const std::vector<ToldSource>& told, bool hasAction);
    // What SET @v = e gives the variables, row by row, with the number of each row behind it and, where its
    // columns take what the variables are, every stored column as it is to be.
    Translation UpdatedVariables(const UpdateStatement& statement);
    // A column gets the value of a variable that the same UPDATE sets, or gives it its own.
    static bool ChangesRowByRow(const std::vector<tsql::Assignment>& assignments);
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
    // What the query is grouped by; nothing for any other expression.
    std::optional<Operand> GroupValue(const Expr& expression, Scope& scope);
    Operand Operators(const BinaryExpr& last, Scope& scope);
    Operand ValueInner(const Expr& expression, Scope& scope);
    Operand Literal(const LiteralExpr& literal);
    Operand Variable(const VariableExpr& variable);
    Operand System(std::string name, SqlType type);
    Operand Column(const ColumnExpr& column, Scope& scope);
    // Throws 8120 for a column of a grouped query by which the query is not grouped.
    void CheckGrouped(const Scope& scope, const std::string& sql, Position position, const Source& source,
                      const SourceColumn& column) const;
    Operand Case(const CaseExpr& expression, Scope& scope);
    std::vector<std::string> WhensOf(const CaseExpr& expression, Scope& scope, std::string& head);
    Operand Cast(const CastExpr& expression, Scope& scope);
    Operand Subquery(const SubqueryExpr& expression, Scope& scope);

    // operator.cpp
    Operand Unary(const UnaryExpr& unary, Scope& scope);
    Operand Binary(BinaryOp op, Position position, const Operand& left, const Operand& right);
    // One side of an operator, with its text as the operator takes it.
    struct Side {
        const Operand& operand;
        std::string text;
    };
    // The operator within the chain that its sides are, or as `own` says.
    static Operand Chained(char kind, BinaryOp op, const Side& left, const Side& right, const SqlType& type,
                           std::string own, bool isTyped = true);
    Operand OfFloats(BinaryOp op, const SqlType& common, const Operand& left, const Operand& right);
    Operand SumOfTexts(const Operand& left, const Operand& right);
    Operand SumOfBytes(const Operand& left, const Operand& right);
    Operand DatePlus(BinaryOp op, Position position, const Operand& left, const Operand& right);
    Operand OfDecimals(BinaryOp op, const SqlType& common, const Operand& left, const Operand& right);

    // function.cpp
    Operand Function(const FunctionExpr& function, Scope& scope);
    Operand Call(const FunctionEntry& entry, const FunctionExpr& function, Scope& scope, std::string name);
    Operand Grouping(const FunctionExpr& function, Scope& scope);
    std::string OrderedAggregate(const FunctionExpr& function, Scope& scope);

    // window.cpp
    void CheckOver(const FunctionExpr& function, bool isWindow, bool takesFrame, const std::string& name);
    std::string WindowText(const OverClause& over, Scope& scope);
    std::string FrameText(const WindowFrame& frame);

    // condition.cpp
    std::string ConditionText(const Expr& condition, Scope& scope);
    std::string Compare(const char* op, const Operand& left, const Operand& right, Position position);
    // The left side of comparisons by that type.
    std::string ComparedLeft(const Operand& left, const SqlType& common);
    // The types by which one value is compared with each of several: one for all exact numbers.
    static std::vector<SqlType> CommonTypes(const Operand& left, const std::vector<Operand>& others);
    // The value as all these comparisons take it; nothing when there is no such text.
    std::optional<std::string> ComparedOnce(const Operand& left, const std::vector<SqlType>& commons);
    // The arguments of a call that compares each pair by itself.
    std::vector<std::string> ComparedApart(const Operand& left, const std::vector<Operand>& others);
    std::string Between(const BetweenExpr& between, Scope& scope);
    std::string NullIf(const Operand& value, const Operand& other, Position position);
    std::string In(const InExpr& in, Scope& scope);
    // As RenderCompared, for what SQLite may put into a set.
    std::string RenderMember(const Operand& operand, const SqlType& common);
    std::string Like(const LikeExpr& like, Scope& scope);
    std::string Quantified(const QuantifiedExpr& quantified, Scope& scope);

    // operand.cpp: the text of an operand, as it is or as a value of another type.
    std::string Render(const Operand& operand);
    std::string RenderAs(const Operand& operand, const SqlType& type, bool isExplicit = false);
    // The same of what may not come to be asked for.
    std::string RenderChosen(const Operand& operand, const SqlType& type);
    std::string RenderCompared(const Operand& operand, const SqlType& common);
    std::string RenderStored(const Operand& operand, const TableInfo& table, const ColumnInfo& column,
                             const char* operation);
    // For a column that the statement gives a value: the session hears of one for an identity column.
    std::string RenderGiven(const Operand& operand, const TableInfo& table, const ColumnInfo& column,
                            const char* operation);
    // With the collation that SQLite does not know by itself.
    std::string Collated(const Operand& operand);
    std::string Sorted(const Operand& operand);
    static void RefuseBytes(const std::vector<Operand>& items, const char* clause, Position where);
    std::string AddParameter(Parameter parameter);
    std::string ConvertCall(const std::string& sql, const SqlType& from, const SqlType& to,
                            int style = 0) const;
    static Operand Computed(std::string sql, SqlType type) {
        Operand operand;
        operand.sql = std::move(sql);
        operand.type = type;
        return operand;
    }

    // stage.cpp
    // The value as the query above the stage sees it.
    Operand Staged(const Scope& scope, Operand operand);
    // What stands behind a list in a query below; its columns come when all are known.
    static std::string OpenStage(const Stage& stage, const std::string& tail);
    static void CloseStage(const Stage& stage, SelectParts& parts);
    // The scope whose query an aggregate belongs to: the nearest that one of its columns comes from.
    const Scope& OwnerOf(const FunctionExpr& call, const Scope& scope) const;
    bool HasOwnAggregate(const Expr& expression, const Scope& scope) const;
    // Whether it names columns of a query around, and of its own one.
    struct Names {
        bool outside = false;
        bool own = false;
    };
    static Names NamesOf(const Expr& expression, const Scope& scope);
    static bool OrdersByOutside(const Query* orderFrom, const Scope& scope);
    Operand OuterAggregate(const FunctionExpr& call, const Scope& owner);

    // select.cpp
    QueryText QueryOf(const Query& query, const Scope* outer, bool ordered);
    void TakeOptions(const Query& query);
    SelectParts SelectOf(const SelectBody& select, const Query* orderFrom, const Scope* outer);
    SelectParts BodyOf(const QueryBody& body, const Query* orderFrom, const Scope* outer);
    void AddItem(const SelectItem& item, Scope& scope, SelectParts& parts);
    // What the variable is from here on in the row; gives the text.
    std::string AssignVariable(const std::string& variable, const Operand& value, Position where,
                               SelectParts& parts);
    void AddAssignment(const std::string& variable, AssignOp op, Operand value, Position where,
                       SelectParts& parts);
    void AddIdentity(const FunctionExpr& call, const SelectItem& item, SelectParts& parts);
    std::string CurrentRow(const Name& cursor, const std::string& alias);
    void AddStar(const SelectItem& item, Scope& scope, SelectParts& parts);
    void CheckGroupBy(const SelectBody& select, Scope& scope, std::string& tail);
    // Says whether the rows are grouped.
    bool AddRows(const SelectBody& select, const Query* orderFrom, Scope& scope, SelectParts& parts);
    bool IsGrouped(const SelectBody& select, const Query* orderFrom, const Scope& scope) const;
    void AddItems(const SelectBody& select, Scope& scope, SelectParts& parts);
    void TakeAssigningRow(const Scope& scope);
    void AddHaving(const SelectBody& select, Scope& scope, SelectParts& parts);
    void AddOrder(const SelectBody& select, const Query* orderFrom, bool ordersFirst, Scope& scope,
                  SelectParts& parts);
    QueryText Finish(SelectParts parts);

    // grouping.cpp
    void GroupBySets(const SelectBody& select, Scope& scope, std::string& tail);
    const Scope::SetMember* FindSetMember(const Scope& scope, const Expr& expression) const;

    // top.cpp
    void LimitByRank(const SelectBody& select, const Query& query, Scope& scope, SelectParts& parts);

    // set_operation.cpp
    SelectParts SetOf(const SetOperation& operation, const Query* orderFrom, const Scope* outer);
    std::string MemberText(SelectParts& member, const std::vector<SqlType>& types, bool inSetOfTexts);
    std::string Assemble(SelectParts& parts, const std::vector<SqlType>* types);

    // order.cpp
    std::string OrderBy(const Query& query, const SelectBody& select, Scope& scope, const SelectParts& parts);
    void OrderRowsFirst(const Query& query, const SelectBody& select, Scope& scope, SelectParts& parts);
    std::string OrderItemText(const OrderItem& item, const std::string& sql, const Operand& operand);
    // One item of ORDER BY as SQLite sorts by it: by the number of an item of the list, or by an expression;
    // with `more` by the name of a column of a query in FROM, which lists these besides the items.
    std::string OrderKey(const OrderItem& item, const Query& query, const SelectBody& select, Scope& scope,
                         const SelectParts& parts, std::vector<Operand>* more);
    // The query that is to be sorted, as one for FROM; leaves its columns as the items.
    std::string RowsToSort(const Query& query, const SelectBody& select, Scope& scope, SelectParts& parts,
                           std::string& keys);
    void SortApart(const Query& query, const SelectBody& select, Scope& scope, SelectParts& parts);
    // The number of rows that TOP, OFFSET or FETCH names.
    std::string RowCount(const Expr& expression, Scope& scope, RowLimit limit);
    std::string LimitOf(const SelectBody* select, const Query* query, Scope& scope);

    // source.cpp
    const TableInfo* FindTable(std::string_view name);
    std::string From(const std::vector<TableSourcePtr>& sources, Scope& scope);
    std::string SourceText(const TableSource& source, Scope& scope);
    std::string Joined(const JoinedTable& join, Scope& scope);
    QueryText ValuesQuery(const ValuesTable& values, const Scope* outer);
    std::string CommonTableText(const CommonTable& table, const std::string& exposed, Scope& scope,
                                Position where, bool isInner = false);

    // apply.cpp
    std::string Applied(const JoinedTable& join, Scope& scope);
    std::string FunctionSource(const FunctionTable& function, Scope& scope, const Scope* outer);

    // recursive.cpp
    bool IsRecursive(const CommonTable& table) const;
    QueryText RecursiveQuery(const CommonTable& table);
    void CheckRecursiveTerm(const SelectBody& select, const CommonTable& table) const;

    // pivot.cpp
    std::string Pivoted(const PivotTable& pivot, Scope& scope);
    std::string Unpivoted(const UnpivotTable& unpivot, Scope& scope);
    std::string Table(const TableRef& table, Scope& scope);
    std::string Derived(const std::string& sql, const QueryText& query, const std::string& alias,
                        const std::vector<Name>& columns, Scope& scope, Position position,
                        const std::string& ownName = {});
    void AddSource(Source source, Scope& scope, Position position);
    Source SourceOf(const TableInfo& table, const std::string& exposedName);
    // What WITH names; error 239 for a name that stands there twice.
    void AddCommonTables(const std::vector<CommonTable>& tables);
    const CommonTable* FindCommonTable(const std::string& name) const;
    // The query, in the text once or wherever it is used.
    QueryText CommonQuery(const CommonTable& table, bool recursive);
    QueryText OpenedQuery(const CommonTable& table, bool recursive);
    // What `open` makes, wherever it is used, or at the head of the statement once and here by its name.
    QueryText UsedText(const void* key, const std::function<QueryText()>& open);
    QueryText SharedText(const void* key, const std::function<QueryText()>& open);

    // target.cpp
    void Begin(const TableInfo& table, const char* operation);
    void NoteTemporary(const TableInfo& table);
    const TableInfo& TargetTable(const ObjectName& name);
    // The table that INSERT fills, and the names there of the columns that it lists; all of a view's, where
    // it lists none.
    const TableInfo& FilledTable(const ObjectName& name, std::vector<Name>& columns);
    using ColumnNames = std::vector<std::pair<std::string, std::string>>;
    ColumnNames ColumnsBehind(const ObjectName& name, const CreateViewStatement& view,
                              const TableInfo*& table);
    [[noreturn]] static void RefuseView(const ObjectName& name, const Query& query);
    // Translates the FROM with it.
    const Source& ChangedSource(const ObjectName& name, const std::vector<TableSourcePtr>& sources,
                                Position where, Scope& scope, std::string& from);
    const Source& SourceBehind(const Source& query, const ObjectName& name, Position where,
                               std::string& from);
    // The query is the one that is changed: its rows bring the number of their row in the table behind.
    bool IsChanged(const std::string& exposed) const;
    QueryText ChangedQuery(const Query& query, const std::string& exposed, const std::vector<Name>& columns);
    void AddRowNumber(const SelectBody& select, const Scope& scope, SelectParts& parts);
    const Source& ChangedOfJoin(const Scope& scope, const SelectParts& parts) const;
    // LIMIT of the rows that a change finds, which begin with FROM.
    std::string ChangeLimit(const TopClause& top, const std::string& rows, const std::string& alias);
    // The name in the table behind of a column of the query that is changed.
    std::string BehindName(const std::string& name, Position where) const;
    void CheckOutputBehind(const OutputClause& output) const;

    // output.cpp
    std::string ToldColumns(const OutputClause& output, const Scope& scope, const std::string& target);
    std::string Output(const OutputClause& output, const TableInfo& table, const char* pseudoTable);
    std::string OutputList(const OutputClause& output, Scope& scope);

    // insert.cpp
    std::vector<const ColumnInfo*> TargetColumns(const TableInfo& table, const std::vector<Name>& columns);
    // The columns that get a value besides the given ones, and the texts of those values.
    void AddDefaults(const TableInfo& table, std::vector<const ColumnInfo*>& columns,
                     std::vector<std::string>& values);
    Operand DefaultOf(const ColumnInfo& column);
    std::string NumbersToCheck();
    std::string InsertHead(const TableInfo& table, const std::vector<const ColumnInfo*>& columns) const;

    // merge.cpp
    struct MergeParts;
    MergeParts JoinOf(const MergeStatement& statement);
    std::string WhenText(const MergeStatement& statement, MergeMatch match, Scope& scope);
    void AddStep(const MergeClause& clause, int number, const TableInfo& table, const std::string& alias,
                 const std::string& when, Scope& scope, std::string& list);

    // delete.cpp
    struct DeleteParts;
    DeleteParts PartsOf(const DeleteStatement& statement);

    // update.cpp
    struct Assigned {
        const ColumnInfo* column;
        Operand value;
    };
    struct UpdateParts;
    UpdateParts PartsOf(const UpdateStatement& statement, bool withColumns = true);
    std::string StoredColumns(const UpdateParts& parts);
    Assigned AssignedOf(const tsql::Assignment& assignment, const TableInfo& table, Scope& scope,
                        const std::string& alias);
    static void AddAssigned(Assigned assigned, Position where, std::vector<Assigned>& all);
    std::vector<Assigned> Assignments(const std::vector<tsql::Assignment>& assignments,
                                      const TableInfo& table, Scope& scope, const std::string& alias);

    Translation Finished(const std::string& sql);
    // Errors of types are of the line where what is converted stands.
    template <class Work>
    static auto AtLine(Position position, const Work& work) {
        try {
            return work();
        } catch (SqlError& error) {
            error.SetLine(static_cast<std::int32_t>(position.line));
            throw;
        }
    }
    static std::string Where(const std::string& condition) {
        return condition.empty() ? std::string() : " WHERE " + condition;
    }

    TranslateContext& context_;
    Ways ways_;
    Translation translation_;
    // What WITH names, as far as it is known where it is asked for: a query knows those before it, and
    // itself.
    struct CommonTables {
        const std::vector<CommonTable>* tables;
        std::size_t known;
    };
    std::vector<CommonTables> commonTables_;
    std::vector<const CommonTable*> open_;  // that are being translated
    std::int64_t uses_ = 0;  // of views and queries that WITH names, as often as they would stand in the text
    struct SharedQuery {
        QueryText text;
        std::int64_t uses = 0;
    };
    std::map<const void*, SharedQuery> shared_;
    std::int64_t weight_ = 0;  // of the columns used so far, see Operand
    std::string sharedTexts_;
    std::vector<std::unique_ptr<Expr>> ownedExpressions_;  // defaults and the like, parsed here
    int aggregateDepth_ = 0;
    int windowDepth_ = 0;  // within the arguments of an aggregate or a window function, or within OVER
    bool aggregateAllowed_ = false;
    bool inlineLiterals_ = false;
    std::string assigning_;  // variables assigned by this SELECT, each between blanks
    int selectDepth_ = 0;
    int assigningDepth_ = 0;                   // of that SELECT; 0 for an UPDATE
    std::optional<std::string> assigningRow_;  // a column of its rows; empty where they are groups
    // What the items of its list so far have assigned, for those behind them: each name with its text.
    std::vector<std::pair<std::string, std::string>> assigned_;
    bool isAlternative_ = false;  // one of several conditions with OR, of which SQLite may make a set
    int aliasNumber_ = 0;
    // What UPDATE or DELETE names, while its FROM is translated, and what is known of a query behind that
    // name.
    struct Changed {
        const ObjectName* name = nullptr;
        bool isOpen = false;                         // its FROM is being translated
        bool wantsRow = false;                       // the SELECT that is translated next
        bool isCursor = false;                       // where there is none, none is needed
        const TableRef* inner = nullptr;             // what the query is over, which may be one itself
        int levels = 0;                              // of queries over queries
        std::vector<std::string> assigned;           // the columns that UPDATE names
        const std::vector<Name>* renames = nullptr;  // the names that a view gives its columns
        const TableInfo* table = nullptr;
        std::vector<std::pair<std::string, std::string>> columns;  // their names, and those in the table
        Source source;
    };
    Changed changed_;
    const SelectBody* into_ = nullptr;  // whose list may hold IDENTITY(…)
    bool fillsInto_ = false;            // which is then left out
    int viewDepth_ = 0;
    // The recursive query whose members are being translated, as they see it.
    struct Recursion {
        const CommonTable* table = nullptr;
        std::string name;   // quoted, as SQLite knows it
        std::string alias;  // of its last use, quoted
        std::vector<ResultColumn> columns;
    };
    std::vector<Recursion> recursions_;
    int mostRecursions_ = 100;
    int foreignDepth_ = 0;  // inside a text of the catalog, whose literals are not those of the batch
};

// Trees that mean the same within one query.
bool SameExpression(const Expr& a, const Expr& b);
// The expression and all within it, but for what stands in subqueries and in OVER.
void VisitAll(const Expr& expression, const std::function<void(const Expr&)>& visit);
bool IsAggregate(const Expr& expression);
bool HasAggregate(const Expr& expression);
bool HasWindow(const Expr& expression);

// Translates in the way that the statement turns out to need.
template <class Work>
auto TranslateAsNeeded(TranslateContext& context, Ways& ways, const Work& work) {
    for (;;) {
        try {
            Translator translator(context, ways);
            return work(translator);
        } catch (const NeedsWays& needs) {
            ways = needs.ways;
        }
    }
}

}  // namespace vicenter::tsql::engine
