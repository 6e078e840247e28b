// The definitions that change a catalog. Each runs in the session's transaction, so a failure leaves nothing
// behind.

#include <algorithm>

#include "automation/object.h"
#include "tsql/base/error_table.h"
#include "tsql/base/text_units.h"
#include "tsql/catalog/catalog.h"
#include "tsql/catalog/file_names.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

constexpr char kSeparator = '\n';

std::string Joined(const std::vector<std::string>& names) {
    std::string text;
    for (std::size_t i = 0; i < names.size(); ++i)
        text += (i == 0 ? std::string() : std::string(1, kSeparator)) + names[i];
    return text;
}

std::string KeyCode(KeyKind kind) {
    switch (kind) {
        case KeyKind::kPrimary:
            return "PK";
        case KeyKind::kUnique:
            return "UQ";
        case KeyKind::kUniqueIndex:
            return "UX";
        case KeyKind::kIndex:
            return "IX";
    }
    return {};
}

struct KeyRow {
    std::string name;
    std::string kind;
    std::string columns;
    std::string referencedTable;
    std::string referencedColumns;
    std::string onDelete;
    std::string onUpdate;
    std::string text;
    std::string sqlText;
};

std::vector<KeyRow> KeyRows(const TableInfo& table) {
    std::vector<KeyRow> rows;
    for (const KeyInfo& key : table.keys) {
        std::vector<std::string> marked;
        for (std::size_t i = 0; i < key.columns.size(); ++i) {
            const bool descending = i < key.descending.size() && key.descending[i];
            marked.push_back((descending ? "-" : "+") + key.columns[i]);
        }
        rows.push_back({key.name, KeyCode(key.kind), Joined(marked), {}, {}, {}, {}, {}, {}});
    }
    for (const ForeignKeyInfo& key : table.foreignKeys) {
        rows.push_back({key.name,
                        "FK",
                        Joined(key.columns),
                        key.referencedTable,
                        Joined(key.referencedColumns),
                        key.onDelete,
                        key.onUpdate,
                        {},
                        Joined(key.defaults)});
    }
    for (const CheckInfo& check : table.checks) {
        rows.push_back({check.name, "CK", {}, {}, {}, {}, {}, check.text, check.sqlText});
    }
    return rows;
}

}  // namespace

// Every change moves a number on, since that is what other sessions look at. It stands among the last
// identity values under the number 0, which no table has.
void Catalog::Touch() {
    EndSnapshot();
    database_.Run(
        "INSERT INTO main.\"ts$identity\"(object, last) VALUES(0, 1) "
        "ON CONFLICT(object) DO UPDATE SET last = last + 1");
    Forget();
    Refresh();
}

// Another session that has read the older form goes on reading it: nothing but the spelling changes.
void Catalog::BringUp() {
    isOfOlderForm_ = false;
    PreparedStatement format = database_.Prepare("PRAGMA main.user_version");
    if (database_.Step(format) && format.Int(0) >= kFormatVersion) return;
    format.Reset();
    // Rows that were let in before a condition was there must not stop it.
    database_.Run("PRAGMA ignore_check_constraints = ON");
    for (const auto& [key, table] : tables_) {
        std::string values;
        std::string others;
        for (const ColumnInfo& column : table->columns) {
            if (!column.type.IsExact() || !column.computedText.empty()) continue;
            const std::string name = Quoted(column.name);
            const std::string plain = "ts_plain(" + name + ")";
            values += (values.empty() ? "" : ", ") + name + " = " + plain;
            others += (others.empty() ? "" : " OR ") + name + " <> " + plain + " COLLATE BINARY";
        }
        if (!values.empty()) database_.Run("UPDATE " + table->Sql() + " SET " + values + " WHERE " + others);
    }
    database_.Run("PRAGMA ignore_check_constraints = OFF");
    database_.Run("PRAGMA main.user_version = " + std::to_string(kFormatVersion));
}

std::int64_t Catalog::WriteTable(const TableInfo& table) {
    std::int64_t id = table.id;
    if (id == 0) {
        PreparedStatement object = database_.Prepare(
            "INSERT INTO \"ts$objects\"(name, kind, created) VALUES(?1, 'U', datetime('now', 'localtime')) "
            "RETURNING id");
        object.Bind(1, table.name);
        if (database_.Step(object)) id = object.Int(0);
        while (database_.Step(object)) {
        }
    }
    for (const char* part : {"ts$columns", "ts$keys"}) {
        database_.Run("DELETE FROM " + Quoted(part) + " WHERE object = " + std::to_string(id));
    }
    PreparedStatement insert = database_.Prepare(
        "INSERT INTO \"ts$columns\" VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14)");
    std::int64_t ordinal = 0;
    for (const ColumnInfo& column : table.columns) {
        insert.Reset();
        insert.Bind(1, id);
        insert.Bind(2, ++ordinal);
        insert.Bind(3, column.name);
        insert.Bind(4, column.type.Name());
        insert.Bind(5, std::int64_t{column.type.length});
        insert.Bind(6, std::int64_t{column.type.precision});
        insert.Bind(7, std::int64_t{column.type.scale});
        insert.Bind(8, std::int64_t{column.nullable ? 1 : 0});
        insert.Bind(9, std::int64_t{column.identity ? 1 : 0});
        insert.Bind(10, column.seed);
        insert.Bind(11, column.increment);
        insert.Bind(12, column.defaultName);
        insert.Bind(13, column.defaultText);
        insert.Bind(14, column.computedText);
        database_.Step(insert);
    }
    PreparedStatement keys =
        database_.Prepare("INSERT INTO \"ts$keys\" VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11)");
    ordinal = 0;
    for (const KeyRow& row : KeyRows(table)) {
        keys.Reset();
        keys.Bind(1, id);
        keys.Bind(2, ++ordinal);
        int parameter = 3;
        for (const std::string* text :
             {&row.name, &row.kind, &row.columns, &row.referencedTable, &row.referencedColumns, &row.onDelete,
              &row.onUpdate, &row.text, &row.sqlText}) {
            keys.Bind(parameter++, *text);
        }
        database_.Step(keys);
    }
    return id;
}

namespace {

// A table or an index of the file bears the name, in whatever letters.
bool IsTaken(Database& database, const TableInfo& table, const std::string& name) {
    PreparedStatement taken =
        database.Prepare(std::string("SELECT 1 FROM ") + (table.temporary ? "temp" : "main") +
                         ".sqlite_schema WHERE name = ?1 COLLATE NOCASE");
    taken.Bind(1, name);
    return database.Step(taken);
}

}  // namespace

void Catalog::CreateTable(TableInfo table) {
    for (KeyInfo& key : table.keys) {
        if (key.kind != KeyKind::kPrimary || key.columns.size() != 1) continue;
        const ColumnInfo* column = table.FindColumn(key.columns.front());
        key.isRowNumber = column->type.IsInteger() && column->computedText.empty();
    }
    if (table.temporary && TakeSpare(table)) return;
    CheckTableName(table.name);
    if (IsTaken(database_, table, table.physical))
        throw MakeError(40510, {}, {"a table named " + table.name});
    for (const ColumnInfo& column : table.columns)
        CheckColumnName(column.name);
    if (table.temporary) {
        database_.Run("CREATE TEMP TABLE" + PhysicalTable(table).substr(std::string("CREATE TABLE").size()));
    } else {
        database_.Run(PhysicalTable(table));
        WriteTable(table);
    }
    for (const KeyInfo& key : table.keys) {
        if (key.isRowNumber) continue;
        MakeIndex(table, key);
    }
    if (table.temporary) {
        AddTemporary(std::move(table));
    } else {
        Touch();
    }
}

void Catalog::DropTable(const TableInfo& table) {
    const std::string sql = table.Sql();
    const std::int64_t id = table.id;
    if (table.temporary) {
        const std::string name = table.name;
        if (!PutAside(table)) database_.Run("DROP TABLE IF EXISTS " + sql);
        DropTemporary(name);
        return;
    }
    database_.Run("DROP TABLE " + sql);
    for (const char* part : {"ts$columns", "ts$keys", "ts$identity"}) {
        database_.Run("DELETE FROM " + Quoted(part) + " WHERE object = " + std::to_string(id));
    }
    database_.Run("DELETE FROM \"ts$objects\" WHERE id = " + std::to_string(id));
    Touch();
}

void Catalog::AddColumn(const TableInfo& table, const ColumnInfo& column) {
    CheckColumnName(column.name);
    TableInfo changed = table;
    changed.columns.push_back(column);
    if (column.computedText.empty()) {
        database_.Run("ALTER TABLE " + table.Sql() + " ADD COLUMN " + PhysicalColumn(changed, column));
    }
    ChangeTable(changed, false);
}

void Catalog::DropColumn(const TableInfo& table, const std::string& column) {
    TableInfo changed = table;
    const bool stored = changed.FindColumn(column)->computedText.empty();
    std::erase_if(changed.columns, [&](const ColumnInfo& entry) { return SameName(entry.name, column); });
    if (stored) database_.Run("ALTER TABLE " + table.Sql() + " DROP COLUMN " + Quoted(column));
    ChangeTable(changed, false);
}

// Text that was replaced behind SQLite's back: every connection has to read the schema again, and does so
// when SQLite's own number of it has moved.
void Catalog::TellSqlite(const TableInfo& table) {
    const std::string pragma = table.temporary ? "PRAGMA temp.schema_version" : "PRAGMA main.schema_version";
    PreparedStatement version = database_.Prepare(pragma);
    const std::int64_t number = database_.Step(version) ? version.Int(0) : 0;
    version.Reset();
    database_.Run(pragma + " = " + std::to_string(number + 1));
}

namespace {

// What SQLite keeps of its tables may be written to, as long as this lasts.
class WritableSchema {
  public:
    explicit WritableSchema(Database& database) : database_(database) {
        database_.Run("PRAGMA writable_schema = ON");
    }
    WritableSchema(const WritableSchema&) = delete;
    WritableSchema& operator=(const WritableSchema&) = delete;
    ~WritableSchema() { database_.RunQuietly("PRAGMA writable_schema = OFF"); }

  private:
    Database& database_;
};

}  // namespace

void Catalog::ChangeTable(const TableInfo& changed, bool rewriteSchema) {
    if (rewriteSchema) {
        // Constraints and types are nothing but text to SQLite's files, so the text alone is replaced.
        const WritableSchema writable(database_);
        PreparedStatement update =
            database_.Prepare(std::string("UPDATE ") + (changed.temporary ? "temp" : "main") +
                              ".sqlite_schema SET sql = ?1 WHERE type = 'table' AND name = ?2");
        update.Bind(1, PhysicalTable(changed));
        update.Bind(2, changed.physical);
        database_.Step(update);
        update.Reset();
    }
    if (!changed.temporary) WriteTable(changed);
    if (rewriteSchema) TellSqlite(changed);
    if (changed.temporary) {
        TableInfo another = changed;
        another.definition = 0;
        another.isAsMade = false;
        AddTemporary(std::move(another));
    } else {
        Touch();
    }
}

void Catalog::CreateIndex(const TableInfo& table, const KeyInfo& key) {
    TableInfo changed = table;
    changed.keys.push_back(key);
    MakeIndex(table, key);
    ChangeTable(changed, false);
}

// "b$c" of table "a" and "c" of table "a$b" have one name in the file.
void Catalog::MakeIndex(const TableInfo& table, const KeyInfo& key) {
    for (const std::string& name : {PhysicalIndexName(table, key), PhysicalNullIndexName(table, key)}) {
        if (IsTaken(database_, table, name)) throw MakeError(40510, {}, {"an index named " + key.name});
    }
    if (const std::string index = PhysicalIndex(table, key); !index.empty()) database_.Run(index);
    if (const std::string nulls = PhysicalNullIndex(table, key); !nulls.empty()) database_.Run(nulls);
}

void Catalog::RemakeNullIndexes(const TableInfo& table) {
    for (const KeyInfo& key : table.keys) {
        database_.Run(std::string("DROP INDEX IF EXISTS ") + (table.temporary ? "temp." : "main.") +
                      Quoted(PhysicalNullIndexName(table, key)));
        if (const std::string nulls = PhysicalNullIndex(table, key); !nulls.empty()) database_.Run(nulls);
    }
}

void Catalog::DropIndex(const TableInfo& table, const std::string& name) {
    TableInfo changed = table;
    for (const KeyInfo& key : table.keys) {
        if (!SameName(key.name, name)) continue;
        for (const std::string& index : {PhysicalIndexName(table, key), PhysicalNullIndexName(table, key)}) {
            database_.Run(std::string("DROP INDEX IF EXISTS ") + (table.temporary ? "temp." : "main.") +
                          Quoted(index));
        }
    }
    std::erase_if(changed.keys, [&](const KeyInfo& entry) { return SameName(entry.name, name); });
    ChangeTable(changed, false);
}

void Catalog::WriteModule(char kind, const std::string& name, const std::string& text) {
    // An altered module keeps its id.
    PreparedStatement write = database_.Prepare(
        "INSERT INTO \"ts$objects\"(name, kind, text, created) VALUES(?1, ?2, ?3, datetime('now', "
        "'localtime')) "
        "ON CONFLICT(name) DO UPDATE SET text = excluded.text");
    write.Bind(1, name);
    write.Bind(2, std::string_view(&kind, 1));
    write.Bind(3, text);
    database_.Step(write);
    write.Reset();
    Touch();
}

void Catalog::DropModule(char kind, const std::string& name) {
    PreparedStatement erase = database_.Prepare("DELETE FROM \"ts$objects\" WHERE name = ?1 AND kind = ?2");
    erase.Bind(1, name);
    erase.Bind(2, std::string_view(&kind, 1));
    database_.Step(erase);
    erase.Reset();
    Touch();
}

}  // namespace vicenter::tsql::engine
