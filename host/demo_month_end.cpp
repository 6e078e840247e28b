// What the demo firm books at the end of a month.

#include "host/demo_products.h"
#include "host/demo_vouchers.h"

namespace vicenter::host {

namespace {

constexpr std::int64_t kYuan = 100;

std::int64_t Magnitude(std::int64_t value) {
    return value < 0 ? -value : value;
}

}  // namespace

void DemoVouchers::CloseMonth() {
    AccrueStaff();
    Depreciate();
    TransferCosts();
    AccrueTaxes();
    Revalue();
    TransferProfit();
    if (period_ == 12) TransferYear();
}

void DemoVouchers::AccrueStaff() {
    DemoVoucher& salary = Start(DemoGroup::Transfer, LastDay(), "计提工资");
    std::int64_t gross = 0;
    for (const DemoDepartment& department : kDemoDepartments) {
        Debit(salary, department.salaryAccount, department.salaryCents, {department.number});
        gross += department.salaryCents;
    }
    for (const DemoDepartment& department : kDemoDepartments)
        Credit(salary, "2211.01", department.salaryCents, {department.number});

    DemoVoucher& funds = Start(DemoGroup::Transfer, LastDay(), "计提社会保险费和住房公积金");
    Debit(funds, "5602.08", gross * 26 / 100);
    Debit(funds, "5602.09", gross * 5 / 100);
    Credit(funds, "2211.02", gross * 26 / 100);
    Credit(funds, "2211.03", gross * 5 / 100);
    salaryDue_ = true;
}

void DemoVouchers::Depreciate() {
    DemoVoucher& voucher = Start(DemoGroup::Transfer, LastDay(), "计提折旧", DemoOrigin::Depreciation);
    Debit(voucher, "5602.02", 2'450 * kYuan, {"D01"});
    Debit(voucher, "5602.02", 3'681 * kYuan, {"D06"});
    Credit(voucher, "1602", 6'131 * kYuan);
}

void DemoVouchers::TransferCosts() {
    if (soldQuantities_.empty()) return;
    DemoVoucher& voucher = Start(DemoGroup::Transfer, LastDay(), "结转销售成本", DemoOrigin::CostTransfer);
    for (const bool debit : {true, false}) {
        for (const auto& [index, quantity] : soldQuantities_) {
            const DemoProduct& product = kDemoProducts[index];
            DemoEntry& entry =
                Post(voucher, debit, debit ? product.cost : product.stock, quantity * product.costCents);
            SetQuantity(entry, quantity, product.costCents);
        }
    }
    soldQuantities_.clear();
}

void DemoVouchers::AccrueTaxes() {
    const std::int64_t due = outputTax_ - inputTax_;
    if (due <= 0) return;  // the surplus of input tax stands over to the next month
    DemoVoucher& tax = Start(DemoGroup::Transfer, LastDay(), "结转未交增值税");
    Debit(tax, "2221.01.03", due);
    Credit(tax, "2221.02", due);
    outputTax_ = 0;
    inputTax_ = 0;
    taxDue_ = due;

    surchargeDue_ = due / 10;
    const std::int64_t city = surchargeDue_ * 7 / 10;
    DemoVoucher& surcharge = Start(DemoGroup::Transfer, LastDay(), "计提税金及附加");
    Debit(surcharge, "5403.01", city);
    Debit(surcharge, "5403.02", surchargeDue_ - city);
    Credit(surcharge, "2221.03", city);
    Credit(surcharge, "2221.04", surchargeDue_ - city);
}

void DemoVouchers::Revalue() {
    for (auto& [account, balance] : foreignBanks_) {
        if (balance.foreignCents == 0) continue;
        const int currencyId = master_.FindAccount(account)->currencyId;
        // The rate of the month's last day lies a little off the month's own.
        const std::int64_t rate = rates_[currencyId] + Draw(41) - 20;
        const std::int64_t worth = (balance.foreignCents * rate + 5'000) / 10'000;
        const std::int64_t gain = worth - balance.cents;
        if (gain == 0) continue;
        DemoVoucher& voucher = Start(DemoGroup::Transfer, LastDay(), "期末调汇", DemoOrigin::Revaluation);
        SetForeign(Post(voucher, gain > 0, account, Magnitude(gain)), currencyId, rate, 0);
        Post(voucher, gain < 0, "5603.04", Magnitude(gain));
        balance.cents = worth;
    }
}

void DemoVouchers::TransferProfit() {
    results_.clear();
    for (const DemoVoucher& voucher : vouchers_) {
        for (const DemoEntry& entry : voucher.entries) {
            if (entry.account->number.front() == '5')
                results_[{entry.account->id, entry.detailId}] += entry.debit ? entry.cents : -entry.cents;
        }
    }
    DemoVoucher& voucher = Start(DemoGroup::Transfer, LastDay(), "结转本期损益", DemoOrigin::ProfitTransfer);
    std::int64_t loss = 0;
    for (const DemoAccount& account : master_.Accounts()) {
        if (account.number.front() != '5') continue;
        for (auto at = results_.lower_bound({account.id, 0});
             at != results_.end() && at->first.first == account.id; ++at) {
            if (at->second == 0) continue;
            Post(voucher, at->second < 0, account.number, Magnitude(at->second)).detailId = at->first.second;
            loss += at->second;
        }
    }
    Post(voucher, loss > 0, "3103", Magnitude(loss));
    yearProfit_ -= loss;
}

void DemoVouchers::TransferYear() {
    DemoVoucher& voucher = Start(DemoGroup::Transfer, LastDay(), "结转本年利润", DemoOrigin::ProfitTransfer);
    Post(voucher, yearProfit_ > 0, "3103", Magnitude(yearProfit_));
    Post(voucher, yearProfit_ < 0, "3104.01", Magnitude(yearProfit_));
    yearProfit_ = 0;
}

}  // namespace vicenter::host
