#include "host/cli/empty_workbook.h"

#include <algorithm>

#include "exchange/excel_access.h"
#include "exchange/template_columns.h"
#include "host/cli/templates.h"
#include "platform/office/fill_in_workbook.h"
#include "store/choices.h"
#include "text/ascii.h"

namespace vicenter::host {

namespace {

namespace column = store::column;

std::string RuleOf(const store::ColumnSpec& spec) {
    switch (spec.kind) {
        case store::CellKind::TemplateNumber:
            return "整数，1 到 32767。编号相同的各行是一个凭证模板。";
        case store::CellKind::Direction:
            return "“借”或“贷”。";
        case store::CellKind::Whole:
            return "整数，不大于 32767。";
        case store::CellKind::Decimal:
            return "数字，最多 " + std::to_string(spec.decimals) + " 位小数。";
        case store::CellKind::Id:
        case store::CellKind::Text:
            break;
    }
    return "文字，最多 " + std::to_string(spec.maxCharacters) + " 个字符。";
}

std::string NoteOf(const store::ColumnSpec& spec) {
    std::string note = spec.requiredInWorkbook ? "必填。" : "可以不填。";
    if (spec.column == column::kExplanation) note = "每个编号的第一行必填。";
    note += RuleOf(spec);
    if (spec.column == column::kItems) note += "核算项目代码，按项目类别的次序用英文逗号分隔。";
    if (spec.column == column::kAccountName) note += "科目代码对应的名称，见“取值”工作表。";
    return note;
}

std::vector<std::string> ChoicesOf(int gridColumn, const store::Choices& choices) {
    switch (gridColumn) {
        case column::kDirection:
            return {std::string(store::kDebit), std::string(store::kCredit)};
        case column::kAccountNumber:
            return choices.accountNumbers;
        case column::kSettleName:
            return choices.settlements;
        case column::kCurrencyName:
            return choices.currencies;
        case column::kUnitName:
            return choices.units;
        default:
            return {};
    }
}

office::FillInWorkbook EmptyWorkbook() {
    constexpr double kTwipsInACharacter = 110;
    constexpr double kNarrowest = 10;
    const store::Choices choices = store::ReadChoices();
    office::FillInWorkbook workbook;
    workbook.sheetName = exchange::kSheetName;
    workbook.choicesName = "取值";
    workbook.lists.push_back({"科目代码", choices.accountNumbers});
    workbook.lists.push_back({"科目名称", choices.accountNames});
    for (const store::ColumnSpec* spec : store::WorkbookColumns()) {
        workbook.columns.push_back(
            {std::string(spec->header), NoteOf(*spec), ChoicesOf(spec->column, choices),
             spec->kind == store::CellKind::Direction, spec->kind == store::CellKind::Text,
             std::max(kNarrowest, spec->designedWidth / kTwipsInACharacter)});
    }
    return workbook;
}

}  // namespace

int RunExportEmpty(const CliContext& context) {
    const std::string& file = context.options.emptyWorkbook;
    if (!text::LowerAscii(file).ends_with(".xlsx")) Refuse("空白工作簿的扩展名必须是 .xlsx：" + file);
    if (const std::string why = exchange::WhyNotWorkbookTarget(file); !why.empty())
        Refuse("工作簿未能写入：" + file + "\n  " + why);
    // The connection first, so that a missing account set is reported with its reason.
    context.session->Connection();
    if (!MayReplaceFile(file)) return FinishSpeaking(context, false, VariantArray());
    office::WriteFillInWorkbook(EmptyWorkbook(), file);
    return FinishSpeaking(context, true, VariantArray{JsonObject({{"file", file}})},
                          "空白工作簿：" + file + "\n");
}

}  // namespace vicenter::host
