#include "host/demo_vouchers.h"

#include <algorithm>
#include <tuple>

#include "automation/error.h"

namespace vicenter::host {

using automation::Error;

namespace {

constexpr int kUsd = 2;
constexpr int kEur = 3;
constexpr int kHkd = 4;

}  // namespace

std::int64_t DemoVouchers::Draw(std::int64_t below) {
    // SplitMix64: small, and the same everywhere.
    state_ += 0x9E3779B97F4A7C15U;
    std::uint64_t value = state_;
    value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9U;
    value = (value ^ (value >> 27)) * 0x94D049BB133111EBU;
    value ^= value >> 31;
    return static_cast<std::int64_t>(value % static_cast<std::uint64_t>(below));
}

void DemoVouchers::Generate(std::int64_t extra, std::int64_t total, const Sink& sink) {
    std::vector<std::pair<int, int>> periods;
    for (int year = kDemoFirstYear; year <= kDemoLastYear; ++year) {
        const int last = year == kDemoLastYear ? kDemoLastPeriod : 12;
        for (int period = 1; period <= last; ++period) {
            if (year != kDemoClosedYear || period != kDemoClosedPeriod) periods.emplace_back(year, period);
        }
    }
    const auto count = static_cast<std::int64_t>(periods.size());
    for (std::int64_t i = 0; i < count; ++i) {
        std::tie(year_, period_) = periods[static_cast<std::size_t>(i)];
        rates_ = {{kUsd, 71'865 + Draw(600) - 300},
                  {kEur, 78'423 + Draw(800) - 400},
                  {kHkd, 9'215 + Draw(60) - 30}};
        if (i == 0) FoundTheFirm();
        DoBusiness();
        for (std::int64_t n = extra * i / count; n < extra * (i + 1) / count; ++n)
            DoExtra(n);
        CloseMonth();
        // Payments touch no result account, so that they may come behind the closing.
        while (i == count - 1 && emitted_ + static_cast<std::int64_t>(vouchers_.size()) < total)
            PaySupplier(LastDay());
        Emit(sink);
    }
}

int DemoVouchers::LastDay() const {
    static constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return kDays[period_ - 1];
}

DemoVoucher& DemoVouchers::Start(DemoGroup group, int day, std::string explanation, DemoOrigin origin) {
    DemoVoucher& voucher = vouchers_.emplace_back();
    voucher.year = year_;
    voucher.period = period_;
    voucher.day = std::min(day, LastDay());
    voucher.group = group;
    voucher.origin = origin;
    voucher.attachments = origin == DemoOrigin::Manual ? static_cast<int>(1 + Draw(6)) : 0;
    voucher.entries.reserve(4);
    voucher.entries.emplace_back().explanation = std::move(explanation);
    return voucher;
}

DemoEntry& DemoVouchers::Post(DemoVoucher& voucher, bool debit, std::string_view account, std::int64_t cents,
                              const std::vector<std::string_view>& items) {
    const DemoAccount* found = master_.FindAccount(account);
    if (found == nullptr || !found->detail)
        throw Error(automation::error_number::kElementNotFound,
                    "Demo ledger: no detail account " + std::string(account));
    // Start() leaves one entry that only carries the explanation.
    const bool isFirst = voucher.entries.size() == 1 && voucher.entries[0].account == nullptr;
    DemoEntry& entry = isFirst ? voucher.entries[0] : voucher.entries.emplace_back();
    if (!isFirst) entry.explanation = voucher.entries[0].explanation;
    entry.account = found;
    entry.debit = debit;
    entry.cents = cents;
    entry.foreignCents = cents;
    entry.detailId = items.empty() ? 0 : master_.DetailOf(*found, items);
    return entry;
}

DemoEntry& DemoVouchers::Bank(DemoVoucher& voucher, bool debit, std::string_view account, std::int64_t cents,
                              std::string_view settle) {
    DemoEntry& entry = Post(voucher, debit, account, cents);
    const DemoSettle* type = master_.FindSettle(settle);
    if (type == nullptr)
        throw Error(automation::error_number::kElementNotFound,
                    "Demo ledger: no settlement type " + std::string(settle));
    entry.settleId = type->id;
    std::string number = std::to_string(++settleNumbers_);
    if (number.size() < 6) number.insert(0, 6 - number.size(), '0');
    entry.settleNumber = type->number + "-" + number;
    return entry;
}

void DemoVouchers::SetForeign(DemoEntry& entry, int currencyId, std::int64_t rate,
                              std::int64_t foreignCents) {
    entry.currencyId = currencyId;
    entry.rate = rate;
    entry.foreignCents = foreignCents;
}

void DemoVouchers::SetQuantity(DemoEntry& entry, std::int64_t quantity, std::int64_t priceCents) {
    entry.quantity = quantity;
    entry.priceCents = priceCents;
}

void DemoVouchers::Emit(const Sink& sink) {
    std::stable_sort(vouchers_.begin(), vouchers_.end(),
                     [](const DemoVoucher& a, const DemoVoucher& b) { return a.day < b.day; });
    std::map<DemoGroup, int> numbers;
    for (DemoVoucher& voucher : vouchers_) {
        voucher.number = ++numbers[voucher.group];
        sink(voucher);
        ++emitted_;
    }
    vouchers_.clear();
}

}  // namespace vicenter::host
