#include "platform/office/excel_server.h"

#include "automation/class_registry.h"
#include "platform/office/excel_objects.h"
#include "tests/platform/office/office_fixture.h"

namespace vicenter::office {
namespace {

class ExcelServer : public testing::Test {
  protected:
    void Start(const std::string& version = "16.0") {
        RegisterExcelServer(version);
        excel_ = automation::CreateObject("Excel.Application");
        book_ = excel_->Get("Workbooks").AsObject()->Call("Add").AsObject();
        sheet_ = book_->Get("Worksheets").AsObject()->Get("Item", {1}).AsObject();
    }
    ObjectRef Cell(int row, int column) { return sheet_->Get("Cells", {row, column}).AsObject(); }
    std::string TextOf(int row, int column) { return Cell(row, column)->Get("Text").ToText(); }
    static std::int32_t ErrorNumberOf(const std::function<void()>& action) {
        try {
            action();
        } catch (const automation::Error& error) {
            return error.Number();
        }
        return 0;
    }

    automation::ClassRegistry::Restore restore_;
    fakes::TemporaryFolder folder_;
    ObjectRef excel_;
    ObjectRef book_;
    ObjectRef sheet_;
};

TEST_F(ExcelServer, TellsItsVersionAndCanBeUnregistered) {
    Start("11.5");
    EXPECT_EQ(excel_->Get("Version").ToText(), "11.5");
    UnregisterExcelServer();
    EXPECT_EQ(ErrorNumberOf([] { automation::CreateObject("Excel.Application"); }), 429);
}

TEST_F(ExcelServer, BeginsWithThreeSheetsInOldVersionsAndOneInNew) {
    Start("14.0");
    EXPECT_EQ(book_->Get("Worksheets").AsObject()->Get("Count").ToInt32(), 3);
    Start("16.0");
    EXPECT_EQ(book_->Get("Worksheets").AsObject()->Get("Count").ToInt32(), 1);
}

TEST_F(ExcelServer, ForEachGoesThroughWorkbooksAndSheets) {
    Start("14.0");
    excel_->Get("Workbooks").AsObject()->Call("Add");
    std::string seen;
    const auto books = excel_->Get("Workbooks").AsObject()->NewEnumerator();
    while (const auto book = books->Next()) {
        seen += book->AsObject()->Get("Name").ToText() + ":";
        const auto sheets = book->AsObject()->Get("Worksheets").AsObject()->NewEnumerator();
        while (const auto sheet = sheets->Next())
            seen += sheet->AsObject()->Get("Name").ToText() + " ";
    }
    EXPECT_EQ(seen, "Book1:Sheet1 Sheet2 Sheet3 Book2:Sheet1 Sheet2 Sheet3 ");
}

TEST_F(ExcelServer, DeletesSheetsButNeverTheLast) {
    Start("12.0");
    const auto sheets = book_->Get("Worksheets").AsObject();
    const auto third = sheets->Get("Item", {3}).AsObject();
    third->Call("Delete");
    EXPECT_EQ(ErrorNumberOf([&] { third->Get("Name"); }), kExcelError);
    sheets->Get("Item", {2}).AsObject()->Call("Delete");
    EXPECT_EQ(ErrorNumberOf([&] { sheet_->Call("Delete"); }), kExcelError);
    EXPECT_EQ(ErrorNumberOf([&] { sheets->Get("Item", {2}); }), 9);
    EXPECT_EQ(ErrorNumberOf([&] { sheets->Get("Item", {"none"}); }), 9);
    sheets->Call("Add");
    EXPECT_EQ(sheets->Get("Count").ToInt32(), 2);
}

TEST_F(ExcelServer, TakesValuesByCellsInBothForms) {
    Start();
    sheet_->Put("Cells", {1, 1}, "模板");
    Cell(1, 2)->Put("Value", 2.5);
    sheet_->Put("cells", {1, "C"}, 7);
    EXPECT_EQ(Cell(1, 1)->Get("Value").ToText(), "模板");
    EXPECT_EQ(Cell(1, 2)->Get("").ToDouble(), 2.5);
    EXPECT_EQ(Cell(1, 3)->Get("Value2").ToDouble(), 7);
    EXPECT_TRUE(Cell(5, 5)->Get("Value").IsEmpty());
    EXPECT_EQ(sheet_->Get("UsedRange").AsObject()->Get("Address").ToText(), "$A$1:$C$1");
}

TEST_F(ExcelServer, TurnsPlainNumbersIntoNumbersAndNothingElse) {
    Start();
    const std::vector<std::string> numbers = {"1", "0", "-12.5", "1001.01", "12345678901"};
    const std::vector<std::string> texts = {
        "0012", "1.10", "+1",  "1e5", "=1+1",     "1,000", "-0", "12345678901234567890",
        " 1",   "1 ",   "0x1", "@a",  "2024-1-1", "TRUE",  "inf"};
    for (const std::string& text : numbers) {
        sheet_->Put("Cells", {1, 1}, text);
        EXPECT_EQ(Cell(1, 1)->Get("Value").TypeName(), "Double") << text;
        EXPECT_EQ(TextOf(1, 1), text);
    }
    for (const std::string& text : texts) {
        sheet_->Put("Cells", {1, 1}, text);
        EXPECT_TRUE(Cell(1, 1)->Get("Value").IsText()) << text;
        EXPECT_EQ(TextOf(1, 1), text);
    }
}

TEST_F(ExcelServer, TakesAnApostropheAsTheMarkOfAText) {
    Start();
    sheet_->Put("Cells", {1, 1}, "'12");
    sheet_->Put("Cells", {1, 2}, "''quoted");
    EXPECT_EQ(Cell(1, 1)->Get("Value").AsText(), "12");
    EXPECT_EQ(Cell(1, 2)->Get("Value").AsText(), "'quoted");
}

TEST_F(ExcelServer, KeepsNumbersAsTextInATextColumn) {
    Start();
    sheet_->Put("Cells", {1, 4}, "head");
    sheet_->Get("Columns", {4}).AsObject()->Call("Select");
    excel_->Get("Selection").AsObject()->Put("NumberFormatLocal", "@");
    sheet_->Put("Cells", {2, 4}, "1001.10");
    sheet_->Put("Cells", {3, 4}, "1001");
    EXPECT_EQ(Cell(3, 4)->Get("Value").AsText(), "1001");
    EXPECT_EQ(Cell(1, 4)->Get("NumberFormat").ToText(), "@");
    EXPECT_EQ(Cell(99, 4)->Get("NumberFormatLocal").ToText(), "@");
    EXPECT_EQ(Cell(2, 3)->Get("NumberFormat").ToText(), "General");
}

TEST_F(ExcelServer, GivesDatesErrorsAndBooleansAsSuch) {
    Start();
    const auto date = *automation::DateTime::Parse("2024-01-02");
    sheet_->Put("Cells", {1, 1}, date);
    sheet_->Put("Cells", {1, 2}, true);
    sheet_->Put("Cells", {1, 3}, Variant(Variant::ErrorValue{static_cast<std::int32_t>(0x800A07FA)}));
    EXPECT_EQ(Cell(1, 1)->Get("Value").ToDate(), date);
    EXPECT_EQ(Cell(1, 1)->Get("Value2").ToDouble(), 45293);
    EXPECT_EQ(TextOf(1, 1), "2024-01-02");
    EXPECT_EQ(TextOf(1, 2), "TRUE");
    EXPECT_EQ(TextOf(1, 3), "#N/A");
    EXPECT_EQ(Cell(1, 3)->Get("Value").AsErrorCode(), static_cast<std::int32_t>(0x800A07FA));
}

TEST_F(ExcelServer, RefusesTooLongTextsAndPlacesOutsideOfTheSheet) {
    Start();
    const std::string longest(kMaxCellCodeUnits, 'x');
    sheet_->Put("Cells", {1, 1}, longest);
    EXPECT_EQ(ErrorNumberOf([&] { sheet_->Put("Cells", {1, 1}, longest + "x"); }), kExcelError);
    EXPECT_EQ(ErrorNumberOf([&] { sheet_->Put("Cells", {0, 1}, 1); }), kExcelError);
    EXPECT_EQ(ErrorNumberOf([&] { sheet_->Put("Cells", {1, 16385}, 1); }), kExcelError);
    sheet_->Put("Cells", {65537, 257}, 1);
    Start("11.0");
    EXPECT_EQ(ErrorNumberOf([&] { sheet_->Put("Cells", {65537, 1}, 1); }), kExcelError);
    EXPECT_EQ(ErrorNumberOf([&] { sheet_->Put("Cells", {1, 257}, 1); }), kExcelError);
}

TEST_F(ExcelServer, FormatsRangesOfTwoCells) {
    Start();
    const auto range = sheet_->Get("Range", {Variant(Cell(1, 1)), Variant(Cell(3, 17))}).AsObject();
    range->Get("Font").AsObject()->Put("Size", 10);
    range->Get("Borders").AsObject()->Put("LineStyle", 1);
    Cell(1, 1)->Get("Interior").AsObject()->Put("ColorIndex", 37);
    EXPECT_EQ(Cell(3, 17)->Get("Font").AsObject()->Get("Size").ToDouble(), 10);
    EXPECT_EQ(Cell(4, 17)->Get("Font").AsObject()->Get("Size").ToDouble(), 11);
    EXPECT_EQ(Cell(1, 1)->Get("Borders").AsObject()->Get("LineStyle").ToInt32(), 1);
    EXPECT_EQ(Cell(1, 1)->Get("Interior").AsObject()->Get("ColorIndex").ToInt32(), 37);
    EXPECT_EQ(Cell(1, 2)->Get("Interior").AsObject()->Get("ColorIndex").ToInt32(), -4142);
    EXPECT_EQ(sheet_->Get("UsedRange").AsObject()->Get("Rows").AsObject()->Get("Count").ToInt32(), 3);
    EXPECT_EQ(sheet_->Get("UsedRange").AsObject()->Get("Columns").AsObject()->Get("Count").ToInt32(), 17);
}

TEST_F(ExcelServer, FitsColumnsWithChineseCharactersCountingTwo) {
    Start();
    sheet_->Put("Cells", {1, 1}, "abcdef");
    sheet_->Put("Cells", {1, 2}, "凭证模板编号");
    sheet_->Get("Columns", {"A:B"}).AsObject()->Call("AutoFit");
    const double narrow = sheet_->Get("Columns", {1}).AsObject()->Get("ColumnWidth").ToDouble();
    const double wide = sheet_->Get("Columns", {2}).AsObject()->Get("ColumnWidth").ToDouble();
    EXPECT_EQ(wide - narrow, 6);
}

TEST_F(ExcelServer, SavesByNamedArgumentsInTheKindAskedFor) {
    Start();
    sheet_->Put("Name", "凭证模板");
    sheet_->Put("Cells", {1, 1}, "a");
    book_->Call("SaveAs",
                {Argument::Named("FileName", folder_.File("a.xlsx")), Argument::Named("AccessMode", 3)});
    EXPECT_EQ(FileBytes(folder_.File("a.xlsx")).substr(0, 2), "PK");
    book_->Call("SaveAs",
                {Argument::Named("FileName", folder_.File("a.xls")), Argument::Named("FileFormat", -4143)});
    EXPECT_EQ(FileBytes(folder_.File("a.xls")).substr(0, 4), "\xD0\xCF\x11\xE0");
    EXPECT_EQ(ErrorNumberOf([&] {
                  book_->Call("SaveAs", {Argument::Named("FileName", "x"), Argument::Named("AccessMode", 9)});
              }),
              kExcelError);
    EXPECT_EQ(ErrorNumberOf([&] { book_->Call("SaveAs", {Argument::Named("Nope", 1)}); }), 448);
    const auto again = excel_->Get("Workbooks").AsObject()->Call("Open", {folder_.File("a.xls")}).AsObject();
    EXPECT_EQ(again->Get("Worksheets", {"凭证模板"})
                  .AsObject()
                  ->Get("Cells", {1, 1})
                  .AsObject()
                  ->Get("Value")
                  .ToText(),
              "a");
}

TEST_F(ExcelServer, KnowsOnlyTheOldKindInOldVersions) {
    Start("16.0");
    book_->Call("SaveAs", {folder_.File("new.xlsx")});
    Start("11.0");
    book_->Call("SaveAs", {folder_.File("old")});
    EXPECT_EQ(FileBytes(folder_.File("old")).substr(0, 4), "\xD0\xCF\x11\xE0");
    EXPECT_EQ(ErrorNumberOf([&] { book_->Call("SaveAs", {folder_.File("a.xlsx"), 51}); }), kExcelError);
    EXPECT_EQ(
        ErrorNumberOf([&] { excel_->Get("Workbooks").AsObject()->Call("Open", {folder_.File("new.xlsx")}); }),
        kExcelError);
}

TEST_F(ExcelServer, AnswersNothingMoreFromAClosedWorkbook) {
    Start();
    const auto cell = Cell(1, 1);
    book_->Call("Close", {false});
    EXPECT_EQ(ErrorNumberOf([&] { cell->Put("Value", 1); }), kExcelError);
    EXPECT_EQ(ErrorNumberOf([&] { sheet_->Get("Name"); }), kExcelError);
    EXPECT_EQ(ErrorNumberOf([&] { book_->Get("Worksheets", {1}); }), kExcelError);
    EXPECT_EQ(excel_->Get("Workbooks").AsObject()->Get("Count").ToInt32(), 0);
    excel_->Call("Quit");
}

TEST_F(ExcelServer, NeverHandsOutARangeThatSomebodyHolds) {
    Start();
    const auto first = Cell(1, 1);
    const auto second = Cell(2, 2);
    second->Put("Value", 5);
    EXPECT_NE(first, second);
    EXPECT_TRUE(first->Get("Value").IsEmpty());
}

TEST_F(ExcelServer, RefusesBadSheetNames) {
    Start("12.0");
    for (const char* name :
         {"", "a/b", "[a]", "Sheet2", "sheet2", "'a", "0123456789012345678901234567890123"}) {
        EXPECT_EQ(ErrorNumberOf([&] { sheet_->Put("Name", name); }), kExcelError) << name;
    }
    sheet_->Put("Name", "SHEET1");
}

}  // namespace
}  // namespace vicenter::office
