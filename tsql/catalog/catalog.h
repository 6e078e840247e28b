#pragma once

// What an account set holds: tables with their SQL Server types, keys, views and procedures.
//
// The catalog lives in tables of the account set (ts$…, see docs/account-set-format.md) and is read into
// memory; it is read again when the set's own number of changes shows that any process has changed it. One
// catalog per session. Pointers into it stay good until Generation() changes.

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tsql/sqlite/database.h"
#include "tsql/types/sql_type.h"

namespace vicenter::tsql::engine {

// The version of the format that sets are made in. See docs/account-set-format.md.
inline constexpr std::int64_t kFormatVersion = 2;

struct ColumnInfo {
    std::string name;
    SqlType type;
    bool nullable = true;
    bool identity = false;
    std::int64_t seed = 1;
    std::int64_t increment = 1;
    std::string defaultName;   // of the constraint
    std::string defaultText;   // T-SQL, empty for none
    std::string computedText;  // T-SQL of a computed column

    friend bool operator==(const ColumnInfo&, const ColumnInfo&) = default;
};

enum class KeyKind { kPrimary, kUnique, kUniqueIndex, kIndex };

struct KeyInfo {
    std::string name;
    KeyKind kind = KeyKind::kIndex;
    std::vector<std::string> columns;
    std::vector<bool> descending;
    // Its one integer column is SQLite's own number of the row; only a key that its table was made with can
    // be that. What the file says holds: a key that came later is an index.
    bool isRowNumber = false;

    bool IsUnique() const { return kind != KeyKind::kIndex; }
    bool IsConstraint() const { return kind == KeyKind::kPrimary || kind == KeyKind::kUnique; }
    friend bool operator==(const KeyInfo&, const KeyInfo&) = default;
};

struct ForeignKeyInfo {
    std::string name;
    std::vector<std::string> columns;
    std::string referencedTable;
    std::vector<std::string> referencedColumns;
    std::string onDelete;
    std::string onUpdate;
    // With SET DEFAULT, what each column gets, as SQLite works it out; empty for NULL.
    std::vector<std::string> defaults = {};

    bool operator==(const ForeignKeyInfo& other) const = default;
    bool SetsDefault() const { return onDelete == "set default" || onUpdate == "set default"; }
};

struct CheckInfo {
    std::string name;
    std::string text;     // T-SQL
    std::string sqlText;  // as SQLite keeps it

    friend bool operator==(const CheckInfo&, const CheckInfo&) = default;
};

struct TableInfo {
    std::int64_t id = 0;
    std::string name;      // as T-SQL knows it: "t_Account", "#t", "@t"
    std::string physical;  // as SQLite knows it
    bool temporary = false;
    std::int64_t definition = 0;  // of temporary tables: another number after each change
    bool isAsMade = true;         // of temporary tables: no definition has changed it
    std::vector<ColumnInfo> columns;
    std::vector<KeyInfo> keys;
    std::vector<ForeignKeyInfo> foreignKeys;
    std::vector<CheckInfo> checks;
    std::int64_t lastIdentity = 0;  // of temporary tables; others keep it in the account set

    const ColumnInfo* FindColumn(std::string_view columnName) const;
    const ColumnInfo* IdentityColumn() const;
    const KeyInfo* PrimaryKey() const;
    // The column of a primary key that is the row's own number.
    bool IsRowNumber(std::string_view columnName) const;
    bool IsInUniqueKey(std::string_view columnName) const;
    // main."t_Account"
    std::string Sql() const;
    // "dbo.t_Account"
    std::string FullName() const { return temporary ? name : "dbo." + name; }
};

struct ModuleInfo {
    std::int64_t id = 0;
    std::string name;
    std::string text;  // the CREATE statement
};

class Catalog {
  public:
    explicit Catalog(Database& database) : database_(database) {}

    // Makes the catalog's tables when the account set is new; error 5172 when the file is of another kind.
    void Prepare(bool create);
    // Reads everything again when the number of changes is another one than the last time.
    void Refresh();
    // The same, and what is read next on this connection is of the same moment: a query then needs no lock of
    // its own. EndSnapshot must come before anything that changes the account set.
    void RefreshAndHold();
    void EndSnapshot() {
        isTrusted_ = false;
        if (!holding_) return;
        versionStatement_.Reset();
        holding_ = false;
    }
    // What is read next is of the moment of the catalog.
    bool IsHolding() const { return holding_ || isTrusted_; }
    // Instead of RefreshAndHold, without a look at the file: the catalog is taken for that of what is read
    // next; false where it was read within a transaction. SQLite notices a change of the file when it begins
    // to read, as it must for the pages that it keeps: whoever trusts asks IsUnchanged behind the first step,
    // and takes nothing from it before.
    bool Trust();
    bool IsTrusted() const { return isTrusted_; }
    bool IsUnchanged() const;
    // After a rollback: what was read may never have been.
    void Forget();
    // Changes whenever a pointer into the catalog or a translated statement may be out of date; temporary
    // tables, which come and go, have their numbers instead.
    std::uint64_t Generation() const { return generation_; }

    // A copy that has or once had the digests of its tables with it.
    bool MayBeSealed() const { return mayBeSealed_; }
    // Decimals may be spelt with more zeros than they need: read right, but not yet the one text of a number.
    bool IsOfOlderForm() const { return isOfOlderForm_; }
    // Spells all decimals anew, in the transaction that is open.
    void BringUp();

    // Names compare without case; temporary tables come first.
    const TableInfo* FindTable(std::string_view name) const;
    const ModuleInfo* FindView(std::string_view name) const;
    const ModuleInfo* FindProcedure(std::string_view name) const;
    // What bears a number: a table, view or procedure, or a constraint of a table.
    struct Object {
        const TableInfo* table = nullptr;    // or the one that the constraint belongs to
        const ModuleInfo* module = nullptr;  // of a view or procedure
        std::string_view kind;               // "U", "V", "P", "PK", "UQ", "F", "C", "D"
        std::string name;
        std::string text;  // of a module, a default or a check
    };
    std::optional<Object> FindObject(std::int64_t id) const;
    // Constraints have numbers below zero, made of their table's and their own place in it.
    std::optional<std::int64_t> ConstraintId(std::string_view name, std::string_view type) const;
    bool HasConstraint(std::string_view name) const { return ConstraintId(name, {}).has_value(); }
    std::vector<const TableInfo*> Tables() const;
    std::vector<const ModuleInfo*> Views() const;
    // The id of a table, view or procedure, or nothing. type is as in OBJECT_ID: "U", "V", "P" or empty.
    std::optional<std::int64_t> ObjectId(std::string_view name, std::string_view type) const;

    // Definitions: each writes the catalog and SQLite's schema in the current transaction.
    void CreateTable(TableInfo table);
    void DropTable(const TableInfo& table);
    void AddColumn(const TableInfo& table, const ColumnInfo& column);
    void DropColumn(const TableInfo& table, const std::string& column);
    void ChangeTable(const TableInfo& changed, bool rewriteSchema);
    void CreateIndex(const TableInfo& table, const KeyInfo& key);
    // Makes the indexes of a table's keys that depend on which columns may be NULL anew.
    void RemakeNullIndexes(const TableInfo& table);
    void DropIndex(const TableInfo& table, const std::string& key);
    // What refers to them by a key follows; texts stay as they are.
    void RenameTable(const TableInfo& table, const std::string& name);
    void RenameColumn(const TableInfo& table, const std::string& from, const std::string& to);
    void RenameConstraint(const TableInfo& table, const std::string& from, const std::string& to);
    void RenameModule(const std::string& from, const std::string& to);
    void WriteModule(char kind, const std::string& name, const std::string& text);
    void DropModule(char kind, const std::string& name);

    // temporary.cpp: #tables and table variables. A procedure makes its tables in each call, and SQLite
    // prepares all statements of a connection anew after a change to its temporary schema. So a table that is
    // dropped as it was made is emptied and put aside, and the next one of its name and form takes its place
    // in SQLite's schema and in the plans; to T-SQL it is another table, with a number of its own.
    void AddTemporary(TableInfo table);
    void DropTemporary(const std::string& name);
    // What is dropped from here on is dropped in SQLite's schema, too.
    void PutNothingAside() { putsAside_ = false; }
    // The temporary tables without the table variables, and those that are put aside, as the catalog knows
    // them now; and as it knew them then, after what has become of them since was undone. Identity values are
    // not handed out again.
    struct KeptTable {
        std::shared_ptr<TableInfo> table;
        std::int64_t lastIdentity = 0;
    };
    using Spares = std::vector<std::shared_ptr<const TableInfo>>;
    struct Temporaries {
        std::map<std::string, KeptTable, std::less<>> tables;
        Spares spares;
    };
    Temporaries KeepTemporaries() const;
    void PutBack(const Temporaries& before);
    // SQLite has it, and not as one that is put aside.
    bool IsThere(const TableInfo& temporary) const;
    // The name of a table that is put aside and was made for a variable of this name; empty when there is
    // none.
    std::string SpareOfVariable(std::string_view variable) const;
    // Of all temporary tables and table variables, as the catalog knows them.
    std::vector<std::string> TemporaryNames() const;
    TableInfo* FindTemporary(std::string_view name);
    // By its number; null where it is gone, or another one has its name.
    const TableInfo* FindTemporary(std::int64_t id) const;

    std::int64_t LastIdentity(const TableInfo& table);
    void SetLastIdentity(const TableInfo& table, std::int64_t value);

  private:
    void Load();
    std::int64_t Version();
    std::int64_t WriteTable(const TableInfo& table);
    void MakeIndex(const TableInfo& table, const KeyInfo& key);
    void DropPhysicalIndexes(const TableInfo& table);
    void MakePhysicalIndexes(const TableInfo& table);
    void Touch();
    void TellSqlite(const TableInfo& table);
    // False when there is none that fits; and when the table is to be dropped after all.
    bool TakeSpare(const TableInfo& wanted);
    bool PutAside(const TableInfo& table);
    bool Empty(const TableInfo& temporary);

    Database& database_;
    PreparedStatement versionStatement_;
    PreparedStatement readIdentity_;
    PreparedStatement writeIdentity_;
    bool holding_ = false;  // versionStatement_ stands on its row
    bool isTrusted_ = false;
    // SQLite's number of the content that version_ was read from; none within a transaction.
    std::optional<std::uint32_t> readFrom_;
    bool mayBeSealed_ = false;
    bool isOfOlderForm_ = false;
    std::int64_t version_ = -1;
    std::uint64_t generation_ = 1;
    std::map<std::string, std::unique_ptr<TableInfo>, std::less<>> tables_;
    std::map<std::string, std::shared_ptr<TableInfo>, std::less<>> temporary_;
    bool putsAside_ = true;
    Spares spares_;                                      // the one put aside last at the end
    std::map<std::string, PreparedStatement> emptying_;  // by the physical names of what was put aside
    std::map<std::string, ModuleInfo, std::less<>> views_;
    std::map<std::string, ModuleInfo, std::less<>> procedures_;
};

// What stands in the text for the table of this name: "@t" for "@12@t", which is a variable's.
std::string_view NameInText(std::string_view table);
// The CREATE TABLE that SQLite gets, and the one column of it.
std::string PhysicalTable(const TableInfo& table);
std::string PhysicalColumn(const TableInfo& table, const ColumnInfo& column);
std::string PhysicalIndexName(const TableInfo& table, const KeyInfo& key);
std::string PhysicalIndex(const TableInfo& table, const KeyInfo& key);
// Beside a unique index, which to SQLite may hold any number of NULLs: the index that takes NULLs for equal,
// as the server does. Empty when no column of the key may be NULL.
std::string PhysicalNullIndexName(const TableInfo& table, const KeyInfo& key);
std::string PhysicalNullIndex(const TableInfo& table, const KeyInfo& key);

}  // namespace vicenter::tsql::engine
