// Which of several foreign keys a change has broken: SQLite says no more than that it is one.

#include <map>
#include <utility>
#include <vector>

#include "automation/object.h"
#include "tsql/run/constraint_error.h"
#include "tsql/run/executor.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

struct KeyOfTable {
    const TableInfo* table = nullptr;
    const ForeignKeyInfo* key = nullptr;
};

// Those that the change may break: the table's own, and those that refer to it.
std::vector<KeyOfTable> KeysAround(const Catalog& catalog, const TableInfo& changed,
                                   std::string_view operation) {
    std::vector<KeyOfTable> keys;
    for (const TableInfo* table : catalog.Tables()) {
        for (const ForeignKeyInfo& key : table->foreignKeys) {
            const bool isOwn = operation != "DELETE" && SameName(table->name, changed.name);
            const bool refers = operation != "INSERT" && SameName(key.referencedTable, changed.name);
            if (isOwn || refers) keys.push_back({table, &key});
        }
    }
    return keys;
}

// How many rows break each, by its table and the columns there.
using Broken = std::map<const ForeignKeyInfo*, int>;

Broken CountBroken(Database& database, const std::vector<KeyOfTable>& keys) {
    Broken counts;
    for (const KeyOfTable& one : keys) {
        const std::string name = "(" + Quoted(one.table->physical) + ")";
        PreparedStatement list = database.Prepare("PRAGMA main.foreign_key_list" + name);
        std::map<std::int64_t, std::vector<std::string>> columns;
        while (database.Step(list))
            columns[list.Int(0)].push_back(list.Text(3));
        PreparedStatement check = database.Prepare("PRAGMA main.foreign_key_check" + name);
        while (database.Step(check)) {
            const std::vector<std::string>& own = columns[check.Int(3)];
            bool same =
                own.size() == one.key->columns.size() && SameName(check.Text(2), one.key->referencedTable);
            for (std::size_t i = 0; same && i < own.size(); ++i)
                same = SameName(own[i], one.key->columns[i]);
            if (same) ++counts[one.key];
        }
    }
    return counts;
}

}  // namespace

// The change is made once more with keys that are looked at later, and undone.
void Executor::FailForeignKey(Plan& plan) {
    const std::string text = database_.LastMessage();
    const Translation& translation = plan.translation;
    const TableInfo* table = catalog_.FindTable(translation.table);
    std::vector<KeyOfTable> keys;
    if (table != nullptr && !table->temporary) keys = KeysAround(catalog_, *table, translation.operation);
    KeyOfTable broken = keys.size() == 1 ? keys.front() : KeyOfTable();
    if (keys.size() > 1) {
        plan.statement.Reset();
        try {
            database_.Run("SAVEPOINT \"ts$broken\"");
            database_.Run("PRAGMA defer_foreign_keys = ON");
            const Broken before = CountBroken(database_, keys);
            while (plan.statement.Step() == StepResult::kRow) {
            }
            plan.statement.Reset();
            for (const auto& [key, count] : CountBroken(database_, keys)) {
                const auto known = before.find(key);
                if (known != before.end() && known->second >= count) continue;
                for (const KeyOfTable& one : keys) {
                    if (one.key == key) broken = one;
                }
            }
        } catch (const SqlError&) {
            // What is told is that some key is broken.
        }
        plan.statement.Reset();
        database_.RunQuietly("ROLLBACK TO \"ts$broken\"");
        database_.RunQuietly("RELEASE \"ts$broken\"");
        database_.RunQuietly("PRAGMA defer_foreign_keys = OFF");
        services_.pending.reset();
    }
    if (broken.key == nullptr)
        throw ConstraintError(catalog_, services_, translation, FailureKind::kForeignKey, text);
    throw BrokenKeyError(translation.operation, *table, *broken.table, *broken.key);
}

}  // namespace vicenter::tsql::engine
