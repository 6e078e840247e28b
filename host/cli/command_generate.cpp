// vicenter generate: a template from posted vouchers, with the dialog's checks, question and messages.

#include <algorithm>

#include "automation/error.h"
#include "autovch/generation.h"
#include "center/frame/window_state.h"
#include "entry/host_services.h"
#include "host/cli/context.h"
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
    entry::WriteOperationLog(entry::LogKind::Requested, "凭证模板-通过凭证生成模板");
    const autovch::GenerationRequest request{
        Filter(options), context.options.name, {options.fields.begin(), options.fields.end()}};
    const autovch::GenerationResult result = autovch::Generate(request);
    Variant data = Variant::Null();
    if (result.outcome) {
        center::Tell(result.message);
        data = JsonObject({{"FID", result.outcome.id}, {"FName", request.templateName}});
    }
    return FinishWriting(context, result.outcome, data);
}

}  // namespace vicenter::host
