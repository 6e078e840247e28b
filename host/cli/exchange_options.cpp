#include "host/cli/exchange_options.h"

#include <CLI/CLI.hpp>

#include "host/cli/argument_checks.h"
#include "host/cli/options.h"

namespace vicenter::host {

void AddExportCommand(CLI::App& app, CliOptions& options) {
    CLI::App* exporting = app.add_subcommand("export", "引出模板 / export to a workbook");
    auto* name = exporting->add_option("NAME", options.name, "模板名称 / template");
    auto* file = exporting->add_option("FILE", options.file, ".xls / .xlsx")->check(kFileName);
    name->needs(file);
    auto* all =
        exporting
            ->add_option("--all", options.exportFolder, "引出全部模板到文件夹 / every template into FOLDER")
            ->check(kFileName);
    all->excludes(name);
    auto* empty = exporting
                      ->add_option("--empty", options.emptyWorkbook,
                                   "空白工作簿，带表头、下拉列表和批注 / a workbook to start from: headers, "
                                   "drop-downs, notes")
                      ->check(kFileName);
    empty->excludes(name)->excludes(all);
    exporting->callback([&options, name, all, empty] {
        if (name->count() == 0 && all->count() == 0 && empty->count() == 0)
            throw CLI::RequiredError("NAME FILE, --all FOLDER, --empty FILE");
        options.command = CliCommand::Export;
    });
}

void AddImportCommand(CLI::App& app, CliOptions& options) {
    CLI::App* importing = app.add_subcommand("import", "引入模板 / import a workbook, or those of a folder");
    importing->add_option("FILE", options.file, "工作簿或文件夹 / workbook or folder")
        ->required()
        ->check(kFileName);
    auto* dryRun = importing->add_flag(
        "--dry-run", options.dryRun, "只显示将有哪些变化，不引入 / print what would change, import nothing");
    importing->add_flag("--tidy", options.tidy,
                        "略过表头以上的行和空行 / pass over rows above the header and blank rows");
    importing
        ->add_option("--marked-copy", options.markedCopy,
                     "未引入时另存标错副本；引入文件夹时为文件夹 / a refused workbook's copy with its faults "
                     "marked; of a folder a folder")
        ->check(kFileName)
        ->excludes(dryRun);
    importing
        ->add_option("--report", options.report,
                     "把结果写入工作簿 / what became of every file, as a workbook")
        ->check(kFileName)
        ->excludes(dryRun);
    importing->callback([&options] { options.command = CliCommand::Import; });
}

void AddGenerateCommand(CLI::App& app, CliOptions& options) {
    GenerateOptions& generate = options.generate;
    CLI::App* added =
        app.add_subcommand("generate", "根据凭证生成模板 / make a template from posted vouchers");
    auto* name = added->add_option("--name", options.name, "模板名称 / template")->check(kNotEmpty);
    added->add_option("--year", generate.year, "年度 / year")->required()->check(kDigits);
    added->add_option("--period", generate.period, "期间 / period")->required()->check(kDigits);
    auto* from =
        added->add_option("--from", generate.from, "起始凭证号 / first voucher number")->check(kNotEmpty);
    auto* to = added->add_option("--to", generate.to, "终止凭证号 / last voucher number")->check(kNotEmpty);
    added->add_option("--group", generate.group, "凭证类别 / voucher group")->check(kNotEmpty);
    added->add_flag("--include-system", generate.includeSystem, "包括机制凭证 / with system-made vouchers");
    added->add_option("--fields", generate.fields, "模板字段列号 / columns of optional fields")
        ->delimiter(',')
        ->check(CLI::IsMember({7, 9, 10, 11, 13, 14, 15, 17, 18, 19, 20}));
    added->add_option("--without", generate.without, "不生成的模板编号 / template numbers that are left out")
        ->delimiter(',')
        ->check(kDigits);
    added->add_flag("--dry-run", options.dryRun,
                    "只列出将生成的凭证，不生成 / list the vouchers by pattern, make nothing");
    added->callback([&options, name, from, to] {
        if (name->count() == 0 && !options.dryRun) throw CLI::RequiredError("--name");
        if (to->count() > 0 && from->count() == 0)
            throw CLI::ValidationError("--to", "须与 --from 一起使用，例如：--from 1 --to 20 / needs --from");
        options.command = CliCommand::Generate;
    });
}

}  // namespace vicenter::host
