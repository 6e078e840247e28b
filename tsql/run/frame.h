#pragma once

// A batch or a procedure that runs: its variables, cursors, temporary tables, options and literals. All that
// a call must not leave behind is here, so that it goes with the frame. Lives on the stack of the thread that
// runs the batch.

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tsql/catalog/catalog.h"
#include "tsql/run/literal_run.h"
#include "tsql/run/options.h"
#include "tsql/run/program.h"
#include "tsql/types/value.h"

namespace vicenter::tsql::engine {

// Procedures within procedures.
inline constexpr int kNestingLevels = 32;

struct Cursor;

struct Variable {
    SqlType type;
    Value value;
    std::uint32_t declaredAt = 0;
    bool isCursor = false;
    std::shared_ptr<Cursor> cursor;
    std::string table;  // the temporary table behind a table variable
};

// What the query of a cursor was declared with, for a catalog that has changed when it is opened.
struct CursorSurroundings {
    SetOptions options;
    std::unordered_map<std::string, Variable> variables;
    std::shared_ptr<const SentText> sent;
    LiteralRun literals;
};

// A cursor reads all of its rows when it is opened. Unless it is to keep them, a row of one table is read
// once more when it is fetched: as it is by then, and not at all when it has gone.
struct Cursor {
    std::string name;
    std::shared_ptr<Program> program;  // keeps the query's tree
    const CursorDefinition* definition = nullptr;
    CursorSurroundings declared;
    Plan plan;  // with the variables' values of the moment when the cursor was declared
    std::vector<ResultColumn> columns;
    std::vector<std::vector<Value>> rows;
    std::int64_t position = -1;
    bool open = false;
    bool scroll = true;
    bool keepsPlaces = false;  // a row that has gone leaves a gap
    bool isReadOnly = false;
    bool isCounted = false;  // @@CURSOR_ROWS tells its rows
    // Of a query of one table: that table, and the numbers of the rows.
    std::int64_t table = 0;
    std::vector<std::int64_t> rowNumbers;
    // The row of a number, the last parameter; no statement where the rows are kept.
    Plan again;
    // Columns that tell each row from another one that has got its number, and their values; none where the
    // number is the key.
    std::vector<ResultColumn> keyColumns;
    std::vector<std::vector<Value>> keys;
};

struct Frame {
    Frame() = default;
    // A procedure or a text that a statement of the caller runs. Error 217 when it is one too many.
    Frame(Frame& calledFrom, Position where);

    Frame* caller = nullptr;
    std::shared_ptr<Program> program;
    std::string_view text;  // what was sent, or the procedure's
    SetOptions options;
    LiteralRun literals;
    std::shared_ptr<const SentText> sent;  // that the literals are in; none for one INSERT of many
    std::unordered_map<std::string, Variable> variables;
    std::map<std::string, std::shared_ptr<Cursor>> cursors;
    // The numbers of its temporary tables and table variables, which are dropped at the end: a name may by
    // then mean the caller's.
    std::vector<std::int64_t> temporaries;
    // The caller's temporary tables of the same names, in lower case, which come back then.
    std::map<std::string, TableInfo, std::less<>> shadowed;
    std::string procedure;
    bool isSystem = false;  // one of the server's own procedures
    std::int64_t procedureId = 0;
    std::int64_t returnValue = 0;
    std::int32_t lineBase = 0;
    int level = 0;
    Value scopeIdentity;

    // Throws 137 when there is none of that name.
    Variable& FindVariable(std::string_view name, Position where);
    // A table of the account set, a temporary one, or the one behind a table variable.
    const TableInfo* FindTable(const Catalog& catalog, std::string_view name) const;
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

// The literals of one INSERT of many, for as long as it runs.
class LiteralScope {
  public:
    LiteralScope(Frame& frame, const LiteralRun& literals) : frame_(frame) { frame_.literals = literals; }
    LiteralScope(const LiteralScope&) = delete;
    LiteralScope& operator=(const LiteralScope&) = delete;
    ~LiteralScope() { frame_.literals = {}; }

  private:
    Frame& frame_;
};

}  // namespace vicenter::tsql::engine
