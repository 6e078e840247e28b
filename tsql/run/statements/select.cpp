#include "tsql/base/text_units.h"
#include "tsql/run/executor.h"

namespace vicenter::tsql::engine {

void Executor::Select(const SelectStatement& statement) {
    if (const SelectBody* select = statement.query->Select(); select != nullptr && !select->into.IsEmpty()) {
        return SelectInto(statement);
    }
    Plan& plan =
        PlanFor(&statement, [&](Translator& translator) { return translator.Select(*statement.query); });
    const ResetAtEnd reset(plan.statement);
    Bind(plan);
    const Translation& translation = plan.translation;
    std::int64_t rows = 0;
    std::vector<Value> row;
    if (!translation.assignments.empty()) {
        // The last row wins; no row leaves the variables as they are.
        while (StepPlan(plan)) {
            ReadRow(plan, row);
            for (std::size_t i = 0; i < row.size(); ++i) {
                FindVariable(translation.assignments[i].variable, statement.position).value =
                    std::move(row[i]);
            }
            ++rows;
            if (frame_->options.rowCountLimit > 0 && rows >= frame_->options.rowCountLimit) break;
        }
        rowCount_ = rows;
        return;
    }
    // The columns go out with the first row, so that a statement that fails at once gives no result.
    bool more = StepPlan(plan);
    sink_->BeginResult(translation.columns);
    for (; more; more = StepPlan(plan)) {
        ReadRow(plan, row);
        sink_->AddRow(row);
        ++rows;
        if (frame_->options.rowCountLimit > 0 && rows >= frame_->options.rowCountLimit) break;
    }
    rowCount_ = rows;
}

// SELECT … INTO makes a table of the result's names and types.
void Executor::SelectInto(const SelectStatement& statement) {
    const SelectBody& select = *statement.query->Select();
    const std::string& name = select.into.Object();
    const bool temporary = !name.empty() && name.front() == '#';
    transactions_.Change(temporary, [&] {
        if (catalog_.ObjectId(name, "")) throw MakeError(2714, select.into.Where(), {name});
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
        catalog_.CreateTable(table);
        if (temporary && frame_->level > 0) frame_->temporaries.push_back(name);
        Plan& plan = PlanFor(&statement, [&](Translator& translator) {
            return translator.FillInto(*catalog_.FindTable(name), names, *statement.query);
        });
        RunModification(plan, nullptr);
    });
}

}  // namespace vicenter::tsql::engine
