// vicenter search: lines of all templates that fit.

#include <ostream>

#include "automation/error.h"
#include "center/search/template_search.h"
#include "host/cli/context.h"
#include "host/cli/one_line.h"
#include "store/failure_text.h"

namespace vicenter::host {

namespace {

namespace column = store::column;

std::string HitText(const center::SearchHit& hit) {
    const auto text = [&](int gridColumn) { return hit.line[static_cast<std::size_t>(gridColumn - 1)]; };
    std::string line =
        OneLine(hit.templateName) + "\t" + text(column::kNo) + " 号\t行" + std::to_string(hit.row) + "\t";
    for (const int c : {column::kExplanation, column::kDirection, column::kAccountNumber,
                        column::kAccountName, column::kItems, column::kAmount})
        line += OneLine(text(c)) + " ";
    return line + "\n";
}

Variant HitObject(const center::SearchHit& hit) {
    const auto text = [&](int gridColumn) { return hit.line[static_cast<std::size_t>(gridColumn - 1)]; };
    return JsonObject({{"FID", Variant(hit.templateId).ToInt32()},
                       {"FName", hit.templateName},
                       {"row", hit.row},
                       {"field", std::string(store::Column(hit.column).field)},
                       {"FNo", text(column::kNo)},
                       {"FExp", text(column::kExplanation)},
                       {"FAccountNumber", text(column::kAccountNumber)},
                       {"FAcctountName", text(column::kAccountName)},
                       {"FItemsInfo", text(column::kItems)},
                       {"FAmount", text(column::kAmount)}});
}

}  // namespace

int RunSearch(const CliContext& context) {
    // Opened first on its own, so that a missing account set is reported with its reason.
    context.session->Connection();
    const auto templates = store::ReadStoredTemplates(std::to_string(context.options.userId));
    if (!templates) {
        throw automation::Error(automation::error_number::kElementNotFound,
                                store::WithReason("无法读取凭证模板，请检查账套连接！"));
    }
    VariantArray list;
    for (const center::SearchHit& hit : center::SearchTemplates(*templates, context.options.search)) {
        list.push_back(HitObject(hit));
        if (!context.options.json) context.streams.out << HitText(hit);
    }
    return FinishListing(context, list, "没有符合条件的分录。");
}

}  // namespace vicenter::host
