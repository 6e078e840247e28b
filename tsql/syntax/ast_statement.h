#pragma once

// Statements of the syntax tree; see ast.h for ownership.
//
// A batch is a list of statements. The text of a statement is [position.offset, endOffset) of the batch text,
// without a closing semicolon and without comments around it; the text of CREATE PROCEDURE and CREATE VIEW,
// which the catalog keeps, reaches to the end of the batch.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tsql/syntax/ast_definition.h"
#include "tsql/syntax/ast_expression.h"
#include "tsql/syntax/ast_flow.h"
#include "tsql/syntax/ast_query.h"
#include "tsql/syntax/ast_statement_base.h"

namespace vicenter::tsql {

struct Batch {
    std::vector<StatementPtr> statements;
};

// ---- data ------------------------------------------------------------------------------------------------

struct SelectStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kSelect;
    explicit SelectStatement(Position p) : Statement(kKind, p) {}

    QueryPtr query;
};

struct ExecuteStatement;
struct ExecuteTextStatement;

// OUTPUT inserted.a, deleted.b [INTO target (columns) [OUTPUT …]]
struct OutputClause {
    std::vector<SelectItem> items;
    ObjectName into;
    std::vector<Name> columns;
    std::vector<SelectItem> beside;  // of the second OUTPUT, which is a result

    bool GivesResult() const { return into.IsEmpty() || !beside.empty(); }
};

// Where the rows of an INSERT come from.
enum class InsertSource { kValues, kQuery, kExecute, kDefaultValues };

struct InsertStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kInsert;
    explicit InsertStatement(Position p) : Statement(kKind, p) {}

    std::vector<CommonTable> with;
    std::optional<TopClause> top;
    ObjectName table;  // a table variable's name is one part that starts with '@'
    std::vector<std::string> hints;
    std::vector<Name> columns;  // empty when none are listed
    std::optional<OutputClause> output;
    InsertSource source = InsertSource::kValues;
    std::vector<std::vector<ExprPtr>> rows;  // of VALUES
    QueryPtr query;                          // of SELECT
    StatementPtr execute;                    // ExecuteStatement or ExecuteTextStatement
};

struct Assignment {
    Position position;
    std::string variable;  // @v = e or @v = column = e, else empty
    ObjectName column;     // column = e, table.column = e; empty for @v = e
    AssignOp op = AssignOp::kSet;
    ExprPtr value;
};

struct UpdateStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kUpdate;
    explicit UpdateStatement(Position p) : Statement(kKind, p) {}

    std::vector<CommonTable> with;
    std::optional<TopClause> top;
    ObjectName target;  // a table, a table variable, or an alias of `from`
    std::vector<std::string> hints;
    std::vector<Assignment> assignments;
    std::optional<OutputClause> output;
    std::vector<TableSourcePtr> from;
    ExprPtr where;
    Name currentOf;  // WHERE CURRENT OF cursor (or @cursor)
};

struct DeleteStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kDelete;
    explicit DeleteStatement(Position p) : Statement(kKind, p) {}

    std::vector<CommonTable> with;
    std::optional<TopClause> top;
    bool fromKeyword = false;  // DELETE FROM t rather than DELETE t
    ObjectName target;         // a table, a table variable, or an alias of `from`
    std::vector<std::string> hints;
    std::optional<OutputClause> output;
    std::vector<TableSourcePtr> from;
    ExprPtr where;
    Name currentOf;
};

enum class MergeMatch { kMatched, kNotMatchedByTarget, kNotMatchedBySource };
enum class MergeAction { kUpdate, kDelete, kInsert };

// WHEN [NOT] MATCHED [BY SOURCE] [AND condition] THEN …
struct MergeClause {
    Position position;
    MergeMatch match = MergeMatch::kMatched;
    ExprPtr condition;
    MergeAction action = MergeAction::kUpdate;
    std::vector<Assignment> assignments;  // of UPDATE
    std::vector<Name> columns;            // of INSERT
    std::vector<ExprPtr> values;
    bool defaultValues = false;
};

struct MergeStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kMerge;
    explicit MergeStatement(Position p) : Statement(kKind, p) {}

    std::vector<CommonTable> with;
    std::optional<TopClause> top;
    ObjectName target;
    Name alias;
    std::vector<std::string> hints;
    TableSourcePtr source;
    ExprPtr on;
    std::vector<MergeClause> clauses;
    std::optional<OutputClause> output;
};

struct TruncateStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kTruncate;
    explicit TruncateStatement(Position p) : Statement(kKind, p) {}

    ObjectName table;
};

// ---- definitions -----------------------------------------------------------------------------------------

struct CreateTableStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kCreateTable;
    explicit CreateTableStatement(Position p) : Statement(kKind, p) {}

    ObjectName table;
    TableDefinition definition;
};

enum class AlterTableAction {
    kAdd,               // columns and constraints of `definition`
    kAlterColumn,       // the one column of `definition`
    kDropColumn,        // `names`
    kDropConstraint,    // `names`
    kCheckConstraint,   // CHECK CONSTRAINT names / ALL
    kNoCheckConstraint  // NOCHECK CONSTRAINT names / ALL
};

struct AlterTableStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kAlterTable;
    explicit AlterTableStatement(Position p) : Statement(kKind, p) {}

    ObjectName table;
    AlterTableAction action = AlterTableAction::kAdd;
    TableDefinition definition;
    std::vector<Name> names;
    bool ifExists = false;
    bool all = false;
    std::optional<bool> withCheck;  // WITH CHECK / WITH NOCHECK before ADD or CHECK
};

struct CreateIndexStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kCreateIndex;
    explicit CreateIndexStatement(Position p) : Statement(kKind, p) {}

    bool unique = false;
    std::optional<bool> clustered;
    Name name;
    ObjectName table;
    std::vector<IndexColumn> columns;
    std::vector<Name> include;
    ExprPtr where;
};

struct CreateViewStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kCreateView;
    explicit CreateViewStatement(Position p) : Statement(kKind, p) {}

    bool alter = false;          // ALTER VIEW
    bool createOrAlter = false;  // CREATE OR ALTER VIEW
    ObjectName name;
    std::vector<Name> columns;
    std::vector<std::string> options;  // WITH schemabinding, …; lower case
    QueryPtr query;
    bool withCheckOption = false;
};

struct ProcedureParameter {
    std::string name;  // with its '@'
    Position position;
    TypeName type;
    bool cursor = false;  // @c CURSOR VARYING OUTPUT
    ExprPtr defaultValue;
    bool output = false;
    bool readOnly = false;
};

struct CreateProcedureStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kCreateProcedure;
    explicit CreateProcedureStatement(Position p) : Statement(kKind, p) {}

    bool alter = false;
    bool createOrAlter = false;
    ObjectName name;
    std::vector<ProcedureParameter> parameters;
    std::vector<std::string> options;  // WITH recompile, encryption, …; lower case
    std::vector<StatementPtr> body;
};

enum class DropKind { kTable, kIndex, kView, kProcedure, kFunction, kTrigger };

struct DropStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kDrop;
    explicit DropStatement(Position p) : Statement(kKind, p) {}

    DropKind object = DropKind::kTable;
    bool ifExists = false;
    // For an index: DROP INDEX table.index has the table in the name; DROP INDEX index ON table in
    // `onTables`.
    std::vector<ObjectName> names;
    std::vector<ObjectName> onTables;  // parallel to names, or empty
};

// Statements that are taken and have nothing to do here: GRANT, USE of the current database, CHECKPOINT, …
struct NoOperationStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kNoOperation;
    explicit NoOperationStatement(Position p) : Statement(kKind, p) {}

    std::string verb;  // lower case: "use", "checkpoint", "grant", …
    std::string text;  // the statement's words as written
};

// ---- variables and settings
// --------------------------------------------------------------------------------

struct VariableDeclaration {
    Position position;
    std::string name;  // with its '@'
    enum class Kind { kScalar, kTable, kCursor } kind = Kind::kScalar;
    TypeName type;          // of a scalar
    ExprPtr initial;        // of a scalar, or none
    TableDefinition table;  // of a table
};

struct DeclareStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kDeclare;
    explicit DeclareStatement(Position p) : Statement(kKind, p) {}

    std::vector<VariableDeclaration> variables;
};

// SET @v = e; SET @c = CURSOR FOR … is SetCursorStatement. SET @a = @b with cursor variables comes as this
// one.
struct SetVariableStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kSetVariable;
    explicit SetVariableStatement(Position p) : Statement(kKind, p) {}

    std::string name;
    AssignOp op = AssignOp::kSet;
    ExprPtr value;
};

// SET NOCOUNT, XACT_ABORT ON; SET ROWCOUNT 10; SET TRANSACTION ISOLATION LEVEL READ COMMITTED;
// SET IDENTITY_INSERT t ON; SET LOCK_TIMEOUT 1000; SET DATEFORMAT ymd.
struct SetOptionStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kSetOption;
    explicit SetOptionStatement(Position p) : Statement(kKind, p) {}

    // Lower case: "nocount", "xact_abort", "rowcount", "transaction isolation level", "identity_insert", …
    std::vector<std::string> options;
    std::optional<bool> on;  // ON / OFF
    ExprPtr value;           // a literal or variable, for options that take one
    std::string word;        // lower case words, for options that take some ("read committed", "ymd")
    ObjectName table;        // of IDENTITY_INSERT
};

// ---- cursors
// -----------------------------------------------------------------------------------------------

// A cursor's name: a global or local cursor, or a cursor variable (name starts with '@').
struct CursorName {
    Name name;
    bool global = false;  // the keyword GLOBAL before it
    bool IsVariable() const { return !name.text.empty() && name.text[0] == '@'; }
};

struct CursorDefinition {
    Position position;
    std::vector<std::string>
        options;  // lower case, in order: local, forward_only, static, fast_forward, read_only, …
    QueryPtr query;
    bool forReadOnly = false;
    bool forUpdate = false;
    std::vector<Name> updateColumns;
};

// DECLARE c CURSOR [options] FOR select; also DECLARE c [INSENSITIVE] [SCROLL] CURSOR FOR …
struct DeclareCursorStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kDeclareCursor;
    explicit DeclareCursorStatement(Position p) : Statement(kKind, p) {}

    Name name;
    CursorDefinition cursor;
};

// SET @c = CURSOR [options] FOR select
struct SetCursorStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kSetCursor;
    explicit SetCursorStatement(Position p) : Statement(kKind, p) {}

    std::string variable;
    CursorDefinition cursor;
};

struct OpenCursorStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kOpenCursor;
    explicit OpenCursorStatement(Position p) : Statement(kKind, p) {}

    CursorName cursor;
};

enum class FetchDirection { kNext, kPrior, kFirst, kLast, kAbsolute, kRelative };

struct FetchStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kFetch;
    explicit FetchStatement(Position p) : Statement(kKind, p) {}

    FetchDirection direction = FetchDirection::kNext;
    ExprPtr amount;  // of ABSOLUTE and RELATIVE
    CursorName cursor;
    std::vector<std::string> into;  // variables; none: the row is a result set
};

struct CloseCursorStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kCloseCursor;
    explicit CloseCursorStatement(Position p) : Statement(kKind, p) {}

    CursorName cursor;
};

struct DeallocateStatement : Statement {
    static constexpr StatementKind kKind = StatementKind::kDeallocate;
    explicit DeallocateStatement(Position p) : Statement(kKind, p) {}

    CursorName cursor;
};

}  // namespace vicenter::tsql
