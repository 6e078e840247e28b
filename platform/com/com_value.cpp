#include "platform/com/com_value.h"

#include <cmath>
#include <limits>
#include <new>

#include "automation/error.h"
#include "automation/object.h"
#include "platform/com/dispatch_object.h"

namespace vicenter::com {

using automation::DateTime;
using automation::Decimal;
using automation::Error;
using automation::UInt128;
using automation::Variant;
using automation::VariantArray;
using automation::VariantType;
namespace error_number = automation::error_number;

namespace {

constexpr int kMostScale = 28;
constexpr int kMagnitudeBits = 96;
constexpr int kCurrencyScale = 4;

constexpr double kFirstDay = -657434;       // of the year 100
constexpr double kBehindLastDay = 2958466;  // of the year 9999

// A number that COM's dates have; none is no number.
bool IsDate(double serial) {
    return std::trunc(serial) >= kFirstDay && serial < kBehindLastDay;
}

bool Fits(const Decimal& number) {
    return number.Scale() <= kMostScale && (number.Magnitude() >> kMagnitudeBits) == 0;
}

void PutDecimal(VARIANT& target, const Decimal& number) {
    const Decimal shown = Fits(number) ? number : number.Normalized();
    if (!Fits(shown)) {
        // Digit for digit, since no number of COM holds it.
        target.bstrVal = NewText(number.ToText());
        target.vt = VT_BSTR;
        return;
    }
    DECIMAL& decimal = target.decVal;
    decimal.scale = static_cast<BYTE>(shown.Scale());
    decimal.sign = shown.IsNegative() ? DECIMAL_NEG : 0;
    decimal.Lo64 = static_cast<std::uint64_t>(shown.Magnitude());
    decimal.Hi32 = static_cast<ULONG>(shown.Magnitude() >> 64);
    target.vt = VT_DECIMAL;  // last: it shares its place with the number
}

// COM's dates begin with the year 100. One before it stays what it is, as a text.
void PutDate(VARIANT& target, const DateTime& date) {
    if (!IsDate(date.ToSerial())) {
        target.bstrVal = NewText(date.ToText());
        target.vt = VT_BSTR;
        return;
    }
    target.date = date.ToSerial();
    target.vt = VT_DATE;
}

void PutInteger(VARIANT& target, std::int64_t value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (value < Limits::min() || value > Limits::max()) return PutDecimal(target, Decimal(value));
    target.lVal = static_cast<LONG>(value);
    target.vt = VT_I4;
}

void Put(VARIANT& target, const Variant& value);

void PutArray(VARIANT& target, const VariantArray& items) {
    SAFEARRAY* array = SafeArrayCreateVector(VT_VARIANT, 0, static_cast<ULONG>(items.size()));
    if (array == nullptr) throw std::bad_alloc();
    target.parray = array;
    target.vt = VT_ARRAY | VT_VARIANT;
    VARIANT* places = nullptr;
    if (FAILED(SafeArrayAccessData(array, reinterpret_cast<void**>(&places)))) throw std::bad_alloc();
    try {
        for (std::size_t i = 0; i < items.size(); ++i)
            Put(places[i], items[i]);
    } catch (...) {
        SafeArrayUnaccessData(array);
        throw;
    }
    SafeArrayUnaccessData(array);
}

// Into an empty one.
void Put(VARIANT& target, const Variant& value) {
    switch (value.Type()) {
        case VariantType::Empty:
            return;
        case VariantType::Null:
            target.vt = VT_NULL;
            return;
        case VariantType::Boolean:
            target.boolVal = value.ToBoolean() ? VARIANT_TRUE : VARIANT_FALSE;
            target.vt = VT_BOOL;
            return;
        case VariantType::Int16:
            target.iVal = value.ToInt16();
            target.vt = VT_I2;
            return;
        case VariantType::Int32:
        case VariantType::Int64:
            return PutInteger(target, value.ToInt64());
        case VariantType::Double:
            target.dblVal = value.ToDouble();
            target.vt = VT_R8;
            return;
        case VariantType::Decimal:
            return PutDecimal(target, value.ToDecimal());
        case VariantType::Date:
            return PutDate(target, value.ToDate());
        case VariantType::Text:
            target.bstrVal = NewText(value.AsText());
            target.vt = VT_BSTR;
            return;
        case VariantType::Array:
            return PutArray(target, value.AsArray());
        case VariantType::Object:
            target.pdispVal = NewDispatch(std::get<automation::ObjectRef>(value.Raw()));
            target.vt = VT_DISPATCH;
            return;
        case VariantType::Error:
            target.scode = value.AsErrorCode();
            target.vt = VT_ERROR;
            return;
    }
}

Variant FromUnsigned(std::uint64_t value) {
    if (value <= static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max()))
        return static_cast<std::int32_t>(value);
    if (value <= static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()))
        return static_cast<std::int64_t>(value);
    return Decimal::FromParts(false, value, 0);
}

Variant FromDecimal(const DECIMAL& decimal) {
    const UInt128 magnitude = (UInt128(decimal.Hi32) << 64) | UInt128(decimal.Lo64);
    return Decimal::FromParts((decimal.sign & DECIMAL_NEG) != 0, magnitude, decimal.scale);
}

Variant FromCurrency(std::int64_t units) {
    const std::uint64_t magnitude =
        units < 0 ? ~static_cast<std::uint64_t>(units) + 1 : static_cast<std::uint64_t>(units);
    return Decimal::FromParts(units < 0, magnitude, kCurrencyScale);
}

// Whether a single value of that type is known: one that stands in an array, or that a reference leads to.
bool IsKnown(VARTYPE type) {
    switch (type) {
        case VT_BOOL:
        case VT_I1:
        case VT_UI1:
        case VT_I2:
        case VT_UI2:
        case VT_I4:
        case VT_INT:
        case VT_UI4:
        case VT_UINT:
        case VT_I8:
        case VT_UI8:
        case VT_R4:
        case VT_R8:
        case VT_CY:
        case VT_DECIMAL:
        case VT_DATE:
        case VT_BSTR:
        case VT_DISPATCH:
        case VT_UNKNOWN:
        case VT_ERROR:
        case VT_VARIANT:
            return true;
        default:
            return false;
    }
}

// The elements of one dimension of an array, those behind it as arrays within. `place` holds the indexes so
// far, the first dimension first.
VariantArray Elements(SAFEARRAY* array, VARTYPE type, std::vector<LONG>& place) {
    const auto dimension = static_cast<UINT>(place.size() + 1);
    LONG lower = 0;
    LONG upper = -1;
    SafeArrayGetLBound(array, dimension, &lower);
    SafeArrayGetUBound(array, dimension, &upper);
    VariantArray result;
    for (LONG index = lower; index <= upper; ++index) {
        place.push_back(index);
        if (dimension < SafeArrayGetDim(array)) {
            result.emplace_back(Elements(array, type, place));
        } else {
            OwnVariant element;
            void* into = &element.Value();
            if (type != VT_VARIANT) {
                element.Value().vt = type;
                into = type == VT_DECIMAL ? static_cast<void*>(&element.Value().decVal)
                                          : static_cast<void*>(&element.Value().byref);
            }
            const HRESULT code = SafeArrayGetElement(array, place.data(), into);
            if (type == VT_DECIMAL) element.Value().vt = type;
            if (FAILED(code)) {
                VariantInit(&element.Value());
                throw Error(error_number::kSubscriptOutOfRange);
            }
            result.push_back(FromCom(element.Value()));
        }
        place.pop_back();
    }
    return result;
}

Variant FromArray(SAFEARRAY* array) {
    if (array == nullptr || SafeArrayGetDim(array) == 0) return VariantArray();
    VARTYPE type = VT_EMPTY;
    // A record is as long as its type says, and would not fit in the place of a value.
    if (FAILED(SafeArrayGetVartype(array, &type)) || !IsKnown(type)) throw Error(error_number::kTypeMismatch);
    std::vector<LONG> place;
    return Elements(array, type, place);
}

Variant FromUnknown(IUnknown* object) {
    if (object == nullptr) return automation::ObjectRef();
    ComPointer<IDispatch> dispatch;
    if (FAILED(object->QueryInterface(IID_IDispatch, dispatch.ReceiveAny())))
        throw Error(error_number::kTypeMismatch);
    return ObjectOf(dispatch.Get());
}

// The type of the variable that a reference leads to.
VARTYPE TypeBehind(const VARIANT& reference) {
    const auto type = static_cast<VARTYPE>(reference.vt & ~VT_BYREF);
    if (reference.byref == nullptr || ((type & VT_ARRAY) == 0 && !IsKnown(type)))
        throw Error(error_number::kTypeMismatch);
    return type;
}

// A plain VARIANT of what a reference leads to, sharing its content.
VARIANT Dereferenced(const VARIANT& reference) {
    VARIANT plain;
    VariantInit(&plain);
    const VARTYPE type = TypeBehind(reference);
    if (type == VT_VARIANT) return *reference.pvarVal;
    if (type == VT_DECIMAL) {
        plain.decVal = *reference.pdecVal;
    } else if ((type & VT_ARRAY) != 0) {
        plain.parray = *reference.pparray;
    } else {
        switch (type) {
            case VT_I1:
            case VT_UI1:
                plain.bVal = *reference.pbVal;
                break;
            case VT_I2:
            case VT_UI2:
            case VT_BOOL:
                plain.iVal = *reference.piVal;
                break;
            case VT_BSTR:
            case VT_DISPATCH:
            case VT_UNKNOWN:
                plain.byref = *static_cast<void**>(reference.byref);
                break;
            case VT_I8:
            case VT_UI8:
            case VT_R8:
            case VT_CY:
            case VT_DATE:
                plain.llVal = *reference.pllVal;
                break;
            default:
                plain.lVal = *reference.plVal;
        }
    }
    plain.vt = type;
    return plain;
}

}  // namespace

BSTR NewText(std::string_view text) {
    const std::wstring wide = system::os::Wide(text);
    BSTR result = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    if (result == nullptr) throw std::bad_alloc();
    return result;
}

std::string TextOf(BSTR text) {
    return text == nullptr ? std::string() : system::os::Narrow(std::wstring_view(text, SysStringLen(text)));
}

OwnVariant::OwnVariant(const Variant& value) {
    VariantInit(&value_);
    try {
        Put(value_, value);
    } catch (...) {
        VariantClear(&value_);
        throw;
    }
}

Variant FromCom(const VARIANT& value) {
    if ((value.vt & VT_BYREF) != 0) return FromCom(Dereferenced(value));
    if ((value.vt & VT_ARRAY) != 0) return FromArray(value.parray);
    switch (value.vt) {
        case VT_EMPTY:
            return {};
        case VT_NULL:
            return Variant::Null();
        case VT_BOOL:
            return value.boolVal != VARIANT_FALSE;
        case VT_I1:
            return static_cast<std::int16_t>(static_cast<signed char>(value.cVal));
        case VT_UI1:
            return static_cast<std::int16_t>(value.bVal);
        case VT_I2:
            return static_cast<std::int16_t>(value.iVal);
        case VT_UI2:
            return static_cast<std::int32_t>(value.uiVal);
        case VT_I4:
        case VT_INT:
            return static_cast<std::int32_t>(value.lVal);
        case VT_UI4:
        case VT_UINT:
            return FromUnsigned(value.ulVal);
        case VT_I8:
            return static_cast<std::int64_t>(value.llVal);
        case VT_UI8:
            return FromUnsigned(value.ullVal);
        case VT_R4:
            return static_cast<double>(value.fltVal);
        case VT_R8:
            return value.dblVal;
        case VT_CY:
            return FromCurrency(value.cyVal.int64);
        case VT_DECIMAL:
            return FromDecimal(value.decVal);
        case VT_DATE:
            if (!IsDate(value.date)) throw Error(error_number::kOverflow);
            return DateTime::FromSerial(value.date);
        case VT_BSTR:
            return TextOf(value.bstrVal);
        case VT_DISPATCH:
        case VT_UNKNOWN:
            return FromUnknown(value.punkVal);
        case VT_ERROR:
            return Variant::ErrorValue{value.scode};
        default:
            throw Error(error_number::kTypeMismatch);
    }
}

void AssignToReference(const VARIANT& reference, const Variant& value) {
    OwnVariant fresh(value);
    const VARTYPE type = TypeBehind(reference);
    if (type == VT_VARIANT) {
        // A reference to a variable that is one itself.
        if ((reference.pvarVal->vt & VT_BYREF) != 0) return AssignToReference(*reference.pvarVal, value);
        VariantClear(reference.pvarVal);
        fresh.MoveTo(*reference.pvarVal);
        return;
    }
    if (FAILED(VariantChangeType(&fresh.Value(), &fresh.Value(), 0, type)))
        throw Error(error_number::kTypeMismatch);
    // The variable's old content goes with ours.
    VARIANT old = Dereferenced(reference);
    const VARIANT& made = fresh.Value();
    if (type == VT_DECIMAL) {
        *reference.pdecVal = made.decVal;
        reference.pdecVal->wReserved = 0;
        return;
    }
    switch ((type & VT_ARRAY) != 0 ? static_cast<VARTYPE>(VT_ARRAY) : type) {
        case VT_I1:
        case VT_UI1:
            *reference.pbVal = made.bVal;
            return;
        case VT_I2:
        case VT_UI2:
        case VT_BOOL:
            *reference.piVal = made.iVal;
            return;
        case VT_ARRAY:
        case VT_BSTR:
        case VT_DISPATCH:
        case VT_UNKNOWN:
            *static_cast<void**>(reference.byref) = made.byref;
            VariantInit(&fresh.Value());
            VariantClear(&old);
            return;
        case VT_I8:
        case VT_UI8:
        case VT_R8:
        case VT_CY:
        case VT_DATE:
            *reference.pllVal = made.llVal;
            return;
        default:
            *reference.plVal = made.lVal;
    }
}

}  // namespace vicenter::com
