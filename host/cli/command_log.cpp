// vicenter log: the operation log, or some of it, oldest entry first.

#include <ostream>
#include <string>

#include "entry/sql_text.h"
#include "host/cli/context.h"

namespace vicenter::host {

namespace {

// Dates in the form that no language setting reads otherwise.
std::string Day(const std::string& day) {
    std::string digits = day;
    std::erase(digits, '-');
    return "'" + digits + "'";
}

std::string Question(const LogOptions& options) {
    std::string conditions;
    const auto add = [&](const std::string& condition) {
        conditions += (conditions.empty() ? " where " : " and ") + condition;
    };
    if (!options.from.empty()) add("FDate >= " + Day(options.from));
    if (!options.to.empty()) add("FDate < dateadd(day, 1, " + Day(options.to) + ")");
    if (!options.user.empty()) add("FUserID = " + options.user);
    if (!options.kind.empty()) add("FKind = " + options.kind);
    if (!options.templateName.empty())
        add("charindex(" + entry::SqlQuote(options.templateName) + ", FDescription) > 0");
    return "select FLogID,FDate,FUserID,FFunctionID,FKind,FDescription from t_Log" + conditions +
           " order by FLogID";
}

}  // namespace

int RunLog(const CliContext& context) {
    const ado::RecordsetRef rows = context.session->Execute(Question(context.options.log));
    if (context.options.json) {
        VariantArray list;
        for (std::size_t r = 0; r < static_cast<std::size_t>(rows->RecordCount()); ++r) {
            const auto object = std::make_shared<scripting::Dictionary>();
            for (std::size_t c = 0; c < rows->ColumnCount(); ++c)
                object->Add(rows->Columns()[c].name, JsonValue(rows->ValueAt(r, c)));
            list.emplace_back(object);
        }
        PrintJson(context, list);
        return kExitDone;
    }
    for (; !rows->AtEnd(); rows->MoveNext()) {
        for (const char* field : {"FDate", "FUserID", "FFunctionID", "FKind"})
            context.streams.out << rows->Value(field).ToTextOrEmpty() << "\t";
        context.streams.out << rows->Value("FDescription").ToTextOrEmpty() << "\n";
    }
    return kExitDone;
}

}  // namespace vicenter::host
