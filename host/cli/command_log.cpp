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
    VariantArray list;
    for (std::size_t r = 0; !rows->AtEnd(); rows->MoveNext(), ++r) {
        const std::int32_t user = rows->Value("FUserID").ToInt32();
        const std::string counts = countsAt(r);
        const auto object = std::make_shared<scripting::Dictionary>();
        for (const ado::Column& column : rows->Columns())
            object->Add(column.name, JsonValue(rows->Value(column.name)));
        object->Add("FUserName", users.NameOf(user));
        if (!counts.empty()) object->Add("counts", counts);
        list.emplace_back(object);
        if (context.options.json) continue;
        context.streams.out << rows->Value("FDate").ToTextOrEmpty() << "\t" << OneLine(users.WithNumber(user))
                            << "\t";
        for (const char* field : {"FFunctionID", "FKind"})
            context.streams.out << rows->Value(field).ToTextOrEmpty() << "\t";
        context.streams.out << OneLine(rows->Value("FDescription").ToTextOrEmpty())
                            << (counts.empty() ? "" : "\t" + counts) << "\n";
    }
    return FinishListing(context, list, "没有符合条件的操作日志。");
}

}  // namespace vicenter::host
