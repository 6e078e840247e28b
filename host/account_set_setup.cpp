#include "host/account_set_setup.h"

#include <algorithm>
#include <array>
#include <ostream>
#include <sstream>
#include <string_view>
#include <vector>

#include "automation/error.h"
#include "automation/object.h"
#include "automation/quietly.h"
#include "host/batch_reader.h"
#include "host/demo_ledger.h"
#include "host/embedded_files.h"
#include "host/sql_writer.h"

namespace vicenter::host {

using automation::Error;
using automation::SameName;
using automation::Variant;
using automation::VariantType;

namespace {

constexpr const char* kSchema = "accountset/schema.sql";
constexpr const char* kHistory = "accountset/history.sql";
constexpr const char* kProcedures = "accountset/procedures.sql";
constexpr const char* kSeed = "accountset/seed.sql";

// What a batch of the scripts makes.
struct Made {
    std::string kind;  // table, index, procedure
    std::string name;
    std::string table{};  // of an index
    std::vector<std::string> columns{};
};

std::vector<ScriptBatch> Batches(const char* script) {
    std::istringstream stream{std::string(EmbeddedText(script))};
    BatchReader reader(stream);
    std::vector<ScriptBatch> batches;
    while (std::optional<ScriptBatch> batch = reader.Next())
        batches.push_back(std::move(*batch));
    return batches;
}

// "create table t (…", "create index i on t (…", "create procedure p …": the first line that is no comment.
Made MadeBy(const std::string& batch) {
    std::istringstream lines(batch);
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || line.starts_with("--") || line == "\r") continue;
        std::istringstream words(line);
        std::string create;
        std::string on;
        Made made;
        words >> create >> made.kind >> made.name >> on >> made.table;
        const std::size_t open = line.find('(');
        const std::size_t end = line.find(')');
        if (made.kind == "index" && open < end && end != std::string::npos) {
            std::string list = line.substr(open + 1, end - open - 1);
            std::replace(list.begin(), list.end(), ',', ' ');
            std::istringstream columns(list);
            for (std::string column; columns >> column;)
                made.columns.push_back(column);
        }
        if (create == "create") return made;
        break;
    }
    throw Error(automation::error_number::kInvalidProcedureCall,
                "account set script without a name: " + batch);
}

// The columns of a table's batch: one a line, indented, constraints behind them.
std::vector<std::string> ColumnsOfScript(const std::string& batch) {
    std::vector<std::string> columns;
    std::istringstream lines(batch);
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("    ")) continue;
        std::istringstream words(line);
        std::string name;
        words >> name;
        if (!name.empty() && name != "constraint" && !name.starts_with("--")) columns.push_back(name);
    }
    return columns;
}

bool HasRows(ado::Connection& connection, const std::string& question) {
    return connection.Execute(question)->RecordCount() > 0;
}

// An index serves by the columns that it starts with, whatever its name: an administrator may have made one,
// and there are servers that name an index their own way.
bool HasIndex(ado::Connection& connection, const Made& made) {
    std::string question = "select 1 as a from sys.indexes as i where i.object_id = object_id(" +
                           SqlLiteral(made.table) + ") and (i.name = " + SqlLiteral(made.name) + " or (1 = 1";
    int place = 0;
    for (const std::string& column : made.columns) {
        question +=
            " and exists (select 1 from sys.index_columns as k inner join sys.columns as c on c.object_id = "
            "k.object_id and c.column_id = k.column_id where k.object_id = i.object_id and k.index_id = "
            "i.index_id and k.key_ordinal = " +
            std::to_string(++place) + " and c.name = " + SqlLiteral(column) + ")";
    }
    return HasRows(connection, question + "))");
}

bool Exists(ado::Connection& connection, const Made& made) {
    if (made.kind == "index") return HasIndex(connection, made);
    return HasRows(connection, "select 1 as a where object_id(" + SqlLiteral(made.name) + ") is not null");
}

// A connection that writes down what it is told to run.
class Dictation final : public ado::Connection {
  public:
    explicit Dictation(std::ostream& script) : script_(script) {}
    void Open(const std::string& /*connectString*/) override {}
    bool IsOpen() const override { return true; }
    ado::RecordsetRef Execute(std::string_view batch, std::int64_t* recordsAffected) override {
        if (recordsAffected != nullptr) *recordsAffected = -1;
        script_ << batch;
        if (!batch.ends_with('\n')) script_ << '\n';
        script_ << "GO\n";
        return std::make_shared<ado::Recordset>();
    }
    void Close() override {}
    const std::vector<ado::DriverError>& Errors() const override { return errors_; }

  private:
    std::ostream& script_;
    std::vector<ado::DriverError> errors_;
};

// Undone unless it is kept.
class Transaction {
  public:
    explicit Transaction(ado::Connection& connection) : connection_(connection) {
        connection_.Execute("begin transaction");
    }
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    ~Transaction() {
        if (kept_) return;
        // A connection that is gone has undone it.
        automation::Quietly([this] { connection_.Execute("if @@trancount > 0 rollback transaction"); });
    }
    void Keep() {
        connection_.Execute("commit transaction");
        kept_ = true;
    }

  private:
    ado::Connection& connection_;
    bool kept_ = false;
};

// Runs `ask` on the account set and `tell` for what is missing there; they differ where a script is written.
SetupReport MakeObjects(ado::Connection& ask, ado::Connection& tell,
                        std::initializer_list<const char*> scripts = {kSchema, kHistory, kProcedures}) {
    SetupReport report;
    for (const char* script : scripts) {
        for (const ScriptBatch& batch : Batches(script)) {
            const Made made = MadeBy(batch.text);
            if (Exists(ask, made)) {
                ++report.present;
                continue;
            }
            tell.Execute(batch.text);
            ++report.made;
            if (made.name == "t_User") report.fresh = true;
        }
    }
    return report;
}

// ---- copying

struct Table {
    std::string name;
    std::vector<std::string> columns;
    bool hasIdentity = false;
};

std::vector<std::string> FirstColumn(const ado::RecordsetRef& rows) {
    std::vector<std::string> texts;
    for (std::int64_t row = 0; row < rows->RecordCount(); ++row)
        texts.push_back(rows->ValueAt(static_cast<std::size_t>(row), 0).ToTextOrEmpty());
    return texts;
}

std::vector<std::string> ColumnsOf(ado::Connection& connection, const std::string& table) {
    return FirstColumn(connection.Execute(
        "select COLUMN_NAME from INFORMATION_SCHEMA.COLUMNS where TABLE_NAME = " + SqlLiteral(table) +
        " order by ORDINAL_POSITION"));
}

// Tables of items that the firm has made itself; the account set's own are in the script.
std::vector<std::string> OwnItemTables(ado::Connection& connection) {
    return FirstColumn(
        connection.Execute("select distinct FSQLTableName from t_ItemClass where "
                           "object_id(FSQLTableName) is not null order by FSQLTableName"));
}

bool IsPlainName(const std::string& name) {
    return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
    });
}

void MakeItemTable(ado::Connection& connection, const std::string& name) {
    connection.Execute("create table " + name + " (\r\n    FItemID int not null constraint PK_" + name +
                       " primary key,\r\n    FNumber nvarchar(80) not null constraint UQ_" + name +
                       "_Number unique,\r\n    FName nvarchar(160) not null\r\n)");
}

std::string Literal(const Variant& value, const ado::Column& column) {
    switch (value.Type()) {
        case VariantType::Empty:
        case VariantType::Null:
            return "null";
        case VariantType::Boolean:
            return value.ToBoolean() ? "1" : "0";
        case VariantType::Text:
            return column.type == ado::DataType::kBinary ? value.AsText() : SqlLiteral(value.AsText());
        case VariantType::Date: {
            std::string text = value.ToDate().ToText();
            text[10] = 'T';
            return "'" + text + "'";
        }
        default:
            return value.ToText();
    }
}

std::string Joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "[" : ",[") + name + "]";
    return text;
}

ado::RecordsetRef RowsOf(ado::Connection& connection, const Table& table) {
    return connection.Execute("select " + Joined(table.columns) + " from " + table.name);
}

std::vector<std::string> Written(const ado::Recordset& rows) {
    std::vector<std::string> lines;
    for (std::int64_t row = 0; row < rows.RecordCount(); ++row) {
        std::string& line = lines.emplace_back();
        for (std::size_t column = 0; column < rows.ColumnCount(); ++column)
            line +=
                Literal(rows.ValueAt(static_cast<std::size_t>(row), column), rows.Columns()[column]) + ",";
    }
    return lines;
}

void SendRows(ado::Connection& to, const Table& table, const ado::Recordset& rows) {
    constexpr std::size_t kBatchLength = 200'000;
    const std::string head = "insert into " + table.name + "(" + Joined(table.columns) + ") values(";
    const std::string before =
        table.hasIdentity ? "set identity_insert " + table.name + " on\r\n" : std::string();
    const std::string behind =
        table.hasIdentity ? "set identity_insert " + table.name + " off\r\n" : std::string();
    std::string batch;
    const auto send = [&] {
        if (!batch.empty()) to.Execute(before + batch + behind);
        batch.clear();
    };
    for (std::string& line : Written(rows)) {
        line.back() = ')';
        batch += head + line + "\r\n";
        if (batch.size() >= kBatchLength) send();
    }
    send();
}

[[noreturn]] void RefuseCopy(const std::string& text) {
    throw Error(automation::error_number::kInvalidProcedureCall, text);
}

}  // namespace

SetupReport CompleteAccountSet(ado::Connection& connection, const AccountSetOptions& options,
                               std::ostream* script) {
    const auto run = [&](ado::Connection& tell) {
        const SetupReport report = MakeObjects(connection, tell);
        if (report.fresh) {
            for (const ScriptBatch& batch : Batches(kSeed))
                tell.Execute(batch.text);
            if (options.demo) PrepareDemo(tell, DemoOptions{options.vouchers});
        } else if (options.demo) {
            throw Error(automation::error_number::kFileAlreadyExists,
                        "数据库中已有账套，不能再写入演示数据。");
        }
        return report;
    };
    if (script != nullptr) {
        Dictation dictation(*script);
        return run(dictation);
    }
    Transaction transaction(connection);
    const SetupReport report = run(connection);
    transaction.Keep();
    return report;
}

SetupReport UpgradeAccountSet(ado::Connection& connection) {
    if (!Exists(connection, {"table", "t_VchTemplate", ""}))
        throw Error(automation::error_number::kElementNotFound, "不是账套：没有表 t_VchTemplate。");
    Transaction transaction(connection);
    // A batch that may write waits for others who upgrade: what is missing is asked behind them.
    connection.Execute("update t_VchTemplate set FName = FName where 1 = 0");
    const SetupReport report = MakeObjects(connection, connection, {kHistory});
    transaction.Keep();
    return report;
}

StructureFaults FindStructureFaults(ado::Connection& connection) {
    StructureFaults faults;
    std::vector<const char*> scripts = {kSchema, kProcedures};
    // History is the administrator's choice; half of it is a fault.
    if (Exists(connection, {"table", "t_VchTpHistory", ""})) scripts.push_back(kHistory);
    for (const char* script : scripts) {
        for (const ScriptBatch& batch : Batches(script)) {
            const Made made = MadeBy(batch.text);
            if (made.kind != "table") {
                if (Exists(connection, made)) continue;
                faults.others.push_back((made.kind == "index" ? "缺少索引：" : "缺少存储过程：") + made.name);
                continue;
            }
            const std::vector<std::string> present = ColumnsOf(connection, made.name);
            if (present.empty()) {
                faults.tables.push_back("缺少表：" + made.name);
                continue;
            }
            for (const std::string& column : ColumnsOfScript(batch.text)) {
                if (std::none_of(present.begin(), present.end(),
                                 [&](const std::string& other) { return SameName(column, other); }))
                    faults.tables.push_back("表 " + made.name + " 缺少字段：" + column);
            }
        }
    }
    return faults;
}

CopyReport CopyAccountSet(ado::Connection& from, ado::Connection& to) {
    std::vector<Table> tables;
    for (const char* script : {kSchema, kHistory}) {
        for (const ScriptBatch& batch : Batches(script)) {
            if (const Made made = MadeBy(batch.text); made.kind == "table")
                tables.push_back({made.name, {}, false});
        }
    }
    if (ColumnsOf(from, "t_VchTemplate").empty()) RefuseCopy("来源不是账套：没有表 t_VchTemplate。");
    Transaction transaction(to);
    MakeObjects(to, to);
    for (const std::string& name : OwnItemTables(from)) {
        const bool known = std::any_of(tables.begin(), tables.end(),
                                       [&](const Table& table) { return SameName(table.name, name); });
        if (known || !IsPlainName(name)) continue;
        if (!Exists(to, {"table", name, ""})) MakeItemTable(to, name);
        tables.push_back({name, {}, false});
    }
    CopyReport report;
    for (Table& table : tables) {
        if (HasRows(to, "select top 1 1 as a from " + table.name))
            RefuseCopy("目标账套中已有数据：" + table.name);
        const std::vector<std::string> source = ColumnsOf(from, table.name);
        // A ledger in production has columns of its own, which nobody here reads.
        for (const std::string& column : ColumnsOf(to, table.name)) {
            if (std::any_of(source.begin(), source.end(),
                            [&](const std::string& other) { return SameName(column, other); }))
                table.columns.push_back(column);
        }
        if (table.columns.empty()) continue;
        table.hasIdentity = HasRows(to, "select name from sys.columns where object_id = object_id(" +
                                            SqlLiteral(table.name) + ") and is_identity = 1");
        const ado::RecordsetRef rows = RowsOf(from, table);
        SendRows(to, table, *rows);
        std::vector<std::string> wanted = Written(*rows);
        std::vector<std::string> given = Written(*RowsOf(to, table));
        std::sort(wanted.begin(), wanted.end());
        std::sort(given.begin(), given.end());
        if (wanted != given) RefuseCopy("复制后内容不一致：" + table.name);
        ++report.tables;
        report.rows += rows->RecordCount();
    }
    transaction.Keep();
    return report;
}

}  // namespace vicenter::host
