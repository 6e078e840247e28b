#include <charconv>
#include <cmath>
#include <optional>

#include "automation/date_time.h"
#include "automation/variant.h"
#include "platform/office/dates.h"
#include "platform/office/limits.h"
#include "platform/office/pending_formulas.h"
#include "platform/office/xlsx_reader.h"
#include "text/blanks.h"

namespace vicenter::office {

namespace {

using Token = XmlScanner::Token;

enum class ValueKind { Number, SharedText, InlineText, FormulaText, Boolean, Error, Date };

ValueKind KindOfType(std::string_view type) {
    if (type == "s") return ValueKind::SharedText;
    if (type == "inlineStr") return ValueKind::InlineText;
    if (type == "str") return ValueKind::FormulaText;
    if (type == "b") return ValueKind::Boolean;
    if (type == "e") return ValueKind::Error;
    if (type == "d") return ValueKind::Date;
    return ValueKind::Number;
}

struct Place {
    std::uint32_t row;
    std::uint32_t column;
};

// "AB12" as row 11 and column 27; nothing for any other text or a place outside of a sheet.
std::optional<Place> ReadReference(std::string_view text) {
    std::uint32_t column = 0;
    std::size_t at = 0;
    for (; at < text.size() && at < 4; ++at) {
        const char c = static_cast<char>(text[at] & ~0x20);
        if (c < 'A' || c > 'Z') break;
        column = column * 26 + static_cast<std::uint32_t>(c - 'A' + 1);
    }
    std::uint32_t row = 0;
    const auto [rest, error] = std::from_chars(text.data() + at, text.data() + text.size(), row);
    if (at == 0 || error != std::errc() || rest != text.data() + text.size()) return std::nullopt;
    if (row == 0 || row > kMaxRows || column > kMaxColumns) return std::nullopt;
    return Place{row - 1, column - 1};
}

std::string_view Trim(std::string_view text) {
    return text::Trimmed(text, text::kSpacesAndLineEnds);
}

// Reads a sheet cell by cell as it comes out of the package; nothing of the part is kept. Elements that are
// not known are passed over with all that they hold, since newer programs write more than the format had when
// this was written.
class SheetReader {
  public:
    SheetReader(ByteSource& part, const XlsxTables& tables, Workbook& workbook, Sheet& sheet)
        : scanner_(part), tables_(tables), workbook_(workbook), sheet_(sheet), formulas_(workbook, sheet) {}

    void Read() {
        bool inData = false;
        for (Token token = scanner_.Next(); token != Token::Finished; token = scanner_.Next()) {
            if (token == Token::Text) continue;
            const std::string_view name = scanner_.Name();
            if (token == Token::End) {
                if (name == "sheetData") inData = false;
                // Nothing more comes to the row: what it reserved for growing goes back at once, not row for
                // row at the end of a sheet of a million.
                if (name == "row") sheet_.FinishRow(row_);
                continue;
            }
            if (name == "c" && inData) {
                ReadCell();
            } else if (name == "row" && inData) {
                StartRow();
            } else if (name == "sheetData") {
                inData = true;
            } else if (name == "col") {
                ReadColumn();
            } else if (scanner_.Depth() == 1 && name != "worksheet") {
                FailDamaged("不是工作表");
            }
        }
        // Only now: a formula may look at cells further down.
        formulas_.Calculate();
    }

  private:
    void StartRow() {
        // A row or a cell without a place follows the one before it.
        const std::string_view number = scanner_.RawAttribute("r");
        std::uint32_t row = nextRow_ + 1;
        if (!number.empty()) {
            const auto [rest, error] = std::from_chars(number.data(), number.data() + number.size(), row);
            if (error != std::errc() || row == 0 || row > kMaxRows) FailDamaged("行号");
        }
        row_ = row - 1;
        nextRow_ = row;
        nextColumn_ = 0;
    }

    // Whether a column is hidden, and how wide it is. One element may stand for all 16,384 columns of a
    // sheet: noted are as many as the older format has.
    void ReadColumn() {
        const std::string_view hiddenText = scanner_.RawAttribute("hidden");
        const bool hidden = hiddenText == "1" || hiddenText == "true";
        const double width = automation::ParseDouble(scanner_.RawAttribute("width")).value_or(0);
        constexpr double kMaxWidth = 255;
        const bool wide = width > 0 && width <= kMaxWidth;
        if (!hidden && !wide) return;
        std::uint32_t first = 0;
        std::uint32_t last = 0;
        const std::string_view min = scanner_.RawAttribute("min");
        const std::string_view max = scanner_.RawAttribute("max");
        std::from_chars(min.data(), min.data() + min.size(), first);
        std::from_chars(max.data(), max.data() + max.size(), last);
        if (first == 0) return;
        for (; first <= last && first <= kMaxXlsColumns; ++first) {
            ColumnSetting& column = sheet_.ColumnAt(first - 1);
            if (hidden) column.hidden = true;
            if (wide) column.width = width;
        }
    }

    void ReadCell() {
        std::string_view reference;
        std::string_view style;
        std::string_view type;
        // One pass over the attributes for the three that count: there are as many of these elements as
        // cells.
        scanner_.ForEachAttribute([&](std::string_view name, std::string_view value) {
            if (name == "r") reference = value;
            if (name == "s") style = value;
            if (name == "t") type = value;
        });
        const Place place = PlaceOf(reference);
        nextColumn_ = place.column + 1;
        const bool styled = !style.empty();
        const std::uint16_t format = FormatOf(style);
        const ValueKind kind = KindOfType(type);
        // From here on the views are gone: the scanner reads on.
        const Content content = ReadContent(kind);
        if (content.isFormula && HasNoResult(content, kind)) {
            formulas_.Add(place.row, place.column, formula_);
            sheet_.Append(place.row, place.column, format);
            return;
        }
        if (!content.anyValue) {
            // Borders and the like around nothing.
            if (styled) sheet_.ExtendUsedArea(place.row, place.column);
            return;
        }
        Store(place, format, kind);
    }

    // A cell that does not say where it is follows the one before it.
    Place PlaceOf(std::string_view reference) const {
        Place place{row_, nextColumn_};
        if (!reference.empty()) {
            const auto told = ReadReference(reference);
            if (!told) FailDamaged("单元格位置");
            place = *told;
        }
        if (place.column >= kMaxColumns || place.row >= kMaxRows) FailDamaged("单元格位置");
        return place;
    }

    // A style that the workbook does not have is none, as spreadsheets take it.
    std::uint16_t FormatOf(std::string_view style) const {
        if (style.empty()) return 0;
        std::uint32_t index = 0;
        std::from_chars(style.data(), style.data() + style.size(), index);
        return index < tables_.formats.size() ? tables_.formats[index] : std::uint16_t{0};
    }

    struct Content {
        bool anyValue = false;
        bool isFormula = false;
    };

    // Of a formula: a value that is not there, whatever its cell says of the kind; an empty one of any kind
    // but a text's; and, with the wish that everything be calculated, the 0 or the empty text of a writer
    // that calculates nothing.
    bool HasNoResult(const Content& content, ValueKind kind) const {
        if (!content.anyValue) return true;
        if (kind == ValueKind::InlineText) return false;
        const std::string_view result = Trim(text_);
        if (result.empty()) return kind != ValueKind::FormulaText || workbook_.calculatesOnLoad;
        const bool mayBeNone = kind == ValueKind::Number || kind == ValueKind::FormulaText;
        return mayBeNone && result == "0" && workbook_.calculatesOnLoad;
    }

    // What stands within the element, into text_ and formula_: both are kept for their room.
    Content ReadContent(ValueKind kind) {
        Content content;
        text_.clear();
        formula_.clear();
        const std::size_t depth = scanner_.Depth();
        while (true) {
            const Token token = scanner_.Next();
            if (token == Token::Finished) FailDamaged("XML 不完整");
            if (token == Token::End && scanner_.Depth() < depth) return content;
            if (token != Token::Start) continue;
            // A value that stands beside an inline text all the same must not be joined to it.
            if (scanner_.Name() == "v" && kind != ValueKind::InlineText) {
                ReadText(text_);
                content.anyValue = true;
            } else if (scanner_.Name() == "f") {
                ReadText(formula_);
                content.isFormula = true;
            } else if (scanner_.Name() == "is") {
                text_.clear();
                ReadStringItem(scanner_, text_);
                content.anyValue = true;
            } else {
                scanner_.SkipElement();
            }
        }
    }

    void ReadText(std::string& text) {
        const std::size_t depth = scanner_.Depth();
        while (true) {
            const Token token = scanner_.Next();
            if (token == Token::Finished) FailDamaged("XML 不完整");
            if (token == Token::End && scanner_.Depth() < depth) return;
            if (token == Token::Text) scanner_.AppendText(text);
        }
    }

    Cell& Append(const Place& place, std::uint16_t format) {
        return sheet_.Append(place.row, place.column, format);
    }
    void SetText(Cell& cell, std::string_view text) {
        cell.kind = CellKind::Text;
        cell.text = workbook_.Texts().Intern(text);
    }

    void Store(const Place& place, std::uint16_t format, ValueKind kind) {
        switch (kind) {
            case ValueKind::SharedText:
                return StoreSharedText(place, format);
            case ValueKind::InlineText:
                return SetText(Append(place, format), text_);
            case ValueKind::FormulaText:
                // The other two kinds of text have been through this where their items were read.
                ResolvePackageEscapes(text_);
                return SetText(Append(place, format), text_);
            case ValueKind::Boolean: {
                const std::string_view value = Trim(text_);
                Cell& cell = Append(place, format);
                cell.kind = CellKind::Boolean;
                cell.boolean = value == "1" || value == "true";
                return;
            }
            case ValueKind::Error: {
                Cell& cell = Append(place, format);
                cell.kind = CellKind::Error;
                cell.error = CellErrorFromText(Trim(text_));
                return;
            }
            case ValueKind::Date:
                return StoreDate(place, format);
            case ValueKind::Number:
                return StoreNumber(place, format);
        }
    }

    // A number of a text that the workbook does not have is damage: another text would be a wrong one.
    void StoreSharedText(const Place& place, std::uint16_t format) {
        std::uint32_t index = 0;
        const std::string_view number = Trim(text_);
        const auto [rest, error] = std::from_chars(number.data(), number.data() + number.size(), index);
        if (error != std::errc() || rest != number.data() + number.size() ||
            index >= tables_.sharedTexts.size()) {
            FailDamaged("共享字符串");
        }
        Cell& cell = Append(place, format);
        cell.kind = CellKind::Text;
        cell.text = tables_.sharedTexts[index];
    }

    void StoreDate(const Place& place, std::uint16_t format) {
        std::string_view value = Trim(text_);
        // The mark of a zone, which spreadsheets do not have.
        if (value.ends_with('Z')) value.remove_suffix(1);
        const auto date = automation::DateTime::Parse(value);
        Cell& cell = Append(place, format);
        if (!date) return SetText(cell, text_);
        if (!workbook_.Formats().IsDate(format)) cell.format = tables_.dateFormat;
        cell.kind = CellKind::Number;
        cell.number = SerialFromDate(*date, workbook_.dates1904);
    }

    // What is no number stays as the text that it is, so that whoever imports it sees what stands there.
    void StoreNumber(const Place& place, std::uint16_t format) {
        const std::string_view value = Trim(text_);
        if (value.empty()) return sheet_.ExtendUsedArea(place.row, place.column);
        double number = 0;
        const auto [rest, error] = std::from_chars(value.data(), value.data() + value.size(), number);
        Cell& cell = Append(place, format);
        if (error == std::errc() && rest == value.data() + value.size() && std::isfinite(number)) {
            cell.kind = CellKind::Number;
            cell.number = number;
            // The quick way takes no plus sign.
        } else if (const auto lenient = automation::ParseDouble(value); lenient && std::isfinite(*lenient)) {
            cell.kind = CellKind::Number;
            cell.number = *lenient;
        } else {
            SetText(cell, text_);
        }
    }

    XmlScanner scanner_;
    const XlsxTables& tables_;
    Workbook& workbook_;
    Sheet& sheet_;
    PendingFormulas formulas_;
    std::string text_;
    std::string formula_;
    std::uint32_t row_ = 0;
    std::uint32_t nextRow_ = 0;
    std::uint32_t nextColumn_ = 0;
};

}  // namespace

void ReadXlsxSheet(ByteSource& part, const XlsxTables& tables, Workbook& workbook, Sheet& sheet) {
    SheetReader(part, tables, workbook, sheet).Read();
}

}  // namespace vicenter::office
