#include "host/account_set.h"

#include <filesystem>
#include <sstream>
#include <system_error>

#include "automation/error.h"
#include "host/batch_reader.h"
#include "host/demo_ledger.h"
#include "host/embedded_files.h"
#include "platform/ado/account_set/account_set_provider.h"
#include "platform/system/files.h"
#include "platform/system/surroundings.h"

namespace vicenter::host {

using automation::Error;
namespace fs = std::filesystem;

namespace {

// Removes the temporary account set with what the engine may have left beside it.
void RemoveQuietly(const fs::path& file) {
    for (const char* tail : {"", "-wal", "-shm", "-journal"}) {
        std::error_code ignored;
        fs::path part = file;
        part += tail;
        fs::remove(part, ignored);
    }
}

}  // namespace

void RegisterProviders() {
    ado::RegisterAccountSetProvider();
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
    for (const char* script : {"accountset/schema.sql", "accountset/procedures.sql", "accountset/seed.sql"})
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
    const fs::path target = system::PathFromUtf8(file);
    std::error_code ignored;
    if (fs::exists(target, ignored))
        throw Error(automation::error_number::kFileAlreadyExists, "文件已存在：" + file);
    const fs::path folder = fs::absolute(target).parent_path();
    if (!fs::is_directory(folder, ignored))
        throw Error(automation::error_number::kPathNotFound, "文件夹不存在：" + system::PathToUtf8(folder));

    // The process id keeps two processes apart that make the same account set at once; the later move wins.
    fs::path temporary = folder / target.filename();
    temporary += "." + std::to_string(system::Surroundings::Current().processes->CurrentProcessId()) + ".new";
    RemoveQuietly(temporary);
    try {
        // A session that is kept would still hold the file when it is moved.
        const ado::ConnectionRef connection =
            ado::OpenConnection(FileConnectString(system::PathToUtf8(temporary)) + ";Create=yes;Pooling=no");
        CreateAccountSet(*connection);
        if (options.demo) PrepareDemo(*connection, DemoOptions{options.vouchers});
        connection->Close();
        fs::rename(temporary, target);
    } catch (const fs::filesystem_error& error) {
        RemoveQuietly(temporary);
        throw Error(automation::error_number::kPathNotFound, error.code().message() + "：" + file);
    } catch (...) {
        RemoveQuietly(temporary);
        throw;
    }
}

}  // namespace vicenter::host
