// Formulas that a writer left without a result.

#include "platform/office/formula.h"

#include <gtest/gtest.h>

#include "tests/platform/office/office_fixture.h"
#include "tests/platform/office/package.h"

namespace vicenter::office {
namespace {

// The value as text; "?" when the formula is not simple. Column A holds 1, 2, 3, "x", a blank and "1.5"
// downwards.
std::string Calculated(std::string_view formula) {
    const auto cells = [](std::uint32_t row, std::uint32_t column) -> std::optional<FormulaValue> {
        if (column != 0) return std::nullopt;
        if (row < 3) return FormulaValue{FormulaValue::Kind::Number, row + 1.0, {}};
        if (row == 3) return FormulaValue{FormulaValue::Kind::Text, 0, "x"};
        if (row == 5) return FormulaValue{FormulaValue::Kind::Text, 0, "1.5"};
        return FormulaValue{};
    };
    const auto value = CalculateFormula(formula, cells);
    if (!value) return "?";
    return value->kind == FormulaValue::Kind::Text ? "'" + value->text : NumberAsTyped(value->number);
}

TEST(Formula, CountsAsASheetDoes) {
    for (const auto& [formula, value] : std::vector<std::pair<const char*, const char*>>{
             {"1+2*3", "7"},
             {"(1+2)*3", "9"},
             {" 10 - 4 - 3 ", "3"},
             {"2^3^2", "64"},
             {"-2^2", "4"},
             {"--5", "5"},
             {"50%", "0.5"},
             {"0.1+0.2", "0.3"},
             {"860*3", "2580"},
             {"1e3/8", "125"},
             {"A1+$A$2*A3", "7"},
             {"a1&\"-\"&A4", "'1-x"},
             {"\"say \"\"so\"\"\"", "'say \"so\""},
             {"A5", "0"},
             {"A6*2", "3"},
             {"SUM(A1:A6)", "6"},
             {"sum(A3:A1,10,A2)", "18"},
             {"ROUND(2.675,2)", "2.68"},
             {"ROUND(-1250,-2)", "-1300"},
             {"MAX(A1:A3)-MIN(A1:A3)", "2"},
             {"ABS(-3)", "3"},
             // A cell by itself among the arguments is a range of one: what is no number does not count.
             {"SUM(A1,A6)", "1"},
             {"SUM(A4, A2 ,$A$5)", "2"},
             {"MIN(A3,A5)", "3"},
             {"MAX(A5,-2)", "-2"},
             {"SUM(A6*2,A1)", "4"},
             {"ABS(A5)", "0"},
             {"ROUND(A6,0)", "2"},
         }) {
        EXPECT_EQ(Calculated(formula), value) << formula;
    }
}

TEST(Formula, WhatIsNotSimpleIsNotAnswered) {
    for (const char* formula : {"",
                                "1+",
                                "(1",
                                "1)",
                                "1/0",
                                "A4+1",
                                "B1",
                                "Sheet2!A1",
                                "A1!B2",
                                "VLOOKUP(1,A1:A3,1)",
                                "IFS(A1>0,1,2)",
                                "A1:A2",
                                "SUM(A1:XFD1048576)",
                                "10^400",
                                "\"open",
                                "A0",
                                "A1048577",
                                "ZZZZ1",
                                "MAX(IF(A1>2,1,A6),0)",
                                "MIN(IF(A1>2,1,A5),7)",
                                "LOG10(1)",
                                "ABS(1,2)",
                                "1 2",
                                "#REF!",
                                "TRUE"}) {
        EXPECT_EQ(Calculated(formula), "?") << formula;
    }
    EXPECT_EQ(Calculated(std::string(100'000, '(')), "?");
    EXPECT_EQ(Calculated(std::string(100'000, '-') + "1"), "1");
}

TEST(Formula, ChoosesWithoutLookingAtTheBranchThatIsNotTaken) {
    for (const auto& [formula, value] : std::vector<std::pair<const char*, const char*>>{
             {"IF(A1=1,7,VLOOKUP(1,B:C,2))", "7"},
             {"IF(A1<>1,VLOOKUP(\"),\",'a,b'!B:C,{1,2}),A2*2)", "4"},
             {"IF(A5=\"\",\"\",B9)", "'"},
             {"IF(A4=\"X\",A1,A2)", "1"},
             {"IF(A1=\"x\",1,2)", "2"},
             {"IF(A2>=2,IF(A3<3,1,5),9)+1", "6"},
             {"IF(A1,\"a\"&\"b\",0)", "'ab"},
             {"IF(A1>1,5)", "?"},
             {"IF(A4>1,5,6)", "?"},
             {"IF(A1=1,NOW(),1)", "?"},
             {"IF(A1=1,1", "?"},
             {"IF(A1=1)", "?"}}) {
        EXPECT_EQ(Calculated(formula), value) << formula;
    }
}

class FormulaCellsOfAFile : public testing::Test {
  protected:
    std::unique_ptr<Workbook> Read(const std::string& rows, const std::string& calculation = "") const {
        Package package;
        package.sheet = "<worksheet><sheetData>" + rows + "</sheetData></worksheet>";
        package.workbook = "<workbook><sheets><sheet name='s' sheetId='1' r:id='r1'/></sheets>" +
                           calculation + "</workbook>";
        package.Save(folder_.File("f"));
        return ReadWorkbook(folder_.File("f"));
    }
    static std::string At(const Workbook& workbook, std::uint32_t row, std::uint32_t column) {
        return TextAt(workbook, *workbook.Sheets()[0], row, column);
    }

  private:
    fakes::TemporaryFolder folder_;
};

TEST_F(FormulaCellsOfAFile, WithoutAResultAreCalculatedInWhateverOrderTheyStand) {
    const auto book = Read(
        "<row r='1'><c r='A1'><f>A2*2</f></c><c r='B1'><f>VLOOKUP(1,A1:A2,1)</f></c><c "
        "r='C1'><f>B1+1</f><v></v></c></row>"
        "<row r='2'><c r='A2'><f>SUM(A3:A4)</f></c><c r='B2' t='str'><f>\"a\"&amp;\"b\"</f></c></row>"
        "<row r='3'><c r='A3'><v>20</v></c></row><row r='4'><c r='A4'><v>1.5</v></c></row>");
    EXPECT_EQ(At(*book, 0, 0), "43");
    EXPECT_EQ(At(*book, 1, 0), "21.5");
    EXPECT_EQ(At(*book, 0, 1), "#CALC!");
    EXPECT_EQ(At(*book, 0, 2), "#CALC!");
}

TEST_F(FormulaCellsOfAFile, ThatWaitForEachOtherHaveNoResult) {
    const auto book = Read("<row r='1'><c r='A1'><f>B1+1</f></c><c r='B1'><f>A1+1</f></c></row>");
    EXPECT_EQ(At(*book, 0, 0), "#CALC!");
    EXPECT_EQ(At(*book, 0, 1), "#CALC!");
}

TEST_F(FormulaCellsOfAFile, InALongChainAllHaveAResult) {
    std::string rows;
    for (int row = 1; row < 2000; ++row) {
        rows += "<row r='" + std::to_string(row) + "'><c r='A" + std::to_string(row) + "'><f>A" +
                std::to_string(row + 1) + "+1</f></c></row>";
    }
    rows += "<row r='2000'><c r='A2000'><v>0</v></c></row>";
    const auto book = Read(rows);
    EXPECT_EQ(At(*book, 1998, 0), "1");
    EXPECT_EQ(At(*book, 0, 0), "1999");
}

TEST_F(FormulaCellsOfAFile, KeepTheResultOfAWriterThatCalculated) {
    const auto book =
        Read("<row r='1'><c r='A1'><f>1+1</f><v>5</v></c><c r='B1'><f>RAND()</f><v>0</v></c></row>");
    EXPECT_EQ(At(*book, 0, 0), "5");
    EXPECT_EQ(At(*book, 0, 1), "0");
}

// Writers that cannot calculate put a 0 into every formula and ask for calculation on loading.
TEST_F(FormulaCellsOfAFile, OfAWriterThatAsksForCalculationAreCalculated) {
    const auto book = Read(
        "<row r='1'><c r='A1'><f>1+1</f><v>0</v></c><c r='B1'><f>PMT(1,2,3)</f><v>0</v></c>"
        "<c r='C1'><f>PMT(1,2,3)</f><v>7.5</v></c><c r='D1'><v>0</v></c></row>",
        "<calcPr calcId='124519' fullCalcOnLoad='1'/>");
    EXPECT_EQ(At(*book, 0, 0), "2");
    EXPECT_EQ(At(*book, 0, 1), "#CALC!");
    EXPECT_EQ(At(*book, 0, 2), "7.5");
    EXPECT_EQ(At(*book, 0, 3), "0");
}

}  // namespace
}  // namespace vicenter::office
