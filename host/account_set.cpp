#include "host/account_set.h"

#include <filesystem>
#include <sstream>
#include <system_error>

#include "automation/error.h"
#include "host/batch_reader.h"
#include "host/demo_ledger.h"
#include "host/embedded_files.h"
#include "platform/ado/account_set/account_set_provider.h"
#include "platform/ado/odbc/odbc_provider.h"
#include "platform/system/file_replacement.h"
#include "platform/system/files.h"
#include "platform/system/whole_path.h"

namespace vicenter::host {

using automation::Error;
namespace fs = std::filesystem;

void RegisterProviders() {
    ado::RegisterAccountSetProvider();
    ado::RegisterOdbcProviders();
}

void RunScript(ado::Connection& connection, std::string_view script, const std::string& name) {
    std::istringstream stream{std::string(script)};
    BatchReader reader(stream);
    while (const std::optional<ScriptBatch> batch = reader.Next()) {
        for (int i = 0; i < batch->repeat; ++i) {
            try {
                connection.Execute(batch->text);
            } catch (Error& error) {
                int line = batch->firstLine;
                if (!connection.Errors().empty() && connection.Errors().front().procedure.empty())
                    line += connection.Errors().front().line - 1;
                error.While("running " + name + ", line " + std::to_string(line));
                throw;
            }
        }
    }
}

void CreateAccountSet(ado::Connection& connection) {
    for (const char* script : {"accountset/schema.sql", "accountset/history.sql", "accountset/procedures.sql",
                               "accountset/seed.sql"})
        RunScript(connection, EmbeddedText(script), script);
}

std::string FileConnectString(const std::string& file) {
    std::string quoted;
    for (const char c : file) {
        quoted += c;
        if (c == '"') quoted += c;
    }
    return "Provider=VelaAccountSet;Data Source=\"" + quoted + "\"";
}

void CreateAccountSetFile(const std::string& file, const AccountSetOptions& options) {
    MakeAccountSetFile(file, [&](ado::Connection& connection) {
        CreateAccountSet(connection);
        if (options.demo) PrepareDemo(connection, DemoOptions{options.vouchers});
    });
}

void MakeAccountSetFile(const std::string& file, const std::function<void(ado::Connection&)>& fill) {
    const fs::path target = system::PathFromUtf8(file);
    std::error_code ignored;
    if (fs::exists(fs::symlink_status(target, ignored)))
        throw Error(automation::error_number::kFileAlreadyExists, "文件已存在：" + file);
    const fs::path folder = system::WholePath(target, ignored).parent_path();
    if (!fs::is_directory(folder, ignored))
        throw Error(automation::error_number::kPathNotFound, "文件夹不存在：" + system::PathToUtf8(folder));
    if (const std::string refusal = system::WhyNoPlaceForDatabase(file); !refusal.empty())
        throw Error(automation::error_number::kPermissionDenied, refusal);

    system::FileReplacement whole(file);
    {
        // A session that is kept would still hold the file when it is moved.
        const ado::ConnectionRef connection =
            ado::OpenConnection(FileConnectString(whole.Path()) + ";Create=yes;Pooling=no;Command Timeout=0");
        fill(*connection);
        connection->Close();
    }
    // Of two processes that make the same account set at once the first has it.
    whole.PutInPlaceAsNew();
}

}  // namespace vicenter::host
