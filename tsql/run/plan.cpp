// Plans: translated statements, their parameters and their rows.

#include <algorithm>
#include <charconv>
#include <new>
#include <utility>

#include "automation/object.h"
#include "tsql/run/constraint_error.h"
#include "tsql/run/executor.h"
#include "tsql/sqlite/stored_value.h"
#include "tsql/translate/flat_text.h"

namespace vicenter::tsql::engine {

using automation::SameName;

bool Plan::IsCurrent(const Catalog& catalog, const SetOptions& options) const {
    if (generation != catalog.Generation()) return false;
    // Without the option the translation would have ended in error 544.
    if (translation.givesIdentity && !SameName(options.identityInsert, translation.table)) return false;
    // And with it in error 545.
    if (translation.usesIdentity && SameName(options.identityInsert, translation.table)) return false;
    return std::ranges::all_of(translation.temporaries, [&](const Translation::TemporaryUse& use) {
        const TableInfo* table = catalog.FindTable(use.name);
        return table != nullptr && table->definition == use.definition;
    });
}

bool Plan::IsOfTheseTables(const Catalog& catalog) const {
    return std::ranges::all_of(translation.temporaries, [&](const Translation::TemporaryUse& use) {
        const TableInfo* table = catalog.FindTable(use.name);
        return table != nullptr && table->id == use.table;
    });
}

namespace {

constexpr std::int32_t kTooDeep = 191;
constexpr std::int32_t kNotSupported = 40510;

}  // namespace

// What is too deep for SQLite's parser is taken apart first.
PreparedStatement Executor::Prepared(const std::string& sql) {
    if (options_.deepestText > 0) return database_.Prepare(Flattened(sql, options_.deepestText));
    try {
        return database_.Prepare(sql);
    } catch (const SqlError& error) {
        if (error.Number() != kTooDeep) throw;
    }
    return database_.Prepare(Flattened(sql));
}

// What another translation of the same statement may mend; false for nothing.
static bool FindWays(const SqlError& error, Ways& ways) {
    // A value of a group or window cannot be taken out of its query; what becomes of it can.
    if (error.Number() == kTooDeep) return !std::exchange(ways.stages, true);
    // SQLite has merged the queries in FROM, each of which may be small.
    const bool isTables =
        error.Number() == kNotSupported && error.Details().text.find(kManyTables) != std::string::npos;
    return isTables && !std::exchange(ways.separates, true);
}

void Executor::MakePlan(Plan& plan, FrameContext& context, const Make& make) {
    Ways ways;
    ways.stages = options_.deepestText > 0;
    for (;;) {
        plan.translation = Bound([&] { return TranslateAsNeeded(context, ways, make); });
        try {
            plan.statement = Prepared(plan.translation.sql);
            plan.generation = catalog_.Generation();
            plan.readsSet = plan.translation.sql.find("main.") != std::string::npos;
            return;
        } catch (const SqlError& error) {
            if (!FindWays(error, ways)) throw;
        }
    }
}

// While nobody holds the lock, another process may have changed the catalog since it was read. Held until the
// first row is read, so that this is of the same moment. True when the catalog is another one now.
bool Executor::RefreshForReading() {
    if (transactions_.HoldsLock() || catalog_.IsHolding()) return false;
    const std::uint64_t before = catalog_.Generation();
    catalog_.RefreshAndHold();
    return catalog_.Generation() != before;
}

// Calls of one procedure within each other share its plans, and each has variables of its own.
bool Executor::IsOfThisFrame(const Plan& plan) const {
    return std::ranges::all_of(plan.translation.temporaries, [&](const Translation::TemporaryUse& use) {
        const TableInfo* table = FindTable(NameInText(use.name));
        return table != nullptr && table->name == use.name;
    });
}

// The key is the address of the part of the tree that is translated: a tree lives as long as its program, and
// the program holds the plans, so an address stands for one text only.
Plan& Executor::PlanFor(const void* key, const Make& make) {
    std::unique_ptr<Plan>& slot = frame_->program->plans[key];
    for (;;) {
        if (!slot || !options_.keepsPlans || !slot->IsCurrent(catalog_, frame_->options) ||
            !IsOfThisFrame(*slot)) {
            try {
                MakePlan(slot, make);
            } catch (const SqlError&) {
                // What is not there may have been made in the meantime.
                if (transactions_.IsOpen() || !RefreshForReading()) throw;
                unbound_ = false;
                continue;
            }
        }
        if (!slot->readsSet || !RefreshForReading()) return *slot;
    }
}

// Put into its place only when it is whole: a translation that fails leaves that as it was.
void Executor::MakePlan(std::unique_ptr<Plan>& slot, const Make& make) {
    FrameContext context(catalog_, programs_, *frame_);
    auto plan = std::make_unique<Plan>();
    MakePlan(*plan, context, make);
    // A literal within an expression has given it its type; one that goes straight into a column has decided
    // nothing.
    plan->takesAnyLiterals = !context.HasPinned();
    plan->takesLiteralsAlone = true;
    for (const Parameter& parameter : plan->translation.parameters) {
        if (parameter.ordinal >= 0 && !parameter.forColumn) plan->takesAnyLiterals = false;
        if (parameter.source != Parameter::Source::kLiteral || parameter.forColumn)
            plan->takesLiteralsAlone = false;
    }
    slot = std::move(plan);
}

Value Executor::ParameterValue(const Parameter& parameter, const std::vector<Value>* row) const {
    Value value;
    SqlType from = parameter.from;
    switch (parameter.source) {
        case Parameter::Source::kLiteral:
            if (parameter.ordinal >= 0 && !frame_->literals.IsEmpty()) {
                const LiteralValue& literal = frame_->literals.At(parameter.ordinal);
                const bool negated = frame_->literals.IsNegative(literal, parameter.negated);
                const std::string text = literal.Text();
                // Of this run: 1, 1.0 and '1' may take turns where a column converts them.
                from = LiteralType(literal.kind, text);
                value = ValueOfLiteral(literal.kind, text, negated);
            } else {
                value = ValueOfLiteral(parameter.literal, parameter.text, parameter.negated);
            }
            break;
        case Parameter::Source::kVariable: {
            const auto found = frame_->variables.find(parameter.text);
            if (found != frame_->variables.end()) value = found->second.value;
            break;
        }
        case Parameter::Source::kSystem:
            value = SystemValue(parameter.text);
            break;
        case Parameter::Source::kRow:
            value = (*row)[static_cast<std::size_t>(parameter.ordinal)];
            break;
    }
    if (!parameter.forColumn) {
        Value converted = Convert(value, from, parameter.to, 0, frame_->options.dateFormat);
        // Of a set of texts; why a lone blank is not kept there, says kMemberCall.
        if (!parameter.isMember || converted.IsNull()) return converted;
        return Value(WithoutLoneBlank(*options_.collation, converted.Text()));
    }
    const ColumnTarget target{parameter.table, parameter.column, parameter.to, parameter.nullable};
    Value stored = ConvertForColumn(value, from, target, parameter.operation, frame_->options.dateFormat);
    // SQLite does not say which values were a duplicate, and the server's message names them.
    if (parameter.isKey) services_.RememberKey(parameter.column, KeyText(stored, parameter.to));
    return stored;
}

// The literals of a long batch, without a detour: what is plain goes into SQLite as it stands in the text.
// Where it answers false the long way is taken, with its conversions and its errors.
bool Executor::BindLiteral(PreparedStatement& statement, int index, const Parameter& parameter,
                           const LiteralValue& literal) const {
    const SqlType& type = parameter.to;
    switch (literal.kind) {
        case LiteralKind::kNull:
            if (!parameter.nullable) return false;
            statement.BindNull(index);
            return true;
        case LiteralKind::kInteger: {
            if (type.kind != TypeKind::kInt && type.kind != TypeKind::kBigInt) return false;
            // An int at most: what is larger is a decimal, and may be refused.
            std::int32_t number = 0;
            const char* end = literal.text.data() + literal.text.size();
            const auto result = std::from_chars(literal.text.data(), end, number);
            if (result.ec != std::errc() || result.ptr != end) return false;
            const bool negated = frame_->literals.IsNegative(literal, parameter.negated);
            statement.Bind(index, negated ? -std::int64_t{number} : std::int64_t{number});
            return true;
        }
        case LiteralKind::kString:
        case LiteralKind::kNString:
            if (!type.IsText() || type.IsFixedText() || literal.doubled) return false;
            // Bytes are never fewer than units: what fits by its bytes needs no counting.
            if (!type.IsMax() && literal.text.size() > static_cast<std::size_t>(type.length)) return false;
            // The batch text stays where it is until the statement has run.
            statement.BindInPlace(index, literal.text);
            return true;
        default:
            return false;
    }
}

void Executor::Bind(Plan& plan, const std::vector<Value>* row) {
    services_.pending.reset();
    services_.keyValues.clear();
    services_.dateFormat = frame_->options.dateFormat;
    const LiteralRun& literals = frame_->literals;
    const bool lasts = plan.takesLiteralsAlone && (literals.IsEmpty() || frame_->sent);
    const Plan::Bound bound{frame_->sent, frame_->options.dateFormat};
    if (lasts && plan.bound == bound) return;
    plan.bound.reset();
    int index = 0;
    for (const Parameter& parameter : plan.translation.parameters) {
        ++index;
        // A value of a key takes the long way, which remembers it for the message.
        if (parameter.source == Parameter::Source::kLiteral && parameter.forColumn &&
            parameter.ordinal >= 0 && !parameter.isKey && !literals.IsEmpty() &&
            BindLiteral(plan.statement, index, parameter, literals.At(parameter.ordinal))) {
            continue;
        }
        BindValue(plan.statement.Handle(), index, ParameterValue(parameter, row), parameter.to);
    }
    if (lasts) plan.bound = bound;
}

bool Executor::StepPlan(Plan& plan) {
    return Stepped(plan, plan.statement.Step());
}

// A query with its values, brought to its first row: whether there is one. Nothing where the catalog was
// taken on trust and others have changed it, so that the plan is to be made anew; nothing has been given of
// it yet.
std::optional<bool> Executor::Begin(Plan& plan) {
    if (!catalog_.IsTrusted()) {
        Bind(plan);
        return StepPlan(plan);
    }
    try {
        Bind(plan);
    } catch (const automation::Error&) {
        // A value may not be of its column's type, or may be of the type that the column has by now.
        catalog_.EndSnapshot();
        return std::nullopt;
    }
    const StepResult result = database_.TryStep(plan.statement);
    if (catalog_.IsUnchanged()) return Stepped(plan, result);
    if (result == StepResult::kFailed) {
        if (!database_.IsLastFailureOfStatement()) return Stepped(plan, result);
        catalog_.EndSnapshot();
        return std::nullopt;
    }
    // Somebody has changed something, hardly ever the catalog.
    const std::uint64_t before = catalog_.Generation();
    catalog_.RefreshAndHold();
    if (catalog_.Generation() != before) return std::nullopt;
    return Stepped(plan, result);
}

bool Executor::Stepped(Plan& plan, StepResult result) {
    if (std::exchange(services_.failedComparison, false)) throw std::bad_alloc();
    // What failed is told before the next call on the connection makes it forget.
    if (result == StepResult::kFailed) {
        if (!services_.pending && database_.LastFailureKind() == FailureKind::kForeignKey)
            FailForeignKey(plan);
        FailStep(plan);
    }
    catalog_.EndSnapshot();
    return result == StepResult::kRow;
}

// What a function of ours has thrown comes first: SQLite knows of it no more than its text.
void Executor::FailStep(const Plan& plan) {
    if (services_.pending) {
        const SqlError error = *services_.pending;
        services_.pending.reset();
        throw error;
    }
    if (database_.LastFailureKind() != FailureKind::kOther)
        throw ConstraintError(catalog_, services_, plan.translation, database_.LastFailureKind(),
                              database_.LastMessage());
    throw database_.LastFailure();
}

void Executor::ReadRow(Plan& plan, std::vector<Value>& row) const {
    const std::vector<ResultColumn>& columns = plan.translation.columns;
    row.clear();
    row.reserve(columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i) {
        row.push_back(ReadColumn(plan.statement.Handle(), static_cast<int>(i), columns[i].type));
    }
}

// A lone literal needs no SQLite: SET @i = 0, an argument of EXEC.
Value Executor::Evaluate(const Expr& expression, SqlType* type) {
    if (const auto* literal = TryAs<LiteralExpr>(&expression);
        literal != nullptr && frame_->literals.IsEmpty()) {
        if (type != nullptr) *type = LiteralType(literal->literal, literal->text);
        return ValueOfLiteral(literal->literal, literal->text);
    }
    Plan& plan =
        PlanFor(&expression, [&](Translator& translator) { return translator.Expression(expression); });
    const ResetAtEnd reset(plan.statement);
    Bind(plan);
    if (type != nullptr) *type = plan.translation.columns.front().type;
    if (!StepPlan(plan)) return {};
    return ReadColumn(plan.statement.Handle(), 0, plan.translation.columns.front().type);
}

bool Executor::IsTrue(const Expr& condition) {
    Plan& plan = PlanFor(&condition, [&](Translator& translator) { return translator.Condition(condition); });
    const ResetAtEnd reset(plan.statement);
    Bind(plan);
    return StepPlan(plan) && plan.statement.Int(0) != 0;
}

std::string Executor::EvaluateText(const Expr& expression) {
    SqlType type;
    const Value value = Evaluate(expression, &type);
    if (value.IsNull()) return {};
    return Convert(value, type, SqlType::NVarChar(kMaxLength)).Text();
}

std::int64_t Executor::EvaluateInt(const Expr& expression) {
    SqlType type;
    const Value value = Evaluate(expression, &type);
    if (value.IsNull()) return 0;
    return Convert(value, type, SqlType::Of(TypeKind::kBigInt)).Int();
}

}  // namespace vicenter::tsql::engine
