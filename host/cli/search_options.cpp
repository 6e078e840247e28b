#include "host/cli/search_options.h"

#include <CLI/CLI.hpp>

#include "host/cli/argument_checks.h"

namespace vicenter::host {

void AddLogCommand(CLI::App& app, CliOptions& options) {
    store::LogFilter& log = options.log;
    CLI::App* added = app.add_subcommand("log", "操作日志 / print the operation log");
    added->callback([&options, &log] {
        if (!log.from.empty() && !log.to.empty() && log.to < log.from)
            throw CLI::ValidationError("--to", "不能早于 --from / must not be before --from：" + log.to);
        options.command = CliCommand::Log;
    });
    added->add_option("--from", log.from, "起始日期 yyyy-mm-dd / first day")->check(kDay);
    added->add_option("--to", log.to, "终止日期 / last day")->check(kDay);
    added->add_option("--user", log.user, "操作的用户 / the user who acted")->check(kDigits);
    added->add_option("--kind", log.kind, "1 请求，2 关闭，3 成功，4 失败 / asked for, closed, done, failed")
        ->check(CLI::IsMember({"1", "2", "3", "4"}));
    added->add_option("--template", log.templateName, "模板名称 / a template's name")->check(kNotEmpty);
}

void AddReplaceCommand(CLI::App& app, CliOptions& options) {
    ReplaceOptions& replace = options.replace;
    CLI::App* added = app.add_subcommand(
        "replace", "在全部模板中替换代码，或撤消上次替换 / replace a code in all templates, or take it back");
    auto* columnOption =
        added
            ->add_option("--column", replace.column,
                         "account 科目，items 核算项目，settlement 结算方式，currency 币别，unit 计量单位 / "
                         "which code")
            ->check(CLI::IsMember({"account", "items", "settlement", "currency", "unit"}));
    auto* from = added->add_option("--from", replace.from, "原代码 / the former code")->check(kNotEmpty);
    auto* to = added->add_option("--to", replace.to, "新代码 / the new code")->check(kNotEmpty);
    auto* dryRun = added->add_flag("--dry-run", options.dryRun, "只列出，不替换 / list, replace nothing");
    auto* standard =
        added->add_flag("--standard", replace.standard, "标准模板也替换 / in the standard template as well");
    auto* undo = added->add_flag("--undo", replace.undo, "撤消上次替换 / take the last replacement back");
    for (CLI::Option* option : {columnOption, from, to, dryRun, standard})
        option->excludes(undo);
    added->callback([&options, &replace] {
        const bool whole = !replace.column.empty() && !replace.from.empty() && !replace.to.empty();
        if (!whole && !replace.undo) throw CLI::RequiredError("--column --from --to | --undo");
        options.command = CliCommand::Replace;
    });
}

void AddSearchCommand(CLI::App& app, CliOptions& options) {
    center::SearchWish& wish = options.search;
    CLI::App* added = app.add_subcommand("search", "在全部模板中查找分录 / look for lines in all templates");
    added->add_option("--text", wish.text, "所含文字 / part of a text")->check(kNotEmpty);
    added
        ->add_option("--account", wish.account,
                     "科目代码（含下级）或名称所含文字 / account with those below it, or part of its name")
        ->check(kNotEmpty);
    added->add_option("--item", wish.item, "核算项目代码 / code of an item")->check(kNotEmpty);
    added->add_option("--amount", wish.amount, "金额或范围 100-200 / amount or range")->check(kNotEmpty);
    added->callback([&options, &wish] {
        if (const std::string why = center::WhyNotSearched(wish); !why.empty())
            throw CLI::ValidationError("--text --account --item --amount", why);
        options.command = CliCommand::Search;
    });
}

}  // namespace vicenter::host
