#include "autovch/voucher_filter.h"

#include "entry/host_services.h"
#include "platform/system/utf8.h"

namespace vicenter::autovch {

namespace {

std::int16_t ProfileNumber(const char* key) {
    try {
        return entry::GetSystemProfile("GL", key).ToInt16();
    } catch (const automation::Error&) {
        return 0;
    }
}

bool IsEmpty(const std::string& text) {
    return system::TrimBlanks(text).empty();
}

}  // namespace

LedgerPeriod ReadLedgerPeriod() {
    return {ProfileNumber("PeriodCount"), ProfileNumber("CurrentYear"), ProfileNumber("CurrentPeriod")};
}

store::VoucherCount CountSelected(const VoucherFilter& filter) {
    if (!FilterProblem(filter).empty()) return {};
    return store::CountVouchers(filter);
}

std::string FilterProblem(const VoucherFilter& filter) {
    constexpr const char* kRange = "请正确设置凭证号范围！";
    if (IsEmpty(filter.year)) return "请设置凭证过滤年度！";
    if (IsEmpty(filter.period)) return "请设置凭证过滤期间！";
    for (const std::string* number : {&filter.year, &filter.period, &filter.from, &filter.to}) {
        if (!IsWholeNumber(*number)) return kRange;
    }
    return std::stoll(filter.from) <= std::stoll(filter.to) ? std::string() : kRange;
}

}  // namespace vicenter::autovch
