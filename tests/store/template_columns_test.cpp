#include "store/template_columns.h"

#include <map>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vicenter::store {

namespace {

struct Expected {
    const char* field;
    const char* header;
    CellKind kind;
    int maxCharacters;
    int decimals;
    bool rightAligned;
    bool locked;
    int width;
    bool hidden;
};

// Written down once more, by hand, so that a slip in the table shows.
constexpr Expected kExpected[kColumnCount] = {
    {"FNo", "模板编号(*)", CellKind::TemplateNumber, 10, 0, false, false, 1170, false},
    {"FExp", "摘要(*)", CellKind::Text, 255, 0, false, false, 2820, false},
    {"FDC", "借/贷(*)", CellKind::Direction, 150, 0, false, false, 1150, false},
    {"FAccountID", "科目内码", CellKind::Id, 0, 0, false, true, 800, true},
    {"FAccountNumber", "科目代码(*)", CellKind::Text, 80, 0, false, false, 1455, false},
    {"FAcctountName", "科目名称(*)", CellKind::Text, 160, 0, false, false, 1455, false},
    {"FFileCount", "附件数", CellKind::Whole, 0, 0, true, false, 850, false},
    {"FSettleID", "结算方式内码", CellKind::Id, 0, 0, false, true, 800, true},
    {"FSettleName", "结算方式", CellKind::Text, 80, 0, false, false, 1400, true},
    {"FSettleNumber", "结算号", CellKind::Text, 100, 0, false, false, 1250, true},
    {"FItemsInfo", "核算项目", CellKind::Text, 255, 0, false, false, 1800, true},
    {"FCurrencyID", "币别内码", CellKind::Id, 0, 0, false, true, 800, true},
    {"FCurrencyName", "币别", CellKind::Text, 30, 0, false, false, 1000, true},
    {"FRate", "汇率", CellKind::Decimal, 0, 10, true, false, 1600, true},
    {"FAmountFor", "原币金额", CellKind::Decimal, 0, 4, true, false, 1700, true},
    {"FUnitID", "计量单位内码", CellKind::Id, 0, 0, false, true, 800, true},
    {"FUnitName", "计量单位", CellKind::Text, 80, 0, false, false, 1250, true},
    {"FQty", "数量", CellKind::Decimal, 0, 4, true, false, 1600, true},
    {"FPrice", "单价", CellKind::Decimal, 0, 10, true, false, 1700, true},
    {"FAmount", "金额", CellKind::Decimal, 0, 4, true, false, 1700, true},
    {"FRemark", "备注", CellKind::Text, 80, 0, false, false, 4005, false},
};

}  // namespace

TEST(Columns, EveryColumnHasItsFieldHeaderKindLimitsAlignmentLockAndDesign) {
    for (int c = 1; c <= kColumnCount; ++c) {
        SCOPED_TRACE("column " + std::to_string(c));
        const ColumnSpec& spec = Column(c);
        const Expected& expected = kExpected[c - 1];
        EXPECT_EQ(spec.column, c);
        EXPECT_EQ(spec.field, expected.field);
        EXPECT_EQ(spec.header, expected.header);
        EXPECT_EQ(spec.kind, expected.kind);
        EXPECT_EQ(spec.maxCharacters, expected.maxCharacters);
        EXPECT_EQ(spec.decimals, expected.decimals);
        EXPECT_EQ(spec.rightAligned, expected.rightAligned);
        EXPECT_EQ(spec.locked, expected.locked);
        EXPECT_EQ(spec.designedWidth, expected.width);
        EXPECT_EQ(spec.designedHidden, expected.hidden);
    }
}

TEST(Columns, OnlyTheFourIdColumnsAreLocked) {
    std::set<int> locked;
    for (const ColumnSpec& spec : Columns()) {
        if (spec.locked) locked.insert(spec.column);
    }
    EXPECT_THAT(locked, testing::ElementsAre(4, 8, 12, 16));
}

TEST(Columns, TheDesignShowsOnlyColumns1235And6And7And21) {
    std::set<int> shown;
    for (const ColumnSpec& spec : Columns()) {
        if (!spec.designedHidden) shown.insert(spec.column);
    }
    EXPECT_THAT(shown, testing::ElementsAre(1, 2, 3, 5, 6, 7, 21));
}

TEST(Columns, NumbersReachFromZeroToNineNines) {
    EXPECT_EQ(kLargestNumber, 999999999);
    EXPECT_EQ(kLargestTemplateNumber, 2147483647);
}

TEST(Columns, HeadersDiffer) {
    std::set<std::string_view> headers;
    for (const ColumnSpec& spec : Columns())
        headers.insert(spec.header);
    EXPECT_EQ(headers.size(), static_cast<std::size_t>(kColumnCount));
}

TEST(Columns, TheWorkbookHasSeventeenInItsOwnOrderAndFourMustBeFilled) {
    std::vector<int> order;
    std::vector<int> required;
    for (const ColumnSpec* spec : WorkbookColumns()) {
        ASSERT_NE(spec, nullptr);
        order.push_back(spec->column);
        if (spec->requiredInWorkbook) required.push_back(spec->column);
        EXPECT_EQ(spec->workbookPlace, static_cast<int>(order.size()));
    }
    EXPECT_THAT(order, testing::ElementsAre(1, 2, 3, 5, 6, 7, 9, 10, 11, 13, 14, 15, 17, 18, 19, 20, 21));
    EXPECT_THAT(required, testing::ElementsAre(1, 3, 5, 6));
}

TEST(Columns, EveryIdColumnBelongsToTheNamesRightOfIt) {
    std::set<int> ids;
    for (const ColumnSpec& spec : Columns()) {
        if (spec.idColumn == 0) continue;
        EXPECT_EQ(spec.idColumn, spec.column - 1);
        EXPECT_EQ(Column(spec.idColumn).kind, CellKind::Id);
        EXPECT_FALSE(spec.idField.empty());
        ids.insert(spec.idColumn);
    }
    EXPECT_THAT(ids, testing::ElementsAre(4, 8, 12, 16));
}

TEST(Columns, WhatACodeIsLookedUpInAndWhichCheckSpeaksAboutIt) {
    std::map<int, LookUp> lookUps;
    std::map<int, CellCheck> checks;
    for (int c = -1; c <= kColumnCount + 1; ++c) {
        if (LookUpOf(c) != LookUp::None) lookUps[c] = LookUpOf(c);
        if (CheckOf(c) != CellCheck::None) checks[c] = CheckOf(c);
    }
    EXPECT_EQ(lookUps, (std::map<int, LookUp>{{2, LookUp::Explanation},
                                              {5, LookUp::Account},
                                              {9, LookUp::Settlement},
                                              {11, LookUp::Items},
                                              {13, LookUp::Currency},
                                              {17, LookUp::Unit}}));
    EXPECT_EQ(checks, (std::map<int, CellCheck>{{5, CellCheck::Account},
                                                {6, CellCheck::Account},
                                                {9, CellCheck::Settlement},
                                                {11, CellCheck::Items},
                                                {13, CellCheck::Currency},
                                                {17, CellCheck::Unit}}));
    for (const auto& [column, check] : checks)
        EXPECT_EQ(SubjectOf(check), column == 6 ? 5 : column);
}

TEST(Columns, VouchersGiveAllThatMayBeLeftOutButTheRemark) {
    std::vector<int> optional;
    for (const ColumnSpec& spec : Columns()) {
        if (spec.optional) optional.push_back(spec.column);
    }
    EXPECT_THAT(optional, testing::ElementsAre(7, 9, 10, 11, 13, 14, 15, 17, 18, 19, 20, 21));
    EXPECT_THAT(VoucherColumns(), testing::ElementsAre(7, 9, 10, 11, 13, 14, 15, 17, 18, 19, 20));
}

}  // namespace vicenter::store
