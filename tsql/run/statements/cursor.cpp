// Cursors. OPEN reads the rows, FETCH goes through them. What others insert meanwhile no cursor shows; what
// they change and delete is seen in the rows of one table, unless the cursor is to keep them.

#include <algorithm>

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/run/executor.h"
#include "tsql/sqlite/stored_value.h"

namespace vicenter::tsql::engine {

namespace {

// What @@fetch_status says.
constexpr std::int32_t kFetched = 0;
constexpr std::int32_t kNoRow = -1;
constexpr std::int32_t kGap = -2;

bool Has(const std::vector<std::string>& options, std::string_view option) {
    for (const std::string& entry : options) {
        if (entry == option) return true;
    }
    return false;
}

// Its rows are those of tables: what is made of several rows the server has to keep as it is.
bool IsOfRows(const Query& query) {
    const SelectBody* select = query.Select();
    if (select == nullptr || select->distinct || select->having || !select->groupBy.empty() ||
        !select->grouping.empty())
        return false;
    return std::none_of(select->items.begin(), select->items.end(), [](const SelectItem& item) {
        return item.expression && (HasAggregate(*item.expression) || HasWindow(*item.expression));
    });
}

// Without the cursors among the variables: what a query uses are values and tables.
CursorSurroundings SurroundingsOf(const Frame& frame) {
    CursorSurroundings all;
    all.options = frame.options;
    for (const auto& [name, variable] : frame.variables) {
        if (!variable.isCursor) all.variables.emplace(name, variable);
    }
    all.sent = frame.sent;
    all.literals = frame.literals;
    return all;
}

}  // namespace

// -1 for a cursor that the server opens on rows that may still change; 0 when none is open.
std::int64_t Executor::CursorRows() const {
    const std::shared_ptr<const Cursor> last = lastOpened_.lock();
    if (!last || !last->open) return 0;
    return last->isCounted ? static_cast<std::int64_t>(last->rows.size()) : -1;
}

std::shared_ptr<Cursor> Executor::MakeCursor(const std::string& name, const CursorDefinition& definition) {
    auto cursor = std::make_shared<Cursor>();
    cursor->name = name;
    cursor->program = frame_->program;
    cursor->definition = &definition;
    const bool isForward = Has(definition.options, "forward_only") || Has(definition.options, "fast_forward");
    const bool isDynamic = Has(definition.options, "dynamic");
    cursor->scroll = !isForward && (isDynamic || Has(definition.options, "scroll") ||
                                    Has(definition.options, "static") || Has(definition.options, "keyset"));
    cursor->keepsPlaces = Has(definition.options, "keyset") || (cursor->scroll && !isDynamic);
    cursor->isCounted = Has(definition.options, "static") || Has(definition.options, "insensitive") ||
                        Has(definition.options, "keyset") || !IsOfRows(*definition.query);
    RefreshForReading();
    PlanCursor(*cursor);
    cursor->declared = SurroundingsOf(*frame_);
    return cursor;
}

void Executor::PlanCursor(Cursor& cursor) {
    const CursorDefinition& definition = *cursor.definition;
    const bool isKept = Has(definition.options, "static") || Has(definition.options, "insensitive");
    cursor.isReadOnly = definition.forReadOnly || isKept || Has(definition.options, "fast_forward") ||
                        Has(definition.options, "read_only");
    Plan plan;
    FrameContext context(catalog_, programs_, *frame_);
    MakePlan(plan, context, [&](Translator& translator) {
        return isKept ? translator.Select(*definition.query) : translator.CursorQuery(*definition.query);
    });
    // Variables in the query have the values of this moment.
    Bind(plan);
    cursor.table = plan.translation.rowsOf;
    cursor.columns = plan.translation.columns;
    cursor.keyColumns = plan.translation.rowKey;
    cursor.plan = std::move(plan);
    PlanReadingAgain(cursor);
}

void Executor::PlanReadingAgain(Cursor& cursor) {
    cursor.again = {};
    const Query& query = *cursor.definition->query;
    // The first rows of an order are others when one of them has gone.
    if (cursor.table == 0 || !IsOfRows(query) || query.Select()->top || query.offset) return;
    Plan again;
    again.translation = cursor.plan.translation;
    again.translation.sql = "SELECT * FROM (" + cursor.plan.translation.sql + ") WHERE c" +
                            std::to_string(cursor.columns.size() + 1) + " = ?" +
                            std::to_string(again.translation.parameters.size() + 1);
    try {
        again.statement = Prepared(again.translation.sql);
    } catch (const SqlError&) {
        return;  // what is just as deep as SQLite lets it be keeps its rows
    }
    Bind(again);
    cursor.again = std::move(again);
}

bool Executor::IsCurrent(const Cursor& cursor) const {
    return cursor.plan.IsCurrent(catalog_, frame_->options) && cursor.plan.IsOfTheseTables(catalog_);
}

bool Executor::ReadAgain(Cursor& cursor, std::size_t row) {
    RefreshForReading();
    // The table is another one now: the rows stay those that were read.
    if (!cursor.again.statement || !IsCurrent(cursor)) return true;
    const ResetAtEnd reset(cursor.again.statement);
    cursor.again.statement.Bind(static_cast<int>(cursor.again.translation.parameters.size()) + 1,
                                cursor.rowNumbers[row]);
    if (!StepPlan(cursor.again)) return cursor.keepsPlaces && !HasGone(cursor, row);
    ReadRow(cursor.again, cursor.rows[row]);
    if (!cursor.keyColumns.empty())
        ReadKey(cursor, cursor.again.statement, static_cast<int>(cursor.columns.size()) + 1, row);
    return true;
}

bool Executor::HasGone(const Cursor& cursor, std::size_t row) {
    const auto* source = TryAs<TableRef>(cursor.definition->query->Select()->from.front().get());
    const TableInfo* table = source != nullptr ? FindTable(source->name.Object()) : nullptr;
    if (table == nullptr || table->id != cursor.table) return true;
    PreparedStatement same = database_.Prepare("SELECT 1 FROM " + table->Sql() + " WHERE _rowid_ = ?");
    same.Bind(1, cursor.rowNumbers[row]);
    return !database_.Step(same);
}

// The tables have changed since the cursor was declared: its query is translated again, with the variables
// and literals that it was declared with.
void Executor::PlanCursorAnew(Cursor& cursor) {
    Frame frame;
    frame.program = cursor.program;
    frame.options = cursor.declared.options;
    frame.variables = cursor.declared.variables;
    frame.sent = cursor.declared.sent;
    frame.literals = cursor.declared.literals;
    const FrameScope scope(frame_, frame);
    PlanCursor(cursor);
}

std::shared_ptr<Cursor>& Executor::CursorSlot(const CursorName& name) {
    if (name.IsVariable()) {
        Variable& variable = FindVariable(name.name.text, name.name.position);
        if (!variable.isCursor) throw MakeError(16948, name.name.position, {name.name.text});
        if (!variable.cursor) throw MakeError(16950, name.name.position, {name.name.text});
        return variable.cursor;
    }
    const std::string key = LowerAscii(name.name.text);
    if (!name.global) {
        const auto local = frame_->cursors.find(key);
        if (local != frame_->cursors.end()) return local->second;
    }
    const auto global = globalCursors_.find(key);
    if (global == globalCursors_.end()) throw MakeError(16916, name.name.position, {name.name.text});
    return global->second;
}

void Executor::DeclareCursor(const DeclareCursorStatement& statement) {
    const std::string key = LowerAscii(statement.name.text);
    auto& cursors = Has(statement.cursor.options, "local") ? frame_->cursors : globalCursors_;
    if (cursors.contains(key)) throw MakeError(16915, statement.position, {statement.name.text});
    cursors[key] = MakeCursor(statement.name.text, statement.cursor);
    rowCount_ = 1;
}

void Executor::SetCursor(const SetCursorStatement& statement) {
    Variable& variable = FindVariable(statement.variable, statement.position);
    if (!variable.isCursor) throw MakeError(16948, statement.position, {statement.variable});
    variable.cursor = MakeCursor(statement.variable, statement.cursor);
}

void Executor::OpenCursor(const OpenCursorStatement& statement) {
    const std::shared_ptr<Cursor> slot = CursorSlot(statement.cursor);
    Cursor& cursor = *slot;
    if (cursor.open) throw MakeError(16905, statement.position);
    cursor.rows.clear();
    cursor.rowNumbers.clear();
    cursor.keys.clear();
    RefreshForReading();
    if (!IsCurrent(cursor)) PlanCursorAnew(cursor);
    Plan& plan = cursor.plan;
    {
        const ResetAtEnd reset(plan.statement);
        std::vector<Value> row;
        const auto number = static_cast<int>(cursor.columns.size());
        while (StepPlan(plan)) {
            ReadRow(plan, row);
            cursor.rows.push_back(std::move(row));
            if (cursor.table == 0) continue;
            cursor.rowNumbers.push_back(plan.statement.Int(number));
            if (!cursor.keyColumns.empty())
                ReadKey(cursor, plan.statement, number + 1, cursor.rowNumbers.size() - 1);
        }
    }
    cursor.position = -1;
    cursor.open = true;
    lastOpened_ = slot;
}

void Executor::Fetch(const FetchStatement& statement) {
    Cursor& cursor = *CursorSlot(statement.cursor);
    if (!cursor.open) throw MakeError(16917, statement.position);
    const auto count = static_cast<std::int64_t>(cursor.rows.size());
    const std::int64_t amount = statement.amount ? EvaluateInt(*statement.amount) : 0;
    std::int64_t target = cursor.position;
    switch (statement.direction) {
        case FetchDirection::kNext:
            ++target;
            break;
        case FetchDirection::kPrior:
            --target;
            break;
        case FetchDirection::kFirst:
            target = 0;
            break;
        case FetchDirection::kLast:
            target = count - 1;
            break;
        case FetchDirection::kAbsolute:
            target = amount > 0 ? amount - 1 : amount < 0 ? count + amount : -1;
            break;
        case FetchDirection::kRelative:
            target += amount;
            break;
    }
    if (statement.direction != FetchDirection::kNext && !cursor.scroll) {
        throw MakeError(16911, statement.position, {"fetch", "other than next"});
    }
    const std::int64_t step = target < cursor.position ? -1 : 1;
    const auto isWithin = [&] { return target >= 0 && target < count; };
    bool isGap = false;
    while (isWithin() && !ReadAgain(cursor, static_cast<std::size_t>(target))) {
        isGap = cursor.keepsPlaces;
        if (isGap) break;
        target += step;
    }
    cursor.position = target < -1 ? -1 : target > count ? count : target;
    const bool found = isWithin() && !isGap;
    if (!statement.into.empty()) {
        if (statement.into.size() != cursor.columns.size()) throw MakeError(16924, statement.position);
        for (std::size_t i = 0; found && i < statement.into.size(); ++i) {
            Variable& variable = FindVariable(statement.into[i], statement.position);
            variable.value = Convert(cursor.rows[static_cast<std::size_t>(target)][i], cursor.columns[i].type,
                                     variable.type, 0, frame_->options.dateFormat);
        }
    } else {
        sink_->BeginResult(cursor.columns);
        if (found) {
            std::vector<Value> row = cursor.rows[static_cast<std::size_t>(target)];
            sink_->AddRow(row);
        }
    }
    fetchStatus_ = found ? kFetched : isGap ? kGap : kNoRow;
    rowCount_ = found ? 1 : 0;
}

// The row that was fetched last, for WHERE CURRENT OF.
void Executor::TakeCurrentRow(const Name& name, const ObjectName& target) {
    CursorName wanted;
    wanted.name = name;
    const Cursor& cursor = *CursorSlot(wanted);
    if (!cursor.open) throw MakeError(16917, name.position);
    if (cursor.table == 0 || cursor.isReadOnly) throw MakeError(16929, name.position);
    const TableInfo* table = FindTable(target.Object());
    if (table == nullptr || table->id != cursor.table) throw MakeError(16933, name.position);
    if (cursor.position < 0 || cursor.position >= static_cast<std::int64_t>(cursor.rows.size()))
        throw MakeError(16931, name.position);
    const auto row = static_cast<std::size_t>(cursor.position);
    if (!IsSameRow(cursor, *table, row, name.position)) throw MakeError(16947, name.position);
    currentRow_ = cursor.rowNumbers[row];
}

void Executor::CheckUpdateColumns(const UpdateStatement& statement) {
    CursorName wanted;
    wanted.name = statement.currentOf;
    const std::vector<Name>& columns = CursorSlot(wanted)->definition->updateColumns;
    if (columns.empty()) return;
    for (const Assignment& assignment : statement.assignments) {
        const auto isIt = [&](const Name& name) {
            return automation::SameName(name.text, assignment.column.Object());
        };
        if (!assignment.column.IsEmpty() && std::none_of(columns.begin(), columns.end(), isIt))
            throw MakeError(16932, assignment.position);
    }
}

void Executor::ReadKey(Cursor& cursor, PreparedStatement& statement, int first, std::size_t row) const {
    if (cursor.keys.size() <= row) cursor.keys.resize(row + 1);
    std::vector<Value>& key = cursor.keys[row];
    key.clear();
    for (std::size_t i = 0; i < cursor.keyColumns.size(); ++i)
        key.push_back(ReadColumn(statement.Handle(), first + static_cast<int>(i), cursor.keyColumns[i].type));
}

// SQLite gives the number of the last row, when that has gone, to the next one.
bool Executor::IsSameRow(const Cursor& cursor, const TableInfo& table, std::size_t row, Position where) {
    std::string sql = "SELECT 1 FROM " + table.Sql() + " WHERE _rowid_ = ?";
    for (const ResultColumn& column : cursor.keyColumns) {
        const ColumnInfo* now = table.FindColumn(column.name);
        if (now == nullptr || now->type != column.type) throw MakeError(16943, where);
        sql += " AND " + Quoted(column.name) + " IS ?";
    }
    PreparedStatement same = database_.Prepare(sql);
    int parameter = 0;
    same.Bind(++parameter, cursor.rowNumbers[row]);
    for (std::size_t i = 0; i < cursor.keyColumns.size(); ++i)
        BindValue(same.Handle(), ++parameter, cursor.keys[row][i], cursor.keyColumns[i].type);
    return database_.Step(same);
}

// A row that the cursor itself has changed is still its row.
void Executor::KeepCurrentRow(const Name& name, const ObjectName& target) {
    CursorName wanted;
    wanted.name = name;
    Cursor& cursor = *CursorSlot(wanted);
    if (cursor.keyColumns.empty()) return;
    std::string list;
    for (const ResultColumn& column : cursor.keyColumns)
        list += (list.empty() ? "" : ", ") + Quoted(column.name);
    PreparedStatement row = database_.Prepare("SELECT " + list + " FROM " +
                                              FindTable(target.Object())->Sql() + " WHERE _rowid_ = ?");
    row.Bind(1, currentRow_);
    if (database_.Step(row)) ReadKey(cursor, row, 0, static_cast<std::size_t>(cursor.position));
}

void Executor::CloseCursor(const CloseCursorStatement& statement) {
    Cursor& cursor = *CursorSlot(statement.cursor);
    if (!cursor.open) throw MakeError(16917, statement.position);
    cursor.open = false;
    cursor.rows.clear();
}

void Executor::Deallocate(const DeallocateStatement& statement) {
    std::shared_ptr<Cursor>& slot = CursorSlot(statement.cursor);
    slot.reset();
    if (statement.cursor.IsVariable()) return;
    const std::string key = LowerAscii(statement.cursor.name.text);
    if (frame_->cursors.erase(key) == 0) globalCursors_.erase(key);
}

}  // namespace vicenter::tsql::engine
