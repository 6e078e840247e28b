// #tables and table variables, and those that are put aside for the next call.

#include <algorithm>
#include <atomic>

#include "tsql/base/text_units.h"
#include "tsql/catalog/catalog.h"

namespace vicenter::tsql::engine {

namespace {

// A session that makes more forms than these by turns has SQLite make and drop its tables.
constexpr std::size_t kMostSpares = 32;

// Whatever a plan may rest on but the table itself and its rows.
bool IsOfOneForm(const TableInfo& one, const TableInfo& other) {
    return one.name == other.name && one.columns == other.columns && one.keys == other.keys &&
           one.checks == other.checks;
}

}  // namespace

std::string_view NameInText(std::string_view table) {
    return table.starts_with('@') ? table.substr(table.find('@', 1)) : table;
}

void Catalog::AddTemporary(TableInfo table) {
    // Numbers of temporary tables lie below those of the account set, as on the server.
    static std::atomic<std::int64_t> next = -1000000000;  // sessions run on threads of their own
    static std::atomic<std::int64_t> definitions = 0;
    if (table.id == 0) table.id = next--;
    if (table.definition == 0) table.definition = ++definitions;
    const std::string key = LowerAscii(table.name);
    temporary_[key] = std::make_shared<TableInfo>(std::move(table));
}

void Catalog::DropTemporary(const std::string& name) {
    temporary_.erase(LowerAscii(name));
}

bool Catalog::Empty(const TableInfo& temporary) {
    try {
        PreparedStatement& emptying = emptying_[temporary.physical];
        if (!emptying) emptying = database_.Prepare("DELETE FROM " + temporary.Sql());
        const ResetAtEnd reset(emptying);
        if (emptying.Step() == StepResult::kDone) return true;
    } catch (const SqlError&) {
        // Whoever asked goes the long way, which tells what is wrong.
    }
    emptying_.erase(temporary.physical);
    return false;
}

// Emptied once more: what has been undone since, a failed statement within a call say, may have brought back
// its rows, or have taken it out of the schema.
bool Catalog::TakeSpare(const TableInfo& wanted) {
    const auto found = std::find_if(spares_.rbegin(), spares_.rend(),
                                    [&](const auto& spare) { return IsOfOneForm(*spare, wanted); });
    if (found == spares_.rend()) return false;
    TableInfo taken = wanted;
    taken.physical = (*found)->physical;
    taken.definition = (*found)->definition;
    spares_.erase(std::next(found).base());
    if (!Empty(taken)) return false;
    AddTemporary(std::move(taken));
    return true;
}

bool Catalog::PutAside(const TableInfo& table) {
    if (!putsAside_ || !table.isAsMade || !Empty(table)) return false;
    spares_.push_back(std::make_shared<const TableInfo>(table));
    if (spares_.size() > kMostSpares) {
        const std::shared_ptr<const TableInfo> oldest = spares_.front();
        spares_.erase(spares_.begin());
        emptying_.erase(oldest->physical);
        database_.RunQuietly("DROP TABLE IF EXISTS " + oldest->Sql());
    }
    return true;
}

std::string Catalog::SpareOfVariable(std::string_view variable) const {
    for (auto spare = spares_.rbegin(); spare != spares_.rend(); ++spare) {
        // Two that are put aside may bear one name, and a caller's variable has taken the other one.
        const std::string& name = (*spare)->name;
        if (NameInText(name) == variable && FindTable(name) == nullptr) return name;
    }
    return {};
}

bool Catalog::IsThere(const TableInfo& temporary) const {
    const auto isIt = [&](const auto& spare) { return spare->physical == temporary.physical; };
    if (std::ranges::any_of(spares_, isIt)) return false;
    PreparedStatement exists =
        database_.Prepare("SELECT 1 FROM temp.sqlite_schema WHERE type = 'table' AND name = ?1");
    exists.Bind(1, temporary.physical);
    return database_.Step(exists);
}

Catalog::Temporaries Catalog::KeepTemporaries() const {
    Temporaries kept;
    kept.spares = spares_;
    for (const auto& [key, table] : temporary_) {
        if (key.front() == '#') kept.tables[key] = {table, table->lastIdentity};
    }
    return kept;
}

void Catalog::PutBack(const Temporaries& before) {
    std::map<std::string, std::shared_ptr<TableInfo>, std::less<>> then;
    for (const auto& [key, table] : temporary_) {
        if (key.front() == '@') then[key] = table;
    }
    for (const auto& [key, kept] : before.tables) {
        then[key] = kept.table;
        const ColumnInfo* identity = kept.table->IdentityColumn();
        if (identity == nullptr) continue;
        std::int64_t& last = kept.table->lastIdentity;
        const auto handOut = [&last, identity](std::int64_t value) {
            last = identity->increment < 0 ? std::min(last, value) : std::max(last, value);
        };
        handOut(kept.lastIdentity);
        const auto now = temporary_.find(key);
        if (now != temporary_.end() && now->second->id == kept.table->id) handOut(now->second->lastIdentity);
    }
    // A table variable stays, and keeps what it has taken.
    Spares spares = before.spares;
    std::erase_if(spares, [&](const auto& spare) {
        return std::ranges::any_of(
            then, [&](const auto& entry) { return entry.second->physical == spare->physical; });
    });
    spares_.swap(spares);
    std::erase_if(emptying_, [&](const auto& entry) {
        return std::ranges::none_of(spares_,
                                    [&](const auto& spare) { return spare->physical == entry.first; });
    });
    if (then == temporary_) return;
    temporary_.swap(then);
    ++generation_;
}

TableInfo* Catalog::FindTemporary(std::string_view name) {
    const auto found = temporary_.find(LowerAscii(name));
    return found == temporary_.end() ? nullptr : found->second.get();
}

const TableInfo* Catalog::FindTemporary(std::int64_t id) const {
    for (const auto& [key, table] : temporary_) {
        if (table->id == id) return table.get();
    }
    return nullptr;
}

std::vector<std::string> Catalog::TemporaryNames() const {
    std::vector<std::string> names;
    for (const auto& [key, table] : temporary_)
        names.push_back(table->name);
    return names;
}

}  // namespace vicenter::tsql::engine
