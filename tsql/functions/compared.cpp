// Comparisons of one value with several, each pair by the common type of its own: where SQLite's BETWEEN,
// CASE and nullif would not do, since they compare one form of the value with all. Each value stands before
// its type.

#include <optional>

#include "tsql/functions/call.h"
#include "tsql/types/convert.h"

namespace vicenter::tsql::engine {

namespace {

// What a value is turned into to be compared as a value of the common type. As Translator::RenderCompared.
SqlType ComparedType(const SqlType& type, const SqlType& common) {
    constexpr int kPlaces = 10;
    if (!common.IsExact() || type.IsExact()) return common.IsExact() ? type : common;
    if (type.IsInteger()) return AsDecimal(type);
    return type.IsText() && !common.IsMoney() ? SqlType::Decimal(kMaxPrecision, kPlaces) : common;
}

template <class T>
int Order(const T& a, const T& b) {
    return a < b ? -1 : b < a ? 1 : 0;
}

// Zeros at the end count as nothing.
std::string_view Significant(std::string_view bytes) {
    while (!bytes.empty() && bytes.back() == '\0')
        bytes.remove_suffix(1);
    return bytes;
}

// The order of the values at two places; nothing when one of them is NULL.
std::optional<int> Compared(const FunctionCall& call, int a, int b) {
    if (call.IsNull(a) || call.IsNull(b)) return std::nullopt;
    const SqlType left = call.Type(a + 1);
    const SqlType right = call.Type(b + 1);
    const SqlType common = CommonType(left, right);
    if (left.IsText() && right.IsText()) return CompareTexts(call.Collation(), call.Text(a), call.Text(b));
    const auto value = [&](int place, const SqlType& type) {
        return Convert(call.Argument(place, type), type, ComparedType(type, common), 0,
                       call.Services().dateFormat);
    };
    const Value first = value(a, left);
    const Value second = value(b, right);
    switch (common.Storage()) {
        case StorageClass::kInteger:
            return Order(first.Int(), second.Int());
        case StorageClass::kReal:
            return Order(first.Real(), second.Real());
        case StorageClass::kDecimal:
            return Decimal::Compare(first.Exact(), second.Exact());
        case StorageClass::kDate:
            return Order(StoredDate(first.Date(), common), StoredDate(second.Date(), common));
        case StorageClass::kText:
            if (common.IsGuid()) return CompareGuids(first.Text(), second.Text());
            return CompareTexts(call.Collation(), first.Text(), second.Text());
        case StorageClass::kBinary:
            return Order(Significant(first.Blob()), Significant(second.Blob()));
    }
    return std::nullopt;
}

// ts_between(value, low, high)
void BetweenFunction(FunctionCall& call) {
    const std::optional<int> low = Compared(call, 0, 2);
    const std::optional<int> high = Compared(call, 0, 4);
    const bool isOutside = (low && *low < 0) || (high && *high > 0);
    if (isOutside || (low && high)) call.Return(std::int64_t{isOutside ? 0 : 1});
}

// ts_nullif(value, other)
void NullIfFunction(FunctionCall& call) {
    if (call.IsNull(0) || Compared(call, 0, 2) == 0) return;
    call.ReturnArgument(0);
}

// ts_which(value, first, second, …): the number of the one that it is equal to
void WhichFunction(FunctionCall& call) {
    for (int at = 2; at + 1 < call.Count(); at += 2) {
        if (Compared(call, 0, at) == 0) return call.Return(std::int64_t{at / 2});
    }
}

constexpr const SqlFunction* kOthers[] = {&kBetweenCall, &kNullIfCall, &kWhichCall};

}  // namespace

const SqlFunction kBetweenCall = Scalar<BetweenFunction>("ts_between", 6);
const SqlFunction kNullIfCall = Scalar<NullIfFunction>("ts_nullif", 4);
const SqlFunction kWhichCall = Scalar<WhichFunction>("ts_which", -1);

FunctionSet ComparisonFunctions() {
    return {{}, kOthers};
}

}  // namespace vicenter::tsql::engine
