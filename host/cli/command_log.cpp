// vicenter log: the operation log, oldest entry first.

#include <ostream>

#include "host/cli/context.h"

namespace vicenter::host {

int RunLog(const CliContext& context) {
    const ado::RecordsetRef rows = context.session->Execute(
        "select FLogID,FDate,FUserID,FFunctionID,FKind,FDescription from t_Log order by FLogID");
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
