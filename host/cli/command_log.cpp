// vicenter log: the operation log, or some of it, oldest entry first.

#include <ostream>
#include <string>

#include "host/cli/context.h"
#include "host/cli/one_line.h"
#include "store/operation_log.h"
#include "store/user_names.h"

namespace vicenter::host {

int RunLog(const CliContext& context) {
    const ado::RecordsetRef rows = context.session->Execute(store::LogQuestion(context.options.log));
    // What the template of an entry held then, where it tells of one.
    const store::LogAnswer answer = store::ReadOperationLog(context.options.log);
    const store::UserNames users = store::UserNames::Read();
    const auto countsAt = [&](std::size_t row) {
        return row < answer.entries.size() ? answer.entries[row].counts : std::string();
    };
    if (context.options.json) {
        VariantArray list;
        for (std::size_t r = 0; r < static_cast<std::size_t>(rows->RecordCount()); ++r) {
            const auto object = std::make_shared<scripting::Dictionary>();
            for (std::size_t c = 0; c < rows->ColumnCount(); ++c)
                object->Add(rows->Columns()[c].name, JsonValue(rows->ValueAt(r, c)));
            object->Add("FUserName", users.NameOf(rows->ValueAt(r, rows->ColumnIndex("FUserID")).ToInt32()));
            if (const std::string counts = countsAt(r); !counts.empty()) object->Add("counts", counts);
            list.emplace_back(object);
        }
        PrintJson(context, list);
        return kExitDone;
    }
    for (std::size_t r = 0; !rows->AtEnd(); rows->MoveNext(), ++r) {
        context.streams.out << rows->Value("FDate").ToTextOrEmpty() << "\t"
                            << OneLine(users.WithNumber(rows->Value("FUserID").ToInt32())) << "\t";
        for (const char* field : {"FFunctionID", "FKind"})
            context.streams.out << rows->Value(field).ToTextOrEmpty() << "\t";
        const std::string counts = countsAt(r);
        context.streams.out << OneLine(rows->Value("FDescription").ToTextOrEmpty())
                            << (counts.empty() ? "" : "\t" + counts) << "\n";
    }
    return kExitDone;
}

}  // namespace vicenter::host
