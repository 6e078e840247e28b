#pragma once

// Variant: the value that travels through every late-bound call.
//
// A value type; texts are UTF-8, arrays are shared copy-on-write (an assigned array never changes behind its
// other owners), objects are shared references. Not thread-safe: everything runs on the user-interface
// thread.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "automation/date_time.h"
#include "automation/decimal.h"
#include "automation/error.h"

namespace vicenter::automation {

class Object;
using ObjectRef = std::shared_ptr<Object>;

enum class VariantType {
    Empty,
    Null,
    Boolean,
    Int16,
    Int32,
    Int64,
    Double,
    Decimal,
    Date,
    Text,
    Array,
    Object,
    Error
};

// At the automation boundary true has all bits set.
inline constexpr std::int16_t kAutomationTrue = -1;
inline constexpr std::int16_t kAutomationFalse = 0;

class Variant;
using VariantArray = std::vector<Variant>;

class Variant {
  public:
    // An error value (not a thrown error): for instance a missing optional argument.
    struct ErrorValue {
        std::int32_t code = 0;
        friend bool operator==(const ErrorValue&, const ErrorValue&) = default;
    };
    static constexpr std::int32_t kMissingArgument = static_cast<std::int32_t>(0x80020004);

    Variant() = default;
    // By hand: libstdc++ 12 ends a copy that throws (refused memory) by destroying what was never made, in a
    // std::variant of just such types as ours.
    Variant(const Variant& other) : data_(Copied(other.data_)) {}
    Variant(Variant&&) noexcept = default;
    Variant& operator=(const Variant&) = default;
    Variant& operator=(Variant&&) noexcept = default;
    ~Variant() = default;
    Variant(bool value) : data_(value) {}
    Variant(std::int16_t value) : data_(value) {}
    Variant(std::int32_t value) : data_(value) {}
    Variant(std::int64_t value) : data_(value) {}
    Variant(double value) : data_(value) {}
    Variant(Decimal value) : data_(value) {}
    Variant(DateTime value) : data_(value) {}
    Variant(std::string value) : data_(std::move(value)) {}
    Variant(std::string_view value) : data_(std::string(value)) {}
    Variant(const char* value) : data_(std::string(value)) {}
    Variant(VariantArray value) : data_(Shared(std::move(value))) {}
    Variant(ObjectRef value) : data_(std::move(value)) {}
    template <class T>
    Variant(const std::shared_ptr<T>& value) : data_(ObjectRef(value)) {}
    Variant(ErrorValue value) : data_(value) {}
    Variant(const void*) = delete;  // a pointer must not turn into a boolean

    static Variant Null() {
        Variant result;
        result.data_ = NullValue{};
        return result;
    }
    static Variant Missing() { return Variant(ErrorValue{kMissingArgument}); }

    VariantType Type() const { return static_cast<VariantType>(data_.index()); }
    bool IsEmpty() const { return Type() == VariantType::Empty; }
    bool IsNull() const { return Type() == VariantType::Null; }
    bool IsText() const { return Type() == VariantType::Text; }
    bool IsArray() const { return Type() == VariantType::Array; }
    bool IsObject() const { return Type() == VariantType::Object; }
    bool IsError() const { return Type() == VariantType::Error; }
    bool IsMissing() const;
    // Boolean, any integer, double, decimal or date: a value that is a number without reading a text.
    bool IsNumber() const;
    // True for every number and for a text that ToDouble() would read.
    bool IsNumeric() const;
    // "Empty", "Null", "Boolean", "Integer", "Long", "LongLong", "Double", "Decimal", "Date", "String",
    // "Variant()", "Error", the object's own type name, or "Nothing".
    std::string TypeName() const;

    // Conversions as an automation client expects them, independent of the locale. Empty counts as 0, false
    // or the empty text; objects are asked for their default member. Each throws
    //   13 type mismatch (a text that is no number, an array, an error value), 6 overflow, 94 invalid use of
    //   Null.
    // Numbers round half to even when they become integers.
    bool ToBoolean() const;
    std::int16_t ToInt16() const;
    std::int32_t ToInt32() const;
    std::int64_t ToInt64() const;
    double ToDouble() const;
    Decimal ToDecimal() const;
    DateTime ToDate() const;
    // Booleans "True" and "False", dates as DateTime::ToText, doubles in their shortest form with '.'.
    std::string ToText() const;
    // As ToText, null counting as the empty text.
    std::string ToTextOrEmpty() const;

    // Exact access: throw 13 when the value is of another type (AsObject: 424; 91 for no object).
    const std::string& AsText() const;
    const VariantArray& AsArray() const;
    const ObjectRef& AsObject() const;
    std::int32_t AsErrorCode() const;
    // The value held, for visitors; the order of alternatives is VariantType's.
    struct NullValue {
        friend bool operator==(const NullValue&, const NullValue&) = default;
    };
    using Data = std::variant<std::monostate, NullValue, bool, std::int16_t, std::int32_t, std::int64_t,
                              double, Decimal, DateTime, std::string, std::shared_ptr<const VariantArray>,
                              ObjectRef, ErrorValue>;
    const Data& Raw() const { return data_; }

    // Same type and same value (texts by their bytes, arrays element by element, objects by identity).
    friend bool operator==(const Variant& a, const Variant& b);

  private:
    // The default member's value of an object, else *this.
    Variant Resolved() const;
    // An array that gives back its items however deep they own others.
    static std::shared_ptr<const VariantArray> Shared(VariantArray items);

    static Data Copied(const Data& data) {
        return std::visit([]<class T>(const T& held) { return Data(std::in_place_type<T>, held); }, data);
    }

    Data data_;
};

// The shortest text that reads back as the same double, '.' as the decimal sign: "0.1", "100000"; with an
// exponent only from 1e15 up and below 0.00001: "1e+20".
std::string DoubleToText(double value);
// A decimal number with optional sign, fraction and exponent, blanks around ignored; nothing for any other
// text (no hexadecimal, no separators, no currency signs, no "inf").
std::optional<double> ParseDouble(std::string_view text);

}  // namespace vicenter::automation
