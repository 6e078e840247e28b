#include "tsql/run/deferred_keys.h"

#include <set>
#include <utility>
#include <vector>

#include "tsql/base/error_table.h"
#include "tsql/run/constraint_error.h"

namespace vicenter::tsql::engine {

namespace {

// A foreign key, and how many rows break it.
struct CountedKey {
    const TableInfo* owner = nullptr;
    const ForeignKeyInfo* key = nullptr;
    std::int64_t broken = 0;
};

bool Follows(const ForeignKeyInfo& key) {
    for (const std::string& action : {key.onDelete, key.onUpdate}) {
        if (!action.empty() && action != "no action") return true;
    }
    return false;
}

// The table, and those whose rows follow its own.
std::set<const TableInfo*> TablesBehind(const Catalog& catalog, const TableInfo& table) {
    std::set<const TableInfo*> behind{&table};
    for (bool more = true; more;) {
        more = false;
        for (const TableInfo* owner : catalog.Tables()) {
            for (const ForeignKeyInfo& key : owner->foreignKeys) {
                if (Follows(key) && behind.contains(catalog.FindTable(key.referencedTable)))
                    more = behind.insert(owner).second || more;
            }
        }
    }
    return behind;
}

std::vector<CountedKey> CountBroken(Database& database, const Catalog& catalog, const TableInfo& table) {
    const std::set<const TableInfo*> behind = TablesBehind(catalog, table);
    std::vector<CountedKey> keys;
    for (const TableInfo* owner : catalog.Tables()) {
        for (const ForeignKeyInfo& key : owner->foreignKeys) {
            if (!behind.contains(owner) && !behind.contains(catalog.FindTable(key.referencedTable))) continue;
            std::string given;
            std::string met;
            for (std::size_t i = 0; i < key.columns.size() && i < key.referencedColumns.size(); ++i) {
                const std::string own = "child." + Quoted(key.columns[i]);
                given += (i == 0 ? "" : " AND ") + own + " IS NOT NULL";
                met += (i == 0 ? "" : " AND ") + ("parent." + Quoted(key.referencedColumns[i])) + " = " + own;
            }
            PreparedStatement count =
                database.Prepare("SELECT count(*) FROM " + owner->Sql() + " AS child WHERE " + given +
                                 " AND NOT EXISTS (SELECT 1 FROM main." + Quoted(key.referencedTable) +
                                 " AS parent WHERE " + met + ")");
            keys.push_back({owner, &key, database.Step(count) ? count.Int(0) : 0});
        }
    }
    return keys;
}

}  // namespace

DeferredKeys::DeferredKeys(Database& database, const Catalog& catalog, const TableInfo& table,
                           std::string operation)
    : database_(database), catalog_(catalog), table_(table), operation_(std::move(operation)) {
    database_.Run("SAVEPOINT \"ts$keys\"");
    database_.Run("PRAGMA defer_foreign_keys = ON");
}

DeferredKeys::~DeferredKeys() {
    if (isOpen_) Undo();
}

void DeferredKeys::Undo() {
    isOpen_ = false;
    if (database_.InTransaction()) database_.RunQuietly("ROLLBACK TO \"ts$keys\"; RELEASE \"ts$keys\"");
    database_.RunQuietly("PRAGMA defer_foreign_keys = OFF");
}

void DeferredKeys::Check() {
    if (!database_.HasBrokenKeys()) {
        database_.Run("RELEASE \"ts$keys\"");
        isOpen_ = false;
        database_.Run("PRAGMA defer_foreign_keys = OFF");
        return;
    }
    const std::vector<CountedKey> after = CountBroken(database_, catalog_, table_);
    Undo();
    const std::vector<CountedKey> before = CountBroken(database_, catalog_, table_);
    for (std::size_t i = 0; i < after.size(); ++i) {
        if (after[i].broken > before[i].broken)
            throw BrokenKeyError(operation_, table_, *after[i].owner, *after[i].key);
    }
    throw MakeError(8624, {}, {"FOREIGN KEY"});
}

}  // namespace vicenter::tsql::engine
