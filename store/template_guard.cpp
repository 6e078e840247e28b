#include "store/template_guard.h"

#include "entry/sql_text.h"
#include "store/cls_vi_data.h"
#include "store/statements.h"

namespace vicenter::store {

using automation::Error;
using automation::Variant;
using entry::kCrLf;

namespace {

std::int32_t WholeNumber(const Variant& value) {
    return static_cast<std::int32_t>(entry::LeadingNumber(value.ToTextOrEmpty()));
}

std::int32_t UserNumber(const std::string& userId) {
    return static_cast<std::int32_t>(entry::LeadingNumber(userId));
}

// The first record as a template's row; no answer, or one without the columns asked for, is none.
std::optional<TemplateRow> RowOf(const RecordsetRef& records) {
    if (records == nullptr) return std::nullopt;
    try {
        TemplateRow row;
        const std::size_t owner = records->ColumnIndex("FUserID");
        const std::size_t name = records->ColumnIndex("FTemplateName");
        if (records->RecordCount() < 1) return row;
        row.exists = true;
        row.ownerId = WholeNumber(records->ValueAt(0, owner));
        row.name = records->ValueAt(0, name).ToTextOrEmpty();
        return row;
    } catch (const Error&) {
        return std::nullopt;
    }
}

constexpr const char* kAboveTheLargest = " where FID > (select Max(FID) from t_VchTemplate)";

}  // namespace

std::optional<TemplateRow> AskTemplate(const std::string& id) {
    return RowOf(GetRecordset("select FUserID,FName as FTemplateName from t_VchTemplate where FID = " + id));
}

std::optional<TemplateRow> AskTemplateWithLines(const std::string& id) {
    const RecordsetRef records = GetRecordset(
        "select a.FUserID,a.FName as FTemplateName,b.* from t_VchTemplate a left join t_VchTemplateEntry b "
        "on "
        "a.FID = b.FID where a.FID = " +
        id + " order by b.FNo,b.FEntryID ");
    std::optional<TemplateRow> row = RowOf(records);
    if (row) row->lines = records;
    return row;
}

bool IsStandard(const std::string& templateId) {
    return templateId == std::to_string(kStandardTemplateId);
}

bool MayWrite(const TemplateRow& row, const std::string& templateId, const std::string& userId) {
    return row.exists && (IsStandard(templateId) || row.ownerId == UserNumber(userId));
}

bool ConfirmNewTemplate(const std::string& id, const std::string& userId, const std::string& name) {
    const std::string under = " where FID = " + id;
    const RecordsetRef records =
        GetRecordset("select FUserID,FName as FTemplateName,(select count(*) from t_VchTemplateEntry" +
                     under + ") as FLines,(select count(*) from t_VchTpControl" + under +
                     ") as FControls from t_VchTemplate" + under);
    const std::optional<TemplateRow> row = RowOf(records);
    if (!row || !MayWrite(*row, id, userId) || row->name != name) return false;
    if (WholeNumber(records->Value("FLines")) == 0 && WholeNumber(records->Value("FControls")) == 0)
        return true;
    // Whatever lies there is not this template's. As long as it does, nothing is to be read or written there.
    return GetRecordset("delete t_VchTemplateEntry" + under + kCrLf + " delete t_VchTpControl" + under) !=
           nullptr;
}

void ClearWayForNewTemplate() {
    const RecordsetRef left = GetRecordset(
        std::string("select (select count(*) from t_VchTemplateEntry") + kAboveTheLargest +
        ") as FLines,(select count(*) from t_VchTpControl" + kAboveTheLargest + ") as FControls");
    // Without an answer nothing is deleted: the batch then says itself what is in its way.
    if (left == nullptr || left->RecordCount() < 1) return;
    if (WholeNumber(left->Value("FLines")) == 0 && WholeNumber(left->Value("FControls")) == 0) return;
    GetRecordset(std::string("delete t_VchTemplateEntry") + kAboveTheLargest + kCrLf +
                 " delete t_VchTpControl" + kAboveTheLargest);
}

std::string NamedTemplate::OwnerAfterwards(const std::string& userId) const {
    return id == kStandardTemplateId ? "0" : userId;
}

NamedTemplate FindTemplateToReplace(const std::string& name, const std::string& userId) {
    NamedTemplate found;
    found.id = clsVIData().FindVchTemplate(name, userId);
    if (found.id == clsVIData::kUnreadable) found.state = NamedTemplate::State::Unknown;
    if (found.id < 0) return found;
    const std::string id = std::to_string(found.id);
    const std::optional<TemplateRow> row = AskTemplate(id);
    if (!row || !row->exists) {
        found.state = NamedTemplate::State::Unknown;
        return found;
    }
    found.ownerId = row->ownerId;
    found.state =
        MayWrite(*row, id, userId) ? NamedTemplate::State::MayWrite : NamedTemplate::State::Anothers;
    return found;
}

}  // namespace vicenter::store
