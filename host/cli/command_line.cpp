#include "host/cli/command_line.h"

#include <sstream>
#include <tuple>

#include <CLI/CLI.hpp>

#include "host/cli/argument_checks.h"
#include "host/cli/exchange_options.h"
#include "host/cli/search_options.h"
#include "platform/ado/passwords.h"

namespace vicenter::host {

namespace {

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
                         ->check(kFileName);
        connect_ = app_.add_option("--connect", options_.connectString, "连接字符串 / connect string")
                       ->check(kNotEmpty)
                       ->excludes(file);
        auto* variable = app_.add_option("--password-env", options_.passwordVariable,
                                         "取密码的环境变量 / environment variable with the password")
                             ->check(kNotEmpty);
        auto* passwordFile = app_.add_option("--password-file", options_.passwordFile,
                                             "取密码的文件 / file whose first line is the password")
                                 ->check(kFileName)
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
            ->capture_default_str()
            ->check(kExcelVersion);
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
        AddWindow();
        AddAccountSet();
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
            ->add_option("FILE", options_.file,
                         "脚本文件；没有或 - 为标准输入 / script; standard input without, or for -")
            ->check(kNotEmpty);
        AddCommand(app_, "drivers", CliCommand::Drivers,
                   "SQL Server 的 ODBC 驱动程序 / ODBC drivers for SQL Server, and which one is taken");
        AddCommand(app_, "doctor", CliCommand::Doctor,
                   "检查程序、字体、驱动和账套 / what is installed, what is missing, what to do");
        AddPrint();
        AddHistory();
        AddRestore();
        AddExportCommand(app_, options_);
        AddImportCommand(app_, options_);
        AddGenerateCommand(app_, options_);
    }

    void AddWindow() {
        CLI::App* window =
            AddCommand(app_, "window", CliCommand::Window, "打开凭证模板窗口 / open the Template Center");
        window->add_option("FILE", options_.windowFile, "账套文件 / account set file")->check(kFileName);
        window
            ->add_option("--offscreen-session", options_.sessionFolder,
                         "不用显示器演示主要操作，图片存入文件夹 / drive the window without a display, "
                         "pictures into DIR")
            ->check(kFileName);
        window->callback([this] {
            options_.command = CliCommand::Window;
            if (options_.windowFile.empty()) return;
            if (!options_.accountSet.empty() || !options_.connectString.empty())
                throw CLI::ValidationError("FILE",
                                           "不能与 --account-set、--connect 同时使用 / FILE excludes both");
            options_.accountSet = options_.windowFile;
        });
    }

    void AddAccountSet() {
        CLI::App* accountSet = app_.add_subcommand("account-set", "账套 / account sets");
        accountSet->require_subcommand(1);
        AddAccountSetNew(*accountSet);
        const char* fileOrConnectString = "文件或连接字符串 / file or connect string";
        AddCopy(*accountSet, "copy", CliCommand::AccountSetCopy,
                "复制账套，逐行核对 / copy an account set and compare every row",
                {"FROM", fileOrConnectString}, {"TO", fileOrConnectString});
        AddCopy(*accountSet, "backup", CliCommand::AccountSetBackup,
                "备份账套，不影响正在使用的人 / back up while others work", {"FILE", "账套文件 / file"},
                {"TO", "目标文件 / target file"});
        AddCopy(*accountSet, "restore", CliCommand::AccountSetRestore,
                "恢复备份到账套或新文件 / put a backup into an account set or a new file",
                {"FROM", "账套文件 / file"}, {"FILE", "目标文件 / target file"});
        AddOnPlace(*accountSet, "verify", CliCommand::AccountSetVerify, "检查账套或备份 / look for damage");
        AddOnPlace(*accountSet, "upgrade", CliCommand::AccountSetUpgrade,
                   "补上模板历史的表 / add the tables of the templates' history");
    }

    void AddAccountSetNew(CLI::App& accountSet) {
        CLI::App* create =
            AddOnPlace(accountSet, "new", CliCommand::AccountSetNew, "新建账套 / make an account set");
        auto* demo = create->add_flag("--demo", options_.demo, "带演示数据 / with the demo ledger");
        create->add_option("--vouchers", options_.vouchers, "演示凭证数 / number of demo vouchers")
            ->needs(demo)
            ->check(CLI::Range(0, 10'000'000));
        create
            ->add_flag("--dry-run", options_.dryRun,
                       "只打印脚本，不执行；用于 --connect / print the script for --connect, do nothing")
            ->needs(connect_);
    }

    // From one account set to another.
    struct Place {
        const char* name;
        const char* description;
    };
    void AddCopy(CLI::App& accountSet, const char* name, CliCommand command, const char* description,
                 const Place& from, const Place& to) {
        CLI::App* added = AddCommand(accountSet, name, command, description);
        added->add_option(from.name, options_.file, from.description)->required()->check(kFileName);
        added->add_option(to.name, options_.target, to.description)->required()->check(kFileName);
    }

    // On a file, or on the database of --connect.
    CLI::App* AddOnPlace(CLI::App& accountSet, const char* name, CliCommand command,
                         const char* description) {
        CLI::App* added = AddCommand(accountSet, name, command, description);
        added->add_option("FILE", options_.file, "账套文件；用 --connect 时不写 / file; none with --connect")
            ->check(kFileName);
        added->callback([this, command] {
            if (options_.file.empty() == options_.connectString.empty())
                throw CLI::RequiredError("FILE | --connect");
            options_.command = command;
        });
        return added;
    }

    void AddPrint() {
        CLI::App* print = AddNamedCommand("print", CliCommand::Print, "打印模板 / a template as a PDF file");
        print->add_option("FILE", options_.file, ".pdf")->required()->check(kFileName);
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
        auto* deleted =
            history->add_flag("--deleted", options_.deleted, "已删除的模板 / templates that were deleted")
                ->excludes(name);
        for (auto [flag, target, text] :
             {std::tuple("--keep-days", &options_.keepDays, "保留天数 / days that versions are kept"),
              std::tuple("--keep-versions", &options_.keepVersions,
                         "每个模板至少保留的版本数 / versions of a template kept at least")}) {
            history->add_option(flag, *target, text)
                ->check(CLI::Range(0, 100'000))
                ->excludes(name)
                ->excludes(deleted);
        }
    }

    void AddRestore() {
        CLI::App* restore =
            AddNamedCommand("restore", CliCommand::Restore,
                            "恢复历史版本或已删除的模板 / bring back a version or a deleted template");
        restore->add_option("--version-id", options_.version, "版本号 / version, as history lists it")
            ->check(kDigits);
        restore->add_option("--as", options_.newName, "恢复为新模板 / as a new template of this name")
            ->check(kNotEmpty);
    }

    CliOptions& options_;
    CLI::Option* connect_ = nullptr;
    CLI::App app_{"凭证模板 / voucher templates", "vicenter"};
};

}  // namespace

std::optional<int> ReadCommandLine(const std::vector<std::string>& arguments, const CliStreams& streams,
                                   CliOptions& options) {
    return CommandLine(options).Parse(arguments, streams);
}

}  // namespace vicenter::host
