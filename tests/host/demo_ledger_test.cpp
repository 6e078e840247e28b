#include "host/demo_ledger.h"

#include <map>
#include <set>
#include <tuple>

#include <gtest/gtest.h>

#include "host/demo_master.h"
#include "host/demo_vouchers.h"
#include "tests/host/recording_connection.h"

namespace vicenter::host {
namespace {

std::vector<DemoVoucher> Vouchers(std::int64_t extra = 0) {
    // Accounts are pointed to by the entries, so the master data must stay.
    static std::deque<DemoMaster> masters;
    DemoMaster& master = masters.emplace_back(DemoMaster::Read());
    std::vector<DemoVoucher> vouchers;
    DemoVouchers(master).Generate(extra, 0, [&](const DemoVoucher& voucher) { vouchers.push_back(voucher); });
    return vouchers;
}

std::vector<std::string> Batches(const DemoOptions& options) {
    test::RecordingConnection connection;
    PrepareDemo(connection, options);
    return connection.batches;
}

TEST(DemoLedger, HasThePublishedFirstLevelAccounts) {
    const DemoMaster master = DemoMaster::Read();
    int firstLevel = 0;
    for (const DemoAccount& account : master.Accounts())
        firstLevel += account.level == 1 ? 1 : 0;
    EXPECT_EQ(66, firstLevel);
    EXPECT_FALSE(master.FindAccount("1002")->detail);
    EXPECT_TRUE(master.FindAccount("1002.01")->detail);
    EXPECT_EQ(master.FindAccount("2221.01")->id, master.FindAccount("2221.01.01")->parentId);
    EXPECT_EQ(3, master.FindAccount("2221.01.01")->level);
    EXPECT_EQ("应交税费_应交增值税_进项税额", master.FindAccount("2221.01.01")->fullName);
}

TEST(DemoLedger, EveryVoucherBalancesInTheBooksCurrency) {
    for (const DemoVoucher& voucher : Vouchers(500)) {
        std::int64_t balance = 0;
        for (const DemoEntry& entry : voucher.entries) {
            balance += entry.debit ? entry.cents : -entry.cents;
            EXPECT_GE(entry.cents, 0);
        }
        EXPECT_EQ(0, balance) << voucher.year << "/" << voucher.period << " "
                              << voucher.entries[0].explanation;
        EXPECT_GE(voucher.entries.size(), 2U);
    }
}

TEST(DemoLedger, QuantityTimesPriceIsTheAmountInTheEntrysCurrency) {
    int quantities = 0;
    for (const DemoVoucher& voucher : Vouchers()) {
        for (const DemoEntry& entry : voucher.entries) {
            if (entry.quantity == 0) continue;
            ++quantities;
            EXPECT_EQ(entry.foreignCents, entry.quantity * entry.priceCents);
        }
    }
    EXPECT_GT(quantities, 100);
}

TEST(DemoLedger, CoversTwoYearsWithOnePeriodWithoutVouchers) {
    std::set<std::pair<int, int>> periods;
    for (const DemoVoucher& voucher : Vouchers())
        periods.emplace(voucher.year, voucher.period);
    EXPECT_EQ(21U, periods.size());
    EXPECT_FALSE(periods.contains({kDemoClosedYear, kDemoClosedPeriod}));
    EXPECT_TRUE(periods.contains({2025, 1}));
    EXPECT_TRUE(periods.contains({2026, 10}));
}

TEST(DemoLedger, GroupsShareNumbersAndCountFromOneInEveryPeriod) {
    std::map<std::tuple<int, int, DemoGroup>, int> last;
    for (const DemoVoucher& voucher : Vouchers()) {
        int& number = last[{voucher.year, voucher.period, voucher.group}];
        EXPECT_EQ(number + 1, voucher.number);
        number = voucher.number;
    }
    for (const DemoGroup group :
         {DemoGroup::General, DemoGroup::Receipt, DemoGroup::Payment, DemoGroup::Transfer})
        EXPECT_GT((last[{2026, 10, group}]), 0);
}

TEST(DemoLedger, HoldsSystemMadeForeignAndItemEntriesWithAttachments) {
    int system = 0;
    std::set<int> currencies;
    std::set<int> combinations;
    int attached = 0;
    for (const DemoVoucher& voucher : Vouchers()) {
        system += voucher.origin != DemoOrigin::Manual ? 1 : 0;
        attached += voucher.attachments > 0 ? 1 : 0;
        for (const DemoEntry& entry : voucher.entries) {
            currencies.insert(entry.currencyId);
            if (entry.detailId > 0) combinations.insert(entry.detailId);
        }
    }
    EXPECT_GT(system, 40);
    EXPECT_EQ((std::set<int>{1, 2, 3, 4}), currencies);
    EXPECT_GT(combinations.size(), 20U);
    EXPECT_GT(attached, 500);
}

TEST(DemoLedger, EntriesOfItemAccountsCarryItemsAndOthersNone) {
    for (const DemoVoucher& voucher : Vouchers(100)) {
        for (const DemoEntry& entry : voucher.entries)
            EXPECT_EQ(entry.account->itemClasses.empty(), entry.detailId == 0) << entry.account->number;
    }
}

TEST(DemoLedger, SettlementTypesStandOnBankAccountsOnly) {
    for (const DemoVoucher& voucher : Vouchers()) {
        for (const DemoEntry& entry : voucher.entries) {
            const DemoAccount& account = *entry.account;
            EXPECT_TRUE(entry.settleId == 0 || account.bank) << account.number;
            EXPECT_TRUE(account.currencyId == 0 || account.currencyId == entry.currencyId) << account.number;
        }
    }
}

TEST(DemoLedger, IsTheSameOnEveryRun) {
    EXPECT_EQ(Batches({}), Batches({}));
    EXPECT_EQ(Batches({1500}), Batches({1500}));
    EXPECT_NE(Batches({}), Batches({1500}));
}

TEST(DemoLedger, ScalesToExactlyTheNumberOfVouchersAskedFor) {
    const int own = static_cast<int>(Vouchers().size());
    EXPECT_GT(own, 600);
    for (const int asked : {own + 1, own + 7, 1500, 5000}) {
        std::size_t inserted = 0;
        for (const std::string& batch : Batches({asked})) {
            for (std::size_t at = batch.find("insert into t_Voucher("); at != std::string::npos;
                 at = batch.find("insert into t_Voucher(", at + 1))
                ++inserted;
        }
        EXPECT_EQ(static_cast<std::size_t>(asked), inserted);
    }
}

TEST(DemoLedger, FewerVouchersThanTheFirmsOwnAreNotPossible) {
    EXPECT_EQ(Batches({}), Batches({10}));
}

}  // namespace
}  // namespace vicenter::host
