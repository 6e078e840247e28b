#include "platform/office/xls_writer.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

#include "platform/office/limits.h"
#include "platform/office/xls_record_writer.h"

namespace vicenter::office {

namespace {

using xls::RecordWriter;
using xls::Units;

constexpr std::uint32_t kUnused = 0xFFFFFFFF;
constexpr double kStandardFontSize = 11;
constexpr std::uint16_t kStandardRowHeight = 270;  // twentieths of a point, for the standard font
constexpr std::uint16_t kTextFormatId = 49;
constexpr std::uint16_t kFirstOwnFormatId = 164;
// The file's own first fonts; number 4 does not exist.
constexpr std::uint16_t kStandardFonts = 4;
constexpr std::uint16_t kFirstOwnFont = 5;
constexpr std::uint8_t kChineseCharset = 134;
constexpr std::uint16_t kAutomaticColors = 0x20C0;

// Errors that this kind of file has no code for become the nearest that it has.
std::uint8_t XlsCode(CellError error) {
    return static_cast<std::uint8_t>(error == CellError::Calc ? CellError::Value : error);
}

struct Font {
    double size = 0;
    bool bold = false;
    friend auto operator<=>(const Font&, const Font&) = default;
};

class Writer {
  public:
    Writer(const Workbook& workbook, const std::string& fileName)
        : workbook_(workbook), sink_(fileName, "Workbook"), out_(&sink_) {}

    void Write() {
        NumberTexts();
        NumberFormats();
        // Only the places behind a further sheet need counting.
        std::vector<std::uint64_t> sizes;
        for (std::size_t i = 0; i + 1 < workbook_.Sheets().size(); ++i) {
            RecordWriter counter(nullptr);
            WriteSheet(counter, i);
            sizes.push_back(counter.Position());
        }
        RecordWriter counter(nullptr);
        WriteGlobals(counter, {}, 0);
        WriteGlobals(out_, sizes, counter.Position());
        for (std::size_t i = 0; i < workbook_.Sheets().size(); ++i)
            WriteSheet(out_, i);
        out_.Flush();
        sink_.Finish();
    }

  private:
    void NumberTexts() {
        numbers_.assign(workbook_.Texts().Count(), kUnused);
        for (const auto& sheet : workbook_.Sheets()) {
            const CellArea used = sheet->UsedArea();
            if (sheet->Rows().size() > kMaxXlsRows || used.lastColumn >= kMaxXlsColumns) {
                throw automation::Error(kExcelError, "xls 格式最多支持 65536 行、256 列，请使用 xlsx 格式！");
            }
            for (const Row& row : sheet->Rows()) {
                for (const Cell& cell : row) {
                    if (cell.kind != CellKind::Text) continue;
                    ++textCells_;
                    if (numbers_[cell.text] != kUnused) continue;
                    numbers_[cell.text] = static_cast<std::uint32_t>(texts_.size());
                    texts_.push_back(cell.text);
                }
            }
        }
    }

    void NumberFormats() {
        if (workbook_.Formats().Count() > xls::kMaxCellFormats) FailTooLarge();
        for (std::size_t i = 0; i < workbook_.Formats().Count(); ++i) {
            const CellFormat& format = workbook_.Formats().At(static_cast<std::uint16_t>(i));
            const Font font{format.fontSize, format.bold};
            if (font != Font{} && fontNumbers_.try_emplace(font, kFirstOwnFont + fonts_.size()).second) {
                fonts_.push_back(font);
            }
            if (!format.numberFormat.empty() && format.numberFormat != kTextNumberFormat &&
                formatNumbers_.try_emplace(format.numberFormat, kFirstOwnFormatId + numberFormats_.size())
                    .second) {
                numberFormats_.push_back(format.numberFormat);
            }
        }
    }

    static void WriteBof(RecordWriter& out, std::uint16_t kind) {
        out.Begin(xls::kBof, 16);
        out.U16(xls::kVersion8);
        out.U16(kind);
        out.U16(0x0DBB);
        out.U16(0x07CC);
        out.U32(0x00000041);
        out.U32(0x00000006);
    }

    static void WriteShort(RecordWriter& out, std::uint16_t id, std::uint16_t value) {
        out.Begin(id, 2);
        out.U16(value);
    }

    static void WriteUnits(RecordWriter& out, const Units& text) {
        out.U8(text.wide ? xls::kWide : 0);
        for (const char16_t unit : text.units)
            out.Unit(unit, text.wide);
    }

    void WriteGlobals(RecordWriter& out, const std::vector<std::uint64_t>& sheetSizes, std::uint64_t size) {
        WriteBof(out, xls::kGlobals);
        WriteShort(out, xls::kInterfaceHeader, xls::kUnicodeCodePage);
        WriteShort(out, xls::kInterfaceMenus, 0);
        out.Begin(xls::kInterfaceEnd, 0);
        WriteShort(out, xls::kCodePage, xls::kUnicodeCodePage);
        WriteShort(out, xls::kDoubleStream, 0);
        out.Begin(xls::kWindow1, 18);
        for (const int value : {0x0168, 0x010E, 0x3A5C, 0x23BE, 0x0038})
            out.U16(static_cast<std::uint16_t>(value));
        out.U16(static_cast<std::uint16_t>(workbook_.activeSheet));
        for (const int value : {0, 1, 0x0258})
            out.U16(static_cast<std::uint16_t>(value));
        WriteShort(out, xls::kDateMode, workbook_.dates1904 ? 1 : 0);
        for (std::uint16_t i = 0; i < kStandardFonts; ++i)
            WriteFont(out, {});
        for (const Font& font : fonts_)
            WriteFont(out, font);
        for (std::size_t i = 0; i < numberFormats_.size(); ++i) {
            Units text;
            text.Assign(numberFormats_[i]);
            out.Begin(xls::kFormat, 5 + text.Bytes());
            out.U16(static_cast<std::uint16_t>(kFirstOwnFormatId + i));
            out.U16(static_cast<std::uint16_t>(text.units.size()));
            WriteUnits(out, text);
        }
        for (std::uint16_t i = 0; i < xls::kStyleFormats; ++i)
            WriteStyleFormat(out, i == 0);
        for (std::size_t i = 0; i < workbook_.Formats().Count(); ++i) {
            WriteCellFormat(out, workbook_.Formats().At(static_cast<std::uint16_t>(i)));
        }
        out.Begin(xls::kStyle, 4);
        out.U16(0x8000);
        out.U8(0);
        out.U8(0xFF);
        std::uint64_t place = size;
        for (std::size_t i = 0; i < workbook_.Sheets().size(); ++i) {
            const Sheet& sheet = *workbook_.Sheets()[i];
            Units name;
            name.Assign(sheet.Name());
            out.Begin(xls::kBoundSheet, 8 + name.Bytes());
            out.U32(static_cast<std::uint32_t>(place));
            out.U16(sheet.IsHidden() ? 1 : 0);
            out.U8(static_cast<std::uint8_t>(name.units.size()));
            WriteUnits(out, name);
            if (i < sheetSizes.size()) place += sheetSizes[i];
        }
        WritePrintTitles(out);
        WriteSharedTexts(out);
        out.Begin(xls::kEof, 0);
    }

    // The rows that are repeated on every page: a built-in name of the sheet for an area of this very
    // workbook.
    void WritePrintTitles(RecordWriter& out) const {
        constexpr std::uint16_t kThisWorkbook = 0x0401;
        constexpr std::uint16_t kBuiltIn = 0x0020;
        constexpr std::uint8_t kPrintTitles = 0x07;
        constexpr std::uint8_t kAreaOfSheet = 0x3B;
        constexpr std::uint16_t kFormulaBytes = 11;
        std::vector<std::uint16_t> titled;
        for (std::size_t i = 0; i < workbook_.Sheets().size(); ++i) {
            if (workbook_.Sheets()[i]->Page().titleRows > 0) titled.push_back(static_cast<std::uint16_t>(i));
        }
        if (titled.empty()) return;
        out.Begin(xls::kSupportingBook, 4);
        out.U16(static_cast<std::uint16_t>(workbook_.Sheets().size()));
        out.U16(kThisWorkbook);
        out.Begin(xls::kExternSheet, 2 + titled.size() * 6);
        out.U16(static_cast<std::uint16_t>(titled.size()));
        for (const std::uint16_t sheet : titled) {
            out.U16(0);
            out.U16(sheet);
            out.U16(sheet);
        }
        for (std::size_t i = 0; i < titled.size(); ++i) {
            const SheetPage& page = workbook_.Sheets()[titled[i]]->Page();
            out.Begin(xls::kName, 16 + kFormulaBytes);
            out.U16(kBuiltIn);
            out.U8(0);
            out.U8(1);
            out.U16(kFormulaBytes);
            out.U16(0);
            out.U16(static_cast<std::uint16_t>(titled[i] + 1));
            out.U32(0);
            out.U8(0);
            out.U8(kPrintTitles);
            out.U8(kAreaOfSheet);
            out.U16(static_cast<std::uint16_t>(i));
            out.U16(static_cast<std::uint16_t>(page.titleFirst));
            out.U16(static_cast<std::uint16_t>(page.titleFirst + page.titleRows - 1));
            out.U16(0);
            out.U16(static_cast<std::uint16_t>(kMaxXlsColumns - 1));
        }
    }

    static void WriteFont(RecordWriter& out, const Font& font) {
        Units name;
        name.Assign("宋体");
        out.Begin(xls::kFont, 16 + name.Bytes());
        out.U16(
            static_cast<std::uint16_t>(std::lround((font.size > 0 ? font.size : kStandardFontSize) * 20)));
        out.U16(0);
        out.U16(0x7FFF);
        out.U16(font.bold ? 700 : 400);
        out.U16(0);
        out.U8(0);
        out.U8(0);
        out.U8(kChineseCharset);
        out.U8(0);
        out.U8(static_cast<std::uint8_t>(name.units.size()));
        WriteUnits(out, name);
    }

    static void WriteStyleFormat(RecordWriter& out, bool first) {
        out.Begin(xls::kExtendedFormat, 20);
        out.U16(0);
        out.U16(0);
        out.U16(0xFFF5);
        out.U8(0x20);
        out.U8(0);
        out.U8(0);
        out.U8(first ? 0 : 0xF4);
        out.U32(0);
        out.U32(0);
        out.U16(kAutomaticColors);
    }

    void WriteCellFormat(RecordWriter& out, const CellFormat& format) {
        constexpr std::uint8_t kUsesNumber = 0x04;
        constexpr std::uint8_t kUsesFont = 0x08;
        constexpr std::uint8_t kUsesBorder = 0x20;
        constexpr std::uint8_t kUsesFill = 0x40;
        std::uint8_t uses = 0;
        std::uint16_t number = 0;
        if (format.numberFormat == kTextNumberFormat) {
            number = kTextFormatId;
        } else if (!format.numberFormat.empty()) {
            number = formatNumbers_.at(format.numberFormat);
        }
        if (number != 0) uses |= kUsesNumber;
        std::uint16_t font = 0;
        if (const auto own = fontNumbers_.find({format.fontSize, format.bold}); own != fontNumbers_.end()) {
            font = own->second;
            uses |= kUsesFont;
        }
        std::uint32_t border = 0;
        std::uint32_t borderAndFill = 0;
        if (format.borders) {
            border = 0x1111u | 64u << 16 | 64u << 23;
            borderAndFill = 64u | 64u << 7;
            uses |= kUsesBorder;
        }
        std::uint16_t colors = kAutomaticColors;
        if (format.fillColor != 0) {
            borderAndFill |= 1u << 26;
            colors = static_cast<std::uint16_t>((format.fillColor + xls::kPaletteOffset) | 65u << 7);
            uses |= kUsesFill;
        }
        out.Begin(xls::kExtendedFormat, 20);
        out.U16(font);
        out.U16(number);
        out.U16(0x0001);
        out.U8(0x20);
        out.U8(0);
        out.U8(0);
        out.U8(uses);
        out.U32(border);
        out.U32(borderAndFill);
        out.U16(colors);
    }

    void WriteSharedTexts(RecordWriter& out) {
        out.BeginOpen(xls::kSharedTexts);
        out.U32(static_cast<std::uint32_t>(textCells_));
        out.U32(static_cast<std::uint32_t>(texts_.size()));
        const auto room = [&out] { return xls::kMaxPayload - out.OpenPayload(); };
        const auto goOn = [&out] {
            out.EndOpen();
            out.BeginOpen(xls::kContinue);
        };
        Units text;
        for (const std::uint32_t index : texts_) {
            text.Assign(workbook_.Texts().At(index));
            if (text.units.size() > kMaxCellCodeUnits) FailTooLarge();
            constexpr std::size_t kTextHeader = 3;
            const std::size_t unitBytes = text.wide ? 2 : 1;
            // The head of a text and its first character stay in one record.
            if (room() < kTextHeader + unitBytes) goOn();
            out.U16(static_cast<std::uint16_t>(text.units.size()));
            out.U8(text.wide ? xls::kWide : 0);
            for (std::size_t at = 0; at < text.units.size();) {
                if (room() < unitBytes) {
                    goOn();
                    out.U8(text.wide ? xls::kWide : 0);
                }
                const std::size_t end = std::min(text.units.size(), at + room() / unitBytes);
                for (; at < end; ++at)
                    out.Unit(text.units[at], text.wide);
            }
        }
        out.EndOpen();
    }

    void WriteSheet(RecordWriter& out, std::size_t index) {
        const Sheet& sheet = *workbook_.Sheets()[index];
        const bool active = index == workbook_.activeSheet;
        WriteBof(out, xls::kWorksheet);
        // Without it some programs take a height that cuts off the tops of Chinese characters.
        out.Begin(xls::kDefaultRowHeight, 4);
        out.U16(0);
        out.U16(kStandardRowHeight);
        WritePage(out, sheet.Page());
        WriteShort(out, xls::kDefaultColumnWidth, 8);
        for (const auto& [column, setting] : sheet.Columns()) {
            if (column >= kMaxXlsColumns) break;
            constexpr double kStandardWidth = 9.140625;
            out.Begin(xls::kColumnInfo, 12);
            out.U16(static_cast<std::uint16_t>(column));
            out.U16(static_cast<std::uint16_t>(column));
            out.U16(static_cast<std::uint16_t>(
                std::min(65280.0, std::round((setting.width > 0 ? setting.width : kStandardWidth) * 256))));
            out.U16(static_cast<std::uint16_t>(xls::kStyleFormats + setting.format));
            out.U16(setting.hidden ? 1 : 0);
            out.U16(0);
        }
        const CellArea used = sheet.UsedArea();
        out.Begin(xls::kDimensions, 14);
        out.U32(used.firstRow);
        out.U32(used.lastRow + 1);
        out.U16(static_cast<std::uint16_t>(used.firstColumn));
        out.U16(static_cast<std::uint16_t>(used.lastColumn + 1));
        out.U16(0);
        for (std::size_t r = 0; r < sheet.Rows().size(); ++r) {
            WriteRow(out, static_cast<std::uint16_t>(r), sheet.Rows()[r]);
        }
        const std::uint8_t pane = WriteView(out, sheet.Page(), active);
        out.Begin(xls::kSelection, 15);
        out.U8(pane);
        for (const int value : {0, 0, 0, 1, 0, 0})
            out.U16(static_cast<std::uint16_t>(value));
        out.U8(0);
        out.U8(0);
        out.Begin(xls::kEof, 0);
    }

    static void WritePage(RecordWriter& out, const SheetPage& page) {
        constexpr std::uint16_t kUsualFlags = 0x04C1;
        constexpr std::uint16_t kFitsPages = 0x0100;
        constexpr std::uint16_t kPortrait = 0x0002;
        constexpr std::uint16_t kA4 = 9;
        constexpr std::uint16_t kDotsPerInch = 600;
        constexpr double kHeaderInches = 0.3;
        if (!page.landscape && !page.fits && page.paper == 0) return;
        WriteShort(out, xls::kSheetFlags, page.fits ? kUsualFlags | kFitsPages : kUsualFlags);
        out.Begin(xls::kPageSetup, 34);
        out.U16(page.paper != 0 ? page.paper : kA4);
        out.U16(100);
        out.U16(1);
        out.U16(page.fitsWide);
        out.U16(page.fitsTall);
        out.U16(page.landscape ? 0 : kPortrait);
        out.U16(kDotsPerInch);
        out.U16(kDotsPerInch);
        out.F64(kHeaderInches);
        out.F64(kHeaderInches);
        out.U16(1);
    }

    // The window on the sheet; the number of the pane that the selection is in.
    static std::uint8_t WriteView(RecordWriter& out, const SheetPage& page, bool active) {
        constexpr std::uint16_t kUsualView = 0x00B6;
        constexpr std::uint16_t kSelectedAndShown = 0x0600;
        constexpr std::uint16_t kFrozen = 0x0108;
        const bool frozen = page.frozen && (page.splitRows > 0 || page.splitColumns > 0);
        out.Begin(xls::kWindow2, 18);
        out.U16(static_cast<std::uint16_t>(kUsualView | (active ? kSelectedAndShown : 0) |
                                           (frozen ? kFrozen : 0)));
        out.U16(0);
        out.U16(0);
        out.U32(64);
        out.U16(0);
        out.U16(0);
        out.U32(0);
        // Bottom right 0, top right 1, bottom left 2, top left 3.
        std::uint8_t pane = 3;
        if (!frozen) return pane;
        if (page.splitRows > 0) pane = static_cast<std::uint8_t>(pane - 1);
        if (page.splitColumns > 0) pane = static_cast<std::uint8_t>(pane - 2);
        const auto rows = static_cast<std::uint16_t>(page.splitRows);
        const auto columns = static_cast<std::uint16_t>(page.splitColumns);
        out.Begin(xls::kPane, 10);
        for (const std::uint16_t value : {columns, rows, rows, columns})
            out.U16(value);
        out.U8(pane);
        out.U8(0);
        return pane;
    }

    void WriteRow(RecordWriter& out, std::uint16_t row, const Row& cells) {
        const auto head = [&](std::uint16_t id, std::size_t payload, const Cell& cell) {
            out.Begin(id, payload);
            out.U16(row);
            out.U16(cell.column);
            out.U16(static_cast<std::uint16_t>(xls::kStyleFormats + cell.format));
        };
        for (const Cell& cell : cells) {
            switch (cell.kind) {
                case CellKind::Blank:
                    head(xls::kBlank, 6, cell);
                    break;
                case CellKind::Number:
                    // Always all 64 bits: the short forms lose the sign of zero and trust the reader's
                    // division.
                    head(xls::kNumber, 14, cell);
                    out.F64(cell.number);
                    break;
                case CellKind::Text:
                    head(xls::kLabelShared, 10, cell);
                    out.U32(numbers_[cell.text]);
                    break;
                case CellKind::Boolean:
                case CellKind::Error:
                    head(xls::kBoolError, 8, cell);
                    out.U8(cell.kind == CellKind::Boolean ? (cell.boolean ? 1 : 0) : XlsCode(cell.error));
                    out.U8(cell.kind == CellKind::Error ? 1 : 0);
                    break;
            }
        }
    }

    const Workbook& workbook_;
    CompoundWriter sink_;
    RecordWriter out_;
    std::vector<std::uint32_t> numbers_;
    std::vector<std::uint32_t> texts_;
    std::uint64_t textCells_ = 0;
    std::map<Font, std::uint16_t> fontNumbers_;
    std::vector<Font> fonts_;
    std::map<std::string, std::uint16_t> formatNumbers_;
    std::vector<std::string> numberFormats_;
};

}  // namespace

void WriteXls(const Workbook& workbook, const std::string& fileName) {
    Writer(workbook, fileName).Write();
}

}  // namespace vicenter::office
