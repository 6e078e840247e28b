// vicenter sql [FILE]

#include <algorithm>
#include <atomic>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <memory>
#include <ostream>
#include <string_view>

#include "automation/error.h"
#include "host/batch_reader.h"
#include "host/cli/context.h"
#include "host/cli/rights.h"
#include "platform/ado/account_set/account_set_copies.h"
#include "platform/system/files.h"
#include "platform/system/interrupt_key.h"
#include "platform/system/surroundings.h"
#include "platform/system/utf8.h"

namespace vicenter::host {

using automation::Error;

namespace {

// A decimal with all digits of its column's scale, as the server shows it; any other value as it is.
Variant ColumnValue(const ado::Column& column, const Variant& value) {
    if (value.Type() != automation::VariantType::Decimal) return JsonValue(value);
    int scale = column.type == ado::DataType::kCurrency ? 4 : value.ToDecimal().Scale();
    // "decimal(18,4)"
    if (const std::size_t comma = column.serverType.find(','); comma != std::string::npos) {
        const char* first = column.serverType.data() + comma + 1;
        std::from_chars(first, column.serverType.data() + column.serverType.size(), scale);
    }
    return value.ToDecimal().Rescaled(scale).ToText();
}

// What a batch says beside its tables: what it prints, and how many rows it has changed.
struct BatchWords {
    std::vector<ado::DriverError> messages;
    std::vector<ado::DriverError> errors;  // in the order in which they came up
    std::int64_t affected = -1;            // -1: it changes none
};

constexpr std::int32_t kFirstErrorSeverity = 11;

BatchWords WordsOf(const ado::Connection& connection, std::int64_t affected) {
    BatchWords words;
    words.affected = affected;
    for (const ado::DriverError& record : connection.Errors())
        (record.severity < kFirstErrorSeverity ? words.messages : words.errors).push_back(record);
    return words;
}

// Answers in one of the two forms, batch by batch as they come.
class SqlAnswer {
  public:
    explicit SqlAnswer(const CliContext& context) : context_(context), out_(context.streams.out) {
        if (context_.options.json) out_ << "[";
    }
    void Batch(const ado::RecordsetRef& first, const BatchWords& words) {
        if (context_.options.json) {
            PrintBatch(first, words, Variant::Null());
        } else {
            PrintTables(first);
            PrintWords(words);
        }
    }
    // The results are those that the batch gave all the same.
    void Failure(const ado::RecordsetRef& first, const BatchWords& words) {
        if (context_.options.json) {
            PrintBatch(first, words, JsonRecord(words.errors.front()));
            return;
        }
        PrintTables(first);
        PrintWords(words);
        out_.flush();
        for (const ado::DriverError& error : words.errors)
            context_.streams.err << "消息 " << error.native << "，第 " << error.line << " 行：" << error.text
                                 << "\n";
    }
    void End() {
        if (context_.options.json) out_ << "]\n";
        out_.flush();
    }

  private:
    static Variant JsonRecord(const ado::DriverError& record) {
        return JsonObject({{"number", record.native}, {"line", record.line}, {"text", record.text}});
    }
    static VariantArray JsonRecords(const std::vector<ado::DriverError>& records) {
        VariantArray list;
        for (const ado::DriverError& record : records)
            list.push_back(JsonRecord(record));
        return list;
    }

    void PrintWords(const BatchWords& words) {
        for (const ado::DriverError& message : words.messages)
            out_ << message.text << "\n";
        if (words.affected >= 0) out_ << "（" << words.affected << " 行受影响）\n";
    }

    void PrintBatch(const ado::RecordsetRef& first, const BatchWords& words, const Variant& error) {
        VariantArray list;
        for (ado::RecordsetRef result = first; result; result = result->Next()) {
            if (!result->IsOpen()) continue;
            VariantArray columns;
            for (const ado::Column& column : result->Columns())
                columns.emplace_back(column.name);
            VariantArray rows;
            for (std::size_t r = 0; r < static_cast<std::size_t>(result->RecordCount()); ++r) {
                VariantArray row;
                for (std::size_t c = 0; c < result->ColumnCount(); ++c)
                    row.push_back(ColumnValue(result->Columns()[c], result->ValueAt(r, c)));
                rows.emplace_back(row);
            }
            list.push_back(JsonObject({{"columns", columns}, {"rows", rows}}));
        }
        if (batches_++ > 0) out_ << ",";
        auto document = std::make_shared<scripting::Dictionary>();
        document->Add("results", list);
        document->Add("error", error);
        if (words.errors.size() > 1) document->Add("errors", JsonRecords(words.errors));
        // Most batches have nothing to say beside their tables.
        if (words.affected >= 0) document->Add("affected", words.affected);
        if (!words.messages.empty()) document->Add("messages", JsonRecords(words.messages));
        out_ << EncodeJson(Variant(document));
    }

    void PrintTables(const ado::RecordsetRef& first) {
        for (ado::RecordsetRef result = first; result; result = result->Next()) {
            if (result->IsOpen()) PrintTable(*result);
        }
    }

    void PrintTable(const ado::Recordset& result) {
        for (std::size_t c = 0; c < result.ColumnCount(); ++c)
            out_ << (c > 0 ? "\t" : "") << result.Columns()[c].name;
        out_ << "\n";
        for (std::size_t r = 0; r < static_cast<std::size_t>(result.RecordCount()); ++r) {
            for (std::size_t c = 0; c < result.ColumnCount(); ++c) {
                const Variant value = ColumnValue(result.Columns()[c], result.ValueAt(r, c));
                out_ << (c > 0 ? "\t" : "") << (value.IsNull() ? "NULL" : value.ToText());
            }
            out_ << "\n";
        }
        out_ << "(" << result.RecordCount() << ")\n\n";
    }

    const CliContext& context_;
    std::ostream& out_;
    std::size_t batches_ = 0;
};

// The number of the line that holds the first byte that is no UTF-8; 0 without one.
int FirstForeignLine(std::string_view text) {
    int number = 1;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        if (!system::IsValidUtf8(text.substr(0, end))) return number;
        text.remove_prefix(std::min(end + 1, text.size()));
        ++number;
    }
    return 0;
}

enum class Outcome { kDone, kFailed, kCancelled };

// Ctrl+C ends the batch that runs, not the program. Whoever watches besides is told as ever.
class InterruptKey final : public system::LongWork {
  public:
    explicit InterruptKey(std::shared_ptr<system::LongWork> besides) : besides_(std::move(besides)) {}
    InterruptKey(const InterruptKey&) = delete;
    InterruptKey& operator=(const InterruptKey&) = delete;
    ~InterruptKey() override = default;

    bool GoOn(std::chrono::milliseconds taken) override {
        return !pressed_ && (besides_ == nullptr || besides_->GoOn(taken));
    }
    void Done() noexcept override {}

    ado::RecordsetRef Execute(ado::Connection& connection, const std::string& batch, std::int64_t& affected) {
        pressed_ = false;
        const system::InterruptKeyScope scope(
            [](void* pressed) { *static_cast<std::atomic<bool>*>(pressed) = true; }, &pressed_);
        return connection.Execute(batch, &affected);
    }

  private:
    std::shared_ptr<system::LongWork> besides_;
    std::atomic<bool> pressed_{false};
};

Outcome RunBatch(ado::Connection& connection, const ScriptBatch& batch, InterruptKey& interruptKey,
                 SqlAnswer& answer) {
    if (const int line = FirstForeignLine(batch.text); line != 0) {
        ado::DriverError record;
        record.native = automation::error_number::kInvalidProcedureCall;
        record.line = line;
        record.text = "脚本不是 UTF-8 文本，请另存为 UTF-8 后再执行。";
        answer.Failure(nullptr, {{}, {record}});
        return Outcome::kFailed;
    }
    try {
        std::int64_t affected = -1;
        const ado::RecordsetRef results = interruptKey.Execute(connection, batch.text, affected);
        answer.Batch(results, WordsOf(connection, affected));
        return Outcome::kDone;
    } catch (const Error& error) {
        BatchWords words = WordsOf(connection, -1);
        // A batch may fail without an error of the server: cut off, taken back.
        if (words.errors.empty()) {
            ado::DriverError& record = words.errors.emplace_back();
            record.native = error.Number();
            record.text = error.Text();
            if (!connection.Errors().empty()) record = connection.Errors().front();
        }
        if (error.Number() == ado::error_number::kOperationCancelled) {
            answer.Failure(nullptr,
                           {{}, {words.errors.front()}});  // whoever cancels wants to see no more of it
            return Outcome::kCancelled;
        }
        answer.Failure(connection.ResultsDespiteFailure(), words);
        return Outcome::kFailed;
    }
}

void OpenScript(std::ifstream& file, const std::string& name) {
    const std::filesystem::path path = system::PathFromUtf8(name);
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored))
        throw Error(automation::error_number::kFileNotFound, "是文件夹，不是脚本文件：" + name);
    file.open(path, std::ios::binary);
    if (file) return;
    const bool exists = std::filesystem::exists(path, ignored);
    throw Error(automation::error_number::kFileNotFound,
                (exists ? "文件不能读取，请检查权限：" : "文件不存在：") + name);
}

// What a script has begun and not committed goes with its connection.
bool IsWithinTransaction(ado::Connection& connection) {
    try {
        return connection.Execute("select @@trancount")->Value(std::size_t{0}).ToInt32() > 0;
    } catch (const Error&) {
        return false;  // the connection is lost, which has been told
    }
}

}  // namespace

int RunSql(const CliContext& context) {
    std::ifstream file;
    const std::string& script = context.options.file;
    const bool piped = script.empty() || script == "-";
    if (!piped) OpenScript(file, script);
    // A server knows itself what the login may do.
    const std::string& connectString = context.session->Settings().connectString;
    ado::ConnectionRef reading;
    if (ado::AccountSetFile(connectString) && !MayAdministrate(*context.session))
        reading = ado::OpenConnection(connectString + ";Access=read");
    ado::Connection& connection = reading ? *reading : context.session->Connection();
    BatchReader reader(piped ? context.streams.in : file);
    SqlAnswer answer(context);
    // Whoever sits before it decides how long a script may take, unless the connect string says it.
    if (!ado::ConnectString(context.session->Settings().connectString).Has("Command Timeout"))
        connection.SetCommandTimeout(0);
    system::Surroundings watched = system::Surroundings::Current();
    const auto interruptKey = std::make_shared<InterruptKey>(watched.longWork);
    watched.longWork = interruptKey;
    const system::SurroundingsScope scope(watched);
    int code = kExitDone;
    try {
        while (const std::optional<ScriptBatch> batch = reader.Next()) {
            for (int i = 0; i < batch->repeat && code != kExitCancelled; ++i) {
                const Outcome outcome = RunBatch(connection, *batch, *interruptKey, answer);
                if (outcome != Outcome::kDone)
                    code = outcome == Outcome::kFailed ? kExitFailed : kExitCancelled;
            }
            if (code == kExitCancelled) break;  // what follows may rest on what was not done
        }
    } catch (...) {
        answer.End();  // what has been answered is a whole document, wherever the script breaks off
        throw;
    }
    answer.End();
    if (code != kExitCancelled && IsWithinTransaction(connection)) {
        TellFailure(context, "脚本结束时还有未提交的事务，其中的修改已撤消；需要保留时请在脚本中写 COMMIT。");
        code = kExitFailed;
    }
    if (reading && code == kExitFailed)
        TellFailure(context, "用户 " + std::to_string(context.options.userId) +
                                 " 没有全部权限，只能查询，不能修改账套。");
    return code;
}

}  // namespace vicenter::host
