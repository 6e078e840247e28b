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

}  // namespace

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

std::optional<TemplateRow> AskTemplate(const std::string& id) {
    return RowOf(GetRecordset("select FUserID,FName as FTemplateName from t_VchTemplate where FID = " + id));
}

std::optional<TemplateRow> AskTemplateWithLines(const std::string& id) {
    const RecordsetRef records = GetRecordset(
        "select a.FUserID,a.FName as FTemplateName,b.* from t_VchTemplate a left join t_VchTemplateEntry b "
        "on a.FID = b.FID where a.FID = " +
        id + " order by b.FNo,b.FEntryID ");
    std::optional<TemplateRow> row = RowOf(records);
    if (row) row->lines = records;
    return row;
}

SeenTemplate SeenAs(const std::string& id, const std::string& userId, const std::string& name,
                    std::optional<LinesDigest> lines) {
    return {id, IsStandard(id) ? 0 : UserNumber(userId), name, lines};
}

// The standard template is known by its id, whatever its row says of name and owner.
bool FoundTemplate::HasOtherName(const SeenTemplate& seen) const {
    return !IsStandard(seen.id) && now.name != seen.name;
}

FoundTemplate Compare(const SeenTemplate& seen, const std::optional<TemplateRow>& row) {
    FoundTemplate found;
    if (!row) return found;
    found.now = {seen.id, row->ownerId, row->name, std::nullopt};
    try {
        if (row->exists && row->lines != nullptr) found.now.lines = DigestOf(*row->lines);
    } catch (const Error&) {
        return found;
    }
    found.fate = TemplateFate::AsSeen;
    if (!row->exists || (!IsStandard(seen.id) && row->ownerId != seen.ownerId)) {
        found.fate = TemplateFate::Gone;
    } else if (found.HasOtherName(seen) || (seen.lines && found.now.lines != seen.lines)) {
        found.fate = TemplateFate::Changed;
    }
    return found;
}

FoundTemplate LookAgain(const SeenTemplate& seen) {
    return Compare(seen, AskTemplateWithLines(seen.id));
}

std::string WhatHappened(const SeenTemplate& seen, const FoundTemplate& found) {
    const std::string head = "模板 " + seen.name + " ";
    switch (found.fate) {
        case TemplateFate::Gone:
            return head + "已在别处被删除";
        case TemplateFate::Changed:
            return head + (found.HasOtherName(seen) ? "已在别处被删除或改名" : "已在别处被修改");
        case TemplateFate::Unknown:
        case TemplateFate::AsSeen:
            break;
    }
    return head + "无法读取";
}

std::string WhyNotWritten(const SeenTemplate& seen, const FoundTemplate& found, const std::string& undone) {
    return WhatHappened(seen, found) + "，" + undone + "，账套保持原样！";
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

std::string NamedTemplate::OwnerAfterwards(const std::string& userId) const {
    return id == kStandardTemplateId ? "0" : userId;
}

NamedTemplate FindTemplateToReplace(const std::string& name, const std::string& userId) {
    NamedTemplate found;
    found.id = clsVIData().FindVchTemplate(name, userId);
    if (found.id == clsVIData::kUnreadable) found.state = NamedTemplate::State::Unknown;
    if (found.id < 0) return found;
    const std::string id = std::to_string(found.id);
    const std::optional<TemplateRow> row = AskTemplateWithLines(id);
    if (!row || !row->exists) {
        found.state = NamedTemplate::State::Unknown;
        return found;
    }
    found.ownerId = row->ownerId;
    if (!MayWrite(*row, id, userId)) {
        found.state = NamedTemplate::State::Anothers;
        return found;
    }
    const FoundTemplate now = Compare({id, row->ownerId, row->name}, row);
    found.state =
        now.fate == TemplateFate::Unknown ? NamedTemplate::State::Unknown : NamedTemplate::State::MayWrite;
    found.seen = now.now;
    return found;
}

}  // namespace vicenter::store
