#include "store/stored_templates.h"

#include "automation/error.h"
#include "store/statements.h"

namespace vicenter::store {

namespace {

std::vector<StoredTemplate> TemplatesOf(const ado::Recordset& records) {
    std::vector<StoredTemplate> templates;
    const std::size_t id = records.ColumnIndex("FTemplateID");
    const std::size_t name = records.ColumnIndex("FTemplateName");
    const std::size_t entry = records.ColumnIndex("FEntryID");
    LineReader reader(records);
    for (std::size_t record = 0; record < static_cast<std::size_t>(records.RecordCount()); ++record) {
        std::string of = records.ValueAt(record, id).ToText();
        if (templates.empty() || templates.back().id != of)
            templates.push_back({std::move(of), records.ValueAt(record, name).ToTextOrEmpty(), {}, {}});
        // A template without lines stands there once, with nothing beside it.
        if (records.ValueAt(record, entry).IsNull()) continue;
        templates.back().lines.push_back(reader.Read(record));
        templates.back().digest.Add(templates.back().lines.back());
    }
    return templates;
}

}  // namespace

std::optional<std::vector<StoredTemplate>> ReadStoredTemplates(const std::string& userId) {
    const ado::RecordsetRef records = GetRecordset(
        "select a.FID as FTemplateID,a.FName as FTemplateName,b.* from t_VchTemplate a left join "
        "t_VchTemplateEntry b on a.FID = b.FID where a.FID = 0 or a.FUserID = " +
        userId + " order by a.FID,b.FNo,b.FEntryID");
    try {
        if (records != nullptr) return TemplatesOf(*records);
    } catch (const automation::Error&) {
        // As unreadable as no answer.
    }
    return std::nullopt;
}

}  // namespace vicenter::store
