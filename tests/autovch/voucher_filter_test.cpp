#include "autovch/voucher_filter.h"

#include "tests/autovch/autovch_fixture.h"

namespace vicenter::autovch {
namespace {

TEST(FilterProblem, NamesTheFirstThingMissing) {
    VoucherFilter filter = MarchFilter();
    EXPECT_EQ(FilterProblem(filter), "");
    filter.year = " ";
    filter.period = "";
    EXPECT_EQ(FilterProblem(filter), "请设置凭证过滤年度！");
    filter.year = "2024";
    EXPECT_EQ(FilterProblem(filter), "请设置凭证过滤期间！");
}

TEST(FilterProblem, TheRangeMustBeAPairOfNumbersInOrder) {
    constexpr const char* kRange = "请正确设置凭证号范围！";
    for (const auto& [from, to] :
         {std::pair{"5", "1"}, {"", "1"}, {"1", ""}, {"a", "5"}, {"1", "5.0"}, {"-1", "5"}}) {
        VoucherFilter filter = MarchFilter();
        filter.from = from;
        filter.to = to;
        EXPECT_EQ(FilterProblem(filter), kRange) << from << " to " << to;
    }
    VoucherFilter filter = MarchFilter();
    filter.year = "2024a";
    EXPECT_EQ(FilterProblem(filter), kRange);
    filter = MarchFilter();
    filter.from = "10";
    filter.to = "9";  // numbers, not texts
    EXPECT_EQ(FilterProblem(filter), kRange);
    filter.to = "10";
    EXPECT_EQ(FilterProblem(filter), "");
}

TEST_F(AutoVchTest, LedgerSettingsComeFromTheProfile) {
    const auto profile = fakes::RegisterScripted("VelaEBSBase.SystemProfile");
    profile->On("GetProfile", [](automation::Arguments& a) {
        const std::string key = a[2].Value().ToText();
        return key == "PeriodCount" ? Variant("12") : key == "CurrentYear" ? Variant(2024) : Variant(3);
    });
    const LedgerPeriod ledger = ReadLedgerPeriod();
    EXPECT_EQ(ledger.periodCount, 12);
    EXPECT_EQ(ledger.currentYear, 2024);
    EXPECT_EQ(ledger.currentPeriod, 3);
    EXPECT_EQ(profile->Calls(), (Texts{"GetProfile(UserID=16394;, GL, PeriodCount)",
                                       "GetProfile(UserID=16394;, GL, CurrentYear)",
                                       "GetProfile(UserID=16394;, GL, CurrentPeriod)"}));
}

TEST_F(AutoVchTest, UnknownLedgerSettingsAreZero) {
    const LedgerPeriod ledger = ReadLedgerPeriod();
    EXPECT_EQ(ledger.periodCount, 0);
    EXPECT_EQ(ledger.currentYear, 0);
}

TEST_F(AutoVchTest, GroupsAreReadInTheirOrder) {
    set_.Answer("t_VoucherGroup", Rows({"FGroupID", "FName"}, {{1, "记"}, {2, "收"}}));
    EXPECT_EQ(ReadVoucherGroups(), (Texts{"记", "收"}));
    EXPECT_EQ(set_.LastStatement(), "select FGroupID,FName from t_VoucherGroup order by FGroupID ");
    set_.Fail("t_VoucherGroup", "down");
    EXPECT_TRUE(ReadVoucherGroups().empty());
}

TEST_F(AutoVchTest, VoucherNumbersOfAPeriod) {
    set_.Answer("FMinNum", Rows({"FMinNum", "FMaxNum"}, {{2, 31}}));
    const VoucherNumbers numbers = ReadVoucherNumbers("2024", "3");
    EXPECT_EQ(numbers.lowest, "2");
    EXPECT_EQ(numbers.highest, "31");
    EXPECT_EQ(set_.LastStatement(),
              "select isnull(MIN(FNumber),0) as FMinNum,isnull(MAX(FNumber),0) as FMaxNum from t_Voucher "
              "where FYear = "
              "2024 and FPeriod = 3");
}

TEST_F(AutoVchTest, WithoutAPeriodNothingIsAsked) {
    EXPECT_EQ(ReadVoucherNumbers("", "3").highest, "0");
    EXPECT_EQ(CountSelected({}).lines, 0);
    EXPECT_TRUE(set_.Statements().empty());
}

TEST_F(AutoVchTest, TheSelectionIsCounted) {
    set_.Answer("FLines", Rows({"FNumbers", "FVouchers", "FLines", "FMissing"}, {{4, 6, 25, 0}}));
    const store::VoucherCount count = CountSelected(MarchFilter());
    EXPECT_EQ(count.numbers, 4);
    EXPECT_EQ(count.vouchers, 6);
    EXPECT_EQ(count.lines, 25);
}

}  // namespace
}  // namespace vicenter::autovch
