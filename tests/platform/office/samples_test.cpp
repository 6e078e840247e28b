#include "tests/paths/source_folder.h"
#include "tests/platform/office/office_fixture.h"

namespace vicenter::office {
namespace {

std::string Sample(const std::string& name) {
    return (testing_paths::SourceFolder() / "tests/data/workbooks" / name).string();
}

// The same sheet with what people do to it: hidden, merged, filtered, frozen and commented parts.
const std::vector<std::string> kFeatureSamples = {"openpyxl.xlsx",
                                                  "exceljs.xlsx",
                                                  "sheetjs-features.xls",
                                                  "sheetjs-features.xlsx",
                                                  "gnumeric-features.xls",
                                                  "gnumeric-features.xlsx",
                                                  "libreoffice-features.xls",
                                                  "libreoffice-features.xlsx"};

TEST(Samples, TemplateSheetsByEveryProgramReadAlike) {
    std::vector<std::string> names = {"xlsxwriter-inline.xlsx", "xlwt.xls",        "sheetjs.xls",
                                      "sheetjs.xlsx",           "libreoffice.xls", "libreoffice.xlsx",
                                      "gnumeric.xls",           "gnumeric.xlsx"};
    names.insert(names.end(), kFeatureSamples.begin(), kFeatureSamples.end());
    for (const std::string& name : names) {
        const auto workbook = ReadWorkbook(Sample(name));
        const Sheet* sheet = workbook->FindSheet("凭证模板");
        ASSERT_NE(sheet, nullptr) << name;
        const std::vector<std::string> second = {"1",    "提取现金", "借",       "1001.10", "现金",  "2",
                                                 "支票", "0012",     "01.01,02", "人民币",  "1",     "12.5",
                                                 "公斤", "3",        "0.1",      "1234.56", "备注𠮷"};
        for (std::uint32_t column = 0; column < second.size(); ++column) {
            EXPECT_EQ(TextAt(*workbook, *sheet, 1, column), second[column]) << name << " " << column;
        }
        EXPECT_EQ(TextAt(*workbook, *sheet, 2, 1), "(none)") << name;
        EXPECT_EQ(TextAt(*workbook, *sheet, 2, 3), "1002") << name;
        EXPECT_EQ(TextAt(*workbook, *sheet, 2, 16), "=1+1") << name;
        EXPECT_EQ(sheet->Find(1, 7)->kind, CellKind::Text) << name;
    }
}

TEST(Samples, DatesCountedFrom1904AreTheSameDays) {
    for (const char* name : {"openpyxl-1904.xlsx", "libreoffice-1904.xls", "libreoffice-1904.xlsx",
                             "gnumeric-1904.xls", "gnumeric-1904.xlsx"}) {
        const auto workbook = ReadWorkbook(Sample(name));
        const Sheet& sheet = *workbook->Sheets()[0];
        EXPECT_EQ(TextAt(*workbook, sheet, 0, 0), "2024-01-02") << name;
        EXPECT_EQ(TextAt(*workbook, sheet, 0, 1), "2024-01-02 03:04:05") << name;
        EXPECT_EQ(TextAt(*workbook, sheet, 0, 2), "#N/A") << name;
        EXPECT_EQ(TextAt(*workbook, sheet, 0, 3), "TRUE") << name;
    }
    for (const char* name : {"exceljs.xlsx", "sheetjs-features.xls", "sheetjs-features.xlsx"}) {
        const auto workbook = ReadWorkbook(Sample(name));
        const Sheet* sheet = workbook->FindSheet("日期");
        ASSERT_NE(sheet, nullptr) << name;
        EXPECT_EQ(TextAt(*workbook, *sheet, 0, 0), "2024-01-02") << name;
    }
}

TEST(Samples, RichTextsFormulaResultsAndFormatsAreRead) {
    const auto workbook = ReadWorkbook(Sample("xlsxwriter-rich.xlsx"));
    const Sheet& sheet = *workbook->Sheets()[0];
    const std::vector<std::string> texts = {"凭证模板 ",  "文本", "0.3333333333333333", "TRUE", "#DIV/0!",
                                            "2024-01-02", "0012"};
    for (std::uint32_t column = 0; column < texts.size(); ++column) {
        EXPECT_EQ(TextAt(*workbook, sheet, 0, column), texts[column]);
    }
    EXPECT_EQ(TextAt(*workbook, sheet, kMaxRows - 1, kMaxColumns - 1), "last");
    const auto old = ReadWorkbook(Sample("xlwt.xls"));
    EXPECT_EQ(TextAt(*old, *old->Sheets()[0], 0, 0), "2024-01-02");
    EXPECT_EQ(TextAt(*old, *old->Sheets()[0], 0, 2), "凭证模板");
}

TEST(Samples, HiddenSheetsAndColumnsAreKnownAsSuch) {
    for (const std::string& name : kFeatureSamples) {
        const auto workbook = ReadWorkbook(Sample(name));
        ASSERT_EQ(workbook->Sheets().size(), 3u) << name;
        const Sheet* hidden = workbook->FindSheet("隐藏");
        const Sheet* sheet = workbook->FindSheet("凭证模板");
        ASSERT_NE(hidden, nullptr) << name;
        ASSERT_NE(sheet, nullptr) << name;
        EXPECT_FALSE(sheet->IsHidden()) << name;
        // Gnumeric writes no hidden sheets into .xlsx files.
        const bool sheetsLost = name == "gnumeric-features.xlsx";
        EXPECT_TRUE(sheet->Columns().count(7) != 0 && sheet->Columns().at(7).hidden) << name;
        EXPECT_EQ(hidden->IsHidden(), !sheetsLost) << name;
        EXPECT_FALSE(sheet->Columns().count(6) != 0 && sheet->Columns().at(6).hidden) << name;
    }
    EXPECT_EQ(ReadWorkbook(Sample("openpyxl.xlsx"))->FindSheet("凭证模板")->UsedArea().lastRow, 6u);
}

}  // namespace
}  // namespace vicenter::office
