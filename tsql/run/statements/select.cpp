#include <algorithm>
#include <functional>

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/run/executor.h"
#include "tsql/run/identity_insert.h"
#include "tsql/syntax/ast_children.h"

namespace vicenter::tsql::engine {

void Executor::Select(const SelectStatement& statement) {
    if (!FirstSelect(*statement.query->body).into.IsEmpty()) return SelectInto(statement);
    while (!Answer(statement)) {
    }
}

// False when it must begin again, see Begin.
bool Executor::Answer(const SelectStatement& statement) {
    Plan& plan =
        PlanFor(&statement, [&](Translator& translator) { return translator.Select(*statement.query); });
    const ResetAtEnd reset(plan.statement);
    const std::optional<bool> first = Begin(plan);
    if (!first) return false;
    const Translation& translation = plan.translation;
    std::int64_t rows = 0;
    std::vector<Value> row;
    if (!translation.assignments.empty()) {
        // The last row wins; no row leaves the variables as they are.
        for (bool more = *first; more; more = StepPlan(plan)) {
            ReadRow(plan, row);
            for (std::size_t i = 0; i < row.size(); ++i) {
                FindVariable(translation.assignments[i].variable, statement.position).value =
                    std::move(row[i]);
            }
            ++rows;
            if (frame_->options.rowCountLimit > 0 && rows >= frame_->options.rowCountLimit) break;
        }
        rowCount_ = rows;
        return true;
    }
    // The columns go out with the first row, so that a statement that fails at once gives no result.
    sink_->BeginResult(translation.columns);
    for (bool more = *first; more; more = StepPlan(plan)) {
        ReadRow(plan, row);
        sink_->AddRow(row);
        ++rows;
        if (frame_->options.rowCountLimit > 0 && rows >= frame_->options.rowCountLimit) break;
    }
    rowCount_ = rows;
    return true;
}

namespace {

// A table of FROM; its columns may be NULL where an outer join has no row of it.
struct Part {
    std::string exposed;
    const TableInfo* table = nullptr;
    bool mayLack = false;
};

// What a column of a result comes from.
struct Origin {
    bool isNotNull = false;
    const ColumnInfo* column = nullptr;
};

using FindPart = std::function<const TableInfo*(const ObjectName&)>;

// False when something else than tables of their own is among them.
bool AddParts(const TableSource& source, bool mayLack, const FindPart& find, std::vector<Part>& parts) {
    if (const auto* join = TryAs<JoinedTable>(&source)) {
        const bool left = join->join == JoinKind::kRight || join->join == JoinKind::kFull;
        const bool right = join->join == JoinKind::kLeft || join->join == JoinKind::kFull;
        return AddParts(*join->left, mayLack || left, find, parts) &&
               AddParts(*join->right, mayLack || right, find, parts);
    }
    const auto* named = TryAs<TableRef>(&source);
    const TableInfo* table = named != nullptr ? find(named->name) : nullptr;
    if (table == nullptr) return false;
    parts.push_back({named->alias.IsEmpty() ? named->name.Object() : named->alias.text, table, mayLack});
    return true;
}

bool IsNeverNull(const Expr& expression) {
    if (const auto* literal = TryAs<LiteralExpr>(&expression))
        return literal->literal != LiteralKind::kNull && literal->literal != LiteralKind::kDefault;
    const auto* call = TryAs<FunctionExpr>(&expression);
    return call != nullptr && automation::SameName(call->name.Object(), "isnull") &&
           call->arguments.size() == 2 && IsNeverNull(*call->arguments[1]);
}

Origin OriginOf(const ColumnExpr& column, const std::vector<Part>& parts) {
    for (const Part& part : parts) {
        const std::string& qualifier = column.name.Schema();
        if (!qualifier.empty() && !automation::SameName(qualifier, part.exposed)) continue;
        if (const ColumnInfo* found = part.table->FindColumn(column.name.Object()))
            return {!found->nullable && !part.mayLack, found};
    }
    return {};
}

// Of the columns of a result, in their order; none where FROM holds more than tables.
std::vector<Origin> OriginsOf(const Query& query, const FindPart& find, std::size_t& tables) {
    const SelectBody& select = *query.Select();
    std::vector<Part> parts;
    for (const TableSourcePtr& source : select.from) {
        if (!query.with.empty() || !AddParts(*source, false, find, parts)) return {};
    }
    tables = parts.size();
    std::vector<Origin> origins;
    for (const SelectItem& item : select.items) {
        if (item.kind == SelectItemKind::kStar) {
            for (const Part& part : parts) {
                if (!item.qualifier.IsEmpty() && !automation::SameName(item.qualifier.Object(), part.exposed))
                    continue;
                for (const ColumnInfo& column : part.table->columns)
                    origins.push_back({!column.nullable && !part.mayLack, &column});
            }
        } else if (const auto* column = TryAs<ColumnExpr>(item.expression.get())) {
            origins.push_back(OriginOf(*column, parts));
        } else {
            origins.push_back({IsNeverNull(*item.expression), nullptr});
        }
    }
    return origins;
}

// What a new table takes over from the tables of its query, as the server has it: which columns are NOT NULL,
// and which one counts, where it is that of one table and stands there once.
void TakeOver(const Query& query, const FindPart& find, TableInfo& table) {
    const SelectBody* select = query.Select();
    if (select == nullptr || !select->grouping.empty()) return;
    std::size_t tables = 0;
    const std::vector<Origin> origins = OriginsOf(query, find, tables);
    if (origins.size() != table.columns.size()) return;
    const auto counts = [](const Origin& origin) {
        return origin.column != nullptr && origin.column->identity;
    };
    const bool counted = tables == 1 && table.IdentityColumn() == nullptr && select->groupBy.empty() &&
                         std::count_if(origins.begin(), origins.end(), counts) == 1;
    for (std::size_t i = 0; i < origins.size(); ++i) {
        ColumnInfo& column = table.columns[i];
        if (origins[i].isNotNull) column.nullable = false;
        if (!counted || !counts(origins[i])) continue;
        column.identity = true;
        column.seed = origins[i].column->seed;
        column.increment = origins[i].column->increment;
    }
}

// The rows are there and hold what the columns are to hold; the one that counts goes on behind them.
void KeepTakenOver(Database& database, Catalog& catalog, const TableInfo& whole) {
    TableInfo changed = *catalog.FindTable(whole.name);
    const bool counts = changed.IdentityColumn() == nullptr && whole.IdentityColumn() != nullptr;
    bool isSame = true;
    for (std::size_t i = 0; i < whole.columns.size(); ++i)
        isSame = isSame && changed.columns[i].nullable == whole.columns[i].nullable;
    if (isSame && !counts) return;
    changed.columns = whole.columns;
    catalog.ChangeTable(changed, false);
    if (!counts) return;
    const TableInfo& now = *catalog.FindTable(whole.name);
    const ColumnInfo& column = *now.IdentityColumn();
    PreparedStatement last =
        database.Prepare(std::string("SELECT ") + (column.increment < 0 ? "min" : "max") + "(cast(" +
                         Quoted(column.name) + " AS INTEGER)) FROM " + now.Sql());
    const bool hasRows = database.Step(last) && !last.IsNull(0);
    const std::int64_t value = hasRows ? last.Int(0) : column.seed - column.increment;
    last.Reset();
    catalog.SetLastIdentity(now, value);
}

}  // namespace

// SELECT … INTO makes a table of the result's names and types.
void Executor::SelectInto(const SelectStatement& statement) {
    const SelectBody& select = FirstSelect(*statement.query->body);
    const std::string& name = select.into.Object();
    const bool temporary = !name.empty() && name.front() == '#';
    transactions_.Define(temporary, [&] {
        // The columns and the rows are to be of one moment.
        RefreshForReading();
        if (temporary ? !Shadow(name) : catalog_.ObjectId(name, "").has_value())
            throw MakeError(2714, select.into.Where(), {name});
        Translation translation =
            Translated([&](Translator& translator) { return translator.SelectInto(*statement.query); });
        TableInfo table;
        table.name = name;
        table.temporary = temporary;
        table.physical = temporary ? name + "$" + std::to_string(++tableVariables_) : name;
        std::vector<Name> names;
        for (const ResultColumn& column : translation.columns) {
            if (column.name.empty()) throw MakeError(1038, statement.position);
            if (table.FindColumn(column.name) != nullptr) {
                throw MakeError(2705, statement.position, {column.name, name});
            }
            ColumnInfo info;
            info.name = column.name;
            info.type = column.type;
            const bool numbers = translation.identity && translation.identity->place == table.columns.size();
            if (numbers) {
                info.identity = true;
                info.nullable = false;
                info.seed = translation.identity->seed;
                info.increment = translation.identity->increment;
                table.lastIdentity = info.seed - info.increment;
            } else {
                names.push_back({column.name, statement.position, true});
            }
            table.columns.push_back(std::move(info));
        }
        TableInfo whole = table;
        TakeOver(
            *statement.query, [this](const ObjectName& source) { return FindTable(source.Object()); }, whole);
        catalog_.CreateTable(table);
        BeginWithoutIdentityInsert(frame_, name);
        if (temporary && frame_->level > 0) frame_->temporaries.push_back(catalog_.FindTable(name)->id);
        Plan& plan = PlanFor(&statement, [&](Translator& translator) {
            return translator.FillInto(*catalog_.FindTable(name), names, *statement.query);
        });
        RunModification(plan, nullptr);
        KeepTakenOver(database_, catalog_, whole);
    });
}

}  // namespace vicenter::tsql::engine
