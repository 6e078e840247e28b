#pragma once

// Templates of any length for tests and benchmarks.

#include <string>

#include "platform/ado/connection.h"

namespace vicenter::host::test {

// Gives a template so many lines: the demo set's own, again and again.
inline void StoreDemoLines(ado::Connection& connection, const std::string& templateId, std::size_t count) {
    const ado::RecordsetRef lines =
        connection.Execute("select * from t_VchTemplateEntry order by FID,FEntryID");
    const auto demo = static_cast<std::size_t>(lines->RecordCount());
    std::string batch;
    for (std::size_t i = 0; i < count; ++i) {
        std::string names = "FID,FEntryID";
        std::string values = templateId + "," + std::to_string(i + 1);
        for (std::size_t c = 0; c < lines->ColumnCount(); ++c) {
            const std::string& name = lines->Columns()[c].name;
            const automation::Variant& value = lines->ValueAt(i % demo, c);
            if (name == "FID" || name == "FEntryID" || value.IsNull()) continue;
            names += "," + name;
            values += value.IsText() ? ",N'" + value.ToText() + "'" : "," + value.ToText();
        }
        batch += "insert into t_VchTemplateEntry(" + names + ") values(" + values + ")\r\n";
    }
    connection.Execute(batch);
}

}  // namespace vicenter::host::test
