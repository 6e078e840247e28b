#include "tsql/run/executor.h"

#include <algorithm>
#include <charconv>
#include <exception>
#include <new>
#include <utility>

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/run/write_forecast.h"
#include "tsql/syntax/ast_children.h"
#include "tsql/syntax/parse/parser.h"

namespace vicenter::tsql::engine {

namespace {

constexpr std::int32_t kFirstUserError = 50000;

// A table variable bears a number before its own name, "@12@t", which no message tells.
void NameVariable(std::string& text) {
    constexpr std::string_view kBefore = "able '@";
    const std::size_t found = text.find(kBefore);
    if (found == std::string::npos) return;
    const std::size_t at = found + kBefore.size();
    const std::size_t end = text.find_first_not_of("0123456789", at);
    if (end != std::string::npos && end > at && text[end] == '@') text.erase(at, end + 1 - at);
}

}  // namespace

Executor::Executor(Database& database, Catalog& catalog, FunctionServices& services,
                   const SessionOptions& options)
    : database_(database),
      catalog_(catalog),
      services_(services),
      options_(options),
      programs_(options.keepsPlans),
      transactions_(database, catalog, options.batchTransactions, options.readOnly) {
    setOptions_.lockTimeoutMilliseconds = options_.lockTimeoutMilliseconds;
    if (!options_.keepsPlans) catalog_.PutNothingAside();
    ServeFacts();
    services_.variable = [this](std::string_view name) { return FindVariable(name, {}).value; };
    // Called for each row while SQLite runs the INSERT, so that INSERT … SELECT numbers its rows in their
    // order.
    services_.nextIdentity = [this] {
        HandIdentity(NextIdentity());
        return lastIdentity_;
    };
    services_.identityGiven = [this](std::int64_t given) { HandIdentity(given); };
}

Executor::~Executor() = default;

// Nothing leaves this but a report. What fails while a failed batch is cleared away is told beside its error,
// and where memory ran out that alone is told, since the report itself may be incomplete.
ExecutionReport Executor::Run(std::string_view batch, ResultSink& sink) {
    ExecutionReport report;
    sink_ = &sink;
    report_ = &report;
    tryDepth_ = 0;
    caught_.clear();
    bool failed = true;
    bool outOfMemory = false;
    keepsTransaction_ = false;
    try {
        failed = !RunReporting(batch);
        if (!failed && transactions_.IsDoomed()) {
            Report(MakeError(3998, {}).Details());
            failed = true;
        }
        EndStopping(report, failed);
    } catch (const std::bad_alloc&) {
        failed = outOfMemory = true;
    }
    // From here on nothing may be stopped: what is left to do undoes the batch or commits it.
    database_.Stopping().End();
    catalog_.EndSnapshot();
    // An order that was kept without a true comparison would be a damaged index.
    if (std::exchange(services_.failedComparison, false)) failed = outOfMemory = true;
    try {
        transactions_.EndBatch(failed && !(keepsTransaction_ && transactions_.Count() > 0));
    } catch (const SqlError& error) {
        toUndo_ = true;
        Report(error.Details());
    } catch (const std::bad_alloc&) {
        toUndo_ = true;
        outOfMemory = true;
    }
    if (outOfMemory) {
        report.errors.clear();
        Report(MakeError(kInsufficientMemory, {}).Details());
    }
    if (failed) {
        report.rowsAffected = -1;
        lastError_ = report.errors.front().number;
    }
    frame_ = nullptr;
    sink_ = nullptr;
    report_ = nullptr;
    return report;
}

void Executor::Report(const Diagnostic& error, bool goesOn) {
    report_->errors.push_back(error);
    sink_->Failed(error, goesOn);
}

// False when the batch failed; the error is then in the report.
bool Executor::RunReporting(std::string_view batch) {
    try {
        // Before anything is read: what a batch without memory has left open would be taken for the set.
        if (toUndo_) transactions_.Reset();
        toUndo_ = false;
        database_.CheckFileBeforeReading();
        const ProgramStore::Batch* known = programs_.Known(batch);
        // Held until a first query reads, so that it sees tables and rows of one moment.
        if (known == nullptr || !IsPlannedQuery(*known->program) || !catalog_.Trust())
            catalog_.RefreshAndHold();
        if (known != nullptr) {
            RunBatch(batch, *known);
        } else {
            RunBatch(batch, programs_.ForBatch(batch));
        }
        return true;
    } catch (const Abort& abort) {
        Report(abort.error.Details());
        keepsTransaction_ = !options_.batchTransactions && !Dooms(abort);
    } catch (const SqlError& error) {
        Report(Completed(error, error.Details().line).Details());
    } catch (const automation::Error& error) {
        Report(MakeError(8624, {}, {error.Text()}).Details());
    } catch (const std::bad_alloc&) {
        throw;
    } catch (const std::exception& error) {
        // Of whoever takes the rows: the session is to end its batch as after any other error.
        Report(MakeError(8624, {}, {error.what()}).Details());
    }
    return false;
}

// A batch that was stopped failed by that and by nothing else, whatever its statements made of it.
void Executor::EndStopping(ExecutionReport& report, bool& failed) {
    Interruption& stopping = database_.Stopping();
    stopping.End();
    if (stopping.Reason() == StopReason::kNone) return;
    report.stopped = stopping.Reason();
    Diagnostic stopped = MakeError(kCancelledBatch, {}).Details();
    if (!report.errors.empty()) {
        stopped.line = report.errors.back().line;
        stopped.procedure = report.errors.back().procedure;
    }
    report.errors = {stopped};
    failed = true;
}

void Executor::Reset() {
    transactions_.Reset();
    globalCursors_.clear();
    for (const std::string& name : catalog_.TemporaryNames()) {
        if (const TableInfo* table = catalog_.FindTable(name)) catalog_.DropTable(*table);
    }
    refused_.clear();
    setOptions_ = SetOptions();
    setOptions_.lockTimeoutMilliseconds = options_.lockTimeoutMilliseconds;
    rowCount_ = 0;
    lastError_ = 0;
    fetchStatus_ = 0;
    identity_ = Value();
    database_.SetLockTimeout(options_.lockTimeoutMilliseconds);
}

void Executor::RunBatch(std::string_view batch, const ProgramStore::Batch& run) {
    Frame frame;
    frame.program = run.program;
    frame.text = batch;
    frame.options = setOptions_;
    frame.sent = run.sent;
    if (run.sent)
        frame.literals = LiteralRun(run.sent->literals, run.program->shapeOffsets, run.program->pinned);
    RunIn(frame, [&] {
        const std::optional<const Statement*> chosen = ReadingBranch(*run.program);
        // Known beforehand, since a reader that turns out to write may find that others have written since it
        // began.
        transactions_.StartBatch(
            !chosen && WriteForecast(catalog_, programs_, frame.literals).MayWrite(run.program->statements));
        // A variable is there from the batch's beginning, whichever branch it is declared in.
        DeclareAll(run.program->statements);
        // Those of a procedure are looked for when it is called.
        if (run.program->items.empty() ||
            run.program->items.front().statement->kind != StatementKind::kCreateProcedure)
            CheckVariables();
        try {
            CheckNames(*run.program, run.program->statements);
        } catch (const SqlError& error) {
            throw FailureOfText(error, frame);
        }
        if (!chosen) {
            RunItems(*run.program);
        } else if (*chosen != nullptr) {
            RunStatement(**chosen);
        } else {
            lastError_ = 0;
            rowCount_ = 0;
        }
    });
}

// A query that is all of its batch, with a plan of what the catalog knows: whether somebody has changed the
// file since, the query itself finds out in its first step.
bool Executor::IsPlannedQuery(const Program& program) const {
    if (program.items.size() != 1 || transactions_.IsOpen() || transactions_.Count() > 0) return false;
    const auto* select = TryAs<SelectStatement>(program.items.front().statement);
    if (select == nullptr || !FirstSelect(*select->query->body).into.IsEmpty()) return false;
    const auto found = program.plans.find(select);
    if (found == program.plans.end() || !found->second) return false;
    const Plan& plan = *found->second;
    return plan.readsSet && plan.translation.temporaries.empty() && plan.IsCurrent(catalog_, setOptions_);
}

// "IF NOT EXISTS(…) INSERT …" by itself, as a program sends it before each of its reads, hardly ever writes:
// what its condition says now decides whether it takes the lock at all, so that no writer elsewhere keeps it
// waiting. The branch that is to run where that reads, null where there is none; nothing for any other batch
// and for a branch that may write: its condition is asked again under the lock.
std::optional<const Statement*> Executor::ReadingBranch(const Program& program) {
    if (program.statements.size() != 1 || program.statements.front()->kind != StatementKind::kIf ||
        !options_.batchTransactions || transactions_.IsOpen() || transactions_.Count() > 0)
        return std::nullopt;
    const auto& statement = As<IfStatement>(*program.statements.front());
    WriteForecast forecast(catalog_, programs_, frame_->literals);
    if (!forecast.MayWrite(statement)) return std::nullopt;
    const Statement* branch = nullptr;
    try {
        branch = IsTrue(*statement.condition) ? statement.then.get() : statement.otherwise.get();
    } catch (const SqlError&) {
        return std::nullopt;  // it fails again where its error is told
    } catch (const automation::Error&) {
        return std::nullopt;
    }
    if (branch != nullptr && forecast.MayWrite(*branch)) return std::nullopt;
    return branch;
}

// One more INSERT of a kind that has been seen before: its literals are bound to the statement of the first.
void Executor::RunRepeated(const ProgramItem& item) {
    const auto& insert = As<InsertStatement>(*item.statement);
    try {
        database_.Stopping().Check();
        RefuseBehindSwitch(insert);
        const TableInfo* table = FindTable(insert.table.Object());
        bool fits = false;
        transactions_.Change(table != nullptr && table->temporary, [&] {
            const LiteralScope scope(*frame_,
                                     LiteralRun(frame_->program->literals, item.firstLiteral, *item.offsets));
            Plan& plan = PlanFor(&insert, [&](Translator& translator) { return translator.Insert(insert); });
            // Not so where a literal decided something: a varchar's length in a sum of texts, say; or where
            // the row is to be looked at.
            fits = plan.takesAnyLiterals && plan.translation.checkedView.empty();
            if (!fits) return;
            RunModification(plan, nullptr);
            lastError_ = 0;
        });
        if (fits) return EndStatement(insert);
    } catch (SqlError& error) {
        // A place in the tree is a place in the first of them.
        const Diagnostic& details = error.Details();
        if (details.line > 1 || details.column > 1)
            error.SetLine(details.line + static_cast<std::int32_t>(item.line - insert.position.line));
        HandleError(error, static_cast<std::int32_t>(item.line));
        return;
    }
    // Its literals have decided too much: this one is read by itself. Its lines count from its own beginning.
    const auto single = ParseProgram(frame_->text.substr(item.begin, item.end - item.begin), false);
    const std::shared_ptr<Program> outer = frame_->program;
    frame_->program = single;
    frame_->lineBase = static_cast<std::int32_t>(item.line) - 1;
    for (const ProgramItem& part : single->items)
        RunStatement(*part.statement);
    frame_->lineBase = 0;
    frame_->program = outer;
}

template <class Items, class Each>
Flow Executor::RunWithLabels(const Items& items, Each run) {
    const auto& statementOf = [](const auto& item) -> const Statement& {
        if constexpr (std::is_same_v<std::decay_t<decltype(item)>, ProgramItem>) {
            return *item.statement;
        } else {
            return *item;
        }
    };
    for (std::size_t at = 0; at < items.size();) {
        const Flow flow = run(items[at]);
        ++at;
        if (flow == Flow::kNext) continue;
        if (flow != Flow::kGoto) return flow;
        const auto label = std::find_if(items.begin(), items.end(),
                                        [&](const auto& item) { return IsWantedLabel(statementOf(item)); });
        if (label == items.end()) return flow;
        at = static_cast<std::size_t>(label - items.begin()) + 1;
    }
    return Flow::kNext;
}

Flow Executor::RunList(const std::vector<StatementPtr>& statements) {
    return RunWithLabels(statements,
                         [this](const StatementPtr& statement) { return RunStatement(*statement); });
}

Flow Executor::RunItems(const Program& program) {
    return RunWithLabels(program.items, [this](const ProgramItem& item) {
        if (item.literalCount == 0) return RunStatement(*item.statement);
        RunRepeated(item);
        return Flow::kNext;
    });
}

Flow Executor::RunStatement(const Statement& statement) {
    const auto line = static_cast<std::int32_t>(statement.position.line);
    unbound_ = false;
    try {
        database_.Stopping().Check();
        RefuseBehindSwitch(statement);
        return Dispatch(statement);
    } catch (const SqlError& error) {
        HandleError(error, line);
    } catch (const automation::Error& error) {
        HandleError(MakeError(8624, {}, {error.Text()}), line);
    }
    return Flow::kNext;
}

// An error gets its line where it is caught for the first time, which is the innermost statement.
SqlError Executor::Completed(const SqlError& error, std::int32_t line) const {
    Diagnostic details = error.Details();
    // An error without a place of its own carries the first place of all, which then is its statement's.
    if (details.line <= 1 && details.column <= 1) details.line = line;
    if (details.number < kFirstUserError) NameVariable(details.text);
    if (frame_ != nullptr) {
        details.line += frame_->lineBase;
        if (details.procedure.empty()) details.procedure = frame_->procedure;
    }
    return SqlError(details);
}

// What an error ends: its statement alone, or with the batch all that is being run. A TRY takes whatever ends
// a batch, unless the error is one of names and types in its own text, which the server tells when it
// compiles it.
void Executor::HandleError(SqlError error, std::int32_t line) {
    error = Completed(error, line);
    lastError_ = error.Number();
    rowCount_ = 0;
    const Frame* unboundIn = std::exchange(unbound_, false) ? frame_ : nullptr;
    const std::int32_t first = std::exchange(firstError_, 0);
    const ErrorEntry* entry = FindError(first != 0 ? first : error.Number());
    const bool endsText = entry != nullptr && entry->ends == Ends::kText;
    if (transactions_.IsOpen() && !database_.InTransaction()) {
        // A full disk and its like make SQLite undo everything by itself.
        transactions_.Rollback();
        throw Abort{error};
    }
    // What RAISERROR tells is none of XACT_ABORT's.
    const bool exactAbort = frame_->options.exactAbort && error.Number() < kFirstUserError;
    if (tryDepth_ > 0) throw Abort{error, unboundIn, endsText, exactAbort};
    const bool aborts = options_.batchTransactions || exactAbort ||
                        (entry != nullptr && entry->ends != Ends::kStatement) ||
                        error.Details().severity >= 20;
    if (aborts) throw Abort{error, unboundIn, endsText, exactAbort};
    Report(error.Details());
}

// What a text that is called is told before any of it runs.
Abort Executor::FailureOfText(const SqlError& error, const Frame& callee) {
    const ErrorEntry* entry = FindError(error.Number());
    lastError_ = error.Number();
    rowCount_ = 0;
    return {Completed(error, error.Details().line), &callee, entry != nullptr && entry->ends == Ends::kText,
            callee.options.exactAbort};
}

// An error of the text that was called ends that, and the caller goes on; unless somebody waits for the
// error, or the batch is one unit.
void Executor::EndCall(const Abort& abort) {
    const bool goesOn = abort.endsText && tryDepth_ == 0 && !options_.batchTransactions && !abort.exactAbort;
    if (!goesOn) throw abort;
    Report(abort.error.Details());
}

bool Executor::Dooms(const Abort& abort) const {
    const Diagnostic& details = abort.error.Details();
    if (abort.exactAbort || details.severity >= 17 || details.number == kCancelledBatch) return true;
    if (abort.unboundIn != nullptr || details.number >= kFirstUserError) return false;
    const ErrorEntry* entry = FindError(details.number);
    return abort.endsText || (entry != nullptr && entry->ends == Ends::kBatch);
}

void Executor::LeaveFrame(Frame& frame) {
    // What a batch has set holds for the next one, what a call has set is gone with its frame.
    if (frame.caller == nullptr) setOptions_ = frame.options;
    const SetOptions& now = frame.caller != nullptr ? frame.caller->options : setOptions_;
    if (now.lockTimeoutMilliseconds != frame.options.lockTimeoutMilliseconds)
        database_.SetLockTimeout(now.lockTimeoutMilliseconds);
    // No table goes while anything is read.
    if (!frame.temporaries.empty()) catalog_.EndSnapshot();
    for (const std::int64_t id : frame.temporaries)
        transactions_.DropForGood(id, frame.shadowed);
    frame.temporaries.clear();
    for (const auto& [name, outer] : frame.shadowed)
        BringBack(outer);
    frame.shadowed.clear();
}

bool Executor::Shadow(const std::string& name) {
    const TableInfo* taken = catalog_.FindTable(name);
    if (taken == nullptr) return true;
    if (frame_->level == 0) return false;
    const auto& own = frame_->temporaries;
    if (std::find(own.begin(), own.end(), taken->id) != own.end()) return false;
    frame_->shadowed.insert_or_assign(LowerAscii(name), *taken);
    catalog_.DropTemporary(name);
    return true;
}

void Executor::BringBack(const TableInfo& shadowed) {
    if (catalog_.FindTable(shadowed.name) != nullptr) return;
    // One that was made in what has been undone is gone.
    if (catalog_.IsThere(shadowed)) catalog_.AddTemporary(shadowed);
}

}  // namespace vicenter::tsql::engine
