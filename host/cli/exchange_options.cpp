#include "host/cli/exchange_options.h"

#include <CLI/CLI.hpp>

#include "host/cli/argument_checks.h"
#include "host/cli/options.h"

namespace vicenter::host {

void AddExportCommand(CLI::App& app, CliOptions& options) {
    CLI::App* exporting = app.add_subcommand("export", "引出模板 / export to a workbook");
    auto* name = exporting->add_option("NAME", options.name, "模板名称 / template");
    auto* file = exporting->add_option("FILE", options.file, ".xls / .xlsx")->check(kNotEmpty);
    name->needs(file);
    auto* all =
        exporting
            ->add_option("--all", options.exportFolder, "引出全部模板到文件夹 / every template into FOLDER")
            ->check(kNotEmpty);
    all->excludes(name);
    exporting->callback([&options, name, all] {
        if (name->count() == 0 && all->count() == 0) throw CLI::RequiredError("NAME FILE, --all FOLDER");
        options.command = CliCommand::Export;
    });
}

void AddImportCommand(CLI::App& app, CliOptions& options) {
    CLI::App* importing = app.add_subcommand("import", "引入模板 / import a workbook, or those of a folder");
    importing->add_option("FILE", options.file, "工作簿或文件夹 / workbook or folder")
        ->required()
        ->check(kNotEmpty);
    importing->add_flag("--dry-run", options.dryRun,
                        "只显示将有哪些变化，不引入 / print what would change, import nothing");
    importing->callback([&options] { options.command = CliCommand::Import; });
}

void AddGenerateCommand(CLI::App& app, CliOptions& options) {
    GenerateOptions& generate = options.generate;
    CLI::App* added =
        app.add_subcommand("generate", "根据凭证生成模板 / make a template from posted vouchers");
    added->add_option("--name", options.name, "模板名称 / template")->required();
    added->add_option("--year", generate.year, "年度 / year")->required()->check(kDigits);
    added->add_option("--period", generate.period, "期间 / period")->required()->check(kDigits);
    auto* from = added->add_option("--from", generate.from, "起始凭证号 / first voucher number");
    auto* to = added->add_option("--to", generate.to, "终止凭证号 / last voucher number");
    added->add_option("--group", generate.group, "凭证类别 / voucher group");
    added->add_flag("--include-system", generate.includeSystem, "包括机制凭证 / with system-made vouchers");
    added->add_option("--fields", generate.fields, "模板字段列号 / columns of optional fields")
        ->delimiter(',')
        ->check(CLI::IsMember({7, 9, 10, 11, 13, 14, 15, 17, 18, 19, 20}));
    added->callback([&options, from, to] {
        if (to->count() > 0 && from->count() == 0)
            throw CLI::ValidationError("--to", "须与 --from 一起使用，例如：--from 1 --to 20 / needs --from");
        options.command = CliCommand::Generate;
    });
}

}  // namespace vicenter::host
