// Formulas of ".xls" files: the same answers as for ".xlsx".

#include "platform/office/xls_formula.h"

#include "tests/platform/office/office_fixture.h"
#include "tests/platform/office/records.h"

namespace vicenter::office {
namespace {

using namespace std::string_literals;

std::string Int(std::uint16_t value) {
    return "\x1E"s + U16(value);
}
std::string CellToken(std::uint16_t row, std::uint16_t column) {
    return "\x44"s + U16(row) + U16(column | 0xC000u);
}
std::string Call(std::uint8_t count, std::uint16_t function) {
    return "\x42"s + static_cast<char>(count) + U16(function);
}
std::string TextToken(const std::string& text) {
    return "\x17"s + static_cast<char>(text.size()) + "\0"s + text;
}
const std::string kUnknownCall = Int(1) + Int(2) + Call(2, 102);

TEST(XlsFormula, IsWrittenOutAsItWouldBeTyped) {
    const std::string area = "\x25"s + U16(1) + U16(9) + U16(0xC001) + U16(0xC002);
    const std::vector<std::pair<std::string, std::string>> formulas = {
        {Int(860) + Int(3) + "\x05"s, "860*3"},
        {Int(1) + Int(2) + "\x03"s + Int(3) + "\x05"s, "(1+2)*3"},
        {Int(1) + Int(2) + "\x03"s + "\x15"s + Int(3) + "\x05"s, "(1+2)*3"},
        {Int(1) + Int(2) + Int(3) + "\x04"s + "\x04"s, "1-(2-3)"},
        {Int(1) + Int(2) + "\x04"s + Int(3) + "\x04"s, "1-2-3"},
        {Int(2) + "\x13"s + Int(2) + "\x07"s, "-2^2"},
        {"\x1F"s + F64(0.5) + "\x14"s, "0.5%"},
        {CellToken(2, 26) + "\x19\x40"s + U16(0) + "\x12"s, "+AA3"},
        {area + "\x19\x10"s + U16(0), "SUM(B2:C10)"},
        {area + Int(1) + Call(2, 4), "SUM(B2:C10,1)"},
        {Int(10) + Int(1) + "\x41"s + U16(27), "ROUND(10,1)"},
        {TextToken("a\"b") + "\x17\x01\x01"s + U16(0x6587) + "\x08"s, "\"a\"\"b\"&\"文\""},
        {CellToken(0, 0) + TextToken("") + "\x0B"s + TextToken("") + kUnknownCall + Call(3, 1),
         "IF(A1=\"\",\"\",UNKNOWN(1,2))"},
        {"\x3A"s + U16(0) + U16(0) + U16(0), "UNKNOWN"},
    };
    for (const auto& [tokens, text] : formulas)
        EXPECT_EQ(XlsFormulaText(tokens), text);
}

TEST(XlsFormula, ThatCannotBeToldIsNone) {
    for (const std::string& tokens :
         {""s, "\x03"s, Int(1) + Int(2), "\x1E"s, "\x17\x05\x00xy"s, "\x01"s + U16(0) + U16(0), "\x7F"s,
          "\x19\x04"s + U16(0xFFFF), Int(1) + "\x41"s + U16(9999)}) {
        EXPECT_EQ(XlsFormulaText(tokens), std::nullopt);
    }
    // Every cut of a formula and every changed byte is read to its end.
    const std::string whole =
        CellToken(0, 0) + TextToken("xyz") + "\x0B"s + Int(1) + kUnknownCall + Call(3, 1);
    for (std::size_t at = 0; at < whole.size(); ++at) {
        XlsFormulaText(whole.substr(0, at));
        for (int byte = 0; byte < 256; ++byte) {
            std::string changed = whole;
            changed[at] = static_cast<char>(byte);
            XlsFormulaText(changed);
        }
    }
}

class XlsFormulaCells : public testing::Test {
  protected:
    void Read(const XlsParts& parts) {
        parts.Save(folder_.File("f.xls"));
        book_ = ReadWorkbook(folder_.File("f.xls"));
    }
    std::string At(std::uint32_t row, std::uint32_t column) const {
        return TextAt(*book_, *book_->Sheets()[0], row, column);
    }
    fakes::TemporaryFolder folder_;
    std::unique_ptr<Workbook> book_;
};

// One writer says of all its formulas that their result is an empty text.
TEST_F(XlsFormulaCells, OfAWriterThatCalculatesNothingAreCalculatedOrTold) {
    XlsParts parts;
    parts.Number(0, 0, 20);
    parts.Formula(0, 1, kNoResult, 0, CellToken(0, 0) + Int(3) + "\x05"s);
    parts.Formula(0, 2, kNoResult, 0, CellToken(0, 1) + Int(1) + "\x03"s);
    parts.Formula(0, 3, kNoResult, 0, kUnknownCall);
    parts.Formula(0, 4, kNoResult, 0, TextToken("a") + TextToken("b") + "\x08"s);
    parts.Formula(0, 5, kNoResult, 0, "\x01"s + U16(0) + U16(0));
    Read(parts);
    EXPECT_EQ(At(0, 1), "60");
    EXPECT_EQ(At(0, 2), "61");
    EXPECT_EQ(At(0, 3), "#CALC!");
    EXPECT_EQ(At(0, 4), "ab");
    EXPECT_EQ(At(0, 5), "#CALC!");
}

// Others put a 0 and the wish to be calculated on loading.
TEST_F(XlsFormulaCells, OfAWriterThatAsksForCalculationAreCalculatedOrTold) {
    XlsParts parts;
    parts.Formula(0, 0, F64(0), 2, Int(2) + Int(3) + "\x05"s);
    parts.Formula(0, 1, F64(0), 3, kUnknownCall);
    parts.Formula(0, 2, F64(7.5), 3, kUnknownCall);
    parts.Formula(0, 3, F64(0), 1, kUnknownCall);
    Read(parts);
    EXPECT_EQ(At(0, 0), "6");
    EXPECT_EQ(At(0, 1), "#CALC!");
    EXPECT_EQ(At(0, 2), "7.5");
    EXPECT_EQ(At(0, 3), "0");
}

TEST_F(XlsFormulaCells, KeepAnEmptyTextThatWasCalculated) {
    XlsParts parts;
    parts.Formula(0, 0, kNoResult, 0, kUnknownCall);
    parts.Formula(0, 1, F64(5), 0, Int(2) + Int(3) + "\x03"s);
    Read(parts);
    EXPECT_EQ(At(0, 0), "");
    // Where all are empty, as in a form that is not filled in, calculation finds the same.
    XlsParts form;
    form.Formula(0, 0, kNoResult, 0,
                 CellToken(5, 0) + TextToken("") + "\x0B"s + TextToken("") + kUnknownCall + Call(3, 1));
    Read(form);
    EXPECT_EQ(At(0, 0), "");
}

TEST_F(XlsFormulaCells, ErrorsTimesAndLongNumbersAreWhatTheyAreInTheOtherKind) {
    for (const bool dates1904 : {false, true}) {
        XlsParts parts;
        parts.dates1904 = dates1904;
        parts.Error(0, 0, 0x2A);
        parts.Formula(0, 1, kErrorResult, 0, kUnknownCall);
        parts.Time(0, 2, 0.4309027777777778);
        parts.Time(0, 3, 0);
        parts.Number(0, 4, 6222021234567890123.0);
        Read(parts);
        EXPECT_EQ(At(0, 0), "#N/A");
        EXPECT_EQ(At(0, 1), "#N/A");
        EXPECT_EQ(At(0, 2), "10:20:30");
        EXPECT_EQ(At(0, 3), "00:00:00");
        EXPECT_EQ(At(0, 4), "6222021234567889920");
    }
}

}  // namespace
}  // namespace vicenter::office
