#include "tsql/catalog/catalog.h"

#include "automation/object.h"
#include "tsql/base/error_table.h"
#include "tsql/base/text_units.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

// The mark of an account set in the header of its file.
constexpr std::int64_t kApplicationId = 0x56435441;
constexpr std::int64_t kFirstFormatVersion = 1;
constexpr char kSeparator = '\n';

constexpr const char* kSchema = R"(
CREATE TABLE "ts$objects"(id INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT NOT NULL COLLATE NOCASE UNIQUE,
                          kind TEXT NOT NULL, text TEXT NOT NULL DEFAULT '', created TEXT NOT NULL);
CREATE TABLE "ts$columns"(object INTEGER NOT NULL, ordinal INTEGER NOT NULL, name TEXT NOT NULL COLLATE NOCASE,
                          type TEXT NOT NULL, length INTEGER NOT NULL, precision INTEGER NOT NULL,
                          scale INTEGER NOT NULL, nullable INTEGER NOT NULL, identity INTEGER NOT NULL,
                          seed INTEGER NOT NULL, increment INTEGER NOT NULL, default_name TEXT NOT NULL,
                          default_text TEXT NOT NULL, computed_text TEXT NOT NULL, PRIMARY KEY(object, ordinal));
CREATE TABLE "ts$keys"(object INTEGER NOT NULL, ordinal INTEGER NOT NULL, name TEXT NOT NULL COLLATE NOCASE,
                       kind TEXT NOT NULL, columns TEXT NOT NULL, referenced_table TEXT NOT NULL,
                       referenced_columns TEXT NOT NULL, on_delete TEXT NOT NULL, on_update TEXT NOT NULL,
                       text TEXT NOT NULL, sql_text TEXT NOT NULL, PRIMARY KEY(object, ordinal));
CREATE TABLE "ts$identity"(object INTEGER PRIMARY KEY, last INTEGER NOT NULL);
)";

std::vector<std::string> SplitNames(const std::string& text) {
    std::vector<std::string> names;
    if (text.empty()) return names;
    std::size_t at = 0;
    for (;;) {
        const std::size_t end = text.find(kSeparator, at);
        names.push_back(text.substr(at, end == std::string::npos ? end : end - at));
        if (end == std::string::npos) return names;
        at = end + 1;
    }
}

KeyKind KindFromCode(std::string_view code) {
    if (code == "PK") return KeyKind::kPrimary;
    if (code == "UQ") return KeyKind::kUnique;
    if (code == "UX") return KeyKind::kUniqueIndex;
    return KeyKind::kIndex;
}

// Descending columns are marked with '-', the others with '+'.
KeyInfo KeyFromColumns(std::string name, std::string_view kind, const std::vector<std::string>& marked) {
    KeyInfo key;
    key.name = std::move(name);
    key.kind = KindFromCode(kind);
    for (const std::string& column : marked) {
        key.columns.push_back(column.substr(1));
        key.descending.push_back(column.front() == '-');
    }
    return key;
}

std::string ColumnList(const std::vector<std::string>& names) {
    std::string list;
    for (const std::string& name : names)
        list += (list.empty() ? "" : ", ") + Quoted(name);
    return list;
}

}  // namespace

const ColumnInfo* TableInfo::FindColumn(std::string_view columnName) const {
    for (const ColumnInfo& column : columns) {
        if (SameName(column.name, columnName)) return &column;
    }
    return nullptr;
}

const ColumnInfo* TableInfo::IdentityColumn() const {
    for (const ColumnInfo& column : columns) {
        if (column.identity) return &column;
    }
    return nullptr;
}

const KeyInfo* TableInfo::PrimaryKey() const {
    for (const KeyInfo& key : keys) {
        if (key.kind == KeyKind::kPrimary) return &key;
    }
    return nullptr;
}

bool TableInfo::IsRowNumber(std::string_view columnName) const {
    const KeyInfo* key = PrimaryKey();
    return key != nullptr && key->isRowNumber && SameName(key->columns.front(), columnName);
}

bool TableInfo::IsInUniqueKey(std::string_view columnName) const {
    for (const KeyInfo& key : keys) {
        if (!key.IsUnique()) continue;
        for (const std::string& column : key.columns) {
            if (SameName(column, columnName)) return true;
        }
    }
    return false;
}

std::string TableInfo::Sql() const {
    return (temporary ? "temp." : "main.") + Quoted(physical);
}

std::string PhysicalColumn(const TableInfo& table, const ColumnInfo& column) {
    std::string sql = Quoted(column.name);
    switch (column.type.Storage()) {
        case StorageClass::kInteger:
            sql += " INTEGER";
            if (table.IsRowNumber(column.name)) sql += " PRIMARY KEY";
            break;
        case StorageClass::kReal:
            sql += " REAL";
            break;
        case StorageClass::kDecimal:
            sql += std::string(" TEXT COLLATE ") + kNumberCollationName;
            break;
        case StorageClass::kText:
            sql += std::string(" TEXT COLLATE ") + kTextCollationName;
            break;
        case StorageClass::kDate:
            sql += " TEXT";
            break;
        case StorageClass::kBinary:
            sql += " BLOB";
            break;
    }
    for (const ForeignKeyInfo& key : table.foreignKeys) {
        for (std::size_t i = 0; i < key.defaults.size() && i < key.columns.size(); ++i) {
            if (!SameName(key.columns[i], column.name) || key.defaults[i].empty()) continue;
            return sql + " DEFAULT (" + key.defaults[i] + ")";
        }
    }
    return sql;
}

std::string PhysicalTable(const TableInfo& table) {
    std::string sql = "CREATE TABLE " + Quoted(table.physical) + "(";
    bool first = true;
    for (const ColumnInfo& column : table.columns) {
        if (!column.computedText.empty()) continue;
        if (!first) sql += ", ";
        first = false;
        sql += PhysicalColumn(table, column);
    }
    for (const CheckInfo& check : table.checks) {
        sql += ", CONSTRAINT " + Quoted(check.name) + " CHECK(" + check.sqlText + ")";
    }
    for (const ForeignKeyInfo& key : table.foreignKeys) {
        sql += ", CONSTRAINT " + Quoted(key.name) + " FOREIGN KEY(" + ColumnList(key.columns) +
               ") REFERENCES " + Quoted(key.referencedTable) + "(" + ColumnList(key.referencedColumns) + ")";
        if (!key.onDelete.empty()) sql += " ON DELETE " + key.onDelete;
        if (!key.onUpdate.empty()) sql += " ON UPDATE " + key.onUpdate;
    }
    return sql + ")";
}

std::string PhysicalIndexName(const TableInfo& table, const KeyInfo& key) {
    return table.physical + "$" + key.name;
}

std::string PhysicalIndex(const TableInfo& table, const KeyInfo& key) {
    std::string columns;
    for (std::size_t i = 0; i < key.columns.size(); ++i) {
        // What is computed is in no row of the file. The index finds by what stands before it.
        if (!table.FindColumn(key.columns[i])->computedText.empty()) break;
        if (!columns.empty()) columns += ", ";
        columns += Quoted(key.columns[i]);
        if (i < key.descending.size() && key.descending[i]) columns += " DESC";
    }
    if (columns.empty()) return {};
    return std::string("CREATE ") + (key.IsUnique() ? "UNIQUE " : "") + "INDEX " +
           (table.temporary ? "temp." : "main.") + Quoted(PhysicalIndexName(table, key)) + " ON " +
           Quoted(table.physical) + "(" + columns + ")";
}

std::string PhysicalNullIndexName(const TableInfo& table, const KeyInfo& key) {
    return PhysicalIndexName(table, key) + "$null";
}

std::string PhysicalNullIndex(const TableInfo& table, const KeyInfo& key) {
    if (!key.IsUnique()) return {};
    std::string columns;
    std::string anyNull;
    for (const std::string& name : key.columns) {
        const ColumnInfo& column = *table.FindColumn(name);
        if (!columns.empty()) columns += ", ";
        if (!column.nullable) {
            columns += Quoted(name);
            continue;
        }
        columns += "(" + Quoted(name) + " IS NULL), ifnull(" + Quoted(name) + ", 0)";
        if (column.type.IsText()) columns += std::string(" COLLATE ") + kTextCollationName;
        if (column.type.IsExact()) columns += std::string(" COLLATE ") + kNumberCollationName;
        anyNull += (anyNull.empty() ? "" : " OR ") + Quoted(name) + " IS NULL";
    }
    if (anyNull.empty()) return {};
    return std::string("CREATE UNIQUE INDEX ") + (table.temporary ? "temp." : "main.") +
           Quoted(PhysicalNullIndexName(table, key)) + " ON " + Quoted(table.physical) + "(" + columns +
           ") WHERE " + anyNull;
}

void Catalog::Prepare(bool create) {
    PreparedStatement mark = database_.Prepare("PRAGMA application_id");
    std::int64_t found = database_.Step(mark) ? mark.Int(0) : 0;
    mark.Reset();
    if (found == kApplicationId) {
        // What a later program has made, this one could only damage.
        PreparedStatement format = database_.Prepare("PRAGMA user_version");
        const std::int64_t version = database_.Step(format) ? format.Int(0) : 0;
        if (version > kFormatVersion) throw MakeError(948, {}, {database_.Path(), version, kFormatVersion});
        if (version < kFirstFormatVersion) throw MakeError(5172, {}, {database_.Path()});
        return;
    }
    PreparedStatement tables = database_.Prepare("SELECT count(*) FROM sqlite_schema");
    const bool empty = !database_.Step(tables) || tables.Int(0) == 0;
    tables.Reset();
    if (found != 0 || !empty || !create) throw MakeError(5172, {}, {database_.Path()});
    database_.Run("PRAGMA journal_mode = WAL");
    database_.Run("BEGIN IMMEDIATE");
    // Another process may have been first.
    const bool stillNew = !database_.Step(mark) || mark.Int(0) == 0;
    mark.Reset();
    if (stillNew) {
        database_.Run(kSchema);
        database_.Run("PRAGMA application_id = " + std::to_string(kApplicationId));
        database_.Run("PRAGMA user_version = " + std::to_string(kFormatVersion));
    }
    database_.Run("COMMIT");
}

// Leaves the statement on its row, and with it the snapshot.
std::int64_t Catalog::Version() {
    EndSnapshot();
    if (!versionStatement_) {
        // One row in any case: a set in which nothing has been defined since there is the number has none.
        versionStatement_ =
            database_.Prepare("SELECT ifnull((SELECT last FROM main.\"ts$identity\" WHERE object = 0), 0)");
    }
    holding_ = database_.Step(versionStatement_);
    return holding_ ? versionStatement_.Int(0) : 0;
}

void Catalog::Refresh() {
    RefreshAndHold();
    EndSnapshot();
}

void Catalog::RefreshAndHold() {
    readFrom_.reset();
    const std::int64_t version = Version();
    if (version != version_) {
        Load();
        version_ = version;
        ++generation_;
    }
    // What a transaction has changed may be undone again.
    if (!database_.InTransaction()) readFrom_ = database_.DataVersion();
}

bool Catalog::Trust() {
    isTrusted_ = readFrom_.has_value();
    return isTrusted_;
}

bool Catalog::IsUnchanged() const {
    return readFrom_ == database_.DataVersion();
}

void Catalog::Forget() {
    version_ = -1;
    readFrom_.reset();
    ++generation_;
}

void Catalog::Load() {
    tables_.clear();
    views_.clear();
    procedures_.clear();
    PreparedStatement seal =
        database_.Prepare("SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name = 'ts$digest'");
    mayBeSealed_ = database_.Step(seal);
    PreparedStatement format = database_.Prepare("PRAGMA user_version");
    isOfOlderForm_ = database_.Step(format) && format.Int(0) < kFormatVersion;
    std::map<std::int64_t, TableInfo*> byId;
    PreparedStatement objects = database_.Prepare("SELECT id, name, kind, text FROM \"ts$objects\"");
    while (database_.Step(objects)) {
        const std::string name = objects.Text(1);
        const std::string kind = objects.Text(2);
        if (kind == "U") {
            auto table = std::make_unique<TableInfo>();
            table->id = objects.Int(0);
            table->name = name;
            table->physical = name;
            byId[table->id] = table.get();
            tables_[LowerAscii(name)] = std::move(table);
        } else {
            auto& modules = kind == "V" ? views_ : procedures_;
            modules[LowerAscii(name)] = {objects.Int(0), name, objects.Text(3)};
        }
    }
    PreparedStatement columns = database_.Prepare(
        "SELECT object, name, type, length, precision, scale, nullable, identity, seed, increment, "
        "default_name, "
        "default_text, computed_text FROM \"ts$columns\" ORDER BY object, ordinal");
    while (database_.Step(columns)) {
        const auto owner = byId.find(columns.Int(0));
        if (owner == byId.end()) continue;
        ColumnInfo column;
        column.name = columns.Text(1);
        column.type.kind = KindByName(columns.Text(2));
        column.type.length = static_cast<int>(columns.Int(3));
        column.type.precision = static_cast<int>(columns.Int(4));
        column.type.scale = static_cast<int>(columns.Int(5));
        column.nullable = columns.Int(6) != 0;
        column.identity = columns.Int(7) != 0;
        column.seed = columns.Int(8);
        column.increment = columns.Int(9);
        column.defaultName = columns.Text(10);
        column.defaultText = columns.Text(11);
        column.computedText = columns.Text(12);
        owner->second->columns.push_back(std::move(column));
    }
    PreparedStatement keys = database_.Prepare(
        "SELECT object, name, kind, columns, referenced_table, referenced_columns, on_delete, on_update, "
        "text, "
        "sql_text FROM \"ts$keys\" ORDER BY object, ordinal");
    while (database_.Step(keys)) {
        const auto owner = byId.find(keys.Int(0));
        if (owner == byId.end()) continue;
        TableInfo& table = *owner->second;
        const std::string name = keys.Text(1);
        const std::string kind = keys.Text(2);
        if (kind == "CK") {
            table.checks.push_back({name, keys.Text(8), keys.Text(9)});
        } else if (kind == "FK") {
            table.foreignKeys.push_back({name, SplitNames(keys.Text(3)), keys.Text(4),
                                         SplitNames(keys.Text(5)), keys.Text(6), keys.Text(7),
                                         SplitNames(keys.Text(9))});
        } else {
            KeyInfo key = KeyFromColumns(name, kind, SplitNames(keys.Text(3)));
            key.isRowNumber = key.kind == KeyKind::kPrimary && key.columns.size() == 1 &&
                              database_.IsRowNumber(table.physical, key.columns.front());
            table.keys.push_back(std::move(key));
        }
    }
}

const TableInfo* Catalog::FindTable(std::string_view name) const {
    const std::string key = LowerAscii(name);
    if (!key.empty() && (key.front() == '#' || key.front() == '@')) {
        const auto found = temporary_.find(key);
        return found == temporary_.end() ? nullptr : found->second.get();
    }
    const auto found = tables_.find(key);
    return found == tables_.end() ? nullptr : found->second.get();
}

const ModuleInfo* Catalog::FindView(std::string_view name) const {
    const auto found = views_.find(LowerAscii(name));
    return found == views_.end() ? nullptr : &found->second;
}

std::vector<const ModuleInfo*> Catalog::Views() const {
    std::vector<const ModuleInfo*> views;
    for (const auto& [name, view] : views_)
        views.push_back(&view);
    return views;
}

const ModuleInfo* Catalog::FindProcedure(std::string_view name) const {
    const auto found = procedures_.find(LowerAscii(name));
    return found == procedures_.end() ? nullptr : &found->second;
}

std::vector<const TableInfo*> Catalog::Tables() const {
    std::vector<const TableInfo*> result;
    for (const auto& [key, table] : tables_)
        result.push_back(table.get());
    return result;
}

std::int64_t Catalog::LastIdentity(const TableInfo& table) {
    if (table.temporary) return table.lastIdentity;
    if (!readIdentity_)
        readIdentity_ = database_.Prepare("SELECT last FROM main.\"ts$identity\" WHERE object = ?1");
    const ResetAtEnd reset(readIdentity_);
    readIdentity_.Bind(1, table.id);
    if (database_.Step(readIdentity_)) return readIdentity_.Int(0);
    const ColumnInfo* column = table.IdentityColumn();
    return column->seed - column->increment;
}

void Catalog::SetLastIdentity(const TableInfo& table, std::int64_t value) {
    if (table.temporary) {
        if (TableInfo* own = FindTemporary(table.name)) own->lastIdentity = value;
        return;
    }
    if (!writeIdentity_) {
        writeIdentity_ =
            database_.Prepare("INSERT OR REPLACE INTO main.\"ts$identity\"(object, last) VALUES(?1, ?2)");
    }
    const ResetAtEnd reset(writeIdentity_);
    writeIdentity_.Bind(1, table.id);
    writeIdentity_.Bind(2, value);
    database_.Step(writeIdentity_);
}

}  // namespace vicenter::tsql::engine
