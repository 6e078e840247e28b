#pragma once

// What a scripted account set answers to the question what a template is now.

#include <string>
#include <vector>

#include "store/template_columns.h"
#include "tests/fakes/fake_account_set.h"

namespace vicenter::fakes {

// A template's row as it stands, without lines; the id of the version that was kept of it, none without one.
inline ado::RecordsetRef TemplateAnswer(int owner, const std::string& name,
                                        const Variant& version = Variant::Null()) {
    std::vector<std::string> columns{"FUserID", "FTemplateName", "FHistoryID", "FEntryID"};
    for (const store::ColumnSpec& spec : store::Columns())
        columns.emplace_back(spec.field);
    std::vector<Variant> row(columns.size(), Variant::Null());
    row[0] = owner;
    row[1] = name;
    row[2] = version;
    return Rows(columns, {row});
}

}  // namespace vicenter::fakes
