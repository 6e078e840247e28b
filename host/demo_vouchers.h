#pragma once

// The posted vouchers of the demo ledger: what a trading firm books in a month, over two years.
//
// Every figure follows from fixed tables and a generator of our own with a fixed seed, in whole hundredths,
// so that the same vouchers come out everywhere and every voucher balances. Vouchers leave month by month;
// nothing but the open items and the balances needed later is kept.

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/demo_master.h"

namespace vicenter::host {

// FTranType of vouchers.
enum class DemoOrigin { Manual = 0, CostTransfer = 1, ProfitTransfer = 2, Depreciation = 3, Revaluation = 4 };

// The voucher groups; each counts its numbers from 1 in every period.
enum class DemoGroup { General = 1, Receipt = 2, Payment = 3, Transfer = 4 };

struct DemoEntry {
    const DemoAccount* account = nullptr;
    bool debit = true;
    std::int64_t cents = 0;  // in the books' currency
    std::string explanation;
    int currencyId = kBookCurrencyId;
    std::int64_t rate = 10'000;     // ten-thousandths
    std::int64_t foreignCents = 0;  // amount in the currency; the books' own for currency 1
    std::int64_t quantity = 0;
    std::int64_t priceCents = 0;  // of one unit, in the currency
    int detailId = 0;
    int settleId = 0;
    std::string settleNumber;
};

struct DemoVoucher {
    int year = 0;
    int period = 0;
    int day = 1;
    DemoGroup group = DemoGroup::General;
    int number = 0;
    int attachments = 0;
    DemoOrigin origin = DemoOrigin::Manual;
    std::vector<DemoEntry> entries;
};

// The last period with vouchers, and the one in between in which the firm was closed.
inline constexpr int kDemoFirstYear = 2025;
inline constexpr int kDemoLastYear = 2026;
inline constexpr int kDemoLastPeriod = 10;
inline constexpr int kDemoClosedYear = 2025;
inline constexpr int kDemoClosedPeriod = 2;

class DemoVouchers {
  public:
    using Sink = std::function<void(const DemoVoucher&)>;

    // The master data outlives this object.
    explicit DemoVouchers(DemoMaster& master) : master_(master) {}

    // All vouchers by date and number. extra more vouchers than the firm's own business brings are spread
    // evenly over the periods; they may call for a few more or fewer at the ends of months (taxes,
    // revaluations), so that payments in the last period make up what is missing to total. Call it once.
    void Generate(std::int64_t extra, std::int64_t total, const Sink& sink);

  private:
    struct Receivable {
        std::string customer;
        int currencyId;
        std::int64_t rate;
        std::int64_t foreignCents;
        std::int64_t cents;
    };
    struct Payable {
        std::string supplier;
        std::int64_t cents;
    };
    struct Balance {
        std::int64_t foreignCents = 0;
        std::int64_t cents = 0;
    };

    // Deterministic, uniform enough: 0 to below - 1.
    std::int64_t Draw(std::int64_t below);

    // ---- building one voucher
    DemoVoucher& Start(DemoGroup group, int day, std::string explanation,
                       DemoOrigin origin = DemoOrigin::Manual);
    DemoEntry& Post(DemoVoucher& voucher, bool debit, std::string_view account, std::int64_t cents,
                    const std::vector<std::string_view>& items = {});
    DemoEntry& Debit(DemoVoucher& voucher, std::string_view account, std::int64_t cents,
                     const std::vector<std::string_view>& items = {}) {
        return Post(voucher, true, account, cents, items);
    }
    DemoEntry& Credit(DemoVoucher& voucher, std::string_view account, std::int64_t cents,
                      const std::vector<std::string_view>& items = {}) {
        return Post(voucher, false, account, cents, items);
    }
    // A bank entry with its settlement type and a number of that type.
    DemoEntry& Bank(DemoVoucher& voucher, bool debit, std::string_view account, std::int64_t cents,
                    std::string_view settle);
    void SetForeign(DemoEntry& entry, int currencyId, std::int64_t rate, std::int64_t foreignCents);
    void SetQuantity(DemoEntry& entry, std::int64_t quantity, std::int64_t priceCents);

    // ---- the business of a month (demo_business.cpp)
    void FoundTheFirm();
    void DoBusiness();
    void DoExtra(std::int64_t index);
    void SellAtHome(int day);
    void Export(int day);
    void Buy(int day);
    void Collect(int day);
    void CollectAbroad(int day);
    void PaySupplier(int day);
    void PayStaffAndTaxes();
    void PayExpenses();
    void MoveMoney();

    // ---- the end of a month (demo_month_end.cpp)
    void CloseMonth();
    void AccrueStaff();
    void Depreciate();
    void TransferCosts();
    void AccrueTaxes();
    void Revalue();
    void TransferProfit();
    void TransferYear();

    // Brings the month's vouchers in order, numbers them, keeps the balances and hands them over.
    void Emit(const Sink& sink);
    int LastDay() const;

    DemoMaster& master_;
    std::uint64_t state_ = 20250101;
    int year_ = 0;
    int period_ = 0;
    std::deque<DemoVoucher> vouchers_;
    std::int64_t settleNumbers_ = 0;
    std::int64_t emitted_ = 0;
    std::map<int, std::int64_t> rates_;  // by currency, this month
    std::deque<Receivable> receivables_;
    std::deque<Payable> payables_;
    std::map<std::size_t, std::int64_t> soldQuantities_;  // by product, this month
    std::map<std::string, Balance> foreignBanks_;         // by account number
    std::map<std::pair<int, int>, std::int64_t>
        results_;  // net debits of result accounts by account and detail
    std::int64_t outputTax_ = 0;
    std::int64_t inputTax_ = 0;
    std::int64_t taxDue_ = 0;
    std::int64_t surchargeDue_ = 0;
    std::int64_t yearProfit_ = 0;
    bool salaryDue_ = false;
};

}  // namespace vicenter::host
