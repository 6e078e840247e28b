// Page set-up and frozen rows: as callers set them, and as both kinds of file hold them.

#include "automation/class_registry.h"
#include "platform/office/excel_server.h"
#include "platform/office/xlsx_package.h"
#include "tests/platform/office/office_fixture.h"
#include "tests/platform/office/records.h"

namespace vicenter::office {
namespace {

class Page : public testing::Test {
  protected:
    Page() {
        RegisterExcelServer("16.0");
        excel_ = automation::CreateObject("Excel.Application");
        book_ = excel_->Get("Workbooks").AsObject()->Call("Add").AsObject();
        sheet_ = book_->Get("Worksheets").AsObject()->Get("Item", {1}).AsObject();
        sheet_->Put("Name", "凭证's");
        page_ = sheet_->Get("PageSetup").AsObject();
        window_ = excel_->Get("ActiveWindow").AsObject();
    }
    void SetUpPage() {
        page_->Put("PaperSize", 9);
        page_->Put("Orientation", 2);
        page_->Put("Zoom", false);
        page_->Put("FitToPagesWide", 1);
        page_->Put("FitToPagesTall", false);
        page_->Put("PrintTitleRows", "$1:$2");
        window_->Put("SplitRow", 1);
        window_->Put("FreezePanes", true);
    }
    std::string Saved(std::int32_t format) {
        const std::string name = folder_.File("p");
        book_->Call("SaveAs", {name, format});
        return name;
    }
    static std::string Part(const std::string& file, const std::string& name) {
        const XlsxPackage package(file);
        const auto part = package.Open(name);
        std::string text(1 << 16, '\0');
        text.resize(part->Read(text.data(), text.size()));
        return text;
    }

    automation::ClassRegistry::Restore restore_;
    fakes::TemporaryFolder folder_;
    automation::ObjectRef excel_, book_, sheet_, page_, window_;
};

TEST_F(Page, AnswersWhatWasSet) {
    EXPECT_EQ(page_->Get("Orientation").ToInt32(), 1);
    EXPECT_EQ(page_->Get("Zoom").ToInt32(), 100);
    EXPECT_EQ(page_->Get("PrintTitleRows").ToText(), "");
    SetUpPage();
    EXPECT_EQ(page_->Get("Orientation").ToInt32(), 2);
    EXPECT_FALSE(page_->Get("Zoom").ToBoolean());
    EXPECT_EQ(page_->Get("FitToPagesWide").ToInt32(), 1);
    EXPECT_FALSE(page_->Get("FitToPagesTall").ToBoolean());
    EXPECT_EQ(page_->Get("PrintTitleRows").ToText(), "$1:$2");
    EXPECT_TRUE(window_->Get("FreezePanes").ToBoolean());
    EXPECT_EQ(window_->Get("SplitRow").ToInt32(), 1);
    EXPECT_THROW(page_->Put("Orientation", 3), automation::Error);
    EXPECT_THROW(page_->Put("FitToPagesWide", 0), automation::Error);
    EXPECT_THROW(window_->Put("SplitRow", -1), automation::Error);
    book_->Call("Close", {false});
    EXPECT_THROW(page_->Get("Zoom"), automation::Error);
}

TEST_F(Page, StandsInTheParts) {
    SetUpPage();
    const std::string file = Saved(51);
    const std::string sheet = Part(file, "xl/worksheets/sheet1.xml");
    for (const char* part :
         {"<sheetPr><pageSetUpPr fitToPage=\"1\"/></sheetPr>",
          "<pane ySplit=\"1\" topLeftCell=\"A2\" activePane=\"bottomLeft\" state=\"frozen\"/>",
          "<selection pane=\"bottomLeft\" activeCell=\"A1\" sqref=\"A1\"/>",
          "<pageSetup paperSize=\"9\" fitToWidth=\"1\" fitToHeight=\"0\" "
          "orientation=\"landscape\"/></worksheet>"}) {
        EXPECT_NE(sheet.find(part), std::string::npos) << part << "\n" << sheet;
    }
    EXPECT_NE(Part(file, "xl/workbook.xml")
                  .find("</sheets><definedNames><definedName name=\"_xlnm.Print_Titles\" localSheetId=\"0\">"
                        "'凭证''s'!$1:$2</definedName></definedNames>"),
              std::string::npos);
}

TEST_F(Page, StandsInTheRecords) {
    SetUpPage();
    const std::string bytes = FileBytes(Saved(-4143));
    const auto holds = [&](const std::string& record) { return bytes.find(record) != std::string::npos; };
    EXPECT_TRUE(holds(Record(0x0081, U16(0x05C1))));
    EXPECT_TRUE(holds(Record(0x00A1, U16(9) + U16(100) + U16(1) + U16(1) + U16(0) + U16(0) + U16(600) +
                                         U16(600) + F64(0.3) + F64(0.3) + U16(1))));
    EXPECT_TRUE(holds(Record(0x0041, U16(0) + U16(1) + U16(1) + U16(0) + U16(2))));
    EXPECT_TRUE(holds(Record(0x0018, U16(0x20) + std::string("\0\x01", 2) + U16(11) + U16(0) + U16(1) +
                                         U32(0) + std::string("\0\x07\x3B", 3) + U16(0) + U16(0) + U16(1) +
                                         U16(0) + U16(255))));
}

TEST_F(Page, IsLeftOutWhereNobodySetIt) {
    const std::string sheet = Part(Saved(51), "xl/worksheets/sheet1.xml");
    for (const char* part : {"<sheetPr", "<pane", "<pageSetup"})
        EXPECT_EQ(sheet.find(part), std::string::npos) << part;
    EXPECT_EQ(Part(folder_.File("p"), "xl/workbook.xml").find("definedName"), std::string::npos);
}

// A column is as wide as its numbers are shown.
TEST_F(Page, ColumnsFitNumbersWithSeparators) {
    sheet_->Get("Cells", {1, 1}).AsObject()->Put("Value", 1234567.5);
    sheet_->Get("Cells", {1, 2}).AsObject()->Put("Value", 1234567.5);
    sheet_->Get("Columns", {2}).AsObject()->Put("NumberFormat", "#,##0.00");
    sheet_->Get("Columns", {"A:B"}).AsObject()->Call("AutoFit");
    const auto width = [&](int column) {
        return sheet_->Get("Columns", {column}).AsObject()->Get("ColumnWidth").ToDouble();
    };
    // "1234567.5" and "1,234,567.50"
    EXPECT_DOUBLE_EQ(width(2) - width(1), 3);
}

}  // namespace
}  // namespace vicenter::office
