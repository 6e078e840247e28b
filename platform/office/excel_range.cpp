#include <algorithm>
#include <unordered_map>

#include "platform/office/cell_text.h"
#include "platform/office/column_letters.h"
#include "platform/office/column_width.h"
#include "platform/office/excel_objects.h"

namespace vicenter::office {

namespace {

constexpr std::int32_t kContinuousLine = 1;
constexpr std::int32_t kNoLine = -4142;
constexpr std::int32_t kNoColor = -4142;
constexpr std::int32_t kLastPaletteIndex = 56;
constexpr double kStandardFontSize = 11;
constexpr double kSmallestFontSize = 1;
constexpr double kLargestFontSize = 409;

bool IsValue(std::string_view name) {
    return name.empty() || name == "Value" || automation::SameName(name, "Value") ||
           automation::SameName(name, "Value2");
}

}  // namespace

Variant ExcelRange::Invoke(std::string_view name, automation::InvokeKind kind, Arguments& arguments) {
    if (IsValue(name)) {
        if (kind == automation::InvokeKind::Put && arguments.size() == 1) {
            SetValue(arguments[0].Value());
            return {};
        }
        if (kind != automation::InvokeKind::Put && arguments.empty() && name.size() <= 5) return Value();
    }
    return TableObject::Invoke(name, kind, arguments);
}

bool ExcelRange::IsWholeColumns() const {
    return area_.firstRow == 0 && area_.lastRow == sheet_->WholeArea().lastRow;
}

Variant ExcelRange::Value() const {
    const Workbook& workbook = sheet_->Book()->Content();
    const Sheet& sheet = sheet_->Content();
    if (IsSingleCell()) return GetCellValue(workbook, sheet.Find(area_.firstRow, area_.firstColumn));
    const std::uint64_t cells = static_cast<std::uint64_t>(area_.lastRow - area_.firstRow + 1) *
                                (area_.lastColumn - area_.firstColumn + 1);
    constexpr std::uint64_t kMaxCellsAtOnce = 4'000'000;
    if (cells > kMaxCellsAtOnce) FailTooLarge();
    automation::VariantArray rows;
    for (std::uint32_t row = area_.firstRow; row <= area_.lastRow; ++row) {
        automation::VariantArray values;
        for (std::uint32_t column = area_.firstColumn; column <= area_.lastColumn; ++column) {
            values.push_back(GetCellValue(workbook, sheet.Find(row, column)));
        }
        rows.emplace_back(std::move(values));
    }
    return rows;
}

void ExcelRange::SetValue(const Variant& value) {
    Workbook& workbook = sheet_->Book()->Content();
    Sheet& sheet = sheet_->Content();
    for (std::uint32_t row = area_.firstRow; row <= area_.lastRow; ++row) {
        for (std::uint32_t column = area_.firstColumn; column <= area_.lastColumn; ++column) {
            SetCellValue(workbook, sheet, row, column, value);
        }
    }
}

std::string ExcelRange::Text() const {
    const Cell* cell = sheet_->Content().Find(area_.firstRow, area_.firstColumn);
    return cell == nullptr ? std::string() : CellText(sheet_->Book()->Content(), *cell);
}

CellFormat ExcelRange::Format() const {
    const Workbook& workbook = sheet_->Book()->Content();
    const Sheet& sheet = sheet_->Content();
    if (const Cell* cell = sheet.Find(area_.firstRow, area_.firstColumn))
        return workbook.Formats().At(cell->format);
    const auto setting = sheet.Columns().find(area_.firstColumn);
    return workbook.Formats().At(setting == sheet.Columns().end() ? 0 : setting->second.format);
}

void ExcelRange::ChangeFormat(const std::function<void(CellFormat&)>& change) {
    Workbook& workbook = sheet_->Book()->Content();
    Sheet& sheet = sheet_->Content();
    std::unordered_map<std::uint16_t, std::uint16_t> changed;
    const auto apply = [&](std::uint16_t& index) {
        const auto [place, isNew] = changed.try_emplace(index, std::uint16_t{0});
        if (isNew) {
            CellFormat format = workbook.Formats().At(index);
            change(format);
            place->second = workbook.Formats().Intern(format);
        }
        index = place->second;
    };
    if (!IsWholeColumns()) {
        for (std::uint32_t row = area_.firstRow; row <= area_.lastRow; ++row) {
            for (std::uint32_t column = area_.firstColumn; column <= area_.lastColumn; ++column) {
                apply(sheet.At(row, column).format);
            }
        }
        return;
    }
    // Whole columns: the format serves cells to come, too.
    const std::uint32_t lastColumn = std::min(area_.lastColumn, kMaxXlsColumns - 1);
    for (std::uint32_t column = area_.firstColumn; column <= lastColumn; ++column) {
        apply(sheet.ColumnAt(column).format);
    }
    for (std::uint32_t row = 0; row < sheet.Rows().size(); ++row) {
        for (std::uint32_t column = area_.firstColumn; column <= lastColumn; ++column) {
            if (sheet.Find(row, column) != nullptr) apply(sheet.At(row, column).format);
        }
    }
}

std::shared_ptr<ExcelRange> ExcelRange::Part(const CellArea& area, Pieces pieces) const {
    auto part = std::make_shared<ExcelRange>(sheet_, area);
    part->pieces_ = pieces;
    return part;
}

void ExcelRange::AutoFit() {
    // Fitting rows is left to whoever shows the sheet.
    if (!IsWholeColumns() && pieces_ != Pieces::Columns) return;
    const std::uint32_t last = std::min(area_.lastColumn, sheet_->Content().UsedArea().lastColumn);
    if (last >= area_.firstColumn) {
        AutoFitColumns(sheet_->Book()->Content(), sheet_->Content(), area_.firstColumn, last);
    }
}

std::string ExcelRange::NumberFormat() const {
    std::string format = Format().numberFormat;
    return format.empty() ? "General" : format;
}

void ExcelRange::SetNumberFormat(std::string format) {
    if (format == "General" || format == "G/通用格式") format.clear();
    ChangeFormat([&format](CellFormat& look) { look.numberFormat = format; });
}

// A piece is whatever the range was asked as: Rows.Count counts rows, Columns.Count columns.
std::int32_t ExcelRange::Count() const {
    const std::int64_t rows = area_.lastRow - area_.firstRow + 1;
    const std::int64_t columns = area_.lastColumn - area_.firstColumn + 1;
    if (pieces_ == Pieces::Rows) return static_cast<std::int32_t>(rows);
    if (pieces_ == Pieces::Columns) return static_cast<std::int32_t>(columns);
    const std::int64_t cells = rows * columns;
    if (cells > INT32_MAX) throw automation::Error(automation::error_number::kOverflow);
    return static_cast<std::int32_t>(cells);
}

std::shared_ptr<ExcelRange> ExcelRange::CellAt(const Variant& row, const Variant& column) const {
    const CellArea within = sheet_->AreaOfCell(row, column);
    const std::uint32_t atRow = area_.firstRow + within.firstRow;
    const std::uint32_t atColumn = area_.firstColumn + within.firstColumn;
    return Part({atRow, atColumn, atRow, atColumn}, Pieces::Cells);
}

std::shared_ptr<ExcelRange> ExcelRange::EntireColumn() const {
    CellArea area = sheet_->WholeArea();
    area.firstColumn = area_.firstColumn;
    area.lastColumn = area_.lastColumn;
    return Part(area, Pieces::Columns);
}

std::string ExcelRange::Address() const {
    const auto name = [](std::uint32_t row, std::uint32_t column) {
        std::string place("$");
        place.append(ColumnLetters(column + 1)).append("$");
        return place.append(std::to_string(row + 1));
    };
    std::string text = name(area_.firstRow, area_.firstColumn);
    if (!IsSingleCell()) text.append(":").append(name(area_.lastRow, area_.lastColumn));
    return text;
}

double ExcelRange::ColumnWidth() const {
    constexpr double kStandardWidth = 8.43;
    const auto& columns = sheet_->Content().Columns();
    const auto setting = columns.find(area_.firstColumn);
    return setting == columns.end() || setting->second.width <= 0 ? kStandardWidth : setting->second.width;
}

void ExcelRange::SetColumnWidth(double width) {
    constexpr double kMaxWidth = 255;
    if (width < 0 || width > kMaxWidth) FailExcel("列宽无效！");
    const std::uint32_t last = std::min(area_.lastColumn, kMaxXlsColumns - 1);
    for (std::uint32_t column = area_.firstColumn; column <= last; ++column)
        sheet_->Content().ColumnAt(column).width = width;
}

// Of whole columns alone: hidden rows are not kept.
bool ExcelRange::IsHidden() const {
    if (!IsWholeColumns()) FailExcel("只能隐藏整列！");
    const auto& columns = sheet_->Content().Columns();
    const auto setting = columns.find(area_.firstColumn);
    return setting != columns.end() && setting->second.hidden;
}

void ExcelRange::SetHidden(bool hidden) {
    if (!IsWholeColumns()) FailExcel("只能隐藏整列！");
    const std::uint32_t last = std::min(area_.lastColumn, kMaxXlsColumns - 1);
    for (std::uint32_t column = area_.firstColumn; column <= last; ++column)
        sheet_->Content().ColumnAt(column).hidden = hidden;
}

const MemberTable<ExcelRange>& ExcelRange::Members() {
    using Range = ExcelRange;
    using automation::IndexedProperty;
    using automation::Method;
    using automation::Property;
    const auto value = [](Range& self, Arguments&) -> Variant { return self.Value(); };
    const auto setValue = [](Range& self, Arguments& a) { self.SetValue(a[0].Value()); };
    // A date as the number that stands for it.
    const auto plainValue = [](Range& self, Arguments&) -> Variant {
        const Variant result = self.Value();
        return result.Type() == automation::VariantType::Date ? Variant(result.ToDouble()) : result;
    };
    const auto format = [](Range& self, Arguments&) -> Variant { return self.NumberFormat(); };
    const auto setFormat = [](Range& self, Arguments& a) { self.SetNumberFormat(a[0].Value().ToText()); };
    const auto select = [](Range& self, Arguments&) -> Variant {
        self.sheet_->Content();  // the error of a sheet that is gone
        self.sheet_->Book()->Application()->SetSelection(self.Part(self.area_, self.pieces_));
        return true;
    };
    static const MemberTable<Range> table{
        Property<Range>("Value", value, setValue).AsDefault(),
        Property<Range>("Value2", plainValue, setValue),
        Property<Range>("Formula", value, setValue),
        Property<Range>("Text", [](Range& self, Arguments&) -> Variant { return self.Text(); }),
        Property<Range>("NumberFormat", format, setFormat),
        Property<Range>("NumberFormatLocal", format, setFormat),
        Property<Range>(
            "Font",
            [](Range& self, Arguments&) -> Variant { return std::make_shared<ExcelFont>(self.Self()); }),
        IndexedProperty<Range>(
            "Borders", {"Index?"},
            [](Range& self, Arguments&) -> Variant { return std::make_shared<ExcelBorders>(self.Self()); }),
        Property<Range>(
            "Interior",
            [](Range& self, Arguments&) -> Variant { return std::make_shared<ExcelInterior>(self.Self()); }),
        Property<Range>("Count", [](Range& self, Arguments&) -> Variant { return self.Count(); }),
        Property<Range>(
            "Rows", [](Range& self, Arguments&) -> Variant { return self.Part(self.area_, Pieces::Rows); }),
        Property<Range>(
            "Columns",
            [](Range& self, Arguments&) -> Variant { return self.Part(self.area_, Pieces::Columns); }),
        IndexedProperty<Range>(
            "Cells", {"RowIndex", "ColumnIndex"},
            [](Range& self, Arguments& a) -> Variant { return self.CellAt(a[0].Value(), a[1].Value()); }),
        Property<Range>("EntireColumn",
                        [](Range& self, Arguments&) -> Variant { return self.EntireColumn(); }),
        Property<Range>("Row",
                        [](Range& self, Arguments&) -> Variant {
                            return static_cast<std::int32_t>(self.area_.firstRow + 1);
                        }),
        Property<Range>("Column",
                        [](Range& self, Arguments&) -> Variant {
                            return static_cast<std::int32_t>(self.area_.firstColumn + 1);
                        }),
        Property<Range>("Address", [](Range& self, Arguments&) -> Variant { return self.Address(); }),
        Property<Range>(
            "ColumnWidth", [](Range& self, Arguments&) -> Variant { return self.ColumnWidth(); },
            [](Range& self, Arguments& a) { self.SetColumnWidth(a[0].Value().ToDouble()); }),
        Property<Range>(
            "Hidden", [](Range& self, Arguments&) -> Variant { return self.IsHidden(); },
            [](Range& self, Arguments& a) { self.SetHidden(a[0].Value().ToBoolean()); }),
        Method<Range>("AutoFit", {},
                      [](Range& self, Arguments&) -> Variant {
                          self.AutoFit();
                          return true;
                      }),
        Method<Range>("Select", {}, select),
        Method<Range>("Activate", {}, [](Range&, Arguments&) -> Variant { return true; }),
    };
    return table;
}

template <>
const MemberTable<ExcelFont>& ExcelFont::Members() {
    using automation::Property;
    static const MemberTable<ExcelFont> table{
        Property<ExcelFont>(
            "Size",
            [](ExcelFont& self, Arguments&) -> Variant {
                const double size = self.range_->Format().fontSize;
                return size > 0 ? size : kStandardFontSize;
            },
            [](ExcelFont& self, Arguments& a) {
                const double size = a[0].Value().ToDouble();
                if (!(size >= kSmallestFontSize && size <= kLargestFontSize)) FailExcel("字号无效！");
                self.range_->ChangeFormat([size](CellFormat& look) { look.fontSize = size; });
            }),
        Property<ExcelFont>(
            "Bold", [](ExcelFont& self, Arguments&) -> Variant { return self.range_->Format().bold; },
            [](ExcelFont& self, Arguments& a) {
                const bool bold = a[0].Value().ToBoolean();
                self.range_->ChangeFormat([bold](CellFormat& look) { look.bold = bold; });
            }),
    };
    return table;
}

template <>
const MemberTable<ExcelBorders>& ExcelBorders::Members() {
    using automation::Property;
    static const MemberTable<ExcelBorders> table{
        Property<ExcelBorders>(
            "LineStyle",
            [](ExcelBorders& self, Arguments&) -> Variant {
                return self.range_->Format().borders ? kContinuousLine : kNoLine;
            },
            [](ExcelBorders& self, Arguments& a) {
                const std::int32_t style = a[0].Value().ToInt32();
                if (style != kContinuousLine && style != kNoLine) FailExcel("不支持的线型！");
                self.range_->ChangeFormat(
                    [style](CellFormat& look) { look.borders = style == kContinuousLine; });
            }),
    };
    return table;
}

template <>
const MemberTable<ExcelInterior>& ExcelInterior::Members() {
    using automation::Property;
    static const MemberTable<ExcelInterior> table{
        Property<ExcelInterior>(
            "ColorIndex",
            [](ExcelInterior& self, Arguments&) -> Variant {
                const std::uint8_t color = self.range_->Format().fillColor;
                return color == 0 ? kNoColor : static_cast<std::int32_t>(color);
            },
            [](ExcelInterior& self, Arguments& a) {
                const std::int32_t color = a[0].Value().ToInt32();
                if (color != kNoColor && (color < 1 || color > kLastPaletteIndex))
                    FailExcel("颜色序号无效！");
                const auto index = static_cast<std::uint8_t>(color == kNoColor ? 0 : color);
                self.range_->ChangeFormat([index](CellFormat& look) { look.fillColor = index; });
            }),
    };
    return table;
}

}  // namespace vicenter::office
