#include "host/cli/connect_text.h"

#include <filesystem>
#include <fstream>
#include <istream>
#include <ostream>
#include <system_error>

#include "automation/error.h"
#include "host/account_set.h"
#include "platform/ado/account_set/account_set_copies.h"
#include "platform/ado/connection.h"
#include "platform/system/files.h"
#include "platform/system/program.h"
#include "platform/system/surroundings.h"
#include "platform/system/terminal.h"

namespace vicenter::host {

using automation::Error;

namespace {

constexpr const char* kDemoFile = "demo.vas";

std::string FirstLine(std::istream& stream) {
    std::string line;
    std::getline(stream, line);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return line;
}

std::string GivenPassword(const CliContext& context) {
    const CliOptions& options = context.options;
    if (!options.passwordVariable.empty()) {
        const auto value = system::EnvironmentVariable(options.passwordVariable);
        if (!value)
            throw Error(automation::error_number::kInvalidProcedureCall,
                        "没有环境变量：" + options.passwordVariable);
        return *value;
    }
    if (!options.passwordFile.empty()) {
        std::ifstream file(system::PathFromUtf8(options.passwordFile), std::ios::binary);
        if (!file)
            throw Error(automation::error_number::kFileNotFound, "密码文件无法读取：" + options.passwordFile);
        return FirstLine(file);
    }
    context.streams.err << "密码 / password: " << std::flush;
    const system::HiddenTyping hidden;
    std::string password = FirstLine(context.streams.in);
    context.streams.err << "\n";
    return password;
}

}  // namespace

std::string DemoSetFile() {
    return system::PathToUtf8(system::PathFromUtf8(system::Surroundings::Current().folders->UserData()) /
                              kDemoFile);
}

bool IsConnectString(const std::string& fileOrConnectString) {
    const ado::ConnectString settings(fileOrConnectString);
    return settings.Has("Provider") || settings.Has("Driver") || settings.Has("DSN");
}

std::string ExistingFileConnectString(const std::string& file) {
    std::error_code ignored;
    if (!std::filesystem::exists(system::PathFromUtf8(file), ignored))
        throw Error(automation::error_number::kFileNotFound, "账套文件不存在：" + file);
    return FileConnectString(file);
}

std::string WithPassword(const CliContext& context, const std::string& connectString) {
    const CliOptions& options = context.options;
    const bool given =
        options.askPassword || !options.passwordVariable.empty() || !options.passwordFile.empty();
    const ado::ConnectString settings(connectString);
    if (!given || ado::AccountSetFile(connectString) || settings.Has("Password") || settings.Has("PWD"))
        return connectString;
    std::string quoted;
    for (const char c : GivenPassword(context)) {
        quoted += c;
        if (c == '"') quoted += c;
    }
    return connectString + (connectString.ends_with(';') ? "" : ";") + "Password=\"" + quoted + "\"";
}

}  // namespace vicenter::host
