#include <algorithm>
#include <limits>

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/run/executor.h"
#include "tsql/sqlite/stored_value.h"

namespace vicenter::tsql::engine {

void Executor::SetVariable(const SetVariableStatement& statement) {
    Variable& variable = FindVariable(statement.name, statement.position);
    if (variable.isCursor) {
        const auto* source = TryAs<VariableExpr>(statement.value.get());
        if (source == nullptr) throw MakeError(16949, statement.position, {statement.name});
        variable.cursor = FindVariable(source->name, source->position).cursor;
        return;
    }
    Plan& plan = PlanFor(&statement, [&](Translator& translator) {
        return translator.Assignment(statement.name, variable.type, statement.op, *statement.value);
    });
    const ResetAtEnd reset(plan.statement);
    Bind(plan);
    StepPlan(plan);
    variable.value = ReadColumn(plan.statement.Handle(), 0, variable.type);
    rowCount_ = 1;
}

namespace {

// Switches that would change what batches do or answer, and the state that is the only one here.
struct FixedSwitch {
    std::string_view option;
    bool on;
    // What follows, in later batches too, is not to run, or is to wait for COMMIT.
    bool holdsBack = false;
};
constexpr FixedSwitch kFixedSwitches[] = {
    {"ansi_null_dflt_off", false},
    {"ansi_null_dflt_on", true},
    {"ansi_nulls", true},
    {"ansi_padding", true},
    {"ansi_warnings", true},
    {"concat_null_yields_null", true},
    {"cursor_close_on_commit", false},
    {"fmtonly", false, true},
    {"implicit_transactions", false, true},
    {"noexec", false, true},
    {"numeric_roundabort", false},
    {"parseonly", false, true},
    {"quoted_identifier", true},
    {"showplan_all", false, true},
    {"showplan_text", false, true},
    {"showplan_xml", false, true},
    {"statistics profile", false},
    {"statistics xml", false},
};

// The language in which names of months and days are told, and dates are read.
constexpr std::string_view kLanguages[] = {"us_english", "english"};

[[noreturn]] void Refuse(const SetOptionStatement& statement, std::string_view option,
                         std::string_view value) {
    throw MakeError(40510, statement.position, {"SET " + UpperAscii(option) + " " + std::string(value)});
}

std::string SwitchText(std::string_view option, bool on) {
    return "SET " + UpperAscii(option) + (on ? " ON" : " OFF");
}

const FixedSwitch* FindFixed(std::string_view option) {
    const auto* found = std::ranges::find(kFixedSwitches, option, &FixedSwitch::option);
    return found == std::end(kFixedSwitches) ? nullptr : found;
}

}  // namespace

// What would be swallowed, and what follows then run as it was not meant to, is refused at once.
void Executor::SetFixedSwitch(const SetOptionStatement& statement, const std::string& option) {
    const bool on = statement.on.value_or(false);
    // Either state of it sets several others.
    if (option == "ansi_defaults") throw MakeError(40510, statement.position, {SwitchText(option, on)});
    const FixedSwitch* fixed = FindFixed(option);
    if (fixed == nullptr) return;
    if (fixed->on == on) {
        refused_.erase(option);
        return;
    }
    if (fixed->holdsBack) refused_.insert(option);
    throw MakeError(40510, statement.position, {SwitchText(option, on)});
}

void Executor::RefuseBehindSwitch(const Statement& statement) const {
    if (refused_.empty() || statement.kind == StatementKind::kSetOption) return;
    const std::string& option = *refused_.begin();
    throw MakeError(40510, statement.position, {SwitchText(option, true)});
}

// Options without a meaning here (isolation levels, priorities, …) are taken without a word.
void Executor::SetOption(const SetOptionStatement& statement) {
    SetOptions& options = frame_->options;
    for (const std::string& option : statement.options) {
        SetFixedSwitch(statement, option);
        if (option == "nocount") {
            options.noCount = statement.on.value_or(false);
        } else if (option == "xact_abort") {
            options.exactAbort = statement.on.value_or(false);
        } else if (option == "rowcount") {
            options.rowCountLimit = statement.value ? EvaluateInt(*statement.value) : 0;
        } else if (option == "lock_timeout") {
            options.lockTimeoutMilliseconds =
                statement.value ? static_cast<int>(EvaluateInt(*statement.value)) : -1;
            database_.SetLockTimeout(options.lockTimeoutMilliseconds);
        } else if (option == "identity_insert") {
            const TableInfo* table = FindTable(statement.table.Object());
            if (table == nullptr) throw MakeError(1088, statement.position, {statement.table.Text()});
            if (table->IdentityColumn() == nullptr) throw MakeError(8106, statement.position, {table->name});
            const bool isOwn = automation::SameName(options.identityInsert, table->name);
            if (!statement.on.value_or(false)) {
                if (isOwn) options.identityInsert.clear();
            } else if (!isOwn && FindTable(options.identityInsert) != nullptr) {
                throw MakeError(8107, statement.position,
                                {"accountset", "dbo", options.identityInsert, table->name});
            } else {
                options.identityInsert = table->name;
            }
        } else if (option == "dateformat") {
            const std::string name =
                statement.value ? LowerAscii(EvaluateText(*statement.value)) : statement.word;
            const std::optional<DateFormat> format = DateFormatByName(LowerAscii(name));
            if (!format) throw MakeError(2741, statement.position, {name});
            options.dateFormat = *format;
        } else if (option == "datefirst") {
            constexpr std::int64_t kSunday = 7;
            const std::int64_t day = statement.value ? EvaluateInt(*statement.value) : 0;
            if (day < 1 || day > kSunday) throw MakeError(2742, statement.position, {day});
            if (day != kSunday)
                throw MakeError(40510, statement.position, {"SET DATEFIRST " + std::to_string(day)});
        } else if (option == "language") {
            const std::string language =
                statement.value ? LowerAscii(EvaluateText(*statement.value)) : statement.word;
            if (std::ranges::find(kLanguages, language) == std::end(kLanguages))
                Refuse(statement, option, language);
            // A language brings its own order of dates.
            options.dateFormat = DateFormat::kMdy;
        } else if (option == "textsize") {
            // Shorter texts than the longest would be cut.
            const std::int64_t bytes = statement.value ? EvaluateInt(*statement.value) : 0;
            if (bytes != -1 && bytes != std::numeric_limits<std::int32_t>::max())
                Refuse(statement, option, std::to_string(bytes));
        }
    }
}

}  // namespace vicenter::tsql::engine
