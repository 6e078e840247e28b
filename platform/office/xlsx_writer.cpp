#include "platform/office/xlsx_writer.h"

#include <array>
#include <charconv>
#include <vector>

#include "platform/office/cell_text.h"
#include "platform/office/column_letters.h"
#include "platform/office/xml_scanner.h"
#include "platform/office/zip_writer.h"

namespace vicenter::office {

namespace {

constexpr std::size_t kPieceBytes = 64u << 10;
constexpr double kStandardColumnWidth = 9.140625;
constexpr std::uint32_t kUnused = 0xFFFFFFFF;

constexpr std::string_view kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";
#define VICENTER_MAIN_NAMESPACE "http://schemas.openxmlformats.org/spreadsheetml/2006/main"
#define VICENTER_RELATION_NAMESPACE "http://schemas.openxmlformats.org/officeDocument/2006/relationships"

void AppendNumber(std::string& to, std::uint32_t value) {
    std::array<char, 16> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    to.append(buffer.data(), end.ptr);
}

void AppendNumber(std::string& to, double value) {
    std::array<char, 40> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    to.append(buffer.data(), end.ptr);
}

std::string SheetPartName(std::size_t index) {
    return "worksheets/sheet" + std::to_string(index + 1) + ".xml";
}

bool NeedsSpaceKept(std::string_view text) {
    const auto isSpace = [](char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r'; };
    return !text.empty() && (isSpace(text.front()) || isSpace(text.back()) || text.find('\n') != text.npos);
}

// A pane that does not scroll, if the sheet has one, and the beginning of its selection.
std::string PaneXml(const SheetPage& page) {
    if (!page.frozen || (page.splitRows == 0 && page.splitColumns == 0)) return "<selection";
    const std::string pane = page.splitColumns == 0 ? "bottomLeft"
                             : page.splitRows == 0  ? "topRight"
                                                    : "bottomRight";
    std::string xml = "<pane";
    if (page.splitColumns > 0) xml += " xSplit=\"" + std::to_string(page.splitColumns) + "\"";
    if (page.splitRows > 0) xml += " ySplit=\"" + std::to_string(page.splitRows) + "\"";
    return xml + " topLeftCell=\"" + ColumnLetters(page.splitColumns + 1) +
           std::to_string(page.splitRows + 1) + "\" activePane=\"" + pane +
           "\" state=\"frozen\"/><selection pane=\"" + pane + "\"";
}

std::string PageSetupXml(const SheetPage& page) {
    if (!page.landscape && !page.fits && page.paper == 0) return {};
    std::string xml = "<pageSetup";
    if (page.paper != 0) xml += " paperSize=\"" + std::to_string(page.paper) + "\"";
    if (page.fits) {
        xml += " fitToWidth=\"" + std::to_string(page.fitsWide) + "\" fitToHeight=\"" +
               std::to_string(page.fitsTall) + "\"";
    }
    return xml + (page.landscape ? " orientation=\"landscape\"/>" : "/>");
}

class Writer {
  public:
    Writer(const Workbook& workbook, const std::string& fileName) : workbook_(workbook), zip_(fileName) {}

    void Write() {
        WriteFrame();
        zip_.Add("xl/styles.xml", XlsxStyles(workbook_.Formats()));
        numbers_.assign(workbook_.Texts().Count(), kUnused);
        for (std::size_t i = 0; i < workbook_.Sheets().size(); ++i) {
            zip_.Begin("xl/" + SheetPartName(i));
            WriteSheet(*workbook_.Sheets()[i], i == workbook_.activeSheet);
            zip_.End();
        }
        WriteSharedTexts();
        zip_.Finish();
    }

  private:
    void WriteFrame() {
        std::string types(kDeclaration);
        types +=
            "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
            "<Default Extension=\"rels\" "
            "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
            "<Default Extension=\"xml\" ContentType=\"application/xml\"/>";
        constexpr std::string_view kKind = "application/vnd.openxmlformats-officedocument.spreadsheetml.";
        const auto addType = [&](const std::string& part, std::string_view kind) {
            types += "<Override PartName=\"/xl/" + part + "\" ContentType=\"";
            types.append(kKind).append(kind).append("+xml\"/>");
        };
        std::string book(kDeclaration);
        book +=
            "<workbook xmlns=\"" VICENTER_MAIN_NAMESPACE "\" xmlns:r=\"" VICENTER_RELATION_NAMESPACE "\">";
        book += workbook_.dates1904 ? "<workbookPr date1904=\"1\"/>" : "<workbookPr/>";
        book += "<bookViews><workbookView activeTab=\"" + std::to_string(workbook_.activeSheet) +
                "\"/></bookViews><sheets>";
        std::string relations(kDeclaration);
        relations += "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">";
        const auto addRelation = [&](std::size_t id, const std::string& kind, const std::string& target) {
            relations += "<Relationship Id=\"rId" + std::to_string(id) +
                         "\" Type=\"" VICENTER_RELATION_NAMESPACE "/" + kind + "\" Target=\"" + target +
                         "\"/>";
        };
        addType("workbook.xml", "sheet.main");
        std::size_t id = 1;
        for (std::size_t i = 0; i < workbook_.Sheets().size(); ++i, ++id) {
            book += "<sheet name=\"";
            AppendXmlEscaped(book, workbook_.Sheets()[i]->Name());
            const std::string number = std::to_string(id);
            book += "\" sheetId=\"" + number + "\"";
            if (workbook_.Sheets()[i]->IsHidden()) book += " state=\"hidden\"";
            book += " r:id=\"rId" + number + "\"/>";
            addType(SheetPartName(i), "worksheet");
            addRelation(id, "worksheet", SheetPartName(i));
        }
        addType("styles.xml", "styles");
        addRelation(id++, "styles", "styles.xml");
        addType("sharedStrings.xml", "sharedStrings");
        addRelation(id, "sharedStrings", "sharedStrings.xml");
        zip_.Add("[Content_Types].xml", types + "</Types>");
        zip_.Add("_rels/.rels",
                 std::string(kDeclaration) +
                     "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">"
                     "<Relationship Id=\"rId1\" Type=\"" VICENTER_RELATION_NAMESPACE
                     "/officeDocument\" Target=\"xl/workbook.xml\"/></Relationships>");
        zip_.Add("xl/workbook.xml", book + "</sheets>" + PrintTitlesXml() + "</workbook>");
        zip_.Add("xl/_rels/workbook.xml.rels", relations + "</Relationships>");
    }

    void WriteSheet(const Sheet& sheet, bool active) {
        const CellArea used = sheet.UsedArea();
        std::string xml(kDeclaration);
        xml += "<worksheet xmlns=\"" VICENTER_MAIN_NAMESPACE "\">";
        if (sheet.Page().fits) xml += "<sheetPr><pageSetUpPr fitToPage=\"1\"/></sheetPr>";
        xml += "<dimension ref=\"" + ColumnLetters(used.firstColumn + 1) + std::to_string(used.firstRow + 1);
        if (used.lastRow > used.firstRow || used.lastColumn > used.firstColumn) {
            xml += ":" + ColumnLetters(used.lastColumn + 1) + std::to_string(used.lastRow + 1);
        }
        xml += "\"/><sheetViews><sheetView";
        if (active) xml += " tabSelected=\"1\"";
        xml += " workbookViewId=\"0\">" + PaneXml(sheet.Page()) +
               " activeCell=\"A1\" sqref=\"A1\"/></sheetView></sheetViews>"
               "<sheetFormatPr defaultRowHeight=\"13.5\"/>";
        WriteColumns(sheet, xml);
        xml += "<sheetData>";

        std::vector<std::string> letters;
        std::vector<std::string> styles;
        for (std::size_t i = 0; i < workbook_.Formats().Count(); ++i) {
            styles.push_back(i == 0 ? "\"" : "\" s=\"" + std::to_string(i) + "\"");
        }
        std::string rowNumber;
        for (std::size_t r = 0; r < sheet.Rows().size(); ++r) {
            const Row& row = sheet.Rows()[r];
            if (row.empty()) continue;
            rowNumber = std::to_string(r + 1);
            xml.append("<row r=\"").append(rowNumber).append("\">");
            for (const Cell& cell : row) {
                while (letters.size() <= cell.column) {
                    letters.push_back("<c r=\"" +
                                      ColumnLetters(static_cast<std::uint32_t>(letters.size() + 1)));
                }
                xml.append(letters[cell.column]).append(rowNumber).append(styles[cell.format]);
                WriteCell(cell, xml);
            }
            xml += "</row>";
            if (xml.size() >= kPieceBytes) {
                zip_.Write(xml);
                xml.clear();
            }
        }
        xml += std::string(
                   "</sheetData><pageMargins left=\"0.7\" right=\"0.7\" top=\"0.75\" bottom=\"0.75\" "
                   "header=\"0.3\" "
                   "footer=\"0.3\"/>") +
               PageSetupXml(sheet.Page()) + "</worksheet>";
        zip_.Write(xml);
    }

    // The rows that are repeated on every page are a name that the file kind has a word for.
    std::string PrintTitlesXml() const {
        std::string names;
        for (std::size_t i = 0; i < workbook_.Sheets().size(); ++i) {
            const Sheet& sheet = *workbook_.Sheets()[i];
            const SheetPage& page = sheet.Page();
            if (page.titleRows == 0) continue;
            std::string quoted;
            for (const char c : sheet.Name())
                quoted += c == '\'' ? "''" : std::string(1, c);
            names += "<definedName name=\"_xlnm.Print_Titles\" localSheetId=\"" + std::to_string(i) + "\">";
            AppendXmlEscaped(names, "'" + quoted + "'!$" + std::to_string(page.titleFirst + 1) + ":$" +
                                        std::to_string(page.titleFirst + page.titleRows));
            names += "</definedName>";
        }
        return names.empty() ? names : "<definedNames>" + names + "</definedNames>";
    }

    void WriteCell(const Cell& cell, std::string& xml) {
        switch (cell.kind) {
            case CellKind::Blank:
                xml += "/>";
                return;
            case CellKind::Number:
                xml += "><v>";
                AppendNumber(xml, cell.number);
                break;
            case CellKind::Text: {
                xml += " t=\"s\"><v>";
                std::uint32_t& number = numbers_[cell.text];
                if (number == kUnused) {
                    number = static_cast<std::uint32_t>(used_.size());
                    used_.push_back(cell.text);
                }
                ++textCells_;
                AppendNumber(xml, number);
                break;
            }
            case CellKind::Boolean:
                xml += cell.boolean ? " t=\"b\"><v>1" : " t=\"b\"><v>0";
                break;
            case CellKind::Error:
                xml += " t=\"e\"><v>";
                xml += CellErrorText(cell.error);
                break;
        }
        xml += "</v></c>";
    }

    static void WriteColumns(const Sheet& sheet, std::string& xml) {
        if (sheet.Columns().empty()) return;
        xml += "<cols>";
        for (const auto& [column, setting] : sheet.Columns()) {
            const std::string number = std::to_string(column + 1);
            xml += "<col min=\"" + number + "\" max=\"" + number + "\" width=\"" +
                   NumberAsTyped(setting.width > 0 ? setting.width : kStandardColumnWidth) + "\"";
            if (setting.format != 0) xml += " style=\"" + std::to_string(setting.format) + "\"";
            if (setting.hidden) xml += " hidden=\"1\"";
            xml += setting.width > 0 ? " customWidth=\"1\"/>" : "/>";
        }
        xml += "</cols>";
    }

    void WriteSharedTexts() {
        zip_.Begin("xl/sharedStrings.xml");
        std::string xml(kDeclaration);
        xml += "<sst xmlns=\"" VICENTER_MAIN_NAMESPACE "\" count=\"" + std::to_string(textCells_) +
               "\" uniqueCount=\"" + std::to_string(used_.size()) + "\">";
        for (const std::uint32_t text : used_) {
            const std::string_view value = workbook_.Texts().At(text);
            xml += NeedsSpaceKept(value) ? "<si><t xml:space=\"preserve\">" : "<si><t>";
            AppendXmlEscaped(xml, value);
            xml += "</t></si>";
            if (xml.size() >= kPieceBytes) {
                zip_.Write(xml);
                xml.clear();
            }
        }
        zip_.Write(xml + "</sst>");
        zip_.End();
    }

    const Workbook& workbook_;
    ZipWriter zip_;
    std::vector<std::uint32_t> numbers_;  // the workbook's text to its number in the file
    std::vector<std::uint32_t> used_;     // the other way round
    std::uint64_t textCells_ = 0;
};

}  // namespace

void WriteXlsx(const Workbook& workbook, const std::string& fileName) {
    Writer(workbook, fileName).Write();
}

}  // namespace vicenter::office
