#include "host/cli/templates.h"

#include <filesystem>
#include <utility>

#include "automation/error.h"
#include "center/editing/fault_text.h"
#include "center/frame/window_state.h"
#include "center/grid/columns.h"
#include "center/template/line_loader.h"
#include "entry/host_context.h"
#include "entry/single_line.h"
#include "platform/system/collation.h"
#include "platform/system/files.h"
#include "platform/system/utf8.h"
#include "store/cls_vi_data.h"
#include "store/template_guard.h"
#include "store/template_rows.h"

namespace vicenter::host {

using automation::Error;

namespace {

[[noreturn]] void ThrowUnreadable() {
    Error error(automation::error_number::kElementNotFound, "无法读取凭证模板，请检查账套连接！");
    if (!store::clsVIData::LastFailure().empty()) error.While(store::clsVIData::LastFailure());
    throw error;
}

// The answer without what it says of the template itself.
ado::RecordsetRef LinesAlone(const ado::Recordset& answer) {
    constexpr std::ptrdiff_t kOfTemplate = 2;  // FUserID, FTemplateName
    const std::size_t entry = answer.ColumnIndex("FEntryID");
    auto lines = std::make_shared<ado::Recordset>(
        std::vector<ado::Column>(answer.Columns().begin() + kOfTemplate, answer.Columns().end()));
    for (std::size_t record = 0; record < static_cast<std::size_t>(answer.RecordCount()); ++record) {
        if (answer.ValueAt(record, entry).IsNull()) continue;
        std::vector<Variant> values;
        for (std::size_t c = kOfTemplate; c < answer.ColumnCount(); ++c)
            values.push_back(answer.ValueAt(record, c));
        lines->AppendRow(std::move(values));
    }
    return lines;
}

}  // namespace

bool IsNamed(std::string_view name, std::string_view given) {
    return system::Collator::Chinese().Compare(name, entry::WithoutLineEnd(given)) == 0;
}

std::vector<TemplateHead> ReadTemplates(const CliContext& context) {
    // Opened first on its own, so that a missing account set is reported with its reason.
    context.session->Connection();
    const ado::RecordsetRef list =
        store::clsVIData().GetVchTemplateByUserID(std::to_string(context.options.userId));
    if (list == nullptr) ThrowUnreadable();
    std::vector<TemplateHead> templates;
    for (; !list->AtEnd(); list->MoveNext())
        templates.push_back({list->Value("FID").ToText(), list->Value("FName").ToTextOrEmpty()});
    return templates;
}

std::optional<TemplateHead> FindTemplateIfAny(const CliContext& context, std::string_view given) {
    const std::string_view name = entry::WithoutLineEnd(given);
    const std::vector<TemplateHead> templates = ReadTemplates(context);
    for (const TemplateHead& head : templates) {
        if (head.name == name) return head;
    }
    for (const TemplateHead& head : templates) {
        if (IsNamed(head.name, name)) return head;
    }
    return std::nullopt;
}

TemplateHead FindTemplate(const CliContext& context, const std::string& given) {
    if (std::optional<TemplateHead> found = FindTemplateIfAny(context, given)) return std::move(*found);
    throw Error(automation::error_number::kElementNotFound,
                "没有名为“" + std::string(entry::WithoutLineEnd(given)) + "”的凭证模板！");
}

void ReadLines(const TemplateHead& head, TemplateLines& lines) {
    const store::SeenTemplate listed = store::SeenAs(head.id, entry::CurrentUserId(), head.name);
    const auto row = store::AskTemplateWithLines(head.id);
    store::FoundTemplate found = store::Compare(listed, row);
    store::LinesDigest digest;
    const std::optional<int> loaded = center::LoadLines(lines.grid, head.id, &digest);
    if (found.fate == store::TemplateFate::Unknown || !loaded) ThrowUnreadable();
    if (found.fate == store::TemplateFate::AsSeen && found.now.lines != digest)
        found.fate = store::TemplateFate::Changed;
    if (found.fate != store::TemplateFate::AsSeen)
        throw Error(automation::error_number::kElementNotFound, store::WhatHappened(listed, found) + "！");
    lines.records = LinesAlone(*row->lines);
    lines.count = *loaded;
}

bool FitsColumn(const center::ColumnSpec& spec, std::string_view text) {
    return !entry::HasControlCharacter(text) &&
           system::CodeUnitCount(system::TrimBlanks(text)) <= static_cast<std::size_t>(spec.maxCharacters);
}

std::vector<std::string> FaultyFields(const center::EntryGrid& grid, int row) {
    std::vector<std::string> fields;
    for (const center::ColumnSpec& spec : center::Columns()) {
        if (!center::FaultText(grid, {row, spec.column}).empty()) fields.emplace_back(spec.field);
    }
    return fields;
}

std::vector<std::string> FieldsToTakeBack(const center::EntryGrid& grid, int row) {
    std::vector<std::string> fields;
    for (const center::ColumnSpec& spec : center::Columns()) {
        const bool untaken =
            spec.kind == center::CellKind::Text && !FitsColumn(spec, grid.Text(row, spec.column));
        if (untaken || !center::FaultText(grid, {row, spec.column}).empty()) fields.emplace_back(spec.field);
    }
    return fields;
}

bool MayReplaceFile(const std::string& file) {
    std::error_code ignored;
    if (!std::filesystem::exists(system::PathFromUtf8(file), ignored)) return true;
    return center::Ask("文件已存在，是否替换？\r\n\r\n" + file, system::MessageButtons::YesNo) ==
           system::MessageResult::Yes;
}

VariantArray ReadControlRows(const std::string& templateId) {
    const ado::RecordsetRef rows = store::ReadControlRows(templateId);
    if (rows == nullptr) ThrowUnreadable();
    VariantArray result;
    for (; !rows->AtEnd(); rows->MoveNext()) {
        const auto object = std::make_shared<scripting::Dictionary>();
        for (const char* field : {"FNo", "FUseFrequency", "FKey", "FFileCount", "FIsCanUsed"})
            object->Add(field, JsonValue(rows->Value(field)));
        result.emplace_back(object);
    }
    return result;
}

}  // namespace vicenter::host
