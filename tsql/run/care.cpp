#include "tsql/run/care.h"

#include <algorithm>
#include <map>
#include <set>

#include "tsql/catalog/catalog.h"
#include "tsql/functions/functions.h"
#include "tsql/run/value_check.h"
#include "tsql/sqlite/copy.h"
#include "tsql/sqlite/database.h"

namespace vicenter::tsql::engine {

namespace {

constexpr std::size_t kMostFindings = 100;

// An account set opened for care: no session, no temporary tables.
class Opened {
  public:
    Opened(const std::string& file, const CareOptions& options) : catalog_(database_) {
        services_.collation = options.collation;
        database_.Open(file, false, options.lockTimeoutMilliseconds);
        RegisterFunctions(database_.Handle(), services_);
        catalog_.Prepare(false);
        database_.Run("PRAGMA synchronous = EXTRA");
    }

    Database& Data() { return database_; }
    Catalog& Definitions() { return catalog_; }
    // Before the file is moved as it is, without a log beside it: closing would fail in silence.
    void BringAllHome() {
        if (!database_.BringHome()) throw database_.LastFailure();
    }

  private:
    FunctionServices services_;
    Database database_;
    Catalog catalog_;
};

bool HasSeal(Database& database) {
    PreparedStatement found =
        database.Prepare("SELECT 1 FROM sqlite_schema WHERE type = 'table' AND name = 'ts$digest'");
    if (!database.Step(found)) return false;
    PreparedStatement digests = database.Prepare("SELECT 1 FROM \"ts$digest\"");
    return database.Step(digests);
}

// By table; the schema under a name that no table has.
std::map<std::string, Digest> DigestsOf(Database& database) {
    std::map<std::string, Digest> digests;
    digests["*"] =
        DigestOf(database,
                 "SELECT type, name, tbl_name, sql FROM sqlite_schema WHERE tbl_name <> 'ts$digest' "
                 "ORDER BY type, name");
    std::vector<std::string> tables;
    PreparedStatement names =
        database.Prepare("SELECT name FROM sqlite_schema WHERE type = 'table' AND name <> 'ts$digest'");
    while (database.Step(names))
        tables.push_back(names.Text(0));
    for (const std::string& table : tables)
        digests[table] = DigestOf(database, "SELECT * FROM " + Quoted(table) + " ORDER BY rowid");
    return digests;
}

void Seal(Database& database) {
    database.Run("BEGIN IMMEDIATE");
    database.Run(
        "DROP TABLE IF EXISTS \"ts$digest\";"
        "CREATE TABLE \"ts$digest\"(name TEXT PRIMARY KEY, row_count INTEGER NOT NULL, digest TEXT NOT "
        "NULL)");
    PreparedStatement insert = database.Prepare("INSERT INTO \"ts$digest\" VALUES (?1, ?2, ?3)");
    for (const auto& [table, digest] : DigestsOf(database)) {
        insert.Bind(1, table);
        insert.Bind(2, digest.rows);
        insert.Bind(3, digest.text);
        database.Step(insert);
        insert.Reset();
    }
    database.Run("COMMIT");
}

void CheckSeal(Database& database, std::vector<std::string>& findings) {
    if (!HasSeal(database)) return;
    std::map<std::string, Digest> now = DigestsOf(database);
    PreparedStatement sealed = database.Prepare("SELECT name, row_count, digest FROM \"ts$digest\"");
    while (database.Step(sealed)) {
        const std::string table = sealed.Text(0);
        const auto found = now.find(table);
        const Digest then{sealed.Int(1), sealed.Text(2)};
        if (found == now.end()) {
            findings.push_back("备份校验：缺少表 " + table);
        } else if (found->second != then) {
            findings.push_back("备份校验：" + (table == "*" ? std::string("表结构") : "表 " + table) +
                               "的内容与备份时不同");
        }
        if (found != now.end()) now.erase(found);
    }
    for (const auto& [table, digest] : now)
        findings.push_back("备份校验：多出表 " + table);
}

void CheckStructure(Database& database, std::vector<std::string>& findings) {
    PreparedStatement check =
        database.Prepare("PRAGMA integrity_check(" + std::to_string(kMostFindings) + ")");
    while (database.Step(check)) {
        if (check.Text(0) != "ok") findings.push_back("文件结构：" + check.Text(0));
    }
    PreparedStatement keys = database.Prepare("PRAGMA foreign_key_check");
    while (database.Step(keys) && findings.size() < kMostFindings)
        findings.push_back("外键：表 " + keys.Text(0) + " 的第 " + keys.Text(1) + " 行指向 " + keys.Text(2) +
                           " 中不存在的行");
}

std::vector<std::string> NamesOf(Database& database, const std::string& type) {
    std::vector<std::string> names;
    PreparedStatement found =
        database.Prepare("SELECT name FROM sqlite_schema WHERE type = " + QuotedText(type) +
                         " AND sql IS NOT NULL ORDER BY name");
    while (database.Step(found))
        names.push_back(found.Text(0));
    return names;
}

// The file's indexes against the catalog's keys, both ways: a key without its index is not kept, and an index
// that nobody knows of may refuse rows.
void CheckIndexes(Opened& set, std::vector<std::string>& findings) {
    const std::vector<std::string> found = NamesOf(set.Data(), "index");
    std::set<std::string> unknown(found.begin(), found.end());
    for (const TableInfo* table : set.Definitions().Tables()) {
        for (const KeyInfo& key : table->keys) {
            unknown.erase(PhysicalNullIndexName(*table, key));
            if (unknown.erase(PhysicalIndexName(*table, key)) == 0 && !key.isRowNumber)
                findings.push_back("目录：表 " + table->name + " 缺少索引 " + key.name);
        }
    }
    for (const std::string& name : unknown)
        findings.push_back("目录：没有登记索引 " + name);
}

// The file's tables against the catalog's, both ways.
void CheckCatalog(Opened& set, std::vector<std::string>& findings) {
    set.Definitions().Refresh();
    CheckIndexes(set, findings);
    std::map<std::string, bool> known;
    for (const TableInfo* table : set.Definitions().Tables()) {
        if (table->temporary) continue;
        known[table->physical] = true;
        PreparedStatement columns =
            set.Data().Prepare("SELECT name FROM pragma_table_info(" + QuotedText(table->physical) + ")");
        std::vector<std::string> stored;
        while (set.Data().Step(columns))
            stored.push_back(columns.Text(0));
        std::vector<std::string> defined;
        for (const ColumnInfo& column : table->columns) {
            if (column.computedText.empty()) defined.push_back(column.name);
        }
        if (stored.empty()) {
            findings.push_back("目录：缺少表 " + table->name);
        } else if (stored != defined) {
            findings.push_back("目录：表 " + table->name + " 的列与目录不一致");
        } else {
            CheckValues(set.Data(), *table, findings);
        }
    }
    PreparedStatement tables = set.Data().Prepare(
        "SELECT name FROM sqlite_schema WHERE type = 'table' AND name NOT GLOB 'sqlite_*' AND name NOT GLOB "
        "'ts$*'");
    while (set.Data().Step(tables)) {
        if (!known.contains(tables.Text(0))) findings.push_back("目录：没有登记表 " + tables.Text(0));
    }
}

std::int64_t CatalogNumber(Database& database) {
    PreparedStatement number =
        database.Prepare("SELECT ifnull((SELECT last FROM \"ts$identity\" WHERE object = 0), 0)");
    return database.Step(number) ? number.Int(0) : 0;
}

// Open sessions know their catalog by its number: the copy gets one that none of them has seen, whatever they
// change meanwhile.
void MoveCatalogOn(Database& copy, Database& target) {
    constexpr std::int64_t kFarBeyond = 1000;
    const std::int64_t number = std::max(CatalogNumber(copy), CatalogNumber(target)) + kFarBeyond;
    copy.Run("INSERT OR REPLACE INTO \"ts$identity\"(object, last) VALUES(0, " + std::to_string(number) +
             ")");
}

}  // namespace

void CopyAccountSet(const std::string& from, const std::string& to, const CareOptions& options) {
    {
        Opened source(from, options);
        Database target;
        target.Open(to, true, options.lockTimeoutMilliseconds);
        // Nobody else sees the file yet, and it is synced as a whole.
        target.Run("PRAGMA journal_mode = OFF");
        target.Run("PRAGMA synchronous = OFF");
        CopyContent(source.Data(), target);
    }
    Opened copy(to, options);
    copy.Data().Run("PRAGMA synchronous = OFF");
    if (!HasSeal(copy.Data())) Seal(copy.Data());
    copy.BringAllHome();
}

void CopyOverAccountSet(const std::string& copy, const std::string& target, const CareOptions& options) {
    UnsealAccountSet(copy, options);
    Opened from(copy, options);
    Opened to(target, options);
    MoveCatalogOn(from.Data(), to.Data());
    CopyContent(from.Data(), to.Data());
    to.Data().BringHome();
}

void UnsealAccountSet(const std::string& file, const CareOptions& options) {
    Opened copy(file, options);
    copy.Data().Run("DROP TABLE IF EXISTS \"ts$digest\"");
    copy.BringAllHome();
}

bool IsSealed(const std::string& file, const CareOptions& options) {
    try {
        Opened copy(file, options);
        return HasSeal(copy.Data());
    } catch (const SqlError&) {
        return false;
    }
}

std::vector<std::string> FindDamage(const std::string& file, const CareOptions& options) {
    std::vector<std::string> findings;
    try {
        Opened set(file, options);
        CheckStructure(set.Data(), findings);
        if (findings.empty()) CheckCatalog(set, findings);
        CheckSeal(set.Data(), findings);
    } catch (const SqlError& error) {
        findings.push_back("无法读取：" + error.Text());
    }
    return findings;
}

}  // namespace vicenter::tsql::engine
