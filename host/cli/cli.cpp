#include "host/cli/cli.h"

#include <filesystem>
#include <new>
#include <optional>
#include <sstream>
#include <system_error>

#include <CLI/CLI.hpp>

#include "automation/class_registry.h"
#include "automation/error.h"
#include "entry/host_context.h"
#include "host/account_set.h"
#include "host/cli/argument_checks.h"
#include "host/cli/connect_text.h"
#include "host/cli/console.h"
#include "host/cli/context.h"
#include "host/cli/exchange_options.h"
#include "host/cli/search_options.h"
#include "host/components/components.h"
#include "platform/ado/passwords.h"
#include "platform/com/installed_classes.h"
#include "platform/office/excel_server.h"
#include "platform/system/files.h"
#include "platform/system/surroundings.h"
#include "platform/system/unfinished_file.h"
#include "platform/system/whole_path.h"
#include "store/cls_vi_data.h"
#include "store/component_classes.h"

namespace vicenter::host {

using automation::Error;
namespace fs = std::filesystem;

namespace {

constexpr const char* kCloudFolder = "cloud";
constexpr const char* kInstalled = "installed";  // the workbook server that the system has

// The commands and options of the program, bound to one CliOptions.
class CommandLine {
  public:
    explicit CommandLine(CliOptions& options) : options_(options) {
        app_.require_subcommand(0, 1);
        app_.fallthrough();
        AddGlobalOptions();
        AddCommands();
    }

    // Nothing when the command is to run, else the exit code.
    std::optional<int> Parse(const std::vector<std::string>& arguments, const CliStreams& streams) {
        try {
            // The parser takes its arguments from the back.
            app_.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
            return std::nullopt;
        } catch (const CLI::ParseError& error) {
            std::ostringstream said;
            const int code = app_.exit(error, streams.out, said);
            streams.err << ado::PasswordsHidden(said.str());
            return code == 0 ? kExitDone : kExitWrongUse;
        }
    }

  private:
    void AddGlobalOptions() {
        app_.allow_windows_style_options(false);  // a path may begin with a slash there, too
        app_.set_version_flag("--version", "vicenter " VICENTER_VERSION, "版本 / print the version");
        auto* file = app_.add_option("--account-set", options_.accountSet, "账套文件 / account set file")
                         ->check(kNotEmpty);
        app_.add_option("--connect", options_.connectString, "连接字符串 / connect string")
            ->check(kNotEmpty)
            ->excludes(file);
        auto* variable = app_.add_option("--password-env", options_.passwordVariable,
                                         "取密码的环境变量 / environment variable with the password")
                             ->check(kNotEmpty);
        auto* passwordFile = app_.add_option("--password-file", options_.passwordFile,
                                             "取密码的文件 / file whose first line is the password")
                                 ->check(kNotEmpty)
                                 ->excludes(variable);
        app_.add_flag("--ask-password", options_.askPassword, "在终端上输入密码 / ask for the password")
            ->excludes(variable)
            ->excludes(passwordFile);
        app_.add_option("--user", options_.userId, "用户编号 / user id")
            ->capture_default_str()
            ->check(kNotEmpty);
        app_.add_flag("--json", options_.json, "输出 JSON / print one JSON document");
        app_.add_option("--excel", options_.excelVersion,
                        "工作簿服务的版本，none 表示没有，installed 表示系统中安装的 / version of the "
                        "workbook server, "
                        "none for none, installed for the system's own")
            ->capture_default_str();
        auto* yes = app_.add_flag_callback(
            "--yes", [this] { options_.answer = true; },
            "对所有提问回答“是” / answer every question with yes");
        app_.add_flag_callback(
                "--no", [this] { options_.answer = false; },
                "对所有提问回答“否” / answer every question with no")
            ->excludes(yes);
    }

    CLI::App* AddCommand(CLI::App& parent, const char* name, CliCommand command, const char* description) {
        CLI::App* added = parent.add_subcommand(name, description);
        added->callback([this, command] { options_.command = command; });
        return added;
    }

    CLI::App* AddNamedCommand(const char* name, CliCommand command, const char* description) {
        CLI::App* added = AddCommand(app_, name, command, description);
        added->add_option("NAME", options_.name, "模板名称 / template")->required();
        return added;
    }

    void AddCommands() {
        CLI::App* window =
            AddCommand(app_, "window", CliCommand::Window, "打开凭证模板窗口 / open the Template Center");
        window->add_option("FILE", options_.windowFile, "账套文件 / account set file")->check(kNotEmpty);
        window
            ->add_option("--offscreen-session", options_.sessionFolder,
                         "不用显示器演示主要操作，图片存入文件夹 / drive the window without a display, "
                         "pictures into DIR")
            ->check(kNotEmpty);
        window->callback([this] {
            options_.command = CliCommand::Window;
            if (options_.windowFile.empty()) return;
            if (!options_.accountSet.empty() || !options_.connectString.empty())
                throw CLI::ValidationError("FILE",
                                           "不能与 --account-set、--connect 同时使用 / FILE excludes both");
            options_.accountSet = options_.windowFile;
        });

        CLI::App* accountSet = app_.add_subcommand("account-set", "账套 / account sets");
        accountSet->require_subcommand(1);
        CLI::App* create =
            AddCommand(*accountSet, "new", CliCommand::AccountSetNew, "新建账套 / make an account set");
        create->add_option("FILE", options_.file, "账套文件；用 --connect 时不写 / file; none with --connect")
            ->check(kNotEmpty);
        create->add_flag("--dry-run", options_.dryRun,
                         "只打印脚本，不执行；用于 --connect / print the script for --connect, do nothing");
        create->callback([this] {
            if (options_.file.empty() == options_.connectString.empty())
                throw CLI::RequiredError("FILE | --connect");
            if (options_.dryRun && options_.connectString.empty()) throw CLI::RequiredError("--connect");
            options_.command = CliCommand::AccountSetNew;
        });
        CLI::App* copy = AddCommand(*accountSet, "copy", CliCommand::AccountSetCopy,
                                    "复制账套，逐行核对 / copy an account set and compare every row");
        copy->add_option("FROM", options_.file, "文件或连接字符串 / file or connect string")
            ->required()
            ->check(kNotEmpty);
        copy->add_option("TO", options_.target, "文件或连接字符串 / file or connect string")
            ->required()
            ->check(kNotEmpty);
        auto* demo = create->add_flag("--demo", options_.demo, "带演示数据 / with the demo ledger");
        create->add_option("--vouchers", options_.vouchers, "演示凭证数 / number of demo vouchers")
            ->needs(demo)
            ->check(CLI::Range(0, 10'000'000));

        const auto addCopy = [&](const char* name, CliCommand command, const char* description,
                                 const char* from, const char* to) {
            CLI::App* added = AddCommand(*accountSet, name, command, description);
            added->add_option(from, options_.file, "账套文件 / file")->required()->check(kNotEmpty);
            added->add_option(to, options_.target, "目标文件 / target file")->required()->check(kNotEmpty);
        };
        addCopy("backup", CliCommand::AccountSetBackup,
                "备份账套，不影响正在使用的人 / back up while others work", "FILE", "TO");
        addCopy("restore", CliCommand::AccountSetRestore,
                "恢复备份到账套或新文件 / put a backup into an account set or a new file", "FROM", "FILE");
        const auto addOnPlace = [&](const char* name, CliCommand command, const char* description) {
            CLI::App* added = AddCommand(*accountSet, name, command, description);
            added
                ->add_option("FILE", options_.file,
                             "账套文件；用 --connect 时不写 / file; none with --connect")
                ->check(kNotEmpty);
            added->callback([this, command] {
                if (options_.file.empty() == options_.connectString.empty())
                    throw CLI::RequiredError("FILE | --connect");
                options_.command = command;
            });
        };
        addOnPlace("verify", CliCommand::AccountSetVerify, "检查账套或备份 / look for damage");
        addOnPlace("upgrade", CliCommand::AccountSetUpgrade,
                   "补上模板历史的表 / add the tables of the templates' history");

        AddCommand(app_, "list", CliCommand::List, "列出模板 / list the templates");
        AddNamedCommand("show", CliCommand::Show, "显示模板 / show a template");
        AddCommand(app_, "new", CliCommand::New, "新增模板 / make a template");
        AddNamedCommand("rename", CliCommand::Rename, "修改模板名称 / rename a template")
            ->add_option("NEW", options_.newName, "新名称 / new name")
            ->required();
        AddNamedCommand("delete", CliCommand::Delete, "删除模板 / delete a template");
        AddCheck();
        AddLogCommand(app_, options_);
        AddReplaceCommand(app_, options_);
        AddSearchCommand(app_, options_);
        AddNamedCommand("save", CliCommand::Save,
                        "从标准输入读入 JSON 并保存 / replace a template's lines from standard input");
        AddCommand(app_, "sql", CliCommand::Sql, "执行 T-SQL / run T-SQL, GO ends a batch")
            ->add_option("FILE", options_.file, "脚本文件 / script; standard input without")
            ->check(kNotEmpty);
        AddCommand(app_, "drivers", CliCommand::Drivers,
                   "SQL Server 的 ODBC 驱动程序 / ODBC drivers for SQL Server, and which one is taken");
        AddCommand(app_, "doctor", CliCommand::Doctor,
                   "检查程序、字体、驱动和账套 / what is installed, what is missing, what to do");
        AddPrint();
        AddHistory();
        AddExportCommand(app_, options_);
        AddImportCommand(app_, options_);
        AddGenerateCommand(app_, options_);
    }

    void AddPrint() {
        CLI::App* print = AddNamedCommand("print", CliCommand::Print, "打印模板 / a template as a PDF file");
        print->add_option("FILE", options_.file, ".pdf")->required()->check(kNotEmpty);
        print->add_option("--number", options_.number, "只打印这个编号的凭证 / the voucher of one pattern")
            ->check(kDigits);
    }

    void AddCheck() {
        CLI::App* check =
            AddCommand(app_, "check", CliCommand::Check, "检查模板 / check a template, or all of the user's");
        auto* name = check->add_option("NAME", options_.name, "模板名称 / template");
        check->add_flag("--all", options_.all, "全部模板 / every template")->excludes(name);
        check->callback([this, name] {
            if (name->count() == 0 && !options_.all) throw CLI::RequiredError("NAME | --all");
            options_.command = CliCommand::Check;
        });
    }

    void AddHistory() {
        CLI::App* history =
            AddCommand(app_, "history", CliCommand::History,
                       "模板的历史版本；不写 NAME 时为保留规则 / a template's versions, or the rule");
        auto* name = history->add_option("NAME", options_.name, "模板名称 / template");
        auto* version = history->add_option("--version-id", options_.version,
                                            "与现在的差别 / what differs now from this version");
        version->check(kDigits)->needs(name);
        history->add_flag("--deleted", options_.deleted, "已删除的模板 / templates that were deleted")
            ->excludes(name);
        for (auto [flag, target, text] :
             {std::tuple("--keep-days", &options_.keepDays, "保留天数 / days that versions are kept"),
              std::tuple("--keep-versions", &options_.keepVersions,
                         "每个模板至少保留的版本数 / versions of a template kept at least")}) {
            history->add_option(flag, *target, text)->check(CLI::Range(0, 100'000))->excludes(name);
        }
        CLI::App* restore =
            AddNamedCommand("restore", CliCommand::Restore,
                            "恢复历史版本或已删除的模板 / bring back a version or a deleted template");
        restore->add_option("--version-id", options_.version, "版本号 / version, as history lists it")
            ->check(kDigits);
        restore->add_option("--as", options_.newName, "恢复为新模板 / as a new template of this name")
            ->check(kNotEmpty);
    }

    CliOptions& options_;
    CLI::App app_{"凭证模板 / voucher templates", "vicenter"};
};

// The account set to work on: as asked for, else the demo set of this user, made on first use.
std::string ChosenConnectString(const CliContext& context) {
    const CliOptions& options = context.options;
    if (!options.connectString.empty()) return WithPassword(context, options.connectString);
    if (!options.accountSet.empty()) {
        std::error_code ignored;
        if (!fs::exists(system::PathFromUtf8(options.accountSet), ignored))
            throw Error(automation::error_number::kFileNotFound, "账套文件不存在：" + options.accountSet);
        return FileConnectString(options.accountSet);
    }
    const std::string file = DemoSetFile();
    const fs::path path = system::PathFromUtf8(file);
    std::error_code failed;
    if (!fs::exists(path, failed)) {
        fs::create_directories(path.parent_path(), failed);
        try {
            CreateAccountSetFile(file, {true, 0});
        } catch (const Error& error) {
            // Another process has made it meanwhile.
            if (error.Number() != automation::error_number::kFileAlreadyExists) throw;
        }
    }
    return FileConnectString(file);
}

int Dispatch(const CliContext& context) {
    switch (context.options.command) {
        case CliCommand::Window:
            return RunWindow(context);
        case CliCommand::AccountSetNew:
            return RunAccountSetNew(context);
        case CliCommand::AccountSetCopy:
            return RunAccountSetCopy(context);
        case CliCommand::AccountSetBackup:
            return RunAccountSetBackup(context);
        case CliCommand::AccountSetRestore:
            return RunAccountSetRestore(context);
        case CliCommand::AccountSetVerify:
            return RunAccountSetVerify(context);
        case CliCommand::AccountSetUpgrade:
            return RunAccountSetUpgrade(context);
        case CliCommand::List:
            return RunList(context);
        case CliCommand::Show:
            return RunShow(context);
        case CliCommand::New:
            return RunNew(context);
        case CliCommand::Rename:
            return RunRename(context);
        case CliCommand::Delete:
            return RunDelete(context);
        case CliCommand::Check:
            return RunCheck(context);
        case CliCommand::Log:
            return RunLog(context);
        case CliCommand::History:
            return RunHistory(context);
        case CliCommand::Restore:
            return RunRestore(context);
        case CliCommand::Save:
            return RunSave(context);
        case CliCommand::Sql:
            return RunSql(context);
        case CliCommand::Export:
            return RunExport(context);
        case CliCommand::Import:
            return RunImport(context);
        case CliCommand::Generate:
            return RunGenerate(context);
        case CliCommand::Replace:
            return RunReplace(context);
        case CliCommand::Search:
            return RunSearch(context);
        case CliCommand::Drivers:
            return RunDrivers(context);
        case CliCommand::Doctor:
            return RunDoctor(context);
        case CliCommand::Print:
            return RunPrint(context);
    }
    return kExitWrongUse;
}

// Commands that answer with messages give their document even when they end in an error.
bool Speaks(CliCommand command) {
    switch (command) {
        case CliCommand::AccountSetNew:
        case CliCommand::AccountSetCopy:
        case CliCommand::AccountSetBackup:
        case CliCommand::AccountSetRestore:
        case CliCommand::AccountSetVerify:
        case CliCommand::AccountSetUpgrade:
        case CliCommand::Restore:
        case CliCommand::New:
        case CliCommand::Rename:
        case CliCommand::Delete:
        case CliCommand::Check:
        case CliCommand::Save:
        case CliCommand::Export:
        case CliCommand::Import:
        case CliCommand::Print:
        case CliCommand::Generate:
        case CliCommand::Replace:
            return true;
        default:
            return false;
    }
}

// Commands that need no session on an account set.
bool NeedsNoSession(CliCommand command) {
    return command == CliCommand::AccountSetNew || command == CliCommand::AccountSetCopy ||
           command == CliCommand::AccountSetBackup || command == CliCommand::AccountSetRestore ||
           command == CliCommand::AccountSetVerify || command == CliCommand::AccountSetUpgrade ||
           command == CliCommand::Drivers || command == CliCommand::Doctor;
}

int FailWithDocument(const CliContext& context, const std::string& text) {
    store::clsVIData::ForgetFailure();  // the text has it
    if (Speaks(context.options.command)) FinishSpeaking(context, false, Variant::Null());
    return Fail(context, text);
}

// What killed runs have left where this one works.
void RemoveLeftBehind(const CliOptions& options) {
    system::Folders& folders = *system::Surroundings::Current().folders;
    try {
        system::RemoveLeftBehind(folders.Temporary());
    } catch (const Error&) {
        // Whoever needs a temporary folder will hear that there is none.
    }
    system::RemoveLeftBehind(folders.UserData());
    const bool isNew = options.command == CliCommand::AccountSetNew;
    if (const std::string& set = isNew ? options.file : options.accountSet; !set.empty()) {
        std::error_code failed;
        const fs::path file = system::WholePath(system::PathFromUtf8(set), failed);
        if (!failed) system::RemoveLeftBehind(system::PathToUtf8(file.parent_path()));
    }
}

int RunCommand(const CliOptions& options, const CliStreams& streams, const CliHooks& hooks) {
    // The session ends with the command, not with the process: its connection must not outlive what it is
    // kept in.
    const automation::ClassRegistry::Restore registry;
    // A window has boxes of its own; elsewhere the terminal takes their place.
    const bool windowed = options.command == CliCommand::Window;
    const auto messages = std::make_shared<ConsoleMessages>(
        streams.in, options.json ? streams.err : streams.out, options.answer, options.json);
    system::Surroundings surroundings = system::Surroundings::Current();
    if (!windowed) surroundings.messageBoxes = messages;
    const system::SurroundingsScope scope(surroundings);

    std::optional<com::InstalledClasses> installed;  // beyond the session, which may hold objects of theirs
    CliContext context{options, streams, hooks, *messages, nullptr};
    store::clsVIData::ForgetFailure();
    try {
        RemoveLeftBehind(options);
        RegisterProviders();
        store::RegisterComponentClasses();
        if (options.excelVersion == kInstalled) installed.emplace();
        if (options.excelVersion == "none" || installed) {
            office::UnregisterExcelServer();
        } else {
            office::RegisterExcelServer(options.excelVersion);
        }
        if (!NeedsNoSession(options.command)) {
            const fs::path userData = system::PathFromUtf8(surroundings.folders->UserData());
            context.session = RegisterHostComponents(
                {ChosenConnectString(context), options.userId, system::PathToUtf8(userData / kCloudFolder)});
            entry::SetCurrentUserId(std::to_string(options.userId));
        }
        return Dispatch(context);
    } catch (const Error& error) {
        std::string text = error.Text();
        for (const std::string& doing : error.Chain())
            text += "\n  " + doing;
        return FailWithDocument(context, text);
    } catch (const std::bad_alloc&) {
        return FailWithDocument(context, "内存不足，操作没有完成！");
    } catch (const std::exception& error) {
        return FailWithDocument(context, error.what());
    }
}

}  // namespace

int RunCli(const std::vector<std::string>& arguments, const CliStreams& streams, const CliHooks& hooks) {
    CliOptions options;
    CommandLine commandLine(options);
    const std::optional<int> parsed = commandLine.Parse(arguments, streams);
    const int code = parsed ? *parsed : RunCommand(options, streams, hooks);
    // An answer that never arrived, on a full disk for instance, is not done.
    if (streams.out.flush() || code != kExitDone) return code;
    streams.err << "vicenter: 输出无法写入。\n";
    return kExitFailed;
}

}  // namespace vicenter::host
