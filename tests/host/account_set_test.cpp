#include "host/account_set.h"

#include <chrono>

#include <gtest/gtest.h>

#include "automation/error.h"
#include "tests/host/demo_set.h"

namespace vicenter::host {
namespace {

using automation::Error;

ado::ConnectionRef OpenDemo(const test::TestFolder& folder) {
    return ado::OpenConnection(FileConnectString(test::CopySet(folder)));
}

std::int32_t Number(ado::Connection& connection, const std::string& query) {
    return connection.Execute(query)->Value(std::size_t{0}).ToInt32();
}

TEST(AccountSetFile, WithoutDemoHoldsWhatEveryAccountSetStartsWith) {
    test::TestFolder folder;
    const ado::ConnectionRef set = ado::OpenConnection(FileConnectString(test::CopySet(folder, false)));
    EXPECT_EQ(1, Number(*set, "select count(*) from t_User"));
    EXPECT_EQ(1, Number(*set, "select count(*) from t_Currency"));
    EXPECT_EQ(5, Number(*set, "select count(*) from t_ItemClass"));
    EXPECT_EQ(0, Number(*set, "select count(*) from t_Voucher"));
    EXPECT_EQ(0, Number(*set, "select count(*) from t_VchTemplate"));
    set->Execute("exec pro_VchTpCanUsed 0");
}

TEST(AccountSetFile, IsNotMadeOverAnExistingFileOrInAMissingFolder) {
    test::TestFolder folder;
    const std::string file = folder.Path("here.vas");
    std::ofstream(system::PathFromUtf8(file)) << "mine";
    try {
        CreateAccountSetFile(file, {});
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(automation::error_number::kFileAlreadyExists, error.Number());
    }
    EXPECT_EQ(4U, std::filesystem::file_size(system::PathFromUtf8(file)));
    try {
        CreateAccountSetFile(folder.Path("no/such.vas"), {});
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(automation::error_number::kPathNotFound, error.Number());
    }
}

#ifndef _WIN32
TEST(AccountSetFile, IsNotMadeBehindALinkThatLeadsNowhereYet) {
    test::TestFolder folder;
    std::filesystem::create_symlink("later.vas", system::PathFromUtf8(folder.Path("link.vas")));
    EXPECT_THROW(CreateAccountSetFile(folder.Path("link.vas"), {}), Error);
    EXPECT_FALSE(std::filesystem::exists(system::PathFromUtf8(folder.Path("later.vas"))));
}
#endif

TEST(AccountSetFile, IsNotMadeWhereTheLogOfAnotherLies) {
    test::TestFolder folder;
    const std::string file = folder.Path("set.vas");
    const std::string log = file + "-wal";
    std::ofstream(system::PathFromUtf8(log), std::ios::binary) << "saved lines";
    EXPECT_THROW(CreateAccountSetFile(file, {}), Error);
    EXPECT_FALSE(std::filesystem::exists(system::PathFromUtf8(file)));
    EXPECT_EQ(std::filesystem::file_size(system::PathFromUtf8(log)), 11U);
}

TEST(AccountSetFile, MayHaveBlanksQuotesBracesAndChineseInItsName) {
    test::TestFolder folder;
#ifdef _WIN32  // whose names have no quotation marks
    const std::string file = folder.Path("我的 “账套”; {1}'.vas");
#else
    const std::string file = folder.Path("我的 \"账套\"; {1}'.vas");
#endif
    CreateAccountSetFile(file, {});
    EXPECT_TRUE(std::filesystem::exists(system::PathFromUtf8(file)));
    EXPECT_EQ(1, Number(*ado::OpenConnection(FileConnectString(file)), "select count(*) from t_User"));
}

TEST(AccountSetFile, LeavesNothingBesideItself) {
    test::TestFolder folder;
    CreateAccountSetFile(folder.Path("a.vas"), {});
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(system::PathFromUtf8(folder.Path())))
        files += entry.path().filename() == "a.vas" ? 1 : 100;
    EXPECT_EQ(1, files);
}

TEST(RunScript, NamesScriptAndLineOfAFailure) {
    test::TestFolder folder;
    const ado::ConnectionRef set = ado::OpenConnection(FileConnectString(test::CopySet(folder, false)));
    try {
        RunScript(*set, "select 1\nGO\n\nselect *\nfrom nowhere\n", "mine.sql");
        FAIL();
    } catch (const Error& error) {
        ASSERT_FALSE(error.Chain().empty());
        EXPECT_TRUE(error.Chain().back().starts_with("running mine.sql, line ")) << error.Chain().back();
    }
}

TEST(DemoSet, EveryVoucherBalancesAndMatchesItsHead) {
    test::TestFolder folder;
    const ado::ConnectionRef set = OpenDemo(folder);
    EXPECT_GT(Number(*set, "select count(*) from t_Voucher"), 600);
    EXPECT_EQ(
        0,
        Number(*set,
               "select count(*) from t_Voucher v where v.FDebitTotal <> v.FCreditTotal or v.FDebitTotal <> "
               "(select sum(e.FAmount) from t_VoucherEntry e where e.FVoucherID = v.FVoucherID and e.FDC = 1)"
               " or v.FCreditTotal <> (select sum(e.FAmount) from t_VoucherEntry e where e.FVoucherID = "
               "v.FVoucherID and e.FDC = 0) or v.FEntryCount <> (select count(*) from t_VoucherEntry e where "
               "e.FVoucherID = v.FVoucherID)"));
}

TEST(DemoSet, EveryEntryPointsToDetailAccountsCurrenciesAndItemsThatExist) {
    test::TestFolder folder;
    const ado::ConnectionRef set = OpenDemo(folder);
    const std::int32_t entries = Number(*set, "select count(*) from t_VoucherEntry");
    EXPECT_EQ(entries,
              Number(*set,
                     "select count(*) from t_VoucherEntry e inner join t_Account a on a.FAccountID = "
                     "e.FAccountID and a.FDetail = 1 inner join t_Currency c on c.FCurrencyID = "
                     "e.FCurrencyID inner join t_Voucher v on v.FVoucherID = e.FVoucherID"));
    EXPECT_EQ(
        0,
        Number(*set,
               "select count(*) from t_VoucherEntry e where e.FDetailID <> 0 and not exists (select 1 from "
               "t_ItemDetail d where d.FDetailID = e.FDetailID)"));
    EXPECT_EQ(Number(*set, "select sum(FDetailCount) from t_ItemDetail"),
              Number(*set, "select count(*) from t_ItemDetailV"));
}

TEST(DemoSet, HoldsTheMasterDataOfATradingFirm) {
    test::TestFolder folder;
    const ado::ConnectionRef set = OpenDemo(folder);
    for (const char* currency : {"RMB", "USD", "EUR", "HKD"})
        EXPECT_EQ(1, Number(*set, std::string("select count(*) from t_Currency where FNumber = '") +
                                      currency + "'"));
    EXPECT_EQ(66, Number(*set, "select count(*) from t_Account where FLevel = 1"));
    for (const char* some :
         {"t_Account where FLevel > 1 and FDetail = 1", "t_Account where FIsBank <> 0 and FDetail = 1",
          "t_Account where FCurrencyID = 0", "t_Account where FCurrencyID > 1",
          "t_Account where FUnitGroupID <> 0 and FQuantities <> 0", "t_Account where FDetailID <> 0",
          "t_Customer", "t_Supplier", "t_Department", "t_Employee", "t_Item_3001", "t_Settle", "t_UnitGroup",
          "t_MeasureUnit", "t_VoucherExp where FAccountID <> 0", "t_VoucherExp where FAccountID = 0"}) {
        EXPECT_GT(Number(*set, std::string("select count(*) from ") + some), 0) << some;
    }
    EXPECT_GT(Number(*set, "select count(distinct FGroupID) from t_Voucher"), 2);
    EXPECT_EQ(2, Number(*set, "select count(distinct FYear) from t_Voucher where FPosted = 1"));
}

TEST(DemoSet, HasItsUsersTemplatesAndTheStandardTemplate) {
    test::TestFolder folder;
    const ado::ConnectionRef set = OpenDemo(folder);
    EXPECT_EQ(10, Number(*set, "select count(*) from t_VchTemplate"));
    for (const char* user : {"1", "2", "3"})
        EXPECT_EQ(3, Number(*set, std::string("select count(*) from t_VchTemplate where FUserID = ") + user));
    EXPECT_EQ(3, Number(*set, "select count(distinct FNo) from t_VchTemplateEntry where FID = 0"));
    EXPECT_EQ(10, Number(*set, "select count(distinct FName) from t_VchTemplate"));
    // Each template number has its control row, keyed by its first line.
    EXPECT_EQ(0, Number(*set,
                        "select count(*) from t_VchTpControl c where c.FKey <> (select top 1 e.FExp from "
                        "t_VchTemplateEntry e where e.FID = c.FID and e.FNo = c.FNo order by e.FEntryID)"));
}

TEST(DemoSet, OnlyTheTemplateToBeCheckedHasUnusableNumbers) {
    test::TestFolder folder;
    const ado::ConnectionRef set = OpenDemo(folder);
    const ado::RecordsetRef bad = set->Execute(
        "select t.FName,c.FNo from t_VchTpControl c inner join t_VchTemplate t on t.FID = c.FID where "
        "c.FIsCanUsed = 0 "
        "order by c.FID,c.FNo");
    ASSERT_EQ(3, bad->RecordCount());
    for (const char* number : {"3", "4", "5"}) {
        EXPECT_EQ("外币业务（待核对）", bad->Value("FName").ToText());
        EXPECT_EQ(number, bad->Value("FNo").ToText());
        bad->MoveNext();
    }
}

TEST(DemoSet, IsTheSameWheneverItIsMade) {
    test::TestFolder folder;
    CreateAccountSetFile(folder.Path("again.vas"), {true, 0});
    const ado::ConnectionRef again = ado::OpenConnection(FileConnectString(folder.Path("again.vas")));
    const ado::ConnectionRef set = OpenDemo(folder);
    for (const char* query :
         {"select * from t_Account order by FAccountID", "select * from t_Voucher order by FVoucherID",
          "select * from t_VoucherEntry order by FVoucherID,FEntryID",
          "select * from t_ItemDetailV order by FDetailID,FItemClassID",
          "select * from t_VchTemplate order by FID",
          "select * from t_VchTemplateEntry order by FID,FEntryID",
          "select * from t_VchTpControl order by FID,FNo"}) {
        const ado::RecordsetRef first = set->Execute(query);
        const ado::RecordsetRef second = again->Execute(query);
        ASSERT_EQ(first->RecordCount(), second->RecordCount()) << query;
        for (std::size_t r = 0; r < static_cast<std::size_t>(first->RecordCount()); ++r) {
            for (std::size_t c = 0; c < first->ColumnCount(); ++c)
                ASSERT_EQ(first->ValueAt(r, c), second->ValueAt(r, c)) << query << " row " << r;
        }
    }
}

}  // namespace
}  // namespace vicenter::host
