#include <algorithm>
#include <charconv>
#include <optional>

#include "platform/office/excel_objects.h"
#include "platform/office/excel_page.h"
#include "platform/office/utf.h"

namespace vicenter::office {

namespace {

constexpr std::int32_t kSheetVisible = -1;
constexpr std::int32_t kSheetHidden = 0;

// One end of a reference: "D5", "D" or "5", "$" allowed; the missing part is 0, places count from 1.
struct ReferenceEnd {
    std::uint32_t column = 0;
    std::uint32_t row = 0;
};

std::optional<ReferenceEnd> ReadEnd(std::string_view text) {
    ReferenceEnd end;
    std::size_t at = 0;
    if (at < text.size() && text[at] == '$') ++at;
    for (std::size_t letters = 0; at < text.size() && letters < 4; ++at, ++letters) {
        const char c = static_cast<char>(text[at] & ~0x20);
        if (c < 'A' || c > 'Z') break;
        end.column = end.column * 26 + static_cast<std::uint32_t>(c - 'A' + 1);
    }
    if (at < text.size() && text[at] == '$') ++at;
    if (at < text.size()) {
        const auto [rest, error] = std::from_chars(text.data() + at, text.data() + text.size(), end.row);
        if (error != std::errc() || rest != text.data() + text.size() || end.row == 0) return std::nullopt;
    }
    if (end.column == 0 && end.row == 0) return std::nullopt;
    return end;
}

bool IsCells(std::string_view name) {
    return name.size() == 5 && (name == "Cells" || automation::SameName(name, "Cells"));
}

void CheckSheetName(const Workbook& workbook, const Sheet& sheet, const std::string& name) {
    const Sheet* other = workbook.FindSheet(name);
    if (name.empty() || CountCodeUnits(name) > kMaxSheetNameCodeUnits ||
        name.find_first_of("[]:*?/\\") != std::string::npos || name.front() == '\'' || name.back() == '\'' ||
        (other != nullptr && other != &sheet)) {
        FailExcel("工作表名称无效或重复：" + name);
    }
}

}  // namespace

ExcelWorksheet::ExcelWorksheet(std::shared_ptr<ExcelWorkbook> workbook, Sheet& sheet)
    : workbook_(std::move(workbook)), sheet_(&sheet) {
    const auto application = workbook_->Application();
    maxRows_ = application->MaxRows();
    maxColumns_ = application->MaxColumns();
}

Sheet& ExcelWorksheet::Content() const {
    if (sheet_ == nullptr) FailExcel("工作表已删除或工作簿已关闭！");
    return *sheet_;
}

void ExcelWorksheet::MarkDeleted() {
    sheet_ = nullptr;
    spareRange_.reset();
}

Variant ExcelWorksheet::Invoke(std::string_view name, automation::InvokeKind kind, Arguments& arguments) {
    if (IsCells(name)) {
        const bool put = kind == automation::InvokeKind::Put;
        const std::size_t count = arguments.size();
        bool plain = count == (put ? 3u : 2u);
        for (std::size_t i = 0; plain && i < count; ++i)
            plain = arguments[i].Name().empty();
        if (plain) {
            const CellArea area = AreaOfCell(arguments[0].Value(), arguments[1].Value());
            if (!put) return MakeRange(area);
            Sheet& sheet = Content();
            SetCellValue(workbook_->Content(), sheet, area.firstRow, area.firstColumn, arguments[2].Value());
            return {};
        }
    }
    return TableObject::Invoke(name, kind, arguments);
}

std::shared_ptr<ExcelRange> ExcelWorksheet::MakeRange(const CellArea& area) {
    // Nobody else holds the last one any more: it serves again.
    if (spareRange_ && spareRange_.use_count() == 1) {
        spareRange_->Rebind(Self(), area);
    } else {
        spareRange_ = std::make_shared<ExcelRange>(Self(), area);
    }
    return spareRange_;
}

CellArea ExcelWorksheet::AreaOfCell(const Variant& row, const Variant& column) const {
    const std::int32_t r = row.ToInt32();
    const std::int32_t c = column.IsText() && !column.IsNumeric()
                               ? static_cast<std::int32_t>(AreaOfColumns(column).firstColumn + 1)
                               : column.ToInt32();
    if (r < 1 || c < 1 || static_cast<std::uint32_t>(r) > maxRows_ ||
        static_cast<std::uint32_t>(c) > maxColumns_) {
        FailExcel("单元格超出工作表范围！");
    }
    const auto firstRow = static_cast<std::uint32_t>(r - 1);
    const auto firstColumn = static_cast<std::uint32_t>(c - 1);
    return {firstRow, firstColumn, firstRow, firstColumn};
}

CellArea ExcelWorksheet::AreaOfText(std::string_view reference) const {
    const std::size_t colon = reference.find(':');
    const auto first = ReadEnd(reference.substr(0, colon));
    const auto last = colon == std::string_view::npos ? first : ReadEnd(reference.substr(colon + 1));
    // "D" alone is no range, and both ends are of one kind.
    if (!first || !last || (first->column == 0) != (last->column == 0) ||
        (first->row == 0) != (last->row == 0) ||
        (colon == std::string_view::npos && (first->column == 0 || first->row == 0)) ||
        std::max(first->column, last->column) > maxColumns_ || std::max(first->row, last->row) > maxRows_) {
        FailExcel("无效的单元格区域：" + std::string(reference));
    }
    CellArea area = WholeArea();
    if (first->column != 0) {
        area.firstColumn = std::min(first->column, last->column) - 1;
        area.lastColumn = std::max(first->column, last->column) - 1;
    }
    if (first->row != 0) {
        area.firstRow = std::min(first->row, last->row) - 1;
        area.lastRow = std::max(first->row, last->row) - 1;
    }
    return area;
}

CellArea ExcelWorksheet::AreaOfColumns(const Variant& columns) const {
    CellArea area = WholeArea();
    if (columns.IsMissing()) return area;
    if (columns.IsText() && !columns.IsNumeric()) {
        const std::string& text = columns.AsText();
        return AreaOfText(text.find(':') == std::string::npos ? text + ":" + text : text);
    }
    const std::int32_t column = columns.ToInt32();
    if (column < 1 || static_cast<std::uint32_t>(column) > maxColumns_) FailExcel("列号超出工作表范围！");
    area.firstColumn = area.lastColumn = static_cast<std::uint32_t>(column - 1);
    return area;
}

CellArea ExcelWorksheet::AreaOfRows(const Variant& rows) const {
    CellArea area = WholeArea();
    if (rows.IsMissing()) return area;
    if (rows.IsText() && !rows.IsNumeric()) return AreaOfText(rows.AsText());
    const std::int32_t row = rows.ToInt32();
    if (row < 1 || static_cast<std::uint32_t>(row) > maxRows_) FailExcel("行号超出工作表范围！");
    area.firstRow = area.lastRow = static_cast<std::uint32_t>(row - 1);
    return area;
}

CellArea ExcelWorksheet::AreaOfCorner(const Variant& corner) const {
    if (corner.IsText()) return AreaOfText(corner.AsText());
    const auto range = std::dynamic_pointer_cast<ExcelRange>(corner.AsObject());
    if (!range) FailExcel("参数不是单元格区域！");
    return range->Area();
}

const MemberTable<ExcelWorksheet>& ExcelWorksheet::Members() {
    using automation::IndexedProperty;
    using automation::Method;
    using automation::Property;
    static const MemberTable<ExcelWorksheet> table{
        IndexedProperty<ExcelWorksheet>(
            "Cells", {"RowIndex?", "ColumnIndex?"},
            [](ExcelWorksheet& self, Arguments& a) -> Variant {
                if (a[0].Value().IsMissing()) return self.MakeRange(self.WholeArea());
                return self.MakeRange(self.AreaOfCell(a[0].Value(), a[1].Value()));
            },
            [](ExcelWorksheet& self, Arguments& a) {
                const CellArea area = self.AreaOfCell(a[0].Value(), a[1].Value());
                SetCellValue(self.workbook_->Content(), self.Content(), area.firstRow, area.firstColumn,
                             a[2].Value());
            }),
        IndexedProperty<ExcelWorksheet>("Range", {"Cell1", "Cell2?"},
                                        [](ExcelWorksheet& self, Arguments& a) -> Variant {
                                            CellArea area = self.AreaOfCorner(a[0].Value());
                                            if (!a[1].Value().IsMissing()) {
                                                const CellArea other = self.AreaOfCorner(a[1].Value());
                                                area = {std::min(area.firstRow, other.firstRow),
                                                        std::min(area.firstColumn, other.firstColumn),
                                                        std::max(area.lastRow, other.lastRow),
                                                        std::max(area.lastColumn, other.lastColumn)};
                                            }
                                            return self.MakeRange(area);
                                        }),
        IndexedProperty<ExcelWorksheet>("Columns", {"Index?"},
                                        [](ExcelWorksheet& self, Arguments& a) -> Variant {
                                            return self.MakeRange(self.AreaOfColumns(a[0].Value()));
                                        }),
        IndexedProperty<ExcelWorksheet>("Rows", {"Index?"},
                                        [](ExcelWorksheet& self, Arguments& a) -> Variant {
                                            return self.MakeRange(self.AreaOfRows(a[0].Value()));
                                        }),
        Property<ExcelWorksheet>("UsedRange",
                                 [](ExcelWorksheet& self, Arguments&) -> Variant {
                                     return self.MakeRange(self.Content().UsedArea());
                                 }),
        Property<ExcelWorksheet>(
            "Name", [](ExcelWorksheet& self, Arguments&) -> Variant { return self.Content().Name(); },
            [](ExcelWorksheet& self, Arguments& a) {
                std::string name = a[0].Value().ToText();
                CheckSheetName(self.workbook_->Content(), self.Content(), name);
                self.Content().SetName(std::move(name));
            }),
        Property<ExcelWorksheet>("Index",
                                 [](ExcelWorksheet& self, Arguments&) -> Variant {
                                     const auto& sheets = self.workbook_->Content().Sheets();
                                     const auto place = std::find_if(
                                         sheets.begin(), sheets.end(),
                                         [&](const auto& sheet) { return sheet.get() == &self.Content(); });
                                     return static_cast<std::int32_t>(place - sheets.begin() + 1);
                                 }),
        Property<ExcelWorksheet>(
            "Visible",
            [](ExcelWorksheet& self, Arguments&) -> Variant {
                return self.Content().IsHidden() ? kSheetHidden : kSheetVisible;
            },
            [](ExcelWorksheet& self, Arguments& a) {
                self.Content().SetHidden(a[0].Value().ToInt32() != kSheetVisible);
            }),
        Property<ExcelWorksheet>("PageSetup",
                                 [](ExcelWorksheet& self, Arguments&) -> Variant {
                                     return std::make_shared<ExcelPageSetup>(self.Self());
                                 }),
        Property<ExcelWorksheet>("Parent",
                                 [](ExcelWorksheet& self, Arguments&) -> Variant { return self.workbook_; }),
        Method<ExcelWorksheet>("Select", {"Replace?"},
                               [](ExcelWorksheet& self, Arguments&) -> Variant {
                                   self.workbook_->ActivateSheet(self.Content());
                                   return {};
                               }),
        Method<ExcelWorksheet>("Activate", {},
                               [](ExcelWorksheet& self, Arguments&) -> Variant {
                                   self.workbook_->ActivateSheet(self.Content());
                                   return {};
                               }),
        Method<ExcelWorksheet>("Delete", {},
                               [](ExcelWorksheet& self, Arguments&) -> Variant {
                                   self.workbook_->DeleteSheet(self.Content());
                                   return true;
                               }),
    };
    return table;
}

}  // namespace vicenter::office
