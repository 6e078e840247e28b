#include "tsql/run/transaction.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

#include "automation/object.h"
#include "tsql/base/error_table.h"
#include "tsql/sqlite/kept_rows.h"

namespace vicenter::tsql::engine {

void Transactions::Begin() {
    if (readOnly_) throw MakeError(3906, {}, {database_.Path()});
    // A look before reading is not enough to write upon.
    database_.CheckFile();
    database_.Run("BEGIN IMMEDIATE");
    open_ = true;
    changed_ = false;
    marks_ = {Now()};
    NoteBegin();
}

void Transactions::NoteBegin() {
    // Nobody else can change the catalog from here on.
    catalog_.Refresh();
    marks_.front().generation = catalog_.Generation();
    // A backup that is worked on is no copy of anything any more.
    if (catalog_.MayBeSealed()) database_.Run("DELETE FROM main.\"ts$digest\"");
    broughtUp_ = catalog_.IsOfOlderForm();
    if (broughtUp_) catalog_.BringUp();
}

void Transactions::BeginTemporary() {
    database_.Run("BEGIN");
    open_ = true;
    onlyTemporary_ = true;
    changed_ = false;
    marks_ = {Now()};
}

void Transactions::TakeLock() {
    if (readOnly_) throw MakeError(3906, {}, {database_.Path()});
    database_.CheckFile();
    // A change of nothing takes the lock; error 1222 when others have written since this transaction read.
    database_.Run("DELETE FROM main.\"ts$identity\" WHERE object IS NULL");
    onlyTemporary_ = false;
    NoteBegin();
}

void Transactions::CheckNotDoomed() const {
    if (doomed_) throw MakeError(3930, {});
}

template <class Undo>
void Transactions::KeepingVariables(Undo undo) {
    struct Kept {
        TableInfo table;
        KeptRows rows;
    };
    std::vector<Kept> kept;
    for (const std::string& name : catalog_.TemporaryNames()) {
        if (name.front() != '@') continue;
        const TableInfo& table = *catalog_.FindTable(name);
        kept.push_back({table, KeptRows(database_, table.Sql())});
    }
    undo();
    for (const Kept& entry : kept) {
        const TableInfo* now = catalog_.FindTable(entry.table.name);
        // Declared in the transaction, it is gone with it.
        if (now != nullptr) {
            database_.Run("DELETE FROM " + now->Sql());
        } else {
            catalog_.CreateTable(entry.table);
        }
        entry.rows.PutBack(database_, catalog_.FindTable(entry.table.name)->Sql());
    }
}

void Transactions::Commit() {
    if (!open_) return;
    // Into a file that nobody will find again nothing is to be saved.
    if (!onlyTemporary_) database_.CheckFile();
    database_.Run("COMMIT");
    open_ = false;
    onlyTemporary_ = false;
    broughtUp_ = false;
    marks_.clear();
    begin_ = 0;
}

void Transactions::Rollback() {
    if (database_.InTransaction()) database_.Run("ROLLBACK");
    open_ = false;
    onlyTemporary_ = false;
    doomed_ = false;
    count_ = 0;
    begin_ = 0;
    if (marks_.empty()) return;
    if (broughtUp_) marks_.front().generation = 0;
    Restore(marks_.front());
    // Last: where there was no memory for that, it is done before the next batch.
    marks_.clear();
    broughtUp_ = false;
}

// To the outermost BEGIN TRANSACTION, which may have come in the middle of a unit.
void Transactions::RollbackOutermost() {
    if (begin_ == 0) return Rollback();
    ReturnTo(begin_);
    ReleaseMarks(begin_);
    doomed_ = false;
    count_ = 0;
}

bool Transactions::RollbackToSavepoint(const std::string& name) {
    for (std::size_t mark = marks_.size(); mark > begin_ + 1; --mark) {
        if (marks_[mark - 1].name != name) continue;
        KeepingVariables([&] { ReturnTo(mark - 1); });
        return true;
    }
    return false;
}

namespace {

std::string SavepointOf(std::size_t mark) {
    return "ts_mark_" + std::to_string(mark);
}

}  // namespace

Transactions::Mark Transactions::Now(const std::string& name) const {
    return {name, catalog_.Generation(), catalog_.KeepTemporaries()};
}

void Transactions::SetMark(const std::string& name) {
    Mark mark = Now(name);
    marks_.reserve(marks_.size() + 1);
    database_.Run("SAVEPOINT " + SavepointOf(marks_.size()));
    marks_.push_back(std::move(mark));
}

void Transactions::ReturnTo(std::size_t mark) {
    catalog_.EndSnapshot();
    database_.Run("ROLLBACK TO " + SavepointOf(mark));
    marks_.resize(mark + 1);
    Restore(marks_[mark]);
}

void Transactions::ReleaseMarks(std::size_t first) {
    if (first == 0) first = 1;
    if (marks_.size() > first) {
        database_.Run("RELEASE " + SavepointOf(first));
        marks_.resize(first);
    }
    begin_ = 0;
}

void Transactions::Restore(const Mark& mark) {
    const bool changed = catalog_.Generation() != mark.generation;
    if (changed) catalog_.Forget();
    catalog_.PutBack(mark.temporaries);
    ForgetTemporaries();
    if (changed) catalog_.Refresh();
}

// What is there no more, such as a table variable that was declared in what is undone.
void Transactions::ForgetTemporaries() {
    for (const std::string& name : catalog_.TemporaryNames()) {
        if (!catalog_.IsThere(*catalog_.FindTable(name))) catalog_.DropTemporary(name);
    }
}

void Transactions::DropForGood(std::int64_t id, const ShadowedTables& shadowed) {
    const auto isIt = [&](const auto& entry) { return entry.second.table->id == id; };
    for (Mark& mark : marks_) {
        auto& tables = mark.temporaries.tables;
        const auto entry = std::find_if(tables.begin(), tables.end(), isIt);
        if (entry == tables.end()) continue;
        const auto outer = shadowed.find(entry->first);
        if (outer == shadowed.end()) {
            tables.erase(entry);
        } else {
            entry->second = {std::make_shared<TableInfo>(outer->second), outer->second.lastIdentity};
        }
    }
    if (const TableInfo* table = catalog_.FindTemporary(id)) catalog_.DropTable(*table);
}

Transactions::Mark Transactions::StartDefinition() {
    Mark before = Now();
    changed_ = true;
    database_.Run("SAVEPOINT ts_definition");
    return before;
}

void Transactions::UndoDefinition(const Mark& before) {
    // A full disk has made SQLite undo everything; the executor sees to that.
    if (!database_.InTransaction()) return;
    catalog_.EndSnapshot();
    database_.RunQuietly("ROLLBACK TO ts_definition; RELEASE ts_definition");
    Restore(before);
}

bool Transactions::BeginChange(bool temporary) {
    CheckNotDoomed();
    catalog_.EndSnapshot();
    // What ROLLBACK is to undo must be begun.
    if (temporary && count_ > 0 && !open_) BeginTemporary();
    if (!temporary && open_ && onlyTemporary_) TakeLock();
    const bool begins = !temporary && !open_;
    if (begins) Begin();
    changed_ = true;
    return begins && !batchIsUnit_ && count_ == 0;
}

void Transactions::StartBatch(bool mayWrite) {
    batchMayWrite_ = mayWrite;
    if (mayWrite && open_ && onlyTemporary_ && !doomed_) {
        catalog_.EndSnapshot();
        TakeLock();
    }
    if (!mayWrite || open_ || (!batchIsUnit_ && count_ == 0)) return;
    catalog_.EndSnapshot();
    Begin();
}

void Transactions::Reset() {
    if (open_ || database_.InTransaction() || !marks_.empty()) Rollback();
    count_ = 0;
}

void Transactions::EndBatch(bool failed) {
    if (failed) {
        if (open_ || count_ > 0) Rollback();
        return;
    }
    if (count_ > 0 || !open_) return;
    try {
        Commit();
    } catch (...) {
        Rollback();
        throw;
    }
}

void Transactions::Run(const TransactionStatement& statement) {
    switch (statement.action) {
        case TransactionAction::kBegin:
            if (batchMayWrite_ && !open_) {
                catalog_.EndSnapshot();
                Begin();
            } else if (count_ == 0 && open_ && changed_) {
                // In the middle of a unit: what stands before it is none of its own. Where nothing does, the
                // file is left as if nobody had begun.
                SetMark({});
                begin_ = marks_.size() - 1;
            }
            if (count_ == 0) name_ = statement.name.text;
            ++count_;
            break;
        case TransactionAction::kCommit:
            CheckNotDoomed();
            if (count_ == 0) throw MakeError(3902, statement.position);
            --count_;
            if (count_ > 0) break;
            // A batch that is one unit commits at its end.
            if (batchIsUnit_) {
                ReleaseMarks(begin_);
            } else {
                Commit();
            }
            break;
        case TransactionAction::kRollback: {
            if (!statement.name.IsEmpty() && open_ && RollbackToSavepoint(statement.name.text)) break;
            // Otherwise it is the name of the transaction.
            if (count_ == 0) throw MakeError(3903, statement.position);
            // By its name the outermost transaction alone is undone. A variable's value is not known here.
            if (!statement.name.IsEmpty() && statement.name.text != name_ &&
                !statement.name.text.starts_with('@') && !name_.starts_with('@'))
                throw MakeError(6401, statement.position, {statement.name.text});
            KeepingVariables([&] { RollbackOutermost(); });
            break;
        }
        case TransactionAction::kSave:
            if (count_ == 0) throw MakeError(628, statement.position);
            CheckNotDoomed();
            if (!open_) Begin();
            SetMark(statement.name.text);
            break;
    }
}

}  // namespace vicenter::tsql::engine
