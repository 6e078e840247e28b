// vicenter generate: a template from posted vouchers, with the dialog's checks, question and messages.

#include <algorithm>
#include <ostream>

#include "automation/error.h"
#include "autovch/generation.h"
#include "center/frame/window_state.h"
#include "entry/host_services.h"
#include "host/cli/context.h"
#include "host/cli/one_line.h"
#include "host/cli/templates.h"

namespace vicenter::host {

namespace {

autovch::VoucherFilter Filter(const GenerateOptions& options) {
    autovch::VoucherFilter filter{options.year, options.period, options.from,
                                  options.to,   options.group,  options.includeSystem};
    const autovch::VoucherNumbers all = autovch::ReadVoucherNumbers(filter.year, filter.period);
    if (filter.from.empty()) filter.from = all.lowest;
    if (filter.to.empty()) filter.to = all.highest;
    return filter;
}

// "01" is the number 1.
autovch::LeftOut NumbersOf(const std::vector<std::string>& given) {
    autovch::LeftOut numbers;
    for (const std::string& text : given) {
        const std::size_t first = std::min(text.find_first_not_of('0'), text.empty() ? 0 : text.size() - 1);
        numbers.insert(text.substr(first));
    }
    return numbers;
}

void TellWarnings(std::ostream& to, const autovch::MergedNumbers& merged,
                  const store::MissingLines& missing) {
    for (const std::string& warning : {autovch::MissingLinesWarning(missing), merged.Warning()}) {
        if (!warning.empty()) to << "注意：" << warning << "\n";
    }
}

int PrintPreview(const CliContext& context, const autovch::VoucherFilter& filter) {
    const autovch::GenerationPreview preview = autovch::PreviewGeneration(filter);
    if (!preview.problem.empty()) Refuse(preview.problem);
    const autovch::MergedNumbers merged = autovch::FindMergedNumbers(filter);
    const store::MissingLines missing = autovch::FindMissingLines(filter);
    if (context.options.json) {
        VariantArray patterns;
        for (const autovch::VoucherPattern& pattern : preview.patterns) {
            patterns.push_back(
                JsonObject({{"numbers", VariantArray(pattern.numbers.begin(), pattern.numbers.end())},
                            {"occurrences", static_cast<std::int32_t>(pattern.Occurrences())},
                            {"FExp", pattern.explanation},
                            {"lines", VariantArray(pattern.lines.begin(), pattern.lines.end())},
                            {"alike", pattern.alike}}));
        }
        PrintJson(context,
                  JsonObject({{"patterns", patterns},
                              {"merged", VariantArray(merged.numbers.begin(), merged.numbers.end())},
                              {"groups", VariantArray(merged.groups.begin(), merged.groups.end())},
                              {"missing", VariantArray(missing.numbers.begin(), missing.numbers.end())}}));
        return kExitDone;
    }
    std::ostream& out = context.streams.out;
    TellWarnings(out, merged, missing);
    for (const autovch::VoucherPattern& pattern : preview.patterns) {
        out << pattern.Occurrences() << " 次\t编号 " << autovch::ListOfNumbers(pattern.numbers) << "\t"
            << OneLine(pattern.explanation) << "\t" << OneLine(pattern.words);
        if (!pattern.alike.empty()) out << "\t" << OneLine(pattern.alike);
        out << "\n";
    }
    return kExitDone;
}

}  // namespace

int RunGenerate(const CliContext& context) {
    const GenerateOptions& options = context.options.generate;
    // As the window does before any command: the first listing of an account set makes its standard template.
    ReadTemplates(context);
    if (!options.group.empty()) {
        const std::vector<std::string> groups = autovch::ReadVoucherGroups();
        if (std::find(groups.begin(), groups.end(), options.group) == groups.end()) {
            throw automation::Error(automation::error_number::kElementNotFound,
                                    "凭证类别不存在：" + options.group);
        }
    }
    const autovch::VoucherFilter filter = Filter(options);
    if (context.options.dryRun) return PrintPreview(context, filter);
    entry::WriteOperationLog(entry::LogKind::Requested, "凭证模板-通过凭证生成模板");
    const autovch::GenerationRequest request{filter,
                                             context.options.name,
                                             {options.fields.begin(), options.fields.end()},
                                             NumbersOf(options.without)};
    if (!context.options.json) {
        TellWarnings(context.streams.err, autovch::FindMergedNumbers(filter),
                     autovch::FindMissingLines(filter));
    }
    const autovch::GenerationResult result = autovch::Generate(request);
    Variant data = Variant::Null();
    if (result.outcome) {
        center::Tell(result.message);
        data = JsonObject({{"FID", result.outcome.id}, {"FName", result.templateName}});
    }
    return FinishWriting(context, result.outcome, data);
}

}  // namespace vicenter::host
