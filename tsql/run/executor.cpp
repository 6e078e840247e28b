#include "tsql/run/executor.h"

#include <charconv>

#include "automation/object.h"
#include "tsql/base/text_units.h"
#include "tsql/syntax/parse/parser.h"

namespace vicenter::tsql::engine {

namespace {

// Texts whose plans a session keeps.
constexpr std::size_t kKeptShapes = 500;

}  // namespace

Executor::Executor(Database& database, Catalog& catalog, FunctionServices& services,
                   const SessionOptions& options)
    : database_(database), catalog_(catalog), services_(services), options_(options) {
    services_.objectId = [this](std::string_view name, std::string_view type) {
        // Of a name in several parts the last one counts, without its brackets.
        const std::size_t dot = name.rfind('.');
        std::string_view object = dot == std::string_view::npos ? name : name.substr(dot + 1);
        if (object.size() > 1 && object.front() == '[' && object.back() == ']') {
            object = object.substr(1, object.size() - 2);
        }
        const auto id = catalog_.ObjectId(object, type);
        if (!id && catalog_.HasConstraint(object) && (type.empty() || LowerAscii(type) != "u"))
            return Value(1);
        return id ? Value(*id) : Value();
    };
    services_.columnLength = [this](std::string_view table, std::string_view column) {
        const TableInfo* found = FindTable(table);
        const ColumnInfo* entry = found != nullptr ? found->FindColumn(column) : nullptr;
        if (entry == nullptr) return Value();
        const SqlType& type = entry->type;
        if (type.IsMax() || type.length == 0) return Value(type.IsMax() ? -1 : 8);
        return Value(type.IsUnicode() ? type.length * 2 : type.length);
    };
    services_.variable = [this](std::string_view name) { return FindVariable(name, {}).value; };
    services_.nextIdentity = [this] {
        nextIdentity_ += identityStep_;
        return nextIdentity_;
    };
}

Executor::~Executor() = default;

ExecutionReport Executor::Run(std::string_view batch, ResultSink& sink) {
    ExecutionReport report;
    sink_ = &sink;
    report_ = &report;
    tryDepth_ = 0;
    caught_.clear();
    bool failed = false;
    try {
        catalog_.RefreshAndHold();
        RunBatch(batch);
    } catch (const Abort& abort) {
        report.errors.push_back(abort.error.Details());
        failed = true;
    } catch (const SqlError& error) {
        report.errors.push_back(Completed(error, error.Details().line).Details());
        failed = true;
    } catch (const automation::Error& error) {
        report.errors.push_back(MakeError(8624, {}, {error.Text()}).Details());
        failed = true;
    }
    catalog_.EndSnapshot();
    try {
        EndBatch(failed);
    } catch (const SqlError& error) {
        report.errors.push_back(error.Details());
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

void Executor::Reset() {
    if (physical_ || database_.InTransaction()) RollbackPhysical();
    transactionCount_ = 0;
    globalCursors_.clear();
    for (const std::string& name : catalog_.TemporaryNames()) {
        if (const TableInfo* table = catalog_.FindTable(name)) catalog_.DropTable(*table);
    }
    noCount_ = false;
    exactAbort_ = false;
    rowCountLimit_ = 0;
    identityInsert_.clear();
    rowCount_ = 0;
    lastError_ = 0;
    fetchStatus_ = 0;
    identity_ = Value();
    database_.SetLockTimeout(options_.lockTimeoutMilliseconds);
}

namespace {

// A plan is made for the types of its literals, lengths and digits included: '1001' and '1002.01' are two
// types, and a plan for the one would cut the other.
void AppendLiteralTypes(const std::vector<LiteralValue>& literals, std::string& key) {
    constexpr std::size_t kSurelyInt = 9;  // digits
    const auto append = [&key](char mark, std::size_t number) {
        char digits[24];
        const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
        key += mark;
        key.append(digits, end);
    };
    for (const LiteralValue& literal : literals) {
        key += '\x1f';
        switch (literal.kind) {
            case LiteralKind::kInteger:
                if (literal.text.size() <= kSurelyInt) continue;
                break;
            case LiteralKind::kString:
            case LiteralKind::kNString:
                if (literal.doubled) break;
                append('u', UnitCount(literal.text));
                continue;
            default:
                break;
        }
        const SqlType type = LiteralType(literal.kind, literal.Text());
        append('t', static_cast<std::size_t>(type.kind));
        append('u', static_cast<std::size_t>(type.length));
        append('p', static_cast<std::size_t>(type.precision));
        append('s', static_cast<std::size_t>(type.scale));
    }
}

}  // namespace

std::shared_ptr<Unit> Executor::UnitFor(std::string_view batch, std::vector<LiteralValue>& literals,
                                        bool& usesShape) {
    auto shape = ShapeOf(batch);
    usesShape = shape.has_value();
    if (!shape) return ParseUnit(batch, true);
    AppendLiteralTypes(shape->literals, shape->key);
    const auto known = shapes_.find(shape->key);
    if (known != shapes_.end()) {
        for (const std::shared_ptr<Unit>& unit : known->second) {
            bool same = true;
            for (const auto& [ordinal, text] : unit->pinned) {
                same = same && shape->literals[static_cast<std::size_t>(ordinal)].Text() == text;
            }
            if (!same) continue;
            literals = std::move(shape->literals);
            return unit;
        }
    }
    std::shared_ptr<Unit> unit = ParseUnit(batch, false);
    for (const LiteralValue& literal : shape->literals)
        unit->shapeOffsets.push_back(literal.offset);
    if (shapes_.size() >= kKeptShapes) shapes_.clear();
    std::vector<std::shared_ptr<Unit>>& units = shapes_[shape->key];
    // The same shape with ever other fixed literals is not worth keeping.
    if (units.size() >= 8) units.erase(units.begin());
    units.push_back(unit);
    literals = std::move(shape->literals);
    return unit;
}

void Executor::RunBatch(std::string_view batch) {
    std::vector<LiteralValue> literals;
    bool usesShape = false;
    Frame frame;
    frame.unit = UnitFor(batch, literals, usesShape);
    const std::shared_ptr<Unit> unit = frame.unit;
    batchText_ = batch;
    const FrameScope scope(frame_, frame);
    try {
        DeclareAll(unit->statements);
        for (const UnitItem& item : unit->items) {
            if (item.literalCount > 0) {
                RunTemplate(item);
                continue;
            }
            literals_ = usesShape ? &literals : nullptr;
            literalBase_ = 0;
            literalOffsets_ = usesShape ? &unit->shapeOffsets : nullptr;
            pinUnit_ = usesShape ? unit.get() : nullptr;
            const Flow flow = RunStatement(*item.statement);
            literals_ = nullptr;
            literalOffsets_ = nullptr;
            pinUnit_ = nullptr;
            if (flow == Flow::kReturn) break;
        }
    } catch (...) {
        literals_ = nullptr;
        literalOffsets_ = nullptr;
        pinUnit_ = nullptr;
        LeaveFrame(frame);
        throw;
    }
    LeaveFrame(frame);
}

// One more INSERT of a kind that has been seen before: its literals are bound to the statement of the first.
void Executor::RunTemplate(const UnitItem& item) {
    const auto& insert = As<InsertStatement>(*item.statement);
    try {
        Plan* plan = nullptr;
        const TableInfo* table = FindTable(insert.table.Object());
        const bool own = BeginChange(table != nullptr && table->temporary);
        try {
            literals_ = &frame_->unit->literals;
            templateRun_ = true;
            literalBase_ = item.firstLiteral;
            literalOffsets_ = item.offsets;
            pinned_ = false;
            plan = &PlanFor(&insert, [&](Translator& translator) { return translator.Insert(insert); });
            if (!plan->checkedForTemplate) {
                plan->checkedForTemplate = true;
                plan->fitsTemplate = !pinned_;
                for (const Parameter& parameter : plan->translation.parameters) {
                    if (parameter.ordinal >= 0 && !parameter.forColumn) plan->fitsTemplate = false;
                }
            }
            if (plan->fitsTemplate) {
                RunModification(*plan, nullptr);
                lastError_ = 0;
            }
            literals_ = nullptr;
            literalOffsets_ = nullptr;
            templateRun_ = false;
            EndChange(own);
        } catch (...) {
            literals_ = nullptr;
            literalOffsets_ = nullptr;
            templateRun_ = false;
            UndoChange(own);
            throw;
        }
        if (plan->fitsTemplate) return;
    } catch (const SqlError& error) {
        HandleError(error, static_cast<std::int32_t>(item.line));
        return;
    }
    // Its literals have decided too much: this one is read by itself.
    const auto unit = ParseUnit(batchText_.substr(item.begin, item.end - item.begin), false);
    const std::shared_ptr<Unit> outer = frame_->unit;
    frame_->unit = unit;
    frame_->lineBase = static_cast<std::int32_t>(item.line) - 1;
    for (const UnitItem& single : unit->items)
        RunStatement(*single.statement);
    frame_->lineBase = 0;
    frame_->unit = outer;
}

Flow Executor::RunList(const std::vector<StatementPtr>& statements) {
    for (const StatementPtr& statement : statements) {
        const Flow flow = RunStatement(*statement);
        if (flow != Flow::kNext) return flow;
    }
    return Flow::kNext;
}

Flow Executor::RunStatement(const Statement& statement) {
    const auto line = static_cast<std::int32_t>(statement.position.line);
    try {
        return Dispatch(statement);
    } catch (const SqlError& error) {
        HandleError(error, line);
    } catch (const automation::Error& error) {
        HandleError(MakeError(8624, {}, {error.Text()}), line);
    }
    return Flow::kNext;
}

namespace {

// Statements that leave 0 in @@ROWCOUNT though they have no rows to count.
bool ForgetsRowCount(StatementKind kind) {
    switch (kind) {
        case StatementKind::kNoOperation:
        case StatementKind::kSetOption:
        case StatementKind::kCloseCursor:
        case StatementKind::kDeallocate:
        case StatementKind::kPrint:
        case StatementKind::kRaiserror:
        case StatementKind::kTransaction:
            return true;
        default:
            return false;
    }
}

}  // namespace

Flow Executor::Dispatch(const Statement& statement) {
    Flow flow = Flow::kNext;
    // A query that opens the batch goes on in the moment in which the catalog was read.
    if (statement.kind != StatementKind::kSelect && statement.kind != StatementKind::kIf)
        catalog_.EndSnapshot();
    switch (statement.kind) {
        case StatementKind::kSelect:
            Select(As<SelectStatement>(statement));
            break;
        case StatementKind::kInsert:
            Insert(As<InsertStatement>(statement));
            break;
        case StatementKind::kUpdate:
            Update(As<UpdateStatement>(statement));
            break;
        case StatementKind::kDelete:
            Delete(As<DeleteStatement>(statement));
            break;
        case StatementKind::kTruncate:
            Truncate(As<TruncateStatement>(statement));
            break;
        case StatementKind::kCreateTable:
            CreateTable(As<CreateTableStatement>(statement));
            break;
        case StatementKind::kAlterTable:
            AlterTable(As<AlterTableStatement>(statement));
            break;
        case StatementKind::kCreateIndex:
            CreateIndex(As<CreateIndexStatement>(statement));
            break;
        case StatementKind::kCreateView:
            CreateView(As<CreateViewStatement>(statement));
            break;
        case StatementKind::kCreateProcedure:
            CreateProcedure(As<CreateProcedureStatement>(statement));
            break;
        case StatementKind::kDrop:
            Drop(As<DropStatement>(statement));
            break;
        case StatementKind::kNoOperation:
            break;
        case StatementKind::kDeclare:
            DeclareVariables(As<DeclareStatement>(statement));
            return flow;
        case StatementKind::kSetVariable:
            SetVariable(As<SetVariableStatement>(statement));
            break;
        case StatementKind::kSetOption:
            SetOption(As<SetOptionStatement>(statement));
            break;
        case StatementKind::kDeclareCursor:
            DeclareCursor(As<DeclareCursorStatement>(statement));
            break;
        case StatementKind::kSetCursor:
            SetCursor(As<SetCursorStatement>(statement));
            break;
        case StatementKind::kOpenCursor:
            OpenCursor(As<OpenCursorStatement>(statement));
            break;
        case StatementKind::kFetch:
            Fetch(As<FetchStatement>(statement));
            break;
        case StatementKind::kCloseCursor:
            CloseCursor(As<CloseCursorStatement>(statement));
            break;
        case StatementKind::kDeallocate:
            Deallocate(As<DeallocateStatement>(statement));
            break;
        case StatementKind::kBlock:
            return RunList(As<BlockStatement>(statement).statements);
        case StatementKind::kIf:
            return If(As<IfStatement>(statement));
        case StatementKind::kWhile:
            return While(As<WhileStatement>(statement));
        case StatementKind::kBreak:
            return Flow::kBreak;
        case StatementKind::kContinue:
            return Flow::kContinue;
        case StatementKind::kReturn:
            return Return(As<ReturnStatement>(statement));
        case StatementKind::kTryCatch:
            return TryCatch(As<TryCatchStatement>(statement));
        case StatementKind::kPrint:
            Print(As<PrintStatement>(statement));
            break;
        case StatementKind::kRaiserror:
            Raiserror(As<RaiserrorStatement>(statement));
            break;
        case StatementKind::kThrow:
            Throw(As<ThrowStatement>(statement));
            break;
        case StatementKind::kExecute:
            Execute(As<ExecuteStatement>(statement));
            return flow;
        case StatementKind::kExecuteText:
            ExecuteText(As<ExecuteTextStatement>(statement));
            return flow;
        case StatementKind::kTransaction:
            Transaction(As<TransactionStatement>(statement));
            break;
    }
    lastError_ = 0;
    if (ForgetsRowCount(statement.kind)) rowCount_ = 0;
    return flow;
}

SqlError Executor::Completed(const SqlError& error, std::int32_t line) const {
    Diagnostic details = error.Details();
    // An error without a place of its own carries the first place of all, which then is its statement's.
    if (details.line <= 1 && details.column <= 1) details.line = line;
    if (frame_ != nullptr) {
        details.line += frame_->lineBase;
        if (details.procedure.empty()) details.procedure = frame_->procedure;
    }
    return SqlError(details);
}

void Executor::HandleError(SqlError error, std::int32_t line) {
    error = Completed(error, line);
    lastError_ = error.Number();
    rowCount_ = 0;
    if (physical_ && !database_.InTransaction()) {
        // A full disk and its like make SQLite undo everything by itself.
        RollbackPhysical();
        throw Abort{error};
    }
    if (tryDepth_ > 0) throw Abort{error};
    const ErrorEntry* entry = FindError(error.Number());
    const bool aborts = options_.batchTransactions || exactAbort_ ||
                        (entry != nullptr && entry->abortsBatch) || error.Details().severity >= 20;
    if (aborts) throw Abort{error};
    report_->errors.push_back(error.Details());
}

void Executor::LeaveFrame(Frame& frame) {
    for (const std::string& name : frame.temporaries) {
        if (const TableInfo* table = catalog_.FindTable(name)) catalog_.DropTable(*table);
    }
    frame.temporaries.clear();
}

void Executor::DeclareAll(const std::vector<StatementPtr>& statements) {
    for (const StatementPtr& statement : statements)
        Declare(*statement);
}

// Variables exist from their place in the text on, whichever way the code runs.
void Executor::Declare(const Statement& statement) {
    switch (statement.kind) {
        case StatementKind::kBlock:
            DeclareAll(As<BlockStatement>(statement).statements);
            break;
        case StatementKind::kIf:
            Declare(*As<IfStatement>(statement).then);
            if (As<IfStatement>(statement).otherwise) Declare(*As<IfStatement>(statement).otherwise);
            break;
        case StatementKind::kWhile:
            Declare(*As<WhileStatement>(statement).body);
            break;
        case StatementKind::kTryCatch:
            DeclareAll(As<TryCatchStatement>(statement).tried);
            DeclareAll(As<TryCatchStatement>(statement).caught);
            break;
        case StatementKind::kDeclare:
            for (const VariableDeclaration& declared : As<DeclareStatement>(statement).variables) {
                const std::string name = LowerAscii(declared.name);
                if (frame_->variables.contains(name))
                    throw MakeError(134, declared.position, {declared.name});
                Variable variable;
                variable.declaredAt = declared.position.offset;
                switch (declared.kind) {
                    case VariableDeclaration::Kind::kScalar:
                        variable.type = Translator::ResolveType(declared.type);
                        variable.isCursor = variable.type.kind == TypeKind::kCursor;
                        break;
                    case VariableDeclaration::Kind::kCursor:
                        variable.isCursor = true;
                        break;
                    case VariableDeclaration::Kind::kTable: {
                        const std::string table = "@" + std::to_string(++tableVariables_) + name;
                        catalog_.CreateTable(BuildTable(table, declared.table, true));
                        frame_->temporaries.push_back(table);
                        variable.table = table;
                        variable.type = SqlType::Of(TypeKind::kTable);
                        break;
                    }
                }
                frame_->variables.emplace(name, std::move(variable));
            }
            break;
        default:
            break;
    }
}

Variable& Executor::FindVariable(std::string_view name, Position where) {
    const auto found = frame_->variables.find(LowerAscii(name));
    if (found == frame_->variables.end()) throw MakeError(137, where, {name});
    return found->second;
}

std::optional<SqlType> Executor::VariableType(std::string_view name) const {
    const auto found = frame_->variables.find(std::string(name));
    if (found == frame_->variables.end() || found->second.isCursor || !found->second.table.empty()) {
        return std::nullopt;
    }
    return found->second.type;
}

const TableInfo* Executor::FindTable(std::string_view name) const {
    if (!name.empty() && name.front() == '@') {
        const auto found = frame_->variables.find(LowerAscii(name));
        if (found == frame_->variables.end() || found->second.table.empty()) return nullptr;
        return catalog_.FindTable(found->second.table);
    }
    return catalog_.FindTable(name);
}

const CreateViewStatement* Executor::ViewDefinition(std::string_view name) {
    const ModuleInfo* view = catalog_.FindView(name);
    if (view == nullptr) return nullptr;
    std::shared_ptr<Unit>& unit = views_[LowerAscii(name)];
    if (!unit || unit->text != view->text) {
        unit = ParseUnit(view->text, false);
        unit->text = view->text;
    }
    return TryAs<CreateViewStatement>(unit->items.front().statement);
}

int Executor::LiteralOrdinal(const LiteralExpr& literal) const {
    if (literalOffsets_ == nullptr) return -1;
    for (std::size_t i = 0; i < literalOffsets_->size(); ++i) {
        if ((*literalOffsets_)[i] == literal.position.offset) return static_cast<int>(i);
    }
    return -1;
}

bool Executor::TakesIdentity(const TableInfo& table) const {
    return automation::SameName(identityInsert_, table.name);
}

void Executor::PinLiteral(const LiteralExpr& literal) {
    const int ordinal = LiteralOrdinal(literal);
    if (ordinal < 0) return;
    pinned_ = true;
    if (pinUnit_ == nullptr) return;
    for (const auto& pin : pinUnit_->pinned) {
        if (pin.first == ordinal) return;
    }
    pinUnit_->pinned.emplace_back(ordinal, literal.text);
}

Value Executor::SystemValue(std::string_view name) const {
    if (name == "@@rowcount") return Value(rowCount_);
    if (name == "@@error") return Value(std::int64_t{lastError_});
    if (name == "@@fetch_status") return Value(std::int64_t{fetchStatus_});
    if (name == "@@trancount") return Value(transactionCount_);
    if (name == "@@identity") return identity_;
    if (name == "scope_identity") return frame_ != nullptr ? frame_->scopeIdentity : Value();
    if (name == "@@nestlevel") return Value(frame_ != nullptr ? frame_->level : 0);
    if (name == "@@procid") return Value(frame_ != nullptr ? frame_->procedureId : 0);
    if (name == "@@spid") return Value(51);
    if (name == "@@version") return Value(std::string("Embedded account set"));
    if (name == "@@servername" || name == "host_name") return Value(std::string("localhost"));
    if (name == "@@datefirst") return Value(7);
    if (name == "@@language") return Value(std::string("简体中文"));
    if (name == "@@lock_timeout") return Value(options_.lockTimeoutMilliseconds);
    if (name == "@@max_precision") return Value(kMaxPrecision);
    if (name == "@@cursor_rows" || name == "@@options") return Value(0);
    if (name == "getdate") return Value(options_.now());
    if (name == "db_name") return Value(std::string("accountset"));
    if (name == "db_id") return Value(5);
    if (name == "app_name") return Value(std::string("vicenter"));
    if (name == "schema_name" || name == "user" || name == "user_name" || name == "current_user" ||
        name == "session_user" || name == "system_user" || name == "suser_sname") {
        return Value(options_.user);
    }
    if (name == "xact_state") return Value(transactionCount_ > 0 ? 1 : 0);
    if (caught_.empty()) return {};
    const Diagnostic& caught = caught_.back();
    if (name == "error_number") return Value(std::int64_t{caught.number});
    if (name == "error_message") return Value(caught.text);
    if (name == "error_line") return Value(std::int64_t{caught.line});
    if (name == "error_severity") return Value(std::int64_t{caught.severity});
    if (name == "error_state") return Value(std::int64_t{caught.state});
    if (name == "error_procedure" && !caught.procedure.empty()) return Value(caught.procedure);
    return {};
}

}  // namespace vicenter::tsql::engine
