// vicenter list

#include <map>
#include <ostream>

#include "host/cli/context.h"
#include "host/cli/one_line.h"
#include "host/cli/templates.h"

namespace vicenter::host {

int RunList(const CliContext& context) {
    const std::vector<TemplateHead> templates = ReadTemplates(context);
    // Owner and date stand beside what the tree shows.
    struct Detail {
        Variant user;
        Variant date;
    };
    std::map<std::string, Detail> details;
    const ado::RecordsetRef rows =
        context.session->Execute("select FID,FUserID,FDate from t_VchTemplate where FUserID = " +
                                 std::to_string(context.options.userId) + " or FID = 0");
    for (; !rows->AtEnd(); rows->MoveNext())
        details[rows->Value("FID").ToText()] = {rows->Value("FUserID"), rows->Value("FDate")};

    if (!context.options.json) {
        for (const TemplateHead& head : templates)
            context.streams.out << head.id << "\t" << OneLine(head.name) << "\t"
                                << details[head.id].date.ToTextOrEmpty() << "\n";
        return kExitDone;
    }
    VariantArray list;
    for (const TemplateHead& head : templates) {
        const Detail& detail = details[head.id];
        list.push_back(JsonObject({{"FID", Variant(head.id).ToInt32()},
                                   {"FName", head.name},
                                   {"FUserID", JsonValue(detail.user)},
                                   {"FDate", JsonValue(detail.date)}}));
    }
    PrintJson(context, list);
    return kExitDone;
}

}  // namespace vicenter::host
