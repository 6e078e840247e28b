#include "platform/office/fill_in_workbook.h"

#include <algorithm>
#include <map>

#include "platform/office/cell_text.h"
#include "platform/office/column_letters.h"
#include "platform/office/xml_scanner.h"
#include "platform/office/zip_writer.h"
#include "platform/system/file_replacement.h"

namespace vicenter::office {

namespace {

constexpr std::string_view kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";
constexpr std::string_view kMain = "http://schemas.openxmlformats.org/spreadsheetml/2006/main";
constexpr std::string_view kRelation = "http://schemas.openxmlformats.org/officeDocument/2006/relationships";
constexpr int kHeaderStyle = 1;
constexpr int kTextStyle = 2;

std::string Escaped(std::string_view text) {
    std::string escaped;
    AppendXmlEscaped(escaped, text);
    return escaped;
}

std::string Root(std::string_view name) {
    return std::string(kDeclaration) + "<" + std::string(name) + " xmlns=\"" + std::string(kMain) +
           "\" xmlns:r=\"" + std::string(kRelation) + "\">";
}

std::string Letters(std::size_t column) {
    return ColumnLetters(static_cast<std::uint32_t>(column + 1));
}

std::string CellXml(std::size_t row, std::size_t column, const std::string& text, int style) {
    return "<c r=\"" + Letters(column) + std::to_string(row + 1) + "\" s=\"" + std::to_string(style) +
           "\" t=\"inlineStr\"><is><t xml:space=\"preserve\">" + Escaped(text) + "</t></is></c>";
}

std::string ColumnXml(std::size_t column, double width, int style) {
    const std::string number = std::to_string(column + 1);
    return "<col min=\"" + number + "\" max=\"" + number + "\" width=\"" + NumberAsTyped(width) +
           "\" customWidth=\"1\" style=\"" + std::to_string(style) + "\"/>";
}

std::string Relation(int id, const std::string& kind, const std::string& target) {
    return "<Relationship Id=\"rId" + std::to_string(id) + "\" Type=\"" + std::string(kRelation) + "/" +
           kind + "\" Target=\"" + target + "\"/>";
}

std::string Relations(const std::string& entries) {
    return std::string(kDeclaration) +
           "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">" +
           entries + "</Relationships>";
}

// A sheet's name as formulas have it.
std::string Quoted(const std::string& name) {
    std::string quoted = "'";
    for (const char c : name)
        quoted += c == '\'' ? "''" : std::string(1, c);
    return quoted + "'";
}

// One palette colour for headers, text for codes.
constexpr std::string_view kStyles =
    "<fonts count=\"2\"><font><sz val=\"10\"/><name val=\"宋体\"/><charset val=\"134\"/></font>"
    "<font><b/><sz val=\"10\"/><name val=\"宋体\"/><charset val=\"134\"/></font></fonts>"
    "<fills count=\"3\"><fill><patternFill patternType=\"none\"/></fill><fill><patternFill "
    "patternType=\"gray125\"/></fill><fill><patternFill patternType=\"solid\"><fgColor indexed=\"44\"/>"
    "<bgColor indexed=\"64\"/></patternFill></fill></fills>"
    "<borders count=\"1\"><border><left/><right/><top/><bottom/><diagonal/></border></borders>"
    "<cellStyleXfs count=\"1\"><xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\"/></cellStyleXfs>"
    "<cellXfs count=\"3\"><xf numFmtId=\"0\" fontId=\"0\" fillId=\"0\" borderId=\"0\" xfId=\"0\"/>"
    "<xf numFmtId=\"0\" fontId=\"1\" fillId=\"2\" borderId=\"0\" xfId=\"0\" applyFont=\"1\" "
    "applyFill=\"1\"/>"
    "<xf numFmtId=\"49\" fontId=\"0\" fillId=\"0\" borderId=\"0\" xfId=\"0\" applyNumberFormat=\"1\"/>"
    "</cellXfs><cellStyles count=\"1\"><cellStyle name=\"Normal\" xfId=\"0\" builtinId=\"0\"/></cellStyles>";

class Writer {
  public:
    Writer(const FillInWorkbook& workbook, const std::string& fileName)
        : workbook_(workbook), zip_(fileName) {
        lists_ = workbook.lists;
        for (std::size_t i = 0; i < workbook.columns.size(); ++i) {
            if (workbook.columns[i].choices.empty()) continue;
            listOf_[i] = lists_.size();
            lists_.push_back({workbook.columns[i].header, workbook.columns[i].choices});
        }
    }

    void Write() {
        zip_.Add("[Content_Types].xml", Types());
        zip_.Add("_rels/.rels", Relations(Relation(1, "officeDocument", "xl/workbook.xml")));
        zip_.Add("xl/workbook.xml",
                 Root("workbook") + "<sheets><sheet name=\"" + Escaped(workbook_.sheetName) +
                     "\" sheetId=\"1\" r:id=\"rId1\"/><sheet name=\"" + Escaped(workbook_.choicesName) +
                     "\" sheetId=\"2\" r:id=\"rId2\"/></sheets></workbook>");
        zip_.Add("xl/_rels/workbook.xml.rels", Relations(Relation(1, "worksheet", "worksheets/sheet1.xml") +
                                                         Relation(2, "worksheet", "worksheets/sheet2.xml") +
                                                         Relation(3, "styles", "styles.xml")));
        zip_.Add("xl/styles.xml", Root("styleSheet") + std::string(kStyles) + "</styleSheet>");
        zip_.Add("xl/worksheets/sheet1.xml", Headers());
        zip_.Add("xl/worksheets/sheet2.xml", Lists());
        zip_.Add("xl/worksheets/_rels/sheet1.xml.rels",
                 Relations(Relation(1, "comments", "../comments1.xml") +
                           Relation(2, "vmlDrawing", "../drawings/vmlDrawing1.vml")));
        zip_.Add("xl/comments1.xml", Notes());
        zip_.Add("xl/drawings/vmlDrawing1.vml", NoteShapes());
        zip_.Finish();
    }

  private:
    static std::string Types() {
        const auto part = [](const std::string& name, const std::string& kind) {
            return "<Override PartName=\"/xl/" + name +
                   "\" ContentType=\"application/vnd.openxmlformats-officedocument.spreadsheetml." + kind +
                   "+xml\"/>";
        };
        return std::string(kDeclaration) +
               "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
               "<Default Extension=\"rels\" "
               "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/>"
               "<Default Extension=\"xml\" ContentType=\"application/xml\"/><Default Extension=\"vml\" "
               "ContentType=\"application/vnd.openxmlformats-officedocument.vmlDrawing\"/>" +
               part("workbook.xml", "sheet.main") + part("worksheets/sheet1.xml", "worksheet") +
               part("worksheets/sheet2.xml", "worksheet") + part("styles.xml", "styles") +
               part("comments1.xml", "comments") + "</Types>";
    }

    std::string Headers() const {
        std::string xml = Root("worksheet") +
                          "<sheetViews><sheetView tabSelected=\"1\" workbookViewId=\"0\"><pane ySplit=\"1\" "
                          "topLeftCell=\"A2\" activePane=\"bottomLeft\" state=\"frozen\"/></sheetView>"
                          "</sheetViews><cols>";
        std::string cells;
        for (std::size_t i = 0; i < workbook_.columns.size(); ++i) {
            const FillInColumn& column = workbook_.columns[i];
            xml += ColumnXml(i, column.width, column.text ? kTextStyle : 0);
            cells += CellXml(0, i, column.header, kHeaderStyle);
        }
        xml += "</cols><sheetData><row r=\"1\">" + cells + "</row></sheetData>" + DropDowns();
        return xml + "<legacyDrawing r:id=\"rId2\"/></worksheet>";
    }

    std::string DropDowns() const {
        if (listOf_.empty()) return {};
        std::string xml = "<dataValidations count=\"" + std::to_string(listOf_.size()) + "\">";
        for (const auto& [column, list] : listOf_) {
            const std::string letters = Letters(column);
            const std::string source = Letters(list);
            xml += "<dataValidation type=\"list\" allowBlank=\"1\" showErrorMessage=\"1\"";
            if (!workbook_.columns[column].choicesOnly) xml += " errorStyle=\"warning\"";
            xml += " sqref=\"" + letters + "2:" + letters + std::to_string(workbook_.rows + 1) +
                   "\"><formula1>" +
                   Escaped(Quoted(workbook_.choicesName) + "!$" + source + "$2:$" + source + "$" +
                           std::to_string(lists_[list].values.size() + 1)) +
                   "</formula1></dataValidation>";
        }
        return xml + "</dataValidations>";
    }

    std::string Lists() const {
        std::string xml = Root("worksheet") + "<cols>";
        std::size_t rows = 1;
        for (std::size_t i = 0; i < lists_.size(); ++i) {
            xml += ColumnXml(i, 20, kTextStyle);
            rows = std::max(rows, lists_[i].values.size() + 1);
        }
        // A list of columns without any is none.
        xml = lists_.empty() ? Root("worksheet") + "<sheetData>" : xml + "</cols><sheetData>";
        for (std::size_t row = 0; row < rows; ++row) {
            xml += "<row r=\"" + std::to_string(row + 1) + "\">";
            for (std::size_t i = 0; i < lists_.size(); ++i) {
                if (row == 0) {
                    xml += CellXml(row, i, lists_[i].header, kHeaderStyle);
                } else if (row <= lists_[i].values.size()) {
                    xml += CellXml(row, i, lists_[i].values[row - 1], kTextStyle);
                }
            }
            xml += "</row>";
        }
        return xml + "</sheetData></worksheet>";
    }

    std::string Notes() const {
        std::string xml = Root("comments") + "<authors><author></author></authors><commentList>";
        for (std::size_t i = 0; i < workbook_.columns.size(); ++i) {
            if (workbook_.columns[i].note.empty()) continue;
            xml += "<comment ref=\"" + Letters(i) + "1\" authorId=\"0\"><text><t xml:space=\"preserve\">" +
                   Escaped(workbook_.columns[i].note) + "</t></text></comment>";
        }
        return xml + "</commentList></comments>";
    }

    // Where the notes pop up; programs show none without.
    std::string NoteShapes() const {
        std::string xml =
            "<xml xmlns:v=\"urn:schemas-microsoft-com:vml\" "
            "xmlns:o=\"urn:schemas-microsoft-com:office:office\" "
            "xmlns:x=\"urn:schemas-microsoft-com:office:excel\"><v:shapetype id=\"note\" "
            "coordsize=\"21600,21600\" o:spt=\"202\" path=\"m,l,21600r21600,l21600,xe\"/>";
        for (std::size_t i = 0; i < workbook_.columns.size(); ++i) {
            if (workbook_.columns[i].note.empty()) continue;
            const std::string column = std::to_string(i);
            xml += "<v:shape id=\"note" + column +
                   "\" type=\"#note\" style=\"position:absolute;visibility:hidden\" fillcolor=\"#ffffe1\">"
                   "<x:ClientData ObjectType=\"Note\"><x:Anchor>" +
                   std::to_string(i + 1) + ",10,1,4," + std::to_string(i + 4) +
                   ",10,6,4</x:Anchor><x:AutoFill>False</x:AutoFill><x:Row>0</x:Row><x:Column>" + column +
                   "</x:Column></x:ClientData></v:shape>";
        }
        return xml + "</xml>";
    }

    const FillInWorkbook& workbook_;
    ZipWriter zip_;
    std::vector<FillInList> lists_;              // the columns of the second sheet
    std::map<std::size_t, std::size_t> listOf_;  // of the columns that have a drop-down
};

}  // namespace

void WriteFillInWorkbook(const FillInWorkbook& workbook, const std::string& fileName) {
    system::FileReplacement file(fileName);
    Writer(workbook, file.Path()).Write();
    file.PutInPlace(system::Durable::No);
}

}  // namespace vicenter::office
