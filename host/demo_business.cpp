// What the demo firm books in the course of a month.

#include "host/demo_products.h"
#include "host/demo_vouchers.h"

namespace vicenter::host {

namespace {

constexpr std::int64_t kYuan = 100;  // in hundredths

constexpr std::string_view kBank = "1002.01";
constexpr std::string_view kSecondBank = "1002.05";

struct ForeignCustomer {
    std::string_view number;
    std::string_view name;
    std::string_view bank;
    int currencyId;
};
constexpr ForeignCustomer kForeignCustomers[] = {{"C101", "Blue Harbor", "1002.02", 2},
                                                 {"C102", "Teehaus Lindner", "1002.03", 3},
                                                 {"C103", "香港恒丰", "1002.04", 4}};

constexpr std::string_view kCustomers[] = {"C001", "C002", "C003", "C004", "C005", "C006"};
constexpr std::string_view kPaymentTypes[] = {"网上银行", "转账支票", "电汇", "银行承兑汇票"};

std::int64_t Converted(std::int64_t foreignCents, std::int64_t rate) {
    return (foreignCents * rate + 5'000) / 10'000;
}

std::int64_t ValueAddedTax(std::int64_t cents) {
    return (cents * 13 + 50) / 100;
}

}  // namespace

void DemoVouchers::FoundTheFirm() {
    DemoVoucher& capital = Start(DemoGroup::Receipt, 2, "收到投资款");
    Bank(capital, true, kBank, 3'000'000 * kYuan, "网上银行");
    Credit(capital, "3001.01", 2'000'000 * kYuan);
    Credit(capital, "3001.02", 1'000'000 * kYuan);

    DemoVoucher& loan = Start(DemoGroup::Receipt, 3, "取得短期借款");
    Bank(loan, true, kSecondBank, 500'000 * kYuan, "网上银行");
    Credit(loan, "2001", 500'000 * kYuan);

    DemoVoucher& equipment = Start(DemoGroup::Payment, 3, "购入运输工具和办公设备");
    Debit(equipment, "1601.02", 186'000 * kYuan, {"D06"});
    Debit(equipment, "1601.03", 92'400 * kYuan, {"D01"});
    Debit(equipment, "2221.01.01", ValueAddedTax(278'400 * kYuan));
    Bank(equipment, false, kBank, 278'400 * kYuan + ValueAddedTax(278'400 * kYuan), "电汇");
    inputTax_ += ValueAddedTax(278'400 * kYuan);

    DemoVoucher& stock = Start(DemoGroup::General, 4, "期初备货");
    std::int64_t total = 0;
    for (const DemoProduct& product : kDemoProducts) {
        const std::int64_t quantity = 400;
        SetQuantity(Debit(stock, product.stock, quantity * product.costCents), quantity, product.costCents);
        total += quantity * product.costCents;
    }
    Bank(stock, false, kBank, total, "电汇");
}

void DemoVouchers::DoBusiness() {
    MoveMoney();
    PayStaffAndTaxes();
    for (const int day : {5, 8, 12, 16, 21, 26})
        SellAtHome(day);
    for (const int day : {11, 23})
        Export(day);
    for (const int day : {4, 9, 17, 24})
        Buy(day);
    for (const int day : {7, 15, 25})
        Collect(day);
    CollectAbroad(20);
    for (const int day : {8, 19, 27})
        PaySupplier(day);
    PayExpenses();
}

void DemoVouchers::DoExtra(std::int64_t index) {
    const int day = static_cast<int>(1 + index % 27);
    switch (index % 5) {
        case 0:
            return SellAtHome(day);
        case 1:
            return Buy(day);
        case 2:
            return Collect(day);
        case 3:
            return Export(day);
        default:
            return PaySupplier(day);
    }
}

void DemoVouchers::SellAtHome(int day) {
    const std::string_view customer = kCustomers[Draw(std::size(kCustomers))];
    const auto index = static_cast<std::size_t>(Draw(std::size(kDemoProducts)));
    const DemoProduct& product = kDemoProducts[index];
    const std::int64_t quantity = 10 + Draw(60);
    const std::int64_t price = product.priceCents + Draw(20) * kYuan;
    const std::int64_t net = quantity * price;
    const std::int64_t tax = ValueAddedTax(net);

    DemoVoucher& sale = Start(DemoGroup::Transfer, day, "销售" + std::string(product.name));
    Debit(sale, "1122.01", net + tax, {customer});
    SetQuantity(Credit(sale, product.revenue, net), quantity, price);
    Credit(sale, "2221.01.02", tax);
    outputTax_ += tax;
    soldQuantities_[index] += quantity;
    receivables_.push_back({std::string(customer), kBookCurrencyId, 10'000, net + tax, net + tax});
}

void DemoVouchers::Export(int day) {
    const ForeignCustomer& customer = kForeignCustomers[Draw(std::size(kForeignCustomers))];
    const auto index = static_cast<std::size_t>(Draw(std::size(kDemoProducts)));
    const DemoProduct& product = kDemoProducts[index];
    const std::int64_t quantity = 20 + Draw(80);
    const std::int64_t rate = rates_[customer.currencyId];
    const std::int64_t price = product.priceCents * 10'000 / rate + Draw(3) * 50;
    const std::int64_t foreign = quantity * price;
    const std::int64_t cents = Converted(foreign, rate);

    DemoVoucher& sale = Start(DemoGroup::Transfer, day,
                              "出口销售" + std::string(product.name) + "-" + std::string(customer.name));
    SetForeign(Debit(sale, "1122.02", cents, {customer.number}), customer.currencyId, rate, foreign);
    DemoEntry& revenue = Credit(sale, product.revenue, cents);
    SetForeign(revenue, customer.currencyId, rate, foreign);
    SetQuantity(revenue, quantity, price);
    soldQuantities_[index] += quantity;
    receivables_.push_back({std::string(customer.number), customer.currencyId, rate, foreign, cents});
}

void DemoVouchers::Buy(int day) {
    const auto index = static_cast<std::size_t>(Draw(std::size(kDemoProducts)));
    const DemoProduct& product = kDemoProducts[index];
    const std::int64_t quantity = 40 + Draw(80);
    const std::int64_t net = quantity * product.costCents;
    const std::int64_t tax = ValueAddedTax(net);

    DemoVoucher& purchase = Start(DemoGroup::Transfer, day, "采购" + std::string(product.name) + "入库");
    SetQuantity(Debit(purchase, product.stock, net), quantity, product.costCents);
    Debit(purchase, "2221.01.01", tax);
    Credit(purchase, "2202.01", net + tax, {product.supplier});
    inputTax_ += tax;
    payables_.push_back({std::string(product.supplier), net + tax});
}

void DemoVouchers::Collect(int day) {
    for (auto open = receivables_.begin(); open != receivables_.end(); ++open) {
        if (open->currencyId != kBookCurrencyId) continue;
        DemoVoucher& receipt = Start(DemoGroup::Receipt, day, "收到货款");
        // One draw after the other: the order of evaluation of arguments is the compiler's own.
        const std::string_view bank = Draw(3) == 0 ? kSecondBank : kBank;
        const std::string_view paymentType = kPaymentTypes[Draw(std::size(kPaymentTypes))];
        Bank(receipt, true, bank, open->cents, paymentType);
        Credit(receipt, "1122.01", open->cents, {open->customer});
        receivables_.erase(open);
        return;
    }
    // Nothing is open: a customer pays in advance.
    DemoVoucher& receipt = Start(DemoGroup::Receipt, day, "预收货款");
    Bank(receipt, true, kBank, 8'000 * kYuan, "网上银行");
    Credit(receipt, "2203", 8'000 * kYuan, {kCustomers[Draw(std::size(kCustomers))]});
}

void DemoVouchers::CollectAbroad(int day) {
    for (auto open = receivables_.begin(); open != receivables_.end(); ++open) {
        if (open->currencyId == kBookCurrencyId) continue;
        std::string bank;
        for (const ForeignCustomer& customer : kForeignCustomers) {
            if (customer.number == open->customer) bank = customer.bank;
        }
        const std::int64_t rate = rates_[open->currencyId];
        const std::int64_t cents = Converted(open->foreignCents, rate);
        DemoVoucher& receipt = Start(DemoGroup::Receipt, day, "收到国外客户货款");
        SetForeign(Bank(receipt, true, bank, cents, "电汇"), open->currencyId, rate, open->foreignCents);
        if (cents != open->cents) {
            const bool loss = cents < open->cents;
            Post(receipt, loss, "5603.04", loss ? open->cents - cents : cents - open->cents).explanation =
                "汇兑损益";
        }
        SetForeign(Credit(receipt, "1122.02", open->cents, {open->customer}), open->currencyId, open->rate,
                   open->foreignCents);
        foreignBanks_[bank].foreignCents += open->foreignCents;
        foreignBanks_[bank].cents += cents;
        receivables_.erase(open);
        return;
    }
}

void DemoVouchers::PaySupplier(int day) {
    DemoVoucher& payment = Start(DemoGroup::Payment, day, payables_.empty() ? "预付货款" : "支付货款");
    if (payables_.empty()) {
        Debit(payment, "1123", 15'000 * kYuan, {"S003"});
        Bank(payment, false, kSecondBank, 15'000 * kYuan, "转账支票");
        return;
    }
    const Payable open = payables_.front();
    payables_.pop_front();
    Debit(payment, "2202.01", open.cents, {open.supplier});
    Bank(payment, false, kBank, open.cents, kPaymentTypes[Draw(std::size(kPaymentTypes))]);
}

void DemoVouchers::PayStaffAndTaxes() {
    if (salaryDue_) {
        DemoVoucher& salary = Start(DemoGroup::Payment, 10, "支付工资");
        std::int64_t gross = 0;
        for (const DemoDepartment& department : kDemoDepartments) {
            Debit(salary, "2211.01", department.salaryCents, {department.number});
            gross += department.salaryCents;
        }
        const std::int64_t insurance = gross * 105 / 1000;
        const std::int64_t housing = gross * 5 / 100;
        const std::int64_t incomeTax = gross * 12 / 1000;
        Credit(salary, "2241.01", insurance);
        Credit(salary, "2241.02", housing);
        Credit(salary, "2221.06", incomeTax);
        Bank(salary, false, kBank, gross - insurance - housing - incomeTax, "网上银行");

        DemoVoucher& funds = Start(DemoGroup::Payment, 15, "缴纳社会保险费和住房公积金");
        Debit(funds, "2211.02", gross * 26 / 100);
        Debit(funds, "2211.03", housing);
        Debit(funds, "2241.01", insurance);
        Debit(funds, "2241.02", housing);
        Bank(funds, false, kBank, gross * 26 / 100 + housing + insurance + housing, "网上银行");

        DemoVoucher& tax = Start(DemoGroup::Payment, 15, "缴纳个人所得税");
        Debit(tax, "2221.06", incomeTax);
        Bank(tax, false, kBank, incomeTax, "网上银行");
    }
    if (taxDue_ > 0) {
        DemoVoucher& tax = Start(DemoGroup::Payment, 15, "缴纳增值税及附加");
        const std::int64_t city = surchargeDue_ * 7 / 10;
        Debit(tax, "2221.02", taxDue_);
        Debit(tax, "2221.03", city);
        Debit(tax, "2221.04", surchargeDue_ - city);
        Bank(tax, false, kBank, taxDue_ + surchargeDue_, "网上银行");
        taxDue_ = 0;
        surchargeDue_ = 0;
    }
}

void DemoVouchers::PayExpenses() {
    DemoVoucher& rent = Start(DemoGroup::Payment, 5, "支付房租水电费");
    Debit(rent, "5602.04", 18'000 * kYuan, {"D01"});
    Debit(rent, "5602.04", 6'500 * kYuan + Draw(900) * kYuan, {"D06"});
    Bank(rent, false, kBank, rent.entries[0].cents + rent.entries[1].cents, "转账支票");

    const std::int64_t freight = 1'200 * kYuan + Draw(80'000);
    DemoVoucher& transport = Start(DemoGroup::Payment, 22, "支付运输费");
    Debit(transport, "5601.03", freight, {"S005"});
    Debit(transport, "2221.01.01", freight * 9 / 100);
    Bank(transport, false, kBank, freight + freight * 9 / 100, "网上银行");
    inputTax_ += freight * 9 / 100;

    const std::int64_t office = 300 * kYuan + Draw(90'000);
    DemoVoucher& supplies = Start(DemoGroup::Payment, 13, "报销办公费");
    Debit(supplies, "5602.03", office, {"D02"});
    Debit(supplies, "5602.06", 458 * kYuan, {"D01"});
    Credit(supplies, "1001", office + 458 * kYuan);

    struct Traveller {
        std::string_view department;
        std::string_view employee;
        std::string_view account;
    };
    static constexpr Traveller kTravellers[] = {{"D04", "E005", "5601.02"},
                                                {"D04", "E006", "5601.02"},
                                                {"D05", "E007", "5601.02"},
                                                {"D05", "E008", "5601.02"},
                                                {"D03", "E004", "5602.05"}};
    const Traveller& traveller = kTravellers[Draw(std::size(kTravellers))];
    DemoVoucher& advance = Start(DemoGroup::General, 6, "职工出差借款");
    Debit(advance, "1221.01", 3'000 * kYuan, {traveller.employee});
    Credit(advance, "1001", 3'000 * kYuan);
    const std::int64_t travel = 1'800 * kYuan + Draw(110'000);
    DemoVoucher& trip = Start(DemoGroup::General, 18, "报销差旅费");
    Debit(trip, traveller.account, travel, {traveller.department, traveller.employee});
    if (travel < 3'000 * kYuan) Debit(trip, "1001", 3'000 * kYuan - travel).explanation = "退回借款余额";
    Credit(trip, "1221.01", 3'000 * kYuan, {traveller.employee});

    const std::int64_t meal = 400 * kYuan + Draw(120'000);
    DemoVoucher& guests = Start(DemoGroup::Payment, 14, "业务招待费");
    Debit(guests, "5601.05", meal, {"D04", "E005"});
    Bank(guests, false, kSecondBank, meal, "信用卡");

    DemoVoucher& fees = Start(DemoGroup::Payment, 28, "支付银行手续费");
    const std::int64_t fee = 60 * kYuan + Draw(12'000);
    Debit(fees, "5603.03", fee);
    Bank(fees, false, kBank, fee, "网上银行");

    if (period_ == 3 || period_ == 9) {
        DemoVoucher& fair = Start(DemoGroup::Payment, 12, period_ == 3 ? "春茶推广费" : "秋季展会展览费");
        const std::int64_t cents = 36'000 * kYuan;
        if (period_ == 3)
            Debit(fair, "5601.04", cents, {"P01"});
        else
            Debit(fair, "5601.06", cents, {"D05", "E007", "P02"});
        Bank(fair, false, kBank, cents, "电汇");
    }
}

void DemoVouchers::MoveMoney() {
    DemoVoucher& cash = Start(DemoGroup::Payment, 2, "提取备用金");
    Debit(cash, "1001", 10'000 * kYuan);
    Bank(cash, false, kBank, 10'000 * kYuan, "现金支票");

    if (period_ % 2 == 0) {
        DemoVoucher& move = Start(DemoGroup::General, 3, "银行间转款");
        Bank(move, true, kBank, 50'000 * kYuan, "网上银行");
        Bank(move, false, kSecondBank, 50'000 * kYuan, "网上银行");
    }
    if (period_ % 3 == 0) {
        DemoVoucher& interest = Start(DemoGroup::Receipt, 21, "收到银行存款利息");
        const std::int64_t cents = 300 * kYuan + Draw(40'000);
        Bank(interest, true, kBank, cents, "网上银行");
        Credit(interest, "5603.02", cents);

        Balance& dollars = foreignBanks_["1002.02"];
        const std::int64_t foreign = dollars.foreignCents / 2;
        if (foreign > 0) {
            const std::int64_t rate = rates_[2];
            const std::int64_t rmb = Converted(foreign, rate);
            DemoVoucher& sale = Start(DemoGroup::Receipt, 22, "结汇");
            Bank(sale, true, kBank, rmb, "网上银行");
            SetForeign(Bank(sale, false, "1002.02", rmb, "网上银行"), 2, rate, foreign);
            dollars.foreignCents -= foreign;
            dollars.cents -= rmb;
        }
    }
    if (period_ == 6) {
        DemoVoucher& grant = Start(DemoGroup::Receipt, 24, "收到政府补助");
        Bank(grant, true, kBank, 20'000 * kYuan, "网上银行");
        Credit(grant, "5301.01", 20'000 * kYuan);
    }
}

}  // namespace vicenter::host
