#include "automation/variant.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include "automation/deep_release.h"
#include "automation/object.h"
#include "text/blanks.h"

namespace vicenter::automation {

namespace {

[[noreturn]] void TypeMismatch() {
    throw Error(error_number::kTypeMismatch);
}
[[noreturn]] void Overflow() {
    throw Error(error_number::kOverflow);
}

std::string_view Trimmed(std::string_view text) {
    return text::Trimmed(text, text::kSpacesAndLineEnds);
}

template <class Integer>
Integer Narrowed(std::int64_t value) {
    if (value < std::numeric_limits<Integer>::min() || value > std::numeric_limits<Integer>::max())
        Overflow();
    return static_cast<Integer>(value);
}

// Half to even, as automation rounds. 2^63 is the first double that no longer fits.
std::int64_t RoundedDouble(double value) {
    if (!std::isfinite(value)) Overflow();
    const double rounded = std::nearbyint(value);
    if (rounded < -9223372036854775808.0 || rounded >= 9223372036854775808.0) Overflow();
    return static_cast<std::int64_t>(rounded);
}

std::int64_t RoundedDecimal(const Decimal& value) {
    const auto whole = value.TruncateToInt64();
    if (!whole) Overflow();
    const Decimal rest = Decimal::Subtract(value, Decimal(*whole));
    const int half =
        Decimal::Compare(rest.IsNegative() ? rest.Negated() : rest, Decimal::FromParts(false, 5, 1));
    if (half < 0 || (half == 0 && *whole % 2 == 0)) return *whole;
    const Decimal away = Decimal::Add(Decimal(*whole), Decimal(rest.IsNegative() ? -1 : 1));
    const auto result = away.TruncateToInt64();
    if (!result) Overflow();
    return *result;
}

}  // namespace

bool Variant::IsMissing() const {
    const auto* error = std::get_if<ErrorValue>(&data_);
    return error != nullptr && error->code == kMissingArgument;
}

bool Variant::IsNumber() const {
    switch (Type()) {
        case VariantType::Boolean:
        case VariantType::Int16:
        case VariantType::Int32:
        case VariantType::Int64:
        case VariantType::Double:
        case VariantType::Decimal:
        case VariantType::Date:
            return true;
        default:
            return false;
    }
}

bool Variant::IsNumeric() const {
    if (const auto* text = std::get_if<std::string>(&data_)) return ParseDouble(*text).has_value();
    return IsNumber() || IsEmpty();
}

std::string Variant::TypeName() const {
    switch (Type()) {
        case VariantType::Empty:
            return "Empty";
        case VariantType::Null:
            return "Null";
        case VariantType::Boolean:
            return "Boolean";
        case VariantType::Int16:
            return "Integer";
        case VariantType::Int32:
            return "Long";
        case VariantType::Int64:
            return "LongLong";
        case VariantType::Double:
            return "Double";
        case VariantType::Decimal:
            return "Decimal";
        case VariantType::Date:
            return "Date";
        case VariantType::Text:
            return "String";
        case VariantType::Array:
            return "Variant()";
        case VariantType::Error:
            return "Error";
        case VariantType::Object:
            break;
    }
    const auto& object = std::get<ObjectRef>(data_);
    return object ? object->TypeName() : "Nothing";
}

std::shared_ptr<const VariantArray> Variant::Shared(VariantArray items) {
    struct Owner {
        VariantArray items;

        explicit Owner(VariantArray&& given) : items(std::move(given)) {}
        Owner(const Owner&) = delete;
        Owner& operator=(const Owner&) = delete;
        ~Owner() {
            for (Variant& item : items)
                Release(item);
        }
    };
    auto owner = std::make_shared<Owner>(std::move(items));
    const VariantArray* array = &owner->items;
    return {std::move(owner), array};
}

Variant Variant::Resolved() const {
    const auto* object = std::get_if<ObjectRef>(&data_);
    if (object == nullptr) return *this;
    if (!*object) throw Error(error_number::kObjectVariableNotSet);
    if (!(*object)->HasMember("")) throw Error(error_number::kNoSuchMember);
    Variant value = (*object)->Get("");
    if (value.IsObject()) TypeMismatch();  // one step only: a default member that gives objects has no value
    return value;
}

bool Variant::ToBoolean() const {
    switch (Type()) {
        case VariantType::Empty:
            return false;
        case VariantType::Null:
            throw Error(error_number::kInvalidUseOfNull);
        case VariantType::Boolean:
            return std::get<bool>(data_);
        case VariantType::Text: {
            const std::string_view text = Trimmed(std::get<std::string>(data_));
            if (SameName(text, "true")) return true;
            if (SameName(text, "false")) return false;
            return ToDouble() != 0;
        }
        case VariantType::Decimal:
            return !std::get<Decimal>(data_).IsZero();
        case VariantType::Object:
            return Resolved().ToBoolean();
        default:
            return ToDouble() != 0;
    }
}

std::int16_t Variant::ToInt16() const {
    return Narrowed<std::int16_t>(ToInt64());
}

std::int32_t Variant::ToInt32() const {
    return Narrowed<std::int32_t>(ToInt64());
}

std::int64_t Variant::ToInt64() const {
    switch (Type()) {
        case VariantType::Empty:
            return 0;
        case VariantType::Null:
            throw Error(error_number::kInvalidUseOfNull);
        case VariantType::Boolean:
            return std::get<bool>(data_) ? kAutomationTrue : kAutomationFalse;
        case VariantType::Int16:
            return std::get<std::int16_t>(data_);
        case VariantType::Int32:
            return std::get<std::int32_t>(data_);
        case VariantType::Int64:
            return std::get<std::int64_t>(data_);
        case VariantType::Double:
            return RoundedDouble(std::get<double>(data_));
        case VariantType::Decimal:
            return RoundedDecimal(std::get<Decimal>(data_));
        case VariantType::Date:
            return RoundedDouble(std::get<DateTime>(data_).ToSerial());
        case VariantType::Text: {
            const auto& text = std::get<std::string>(data_);
            // Exact where the text is a plain decimal: a double would lose the last digits of a long integer.
            if (const auto decimal = Decimal::Parse(Trimmed(text))) return RoundedDecimal(*decimal);
            return RoundedDouble(ToDouble());
        }
        case VariantType::Object:
            return Resolved().ToInt64();
        case VariantType::Array:
        case VariantType::Error:
            break;
    }
    TypeMismatch();
}

double Variant::ToDouble() const {
    switch (Type()) {
        case VariantType::Empty:
            return 0;
        case VariantType::Null:
            throw Error(error_number::kInvalidUseOfNull);
        case VariantType::Double:
            return std::get<double>(data_);
        case VariantType::Decimal:
            return std::get<Decimal>(data_).ToDouble();
        case VariantType::Date:
            return std::get<DateTime>(data_).ToSerial();
        case VariantType::Text: {
            const auto value = ParseDouble(std::get<std::string>(data_));
            if (!value) TypeMismatch();
            if (!std::isfinite(*value)) Overflow();
            return *value;
        }
        case VariantType::Object:
            return Resolved().ToDouble();
        case VariantType::Array:
        case VariantType::Error:
            TypeMismatch();
        default:
            return static_cast<double>(ToInt64());
    }
}

Decimal Variant::ToDecimal() const {
    switch (Type()) {
        case VariantType::Decimal:
            return std::get<Decimal>(data_);
        case VariantType::Double:
            return Decimal::FromDouble(std::get<double>(data_));
        case VariantType::Date:
            return Decimal::FromDouble(std::get<DateTime>(data_).ToSerial());
        case VariantType::Text: {
            const auto& text = std::get<std::string>(data_);
            if (const auto exact = Decimal::Parse(Trimmed(text))) return *exact;
            return Decimal::FromDouble(ToDouble());
        }
        case VariantType::Object:
            return Resolved().ToDecimal();
        default:
            return Decimal(ToInt64());
    }
}

DateTime Variant::ToDate() const {
    switch (Type()) {
        case VariantType::Date:
            return std::get<DateTime>(data_);
        case VariantType::Text: {
            const auto& text = std::get<std::string>(data_);
            if (const auto date = DateTime::Parse(Trimmed(text))) return *date;
            break;
        }
        case VariantType::Object:
            return Resolved().ToDate();
        default:
            break;
    }
    const double serial = ToDouble();
    if (serial <= -657435.0 || serial >= 2958466.0) Overflow();  // the years 100 to 9999
    return DateTime::FromSerial(serial);
}

std::string Variant::ToText() const {
    switch (Type()) {
        case VariantType::Empty:
            return {};
        case VariantType::Null:
            throw Error(error_number::kInvalidUseOfNull);
        case VariantType::Boolean:
            return std::get<bool>(data_) ? "True" : "False";
        case VariantType::Double:
            return DoubleToText(std::get<double>(data_));
        case VariantType::Decimal:
            return std::get<Decimal>(data_).ToShortText();
        case VariantType::Date:
            return std::get<DateTime>(data_).ToText();
        case VariantType::Text:
            return std::get<std::string>(data_);
        case VariantType::Object:
            return Resolved().ToText();
        case VariantType::Array:
        case VariantType::Error:
            TypeMismatch();
        default:
            return std::to_string(ToInt64());
    }
}

std::string Variant::ToTextOrEmpty() const {
    if (IsNull()) return {};
    if (IsObject()) {
        const Variant value = Resolved();
        return value.IsNull() ? std::string() : value.ToText();
    }
    return ToText();
}

const std::string& Variant::AsText() const {
    if (const auto* text = std::get_if<std::string>(&data_)) return *text;
    TypeMismatch();
}

const VariantArray& Variant::AsArray() const {
    if (const auto* array = std::get_if<std::shared_ptr<const VariantArray>>(&data_)) return **array;
    TypeMismatch();
}

const ObjectRef& Variant::AsObject() const {
    const auto* object = std::get_if<ObjectRef>(&data_);
    if (object == nullptr) throw Error(error_number::kObjectRequired);
    if (!*object) throw Error(error_number::kObjectVariableNotSet);
    return *object;
}

std::int32_t Variant::AsErrorCode() const {
    if (const auto* error = std::get_if<ErrorValue>(&data_)) return error->code;
    TypeMismatch();
}

bool operator==(const Variant& a, const Variant& b) {
    if (a.data_.index() != b.data_.index()) return false;
    if (a.IsArray()) return a.AsArray() == b.AsArray();
    return a.data_ == b.data_;
}

std::string DoubleToText(double value) {
    if (value == 0) return "0";  // also for minus zero
    char buffer[64];
    // People and databases read amounts: no exponent within the digits that a double holds.
    const double magnitude = std::fabs(value);
    const auto result = magnitude >= 1e-5 && magnitude < 1e15
                            ? std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed)
                            : std::to_chars(buffer, buffer + sizeof buffer, value);
    return std::string(buffer, result.ptr);
}

std::optional<double> ParseDouble(std::string_view text) {
    text = Trimmed(text);
    std::string_view digits = text;
    if (!digits.empty() && (digits.front() == '+' || digits.front() == '-')) digits.remove_prefix(1);
    // from_chars would also take "inf" and "nan".
    if (digits.empty() || !((digits.front() >= '0' && digits.front() <= '9') || digits.front() == '.'))
        return {};
    if (text.front() == '+') text.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (end != text.data() + text.size()) return std::nullopt;
    if (error == std::errc::result_out_of_range) {
        // Too small reads as 0, too large as infinity, which the conversions report as overflow.
        const std::size_t exponent = text.find_first_of("eE");
        const bool tiny =
            exponent != std::string_view::npos && text.find('-', exponent) != std::string_view::npos;
        return tiny ? 0.0 : std::numeric_limits<double>::infinity();
    }
    if (error != std::errc()) return std::nullopt;
    return value;
}

}  // namespace vicenter::automation
