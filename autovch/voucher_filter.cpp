#include "autovch/voucher_filter.h"

#include <algorithm>

#include "autovch/generation_sql.h"
#include "entry/host_services.h"
#include "platform/system/utf8.h"
#include "store/statements.h"

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

std::vector<std::string> ReadVoucherGroups() {
    std::vector<std::string> names;
    const auto groups = store::GetRecordset("select FGroupID,FName from t_VoucherGroup order by FGroupID ");
    if (!groups) return names;
    for (; !groups->AtEnd(); groups->MoveNext())
        names.push_back(groups->Value("FName").ToTextOrEmpty());
    return names;
}

VoucherNumbers ReadVoucherNumbers(const std::string& year, const std::string& period) {
    if (!IsWholeNumber(year) || !IsWholeNumber(period)) return {};
    const auto numbers = store::GetRecordset(
        "select isnull(MIN(FNumber),0) as FMinNum,isnull(MAX(FNumber),0) as FMaxNum from t_Voucher where "
        "FYear = " +
        year + " and FPeriod = " + period);
    if (!numbers || numbers->AtEnd()) return {};
    return {numbers->Value("FMinNum").ToTextOrEmpty(), numbers->Value("FMaxNum").ToTextOrEmpty()};
}

FilterCount CountSelected(const VoucherFilter& filter) {
    if (!FilterProblem(filter).empty()) return {};
    const auto counts = store::GetRecordset(VoucherCountQuery(filter));
    if (!counts || counts->AtEnd()) return {};
    return {counts->Value("FNumbers").ToInt64(), counts->Value("FVouchers").ToInt64(),
            counts->Value("FLines").ToInt64()};
}

bool IsWholeNumber(const std::string& text) {
    return !text.empty() && text.size() <= 18 &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
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
