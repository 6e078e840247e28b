#include <bit>
#include <cmath>
#include <limits>
#include <random>

#include "platform/office/column_letters.h"
#include "platform/office/utf.h"
#include "tests/platform/office/office_fixture.h"

namespace vicenter::office {
namespace {

INSTANTIATE_TEST_SUITE_P(Kinds, BothKinds, testing::Values(FileKind::Xls, FileKind::Xlsx),
                         [](const auto& kind) { return KindName(kind.param); });

TEST_P(BothKinds, NumbersComeBackBitForBit) {
    std::vector<double> numbers = {0.0,
                                   -0.0,
                                   0.1,
                                   0.1 + 0.2,
                                   1.0 / 3,
                                   1001,
                                   -1,
                                   100.25,
                                   1e15,
                                   123456789012345678.0,
                                   1e20,
                                   1e-7,
                                   5e-324,
                                   std::numeric_limits<double>::max(),
                                   std::numeric_limits<double>::min(),
                                   2147483648.0,
                                   4503599627370497.5};
    std::mt19937_64 random(7);
    while (numbers.size() < 3000) {
        const auto number = std::bit_cast<double>(random());
        if (std::isfinite(number)) numbers.push_back(number);
    }
    Workbook workbook;
    Sheet& sheet = workbook.AddSheet("n");
    for (std::uint32_t i = 0; i < numbers.size(); ++i)
        SetNumber(sheet, i / 10, i % 10, numbers[i]);
    const auto again = SavedAndReadAgain(workbook);
    for (std::uint32_t i = 0; i < numbers.size(); ++i) {
        const Cell* cell = again->Sheets()[0]->Find(i / 10, i % 10);
        ASSERT_NE(cell, nullptr);
        ASSERT_EQ(cell->kind, CellKind::Number);
        ASSERT_EQ(std::bit_cast<std::uint64_t>(cell->number), std::bit_cast<std::uint64_t>(numbers[i]))
            << numbers[i];
    }
}

TEST_P(BothKinds, EveryUnicodeCharacterComesBack) {
    Workbook workbook;
    Sheet& sheet = workbook.AddSheet("u");
    std::vector<std::string> texts;
    std::string text;
    for (std::uint32_t code = 0; code <= 0x10FFFF; ++code) {
        if (code >= 0xD800 && code < 0xE000) continue;
        AppendUtf8(text, code);
        if (code % 997 == 0 || code == 0x10FFFF) {
            texts.push_back(text);
            text.clear();
        }
    }
    for (std::uint32_t i = 0; i < texts.size(); ++i)
        SetText(workbook, sheet, i, 0, texts[i]);
    const auto again = SavedAndReadAgain(workbook);
    for (std::uint32_t i = 0; i < texts.size(); ++i) {
        ASSERT_EQ(TextAt(*again, *again->Sheets()[0], i, 0), texts[i]) << i;
    }
}

TEST_P(BothKinds, TextsKeepBlanksBreaksZerosAndWhatLooksLikeMarkup) {
    const std::vector<std::string> texts = {"",
                                            " ",
                                            "  a  ",
                                            "a\nb",
                                            "a\r\nb",
                                            "\t",
                                            "0012",
                                            "1001.10",
                                            "=1+1",
                                            "+1",
                                            "-1",
                                            "@a",
                                            "<b>&amp;",
                                            "_x000D_",
                                            "_x005F_x41",
                                            "]]>",
                                            "\"quote'",
                                            "_x",
                                            "借/贷(*)",
                                            "\x01\x1F_x0001_",
                                            std::string("a\0b", 3)};
    Workbook workbook;
    Sheet& sheet = workbook.AddSheet("t");
    for (std::uint32_t i = 0; i < texts.size(); ++i)
        SetText(workbook, sheet, i, i % 3, texts[i]);
    const auto again = SavedAndReadAgain(workbook);
    for (std::uint32_t i = 0; i < texts.size(); ++i) {
        const Cell* cell = again->Sheets()[0]->Find(i, i % 3);
        ASSERT_NE(cell, nullptr) << i;
        EXPECT_EQ(cell->kind, CellKind::Text) << i;
        EXPECT_EQ(CellText(*again, *cell), texts[i]) << i;
    }
}

TEST_P(BothKinds, LongTextsCrossEveryBorderOfTheFile) {
    Workbook workbook;
    Sheet& sheet = workbook.AddSheet("l");
    std::vector<std::string> texts;
    std::mt19937 random(11);
    for (std::uint32_t i = 0; i < 400; ++i) {
        std::string text = std::to_string(i);
        const bool chinese = i % 3 == 0;
        const std::size_t length = i == 0 ? 32000 : random() % 900;
        for (std::size_t c = 0; c < length; ++c)
            text += chinese && c % 2 ? "凭" : "a";
        texts.push_back(text);
        SetText(workbook, sheet, i, 0, text);
    }
    const auto again = SavedAndReadAgain(workbook);
    for (std::uint32_t i = 0; i < texts.size(); ++i) {
        ASSERT_EQ(TextAt(*again, *again->Sheets()[0], i, 0), texts[i]) << i;
    }
}

TEST_P(BothKinds, BooleansErrorsAndDatesComeBack) {
    Workbook workbook;
    Sheet& sheet = workbook.AddSheet("v");
    Cell& yes = sheet.At(0, 0);
    yes.kind = CellKind::Boolean;
    yes.boolean = true;
    Cell& wrong = sheet.At(0, 1);
    wrong.kind = CellKind::Error;
    wrong.error = CellError::NA;
    CellFormat date;
    date.numberFormat = "yyyy-mm-dd";
    SetNumber(sheet, 0, 2, 45292);
    sheet.At(0, 2).format = workbook.Formats().Intern(date);
    const auto again = SavedAndReadAgain(workbook);
    const Sheet& read = *again->Sheets()[0];
    EXPECT_EQ(TextAt(*again, read, 0, 0), "TRUE");
    EXPECT_EQ(TextAt(*again, read, 0, 1), "#N/A");
    EXPECT_EQ(TextAt(*again, read, 0, 2), "2024-01-01");
}

TEST_P(BothKinds, DatesOf1904CountFromTheirOwnDay) {
    Workbook workbook;
    workbook.dates1904 = true;
    Sheet& sheet = workbook.AddSheet("v");
    CellFormat date;
    date.numberFormat = "yyyy-mm-dd";
    SetNumber(sheet, 0, 0, 45292 - 1462);
    sheet.At(0, 0).format = workbook.Formats().Intern(date);
    const auto again = SavedAndReadAgain(workbook);
    EXPECT_TRUE(again->dates1904);
    EXPECT_EQ(TextAt(*again, *again->Sheets()[0], 0, 0), "2024-01-01");
}

TEST_P(BothKinds, SheetsKeepTheirOrderNamesAndHiddenState) {
    Workbook workbook;
    SetText(workbook, workbook.AddSheet("一"), 3, 2, "first");
    SetText(workbook, workbook.AddSheet("凭证模板"), 0, 0, "second");
    workbook.AddSheet("x & y").SetHidden(true);
    workbook.activeSheet = 1;
    const auto again = SavedAndReadAgain(workbook);
    ASSERT_EQ(again->Sheets().size(), 3u);
    EXPECT_EQ(again->Sheets()[1]->Name(), "凭证模板");
    EXPECT_EQ(again->Sheets()[2]->Name(), "x & y");
    EXPECT_TRUE(again->Sheets()[2]->IsHidden());
    EXPECT_FALSE(again->Sheets()[0]->IsHidden());
    EXPECT_EQ(again->activeSheet, 1u);
    EXPECT_EQ(TextAt(*again, *again->Sheets()[0], 3, 2), "first");
    EXPECT_EQ(TextAt(*again, *again->Sheets()[1], 0, 0), "second");
}

TEST_P(BothKinds, FormattedBlankCellsCountForTheUsedAreaOnly) {
    Workbook workbook;
    Sheet& sheet = workbook.AddSheet("b");
    CellFormat framed;
    framed.borders = true;
    SetText(workbook, sheet, 0, 0, "a");
    sheet.At(9, 4).format = workbook.Formats().Intern(framed);
    const auto again = SavedAndReadAgain(workbook);
    const Sheet& read = *again->Sheets()[0];
    EXPECT_EQ(read.UsedArea().lastRow, 9u);
    EXPECT_EQ(read.UsedArea().lastColumn, 4u);
    EXPECT_EQ(read.Find(9, 4), nullptr);
}

TEST_P(BothKinds, TheContentDecidesHowAFileIsRead) {
    Workbook workbook;
    SetText(workbook, workbook.AddSheet("s"), 0, 0, "a");
    const std::string name = folder_.File("wrong.name");
    WriteWorkbook(workbook, name, GetParam());
    FileKind kind = GetParam() == FileKind::Xls ? FileKind::Xlsx : FileKind::Xls;
    EXPECT_EQ(TextAt(*ReadWorkbook(name, &kind), *ReadWorkbook(name)->Sheets()[0], 0, 0).empty(), false);
    EXPECT_EQ(kind, GetParam());
}

TEST_P(BothKinds, AFolderThatIsNotThereIsAnErrorAndLeavesNothing) {
    Workbook workbook;
    workbook.AddSheet("s");
    const std::string name = folder_.File("none/book");
    EXPECT_THROW(WriteWorkbook(workbook, name, GetParam()), automation::Error);
    EXPECT_FALSE(std::filesystem::exists(system::PathFromUtf8(name)));
}

TEST_P(BothKinds, AFileCutShortIsAnErrorAtEveryLength) {
    Workbook workbook;
    Sheet& sheet = workbook.AddSheet("s");
    for (std::uint32_t row = 0; row < 300; ++row)
        SetText(workbook, sheet, row, 1, "text " + std::to_string(row));
    WriteWorkbook(workbook, FileName(), GetParam());
    const std::string bytes = FileBytes(FileName());
    const std::string cut = folder_.File("cut");
    for (std::size_t length = 0; length + 1024 < bytes.size(); length += 173) {
        WriteBytes(cut, bytes.substr(0, length));
        EXPECT_THROW(ReadWorkbook(cut), automation::Error) << length;
    }
}

TEST(Xls, TellsTheHeightOfRowsSoThatNoProgramCutsOffChineseCharacters) {
    const fakes::TemporaryFolder folder;
    Workbook workbook;
    workbook.AddSheet("s");
    WriteWorkbook(workbook, folder.File("h.xls"), FileKind::Xls);
    // Record 0x0225 of 4 bytes: no flags, 270 twentieths of a point.
    const std::string record("\x25\x02\x04\x00\x00\x00\x0E\x01", 8);
    EXPECT_NE(FileBytes(folder.File("h.xls")).find(record), std::string::npos);
}

TEST(Xls, RefusesMoreRowsThanItHolds) {
    fakes::TemporaryFolder folder;
    Workbook workbook;
    SetNumber(workbook.AddSheet("s"), kMaxXlsRows, 0, 1);
    EXPECT_THROW(WriteWorkbook(workbook, folder.File("a.xls"), FileKind::Xls), automation::Error);
    EXPECT_FALSE(std::filesystem::exists(system::PathFromUtf8(folder.File("a.xls"))));
}

TEST(ColumnLettersOf, CountLikeASpreadsheet) {
    EXPECT_EQ(ColumnLetters(1), "A");
    EXPECT_EQ(ColumnLetters(26), "Z");
    EXPECT_EQ(ColumnLetters(27), "AA");
    EXPECT_EQ(ColumnLetters(702), "ZZ");
    EXPECT_EQ(ColumnLetters(703), "AAA");
    EXPECT_EQ(ColumnLetters(kMaxColumns), "XFD");
}

TEST(NumberAsTypedText, ReadsBackAndAvoidsExponents) {
    EXPECT_EQ(NumberAsTyped(1001), "1001");
    EXPECT_EQ(NumberAsTyped(1001.1), "1001.1");
    EXPECT_EQ(NumberAsTyped(-0.0), "0");
    EXPECT_EQ(NumberAsTyped(1e20), "100000000000000000000");
    EXPECT_EQ(NumberAsTyped(1e300), "1e+300");
    EXPECT_EQ(NumberAsTyped(0.000001), "0.000001");
}

}  // namespace
}  // namespace vicenter::office
