#include "front/variant_bridge.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>

#include "automation/decimal.h"
#include "automation/error.h"
#include "front/handles.h"
#include "platform/system/utf8.h"

namespace vicenter::front {

using automation::DateTime;
using automation::Decimal;
using automation::Error;
using automation::Variant;
using automation::VariantArray;
using automation::VariantType;
namespace error_number = automation::error_number;

namespace {

std::string_view TextOf(const vic_variant& variant) {
    const vic_text& text = variant.value.text;
    if (text.data == nullptr && text.length != 0) throw Error(error_number::kInvalidProcedureCall);
    return text.data == nullptr ? std::string_view() : std::string_view(text.data, text.length);
}

[[noreturn]] void RefuseDepth() {
    throw Error(error_number::kOutOfStackSpace, "Arrays are nested too deeply", "VelaVICenter");
}

Variant ValueOf(const vic_variant& variant, int depth);

Variant ArrayOf(const vic_variant& variant, int depth) {
    if (depth > kDeepestArray) RefuseDepth();
    const vic_array& array = variant.value.array;
    if (array.items == nullptr && array.count != 0) throw Error(error_number::kInvalidProcedureCall);
    VariantArray items;
    items.reserve(array.count);
    for (std::size_t i = 0; i < array.count; ++i)
        items.push_back(ValueOf(array.items[i], depth));
    return items;
}

Variant DecimalOf(std::string_view digits) {
    const auto decimal = Decimal::Parse(digits);
    if (!decimal) throw Error(error_number::kTypeMismatch);
    return *decimal;
}

Variant ValueOf(const vic_variant& variant, int depth) {
    switch (variant.type) {
        case VIC_EMPTY:
            return {};
        case VIC_NULL:
            return Variant::Null();
        case VIC_BOOLEAN:
            return variant.value.boolean != 0;
        case VIC_INT16:
            return std::int16_t{variant.value.int16};
        case VIC_INT32:
            return std::int32_t{variant.value.int32};
        case VIC_INT64:
            return static_cast<std::int64_t>(variant.value.int64);
        case VIC_DOUBLE:
            return variant.value.number;
        case VIC_DECIMAL:
            return DecimalOf(TextOf(variant));
        case VIC_DATE:
            return Variant(variant.value.number).ToDate();
        case VIC_TEXT:
            return CleanText(TextOf(variant));
        case VIC_ARRAY:
            return ArrayOf(variant, depth + 1);
        case VIC_OBJECT:
            return Variant(variant.value.object != nullptr ? ObjectOf(variant.value.object)
                                                           : automation::ObjectRef());
        case VIC_ERROR:
            return Variant::ErrorValue{variant.value.int32};
        default:
            throw Error(error_number::kInvalidProcedureCall, "The variant's type does not exist");
    }
}

}  // namespace

std::string CleanText(std::string_view text) {
    if (system::IsValidUtf8(text)) return std::string(text);
    return system::FromUtf16(system::ToUtf16(text));
}

Variant FromC(const vic_variant& variant) {
    return ValueOf(variant, 0);
}

void SetText(vic_variant& variant, vic_type type, std::string_view text) {
    auto* data = new char[text.size() + 1];
    std::copy(text.begin(), text.end(), data);
    data[text.size()] = '\0';
    variant = vic_variant{};
    variant.type = type;
    variant.flags = VIC_OWNED;
    variant.value.text.data = data;
    variant.value.text.length = text.size();
}

void SetArray(vic_variant& variant, std::size_t count) {
    auto* items = count == 0 ? nullptr : new vic_variant[count]();
    variant = vic_variant{};
    variant.type = VIC_ARRAY;
    variant.flags = VIC_OWNED;
    variant.value.array.items = items;
    variant.value.array.count = count;
}

namespace {

// What owns nothing; anything else becomes empty.
void FillPlain(const Variant& value, vic_variant& variant) {
    variant = vic_variant{};
    switch (value.Type()) {
        case VariantType::Null:
            variant.type = VIC_NULL;
            return;
        case VariantType::Boolean:
            variant.type = VIC_BOOLEAN;
            variant.value.boolean =
                std::get<bool>(value.Raw()) ? automation::kAutomationTrue : automation::kAutomationFalse;
            return;
        case VariantType::Int16:
            variant.type = VIC_INT16;
            variant.value.int16 = std::get<std::int16_t>(value.Raw());
            return;
        case VariantType::Int32:
            variant.type = VIC_INT32;
            variant.value.int32 = std::get<std::int32_t>(value.Raw());
            return;
        case VariantType::Int64:
            variant.type = VIC_INT64;
            variant.value.int64 = std::get<std::int64_t>(value.Raw());
            return;
        case VariantType::Double:
            variant.type = VIC_DOUBLE;
            variant.value.number = std::get<double>(value.Raw());
            return;
        case VariantType::Date:
            variant.type = VIC_DATE;
            variant.value.number = std::get<DateTime>(value.Raw()).ToSerial();
            return;
        case VariantType::Error:
            variant.type = VIC_ERROR;
            variant.value.int32 = value.AsErrorCode();
            return;
        default:
            return;
    }
}

void Fill(const Variant& value, vic_variant& variant, int depth);

// Whole or not at all: what has been made of it is given back when memory runs out.
void FillArray(const VariantArray& items, vic_variant& variant, int depth) {
    if (depth >= kDeepestArray) RefuseDepth();
    vic_variant array;
    SetArray(array, items.size());
    try {
        // There is no array behind no items, and then no turn of this loop.
        for (std::size_t i = 0; i < items.size(); ++i)
            // NOLINTNEXTLINE(clang-analyzer-core.NonNullParamChecker)
            Fill(items[i], array.value.array.items[i], depth + 1);
    } catch (...) {
        Clear(array);
        throw;
    }
    variant = array;
}

void Fill(const Variant& value, vic_variant& variant, int depth) {
    switch (value.Type()) {
        case VariantType::Decimal:
            return SetText(variant, VIC_DECIMAL, std::get<Decimal>(value.Raw()).ToText());
        case VariantType::Text:
            return SetText(variant, VIC_TEXT, value.AsText());
        case VariantType::Array:
            return FillArray(value.AsArray(), variant, depth);
        case VariantType::Object: {
            vic_object* handle = NewHandle(std::get<automation::ObjectRef>(value.Raw()));
            variant = vic_variant{};
            variant.type = VIC_OBJECT;
            variant.flags = VIC_OWNED;
            variant.value.object = handle;
            return;
        }
        default:
            return FillPlain(value, variant);
    }
}

}  // namespace

void ToC(const Variant& value, vic_variant& variant) {
    Fill(value, variant, 0);
}

// Arrays within arrays are given back without a call for each level and without asking for memory: the item
// that held the array being emptied keeps the way back.
bool Clear(vic_variant& variant) noexcept {
    bool held = true;
    vic_variant* items = &variant;  // the array being emptied
    std::size_t left = 1;           // of its items
    vic_variant* holder = nullptr;  // the item that held it; none for the variant itself
    for (;;) {
        while (left != 0) {
            vic_variant& item = items[--left];
            const vic_variant old = item;
            item = vic_variant{};
            if ((old.flags & VIC_OWNED) == 0) continue;
            switch (old.type) {
                case VIC_TEXT:
                case VIC_DECIMAL:
                    delete[] old.value.text.data;
                    break;
                case VIC_OBJECT:
                    held = Release(old.value.object) && held;
                    break;
                case VIC_ARRAY:
                    item.value.array.items = items;
                    item.value.array.count = reinterpret_cast<std::uintptr_t>(holder);
                    holder = &item;
                    items = old.value.array.items;
                    left = old.value.array.count;
                    break;
                default:
                    break;
            }
        }
        if (holder == nullptr) return held;
        delete[] items;
        vic_variant& back = *holder;
        items = back.value.array.items;
        left = static_cast<std::size_t>(&back - items);
        holder = reinterpret_cast<vic_variant*>(back.value.array.count);
        back = vic_variant{};
    }
}

}  // namespace vicenter::front
