#include "exchange/export_template.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <optional>

#include "automation/class_registry.h"
#include "entry/host_services.h"
#include "entry/message_box.h"
#include "entry/screen.h"
#include "exchange/cell_reading.h"
#include "exchange/excel_access.h"
#include "exchange/template_columns.h"
#include "platform/system/collation.h"
#include "platform/system/file_dialog_flags.h"
#include "platform/system/file_names.h"
#include "platform/system/surroundings.h"
#include "platform/system/utf8.h"

namespace vicenter::exchange {

namespace {

using automation::Argument;
using automation::Error;
using automation::Variant;

constexpr std::int32_t kLinesBetweenReports = 200;

// The user's wish to stop; not an error.
struct Cancelled {};

bool CheckReady(const ExchangeTarget& window) {
    if (window.CurrentTemplateId().empty()) {
        entry::Tell("请选择要引出的模板！");
        return false;
    }
    if (!IsExcelInstalled()) {
        entry::Tell("检测当前系统未安装Excel，引出失败！");
        return false;
    }
    return true;
}

bool SameText(std::string_view a, std::string_view b) {
    return system::Collator::Chinese().Compare(a, b) == 0;
}

// A text that a spreadsheet would take for a number, a date, a formula or an error goes behind an apostrophe,
// the spreadsheet's own mark of a text, which is no part of it.
Variant AsTextValue(std::string text) {
    constexpr std::string_view kMarks = "=+-@'#";
    const bool digits = std::any_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (!text.empty() && (digits || kMarks.find(text.front()) != kMarks.npos ||
                          automation::SameName(text, "true") || automation::SameName(text, "false"))) {
        text.insert(text.begin(), '\'');
    }
    return text;
}

// Nothing: the cell stays empty.
std::optional<Variant> CellValue(const TemplateColumn& column, std::string text) {
    switch (column.type) {
        case CellType::DebitCredit:
            for (const char* side : {"借", "贷"}) {
                if (text == side || SameText(text, side)) return Variant(side);
            }
            return std::nullopt;
        case CellType::Number:
        case CellType::WholeNumber: {
            if (column.gridColumn == kColumns[kNumberColumn].gridColumn) {
                if (text.empty()) return std::nullopt;
                return Variant(std::move(text));
            }
            const auto number = ReadTypedNumber(text);
            if (!number || *number == 0) return std::nullopt;
            if (column.type == CellType::Number) return Variant(*number);
            const std::int32_t whole = Variant(*number).ToInt32();
            if (whole == 0) return std::nullopt;
            return Variant(whole);
        }
        case CellType::Text:
            break;
    }
    const std::string_view trimmed = system::TrimBlanks(text);
    if (trimmed.empty()) return std::nullopt;
    // The account code's column is formatted as text: its characters stay as they are, but for the mark.
    if (column.gridColumn == kColumns[kAccountNumberColumn].gridColumn && trimmed.front() != '\'') {
        return Variant(trimmed);
    }
    return AsTextValue(std::string(trimmed));
}

ObjectRef OnlySheet(const ObjectRef& workbook) {
    const ObjectRef sheets = workbook->Get("Worksheets").AsObject();
    for (std::int32_t i = sheets->Get("Count").ToInt32(); i >= 2; --i) {
        sheets->Get("Item", {i}).AsObject()->Call("Delete");
    }
    const bool any = sheets->Get("Count").ToInt32() > 0;
    ObjectRef sheet = any ? sheets->Get("Item", {1}).AsObject() : sheets->Call("Add").AsObject();
    sheet->Put("Name", kSheetName);
    return sheet;
}

void WriteHeader(SheetCells& cells) {
    for (std::size_t i = 0; i < kColumns.size(); ++i) {
        const auto column = static_cast<std::int32_t>(i + 1);
        cells.SetValue(1, column, kColumns[i].header);
        cells.At(1, column)->Get("Interior").AsObject()->Put("ColorIndex", kHeaderColor);
    }
}

// Digits behind the point of the shortest text that is this number.
std::size_t DecimalsOf(double value) {
    constexpr std::size_t kLongestDouble = 350;  // what has more is tiny
    std::array<char, kLongestDouble> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::fixed);
    if (end.ec != std::errc()) return text.size();
    const std::string_view digits(text.data(), static_cast<std::size_t>(end.ptr - text.data()));
    const std::size_t point = digits.find('.');
    return point == std::string_view::npos ? 0 : digits.size() - point - 1;
}

// Digits that the column's numbers show behind the point: as many as its most exact one has, so that the
// points stand below each other.
class ShownDecimals {
  public:
    void Take(std::size_t place, const Variant& value) {
        if (value.Type() != automation::VariantType::Double) return;
        most_[place] = std::max(most_[place], DecimalsOf(value.ToDouble()));
    }
    // With thousands separators; amounts have two decimals at least, none has more than its column.
    std::string FormatOf(std::size_t place) const {
        constexpr std::size_t kFewestOfAmounts = 2;
        const store::ColumnSpec& spec = store::Column(kColumns[place].gridColumn);
        const std::size_t fewest = spec.column == store::column::kQuantity ? 0 : kFewestOfAmounts;
        const std::size_t decimals =
            std::max(fewest, std::min(most_[place], static_cast<std::size_t>(spec.decimals)));
        return "#,##0" + (decimals == 0 ? "" : "." + std::string(decimals, '0'));
    }

  private:
    std::array<std::size_t, kWorkbookColumnCount> most_{};
};

// Amounts, quantity and price; a rate is none.
bool IsShownWithSeparators(const TemplateColumn& column) {
    return column.type == CellType::Number && column.gridColumn != store::column::kRate;
}

ShownDecimals WriteLines(ExchangeTarget& window, SheetCells& cells, bool interactive) {
    ShownDecimals decimals;
    const std::int32_t lines = window.EntryLineCount();
    for (std::int32_t line = 1; line <= lines; ++line) {
        for (std::size_t i = 0; i < kColumns.size(); ++i) {
            auto value = CellValue(kColumns[i], window.EntryText(kColumns[i].gridColumn, line));
            if (!value) continue;
            if (IsShownWithSeparators(kColumns[i])) decimals.Take(i, *value);
            cells.SetValue(line + 1, static_cast<std::int32_t>(i + 1), std::move(*value));
        }
        if (interactive && (line % kLinesBetweenReports == 0 || line == lines) &&
            !window.ReportRows(line, lines)) {
            throw Cancelled();
        }
    }
    return decimals;
}

// What makes a workbook print well is no reason to write none: servers that do not know it, or have no
// printer to ask, leave it out.
void IfKnown(const std::function<void()>& step) {
    try {
        step();
    } catch (const Error&) {
        // As good without.
    }
}

void FormatNumbers(const ObjectRef& sheet, const ShownDecimals& decimals) {
    for (std::size_t i = 0; i < kColumns.size(); ++i) {
        if (!IsShownWithSeparators(kColumns[i])) continue;
        IfKnown([&] {
            sheet->Get("Columns", {static_cast<std::int32_t>(i + 1)})
                .AsObject()
                ->Put("NumberFormat", decimals.FormatOf(i));
        });
    }
}

// Landscape, as wide as one page, the header on every page and always in sight.
void LayOutPage(const ObjectRef& excel, const ObjectRef& sheet) {
    constexpr std::int32_t kLandscape = 2;
    constexpr std::int32_t kPaperA4 = 9;
    const auto put = [&](const char* member, const Variant& value) {
        IfKnown([&] { sheet->Get("PageSetup").AsObject()->Put(member, value); });
    };
    put("PaperSize", kPaperA4);
    put("Orientation", kLandscape);
    put("Zoom", false);
    put("FitToPagesWide", 1);
    put("FitToPagesTall", false);
    put("PrintTitleRows", "$1:$1");
    IfKnown([&] {
        const ObjectRef shown = excel->Get("ActiveWindow").AsObject();
        if (!shown) return;
        shown->Put("SplitColumn", 0);
        shown->Put("SplitRow", 1);
        shown->Put("FreezePanes", true);
    });
}

void BuildSheet(const ObjectRef& excel, const ObjectRef& sheet, ExchangeTarget& window, bool interactive) {
    SheetCells cells(sheet);
    WriteHeader(cells);
    sheet->Get("Columns", {static_cast<std::int32_t>(kAccountNumberColumn + 1)}).AsObject()->Call("Select");
    excel->Get("Selection").AsObject()->Put("NumberFormatLocal", "@");
    FormatNumbers(sheet, WriteLines(window, cells, interactive));
    const ObjectRef block =
        sheet
            ->Get("Range", {Variant(cells.At(1, 1)),
                            Variant(cells.At(window.EntryLineCount() + 1,
                                             static_cast<std::int32_t>(kWorkbookColumnCount)))})
            .AsObject();
    block->Get("Font").AsObject()->Put("Size", kFontSize);
    block->Get("Borders").AsObject()->Put("LineStyle", kContinuousLine);
    sheet->Get("Columns", {"A:Q"}).AsObject()->Call("AutoFit");
    sheet->Call("Select");
    LayOutPage(excel, sheet);
    cells.At(1, 1)->Call("Select");
}

// An existing file stays until the new one takes its place. What cannot be written over is refused before
// any work is done.
ExportOutcome Write(ExchangeTarget& window, const std::string& fileName) {
    if (std::string refusal = WhyNotWorkbookTarget(fileName); !refusal.empty()) return {false, refusal};
    return WriteTemplateWorkbook(window, fileName, true);
}

std::string FailureText(const Error& error) {
    std::string text = "模板引出失败！" + error.Text();
    if (error.Text().find("不能访问") != std::string::npos) text += "请先关闭已经打开的模板文件(Excel)。";
    return text;
}

}  // namespace

ExportOutcome WriteTemplateWorkbook(ExchangeTarget& window, const std::string& fileName, bool interactive) {
    const std::string name = window.TemplateName();
    const auto endInteraction = [&] {
        if (!interactive) return;
        entry::EndBusy();
        window.HideProgress();
    };
    if (interactive) {
        window.ShowProgress("正在执行凭证模板引出，请稍后...");
        entry::BeginBusy();
    }
    try {
        bool saved = false;
        std::string errorText;
        {
            const ExcelSession session;
            const ObjectRef workbook =
                session.Application()->Get("Workbooks").AsObject()->Call("Add").AsObject();
            BuildSheet(session.Application(), OnlySheet(workbook), window, interactive);
            saved = SaveWorkbookAs(session.Application(), workbook, fileName, errorText, false);
        }
        if (saved && interactive) window.SetProgressLabel("引出完毕...");
        endInteraction();
        if (!saved) return {false, errorText.empty() ? "工作簿未能写入：" + fileName : errorText};
        if (interactive) entry::Tell("模板引出成功！");
        entry::WriteOperationLog(entry::LogKind::Succeeded, "凭证模板-引出模板 " + name + " 成功");
        return {true, {}, fileName};
    } catch (const Cancelled&) {
        endInteraction();
    } catch (const Error& error) {
        endInteraction();
        if (interactive) entry::Tell(FailureText(error));
        entry::WriteOperationLog(entry::LogKind::Failed, "凭证模板-引出模板 " + name + " 失败");
    }
    return {};
}

ExportOutcome ExportTemplate(ExchangeTarget& window) {
    if (!CheckReady(window)) return {};
    const std::string name = window.TemplateName();
    system::FileRequest request;
    request.title = "指定引出文件名";
    request.flags = system::file_dialog::kForSaving;
    request.filters = {{"Database File Excel File (*.xls)", "*.xls"}};
    if (ExcelVersion() >= kFirstXlsxVersion) {
        request.filters.push_back({"Database File Excel File (*.xlsx)", "*.xlsx"});
        request.selectedFilter = 1;
    }
    request.proposedName = system::SafeFileName(name);
    const auto chosen = system::Surroundings::Current().fileDialogs->ChooseFileToSave(request);
    if (!chosen || chosen->empty() || *chosen == name || *chosen == request.proposedName) return {};
    return Write(window, *chosen);
}

ExportOutcome ExportTemplateTo(ExchangeTarget& window, const std::string& fileName) {
    if (!CheckReady(window)) return {};
    return Write(window, fileName);
}

void TellUnwritten(const ExchangeTarget& window, const ExportOutcome& outcome) {
    if (outcome.written || outcome.untold.empty()) return;
    entry::Tell("模板引出失败！" + outcome.untold);
    LogUnwritten(window);
}

void LogUnwritten(const ExchangeTarget& window) {
    entry::WriteOperationLog(entry::LogKind::Failed, "凭证模板-引出模板 " + window.TemplateName() + " 失败");
}

}  // namespace vicenter::exchange
