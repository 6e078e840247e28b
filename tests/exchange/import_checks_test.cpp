#include "exchange/import_checks.h"

#include <gtest/gtest.h>

#include "exchange/cell_reading.h"
#include "store/column_room.h"

namespace vicenter::exchange {
namespace {

TEST(ColumnLetterOf, CountsLikeASpreadsheet) {
    EXPECT_EQ(ColumnLetter(1), "A");
    EXPECT_EQ(ColumnLetter(26), "Z");
    EXPECT_EQ(ColumnLetter(27), "AA");
    EXPECT_EQ(ColumnLetter(52), "AZ");
    EXPECT_EQ(ColumnLetter(703), "AAA");
    EXPECT_EQ(ColumnLetter(0), "");
}

TEST(MapImportHeaderTo, AppendsTheFieldOfEveryHeader) {
    std::string seen = "|";
    std::string fields;
    std::string errors;
    std::int32_t number = 0;
    for (const TemplateColumn& column : kColumns) {
        EXPECT_TRUE(MapImportHeader(column.header, errors, seen, ++number, fields));
        seen.append(column.header).append("|");
    }
    EXPECT_EQ(fields,
              "FNo,FExp,FDC,FAccountNumber,FAcctountName,FFileCount,FSettleName,FSettleNumber,FItemsInfo,"
              "FCurrencyName,FRate,FAmountFor,FUnitName,FQty,FPrice,FAmount,FRemark");
    EXPECT_EQ(errors, "");
}

TEST(MapImportHeaderTo, TellsUnknownAndRepeatedHeadersByTheirColumn) {
    std::string fields;
    std::string errors;
    EXPECT_FALSE(MapImportHeader("名称", errors, "|", 2, fields));
    EXPECT_FALSE(MapImportHeader("", errors, "|", 28, fields));
    EXPECT_FALSE(MapImportHeader("备注", errors, "|摘要(*)|备注|", 3, fields));
    EXPECT_EQ(errors, "第B列[名称]列名错误！\r\n第AB列[]列名错误！\r\n第C列[备注]存在同名列！\r\n");
    EXPECT_EQ(fields, "");
}

TEST(MapImportHeaderTo, TakesFullWidthHeadersForTheSame) {
    std::string fields;
    std::string errors;
    EXPECT_TRUE(MapImportHeader("模板编号（＊）", errors, "|", 1, fields));
    EXPECT_TRUE(MapImportHeader("借／贷(*)", errors, "|", 2, fields));
    EXPECT_EQ(fields, "FNo,FDC");
    EXPECT_FALSE(MapImportHeader("借/贷(*)", errors, "|借／贷(*)|", 3, fields));
    EXPECT_EQ(errors, "第C列[借/贷(*)]存在同名列！\r\n");
}

TEST(CheckRequiredColumnsOf, ListsWhatIsMissing) {
    std::string missing;
    EXPECT_TRUE(CheckRequiredColumns("|模板编号(*)|摘要(*)|借/贷(*)|科目代码(*)|科目名称(*)|", missing));
    EXPECT_EQ(missing, "");
    EXPECT_TRUE(CheckRequiredColumns("|模板编号（＊）|摘要(*)|借／贷(*)|科目代码(*)|科目名称(*)|", missing));
    EXPECT_FALSE(CheckRequiredColumns("|科目代码(*)|摘要|", missing));
    EXPECT_EQ(missing, "模板编号(*),摘要(*),借/贷(*),科目名称(*)");
}

TEST(WhyNotStoredOf, TellsWhatNoColumnHasRoomForAndNothingElse) {
    int numbers = 0;
    for (const TemplateColumn& column : kColumns) {
        if (column.type != CellType::Number) continue;
        ++numbers;
        const store::ColumnSpec& spec = store::Column(column.gridColumn);
        for (const char* text : {"999999999", "-999999999", "999999999.99999999", "0.000000000001", "1e8"}) {
            EXPECT_EQ(WhyNotStored(column, text), "") << column.header << " " << text;
            EXPECT_EQ(store::WhyNoRoom(spec, CanonicalNumber(*ReadTypedNumber(text))), "") << column.header;
        }
        EXPECT_NE(WhyNotStored(column, "1e28"), "") << column.header;
        EXPECT_NE(WhyNotStored(column, "-1e28"), "") << column.header;
    }
    EXPECT_GE(numbers, 5);
}

TEST(CheckImportCellOf, AcceptsByTypeAndRequirement) {
    EXPECT_TRUE(CheckImportCell("", CellType::Text, false));
    EXPECT_FALSE(CheckImportCell("", CellType::Text, true));
    EXPECT_TRUE(CheckImportCell("x", CellType::Text, true));
    EXPECT_TRUE(CheckImportCell("借", CellType::DebitCredit, true));
    EXPECT_TRUE(CheckImportCell("贷", CellType::DebitCredit, true));
    EXPECT_FALSE(CheckImportCell("借方", CellType::DebitCredit, true));
    for (const char* text : {" 借", "借　", "贷 "})
        EXPECT_TRUE(CheckImportCell(text, CellType::DebitCredit, true)) << text;
    EXPECT_FALSE(CheckImportCell("2,5", CellType::Number, false));
    EXPECT_FALSE(CheckImportCell("", CellType::DebitCredit, true));
    EXPECT_TRUE(CheckImportCell("32767", CellType::WholeNumber, true));
    EXPECT_TRUE(CheckImportCell("-32768", CellType::WholeNumber, true));
    EXPECT_FALSE(CheckImportCell("32768", CellType::WholeNumber, true));
    EXPECT_FALSE(CheckImportCell("x", CellType::WholeNumber, false));
    EXPECT_TRUE(CheckImportCell("", CellType::WholeNumber, false));
    EXPECT_TRUE(CheckImportCell("1.5", CellType::WholeNumber, true));
    EXPECT_TRUE(CheckImportCell("1,234.5", CellType::Number, false));
    EXPECT_FALSE(CheckImportCell("2024-01-01", CellType::Number, false));
    EXPECT_FALSE(CheckImportCell("#N/A", CellType::Number, false));
}

}  // namespace
}  // namespace vicenter::exchange
