#pragma once

// Runs statements: variables, control flow, procedures, cursors, transactions. Each statement family has a
// source of its own, exec_*.cpp, holding only its execution. Internal to the engine; see session.h.

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tsql/base/error_table.h"
#include "tsql/catalog/catalog.h"
#include "tsql/functions/functions.h"
#include "tsql/run/session.h"
#include "tsql/run/unit.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

// Procedures within procedures.
inline constexpr int kNestingLevels = 32;

// What follows a statement.
enum class Flow { kNext, kBreak, kContinue, kReturn };

// A cursor reads all of its rows when it is opened.
struct Cursor {
    std::string name;
    std::shared_ptr<Unit> unit;   // keeps the query's tree
    PreparedStatement statement;  // with the variables' values of the moment when the cursor was declared
    std::vector<ResultColumn> columns;
    std::vector<std::vector<Value>> rows;
    std::int64_t position = -1;
    bool open = false;
    bool scroll = true;
};

struct Variable {
    SqlType type;
    Value value;
    std::uint32_t declaredAt = 0;
    bool isCursor = false;
    std::shared_ptr<Cursor> cursor;
    std::string table;  // the temporary table behind a table variable
};

// A batch or a procedure that runs.
struct Frame {
    Frame* caller = nullptr;
    std::shared_ptr<Unit> unit;
    std::unordered_map<std::string, Variable> variables;
    std::map<std::string, std::shared_ptr<Cursor>> cursors;
    std::vector<std::string> temporaries;  // dropped at the end
    std::string procedure;
    std::int64_t procedureId = 0;
    std::int64_t returnValue = 0;
    std::int32_t lineBase = 0;
    int level = 0;
    Value scopeIdentity;
};

class Executor final : public TranslateContext {
  public:
    Executor(Database& database, Catalog& catalog, FunctionServices& services, const SessionOptions& options);
    ~Executor() override;

    ExecutionReport Run(std::string_view batch, ResultSink& sink);
    void Reset();

    // TranslateContext
    const Catalog& GetCatalog() const override { return catalog_; }
    std::optional<SqlType> VariableType(std::string_view name) const override;
    const TableInfo* FindTable(std::string_view name) const override;
    const CreateViewStatement* ViewDefinition(std::string_view name) override;
    int LiteralOrdinal(const LiteralExpr& literal) const override;
    bool TakesIdentity(const TableInfo& table) const override;
    void PinLiteral(const LiteralExpr& literal) override;

  private:
    // executor.cpp: batches, statement lists, errors
    std::shared_ptr<Unit> UnitFor(std::string_view batch, std::vector<LiteralValue>& literals,
                                  bool& usesShape);
    void RunTemplate(const UnitItem& item);
    void RunBatch(std::string_view batch);
    Flow RunList(const std::vector<StatementPtr>& statements);
    Flow RunStatement(const Statement& statement);
    Flow Dispatch(const Statement& statement);
    // Records an error that the batch survives, or throws it on.
    void HandleError(SqlError error, std::int32_t line);
    SqlError Completed(const SqlError& error, std::int32_t line) const;
    void LeaveFrame(Frame& frame);
    void DeclareAll(const std::vector<StatementPtr>& statements);
    void Declare(const Statement& statement);
    Variable& FindVariable(std::string_view name, Position where);
    Value SystemValue(std::string_view name) const;

    // plan.cpp: plans and their parameters
    using Make = std::function<Translation(Translator&)>;
    Plan& PlanFor(const void* key, const Make& make);
    bool IsCurrent(const Plan& plan) const;
    void Bind(Plan& plan, const std::vector<Value>* row = nullptr);
    Value ParameterValue(const Parameter& parameter, const std::vector<Value>* row) const;
    bool BindLiteral(sqlite3_stmt* statement, int index, const Parameter& parameter,
                     const LiteralValue& literal);
    bool StepPlan(Plan& plan);
    [[noreturn]] void FailStep(const Plan& plan, int code);
    SqlError ConstraintError(const Plan& plan, int code, const std::string& text) const;
    Value Evaluate(const Expr& expression, SqlType* type = nullptr);
    bool IsTrue(const Expr& condition);
    std::string EvaluateText(const Expr& expression);
    std::int64_t EvaluateInt(const Expr& expression);
    void ReadRow(Plan& plan, std::vector<Value>& row) const;

    // transactions: exec_transaction.cpp
    // Opens what a change needs; true when the statement itself has to be committed.
    bool BeginChange(bool temporary);
    void EndChange(bool own);
    void UndoChange(bool own);
    void BeginPhysical();
    void CommitPhysical();
    void RollbackPhysical();
    void EndBatch(bool failed);
    template <class Body>
    void Change(bool temporary, Body body) {
        const bool own = BeginChange(temporary);
        try {
            body();
            EndChange(own);
        } catch (...) {
            UndoChange(own);
            throw;
        }
    }

    // statements, each in its own source
    void Select(const SelectStatement& statement);
    void SelectInto(const SelectStatement& statement);
    void Insert(const InsertStatement& statement);
    void InsertExecute(const InsertStatement& statement);
    void InsertRows(const void* key, const ObjectName& table, const std::vector<Name>& columns,
                    const std::vector<SqlType>& types, std::vector<std::vector<Value>>& rows);
    void Update(const UpdateStatement& statement);
    // False when it cannot be done that way.
    bool RewriteRows(const UpdateStatement& statement, bool temporary);
    bool IsReferenced(const TableInfo& table) const;
    void Delete(const DeleteStatement& statement);
    void Modify(const void* key, bool temporary, const Make& make, const OutputClause* output);
    void RunModification(Plan& plan, std::vector<std::vector<Value>>* output);
    void Truncate(const TruncateStatement& statement);
    void CreateTable(const CreateTableStatement& statement);
    void AlterTable(const AlterTableStatement& statement);
    void CreateIndex(const CreateIndexStatement& statement);
    void CreateView(const CreateViewStatement& statement);
    void CreateProcedure(const CreateProcedureStatement& statement);
    void Drop(const DropStatement& statement);
    void DeclareVariables(const DeclareStatement& statement);
    void SetVariable(const SetVariableStatement& statement);
    void SetOption(const SetOptionStatement& statement);
    void DeclareCursor(const DeclareCursorStatement& statement);
    void SetCursor(const SetCursorStatement& statement);
    void OpenCursor(const OpenCursorStatement& statement);
    void Fetch(const FetchStatement& statement);
    void CloseCursor(const CloseCursorStatement& statement);
    void Deallocate(const DeallocateStatement& statement);
    std::shared_ptr<Cursor> MakeCursor(const std::string& name, const CursorDefinition& definition);
    std::shared_ptr<Cursor>& CursorSlot(const CursorName& name);
    Flow If(const IfStatement& statement);
    Flow While(const WhileStatement& statement);
    Flow Return(const ReturnStatement& statement);
    Flow TryCatch(const TryCatchStatement& statement);
    void Print(const PrintStatement& statement);
    void Raiserror(const RaiserrorStatement& statement);
    void Throw(const ThrowStatement& statement);
    void Execute(const ExecuteStatement& statement);
    void ExecuteText(const ExecuteTextStatement& statement);
    void ExecuteSql(const ExecuteStatement& statement);
    void CallProcedure(const ExecuteStatement& statement, const std::string& name);
    std::shared_ptr<Unit> ProcedureUnit(const ModuleInfo& procedure);
    void BindArguments(const CreateProcedureStatement& procedure, const ExecuteStatement& statement,
                       std::size_t firstArgument, Frame& callee);
    void RunProcedure(const CreateProcedureStatement& procedure, const ExecuteStatement& statement,
                      std::size_t firstArgument, Frame& callee);
    void Transaction(const TransactionStatement& statement);

    // definitions: exec_create_table.cpp
    TableInfo BuildTable(const std::string& name, const TableDefinition& definition, bool temporary);
    void AddColumn(TableInfo& table, const ColumnDefinition& definition);
    void AddConstraint(TableInfo& table, const Constraint& constraint);
    // Makes a key of an existing table; error 1505 when its rows do not allow it.
    void MakeKey(const TableInfo& table, const KeyInfo& key, Position position);
    std::string ConstraintName(const TableInfo& table, const Constraint& constraint, const char* prefix,
                               const std::string& detail);
    void DropConstraint(TableInfo& table, const Name& name, bool& found);
    std::string ExpressionText(const Expr& expression) const;
    const TableInfo& DefinedTable(const ObjectName& name, std::int32_t error);

    Database& database_;
    Catalog& catalog_;
    FunctionServices& services_;
    const SessionOptions& options_;

    Frame* frame_ = nullptr;
    ResultSink* sink_ = nullptr;
    ExecutionReport* report_ = nullptr;
    const std::vector<LiteralValue>* literals_ = nullptr;  // of the run, for parameters with an ordinal
    std::size_t literalBase_ = 0;
    bool templateRun_ = false;  // literals carry their own signs
    const std::vector<std::uint32_t>* literalOffsets_ = nullptr;
    Unit* pinUnit_ = nullptr;
    bool pinned_ = false;  // a literal was pinned while a plan was made
    std::string_view batchText_;

    std::unordered_map<std::string, std::vector<std::shared_ptr<Unit>>> shapes_;
    std::unordered_map<std::string, std::shared_ptr<Unit>> procedures_;
    std::unordered_map<std::string, std::shared_ptr<Unit>> views_;
    std::map<std::string, std::shared_ptr<Cursor>> globalCursors_;

    int transactionCount_ = 0;
    bool physical_ = false;  // a transaction of SQLite is open
    std::uint64_t generationAtBegin_ = 0;
    int tryDepth_ = 0;
    bool noCount_ = false;
    bool exactAbort_ = false;
    std::int64_t rowCountLimit_ = 0;
    std::string identityInsert_;
    std::int64_t rowCount_ = 0;
    std::int32_t lastError_ = 0;
    std::int32_t fetchStatus_ = 0;
    Value identity_;
    std::int64_t nextIdentity_ = 0;
    std::int64_t identityStep_ = 1;
    std::vector<Diagnostic> caught_;  // of the CATCH blocks that run, innermost last
    std::int64_t tableVariables_ = 0;
};

// What ends a batch, or what TRY … CATCH takes: the error has been completed.
struct Abort {
    SqlError error;
};

// The frame that runs, for as long as a scope lasts.
class FrameScope {
  public:
    FrameScope(Frame*& current, Frame& frame) : current_(current), saved_(current) { current_ = &frame; }
    FrameScope(const FrameScope&) = delete;
    FrameScope& operator=(const FrameScope&) = delete;
    ~FrameScope() { current_ = saved_; }

  private:
    Frame*& current_;
    Frame* saved_;
};

}  // namespace vicenter::tsql::engine
