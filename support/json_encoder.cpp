#include "support/json_encoder.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <utility>

#include "automation/error.h"
#include "automation/object.h"
#include "platform/scripting/dictionary.h"
#include "support/json_text.h"
#include "support/vbs_json.h"
#include "text/hex.h"

namespace vicenter::support {

using automation::Error;
using automation::Variant;
using automation::VariantType;

namespace {

constexpr const char* kSource = "VbsJson";
constexpr std::size_t kLongestNumber = 32;
constexpr std::size_t kLongestEscape = 6;  // \u001F

char* WriteEscape(char* out, char c) {
    *out++ = '\\';
    switch (c) {
        case '"':
        case '\\':
            *out++ = c;
            return out;
        case '\b':
            *out++ = 'b';
            return out;
        case '\f':
            *out++ = 'f';
            return out;
        case '\n':
            *out++ = 'n';
            return out;
        case '\r':
            *out++ = 'r';
            return out;
        case '\t':
            *out++ = 't';
            return out;
        default:
            break;
    }
    std::memcpy(out, "u00", 3);
    out[3] = text::kHexDigits[static_cast<unsigned char>(c) >> 4];
    out[4] = text::kHexDigits[static_cast<unsigned char>(c) & 15];
    return out + 5;
}

}  // namespace

std::string JsonEncoder::Encode(const Variant& value) {
    WriteValue(value, 0);
    text_.resize(used_);
    return std::move(text_);
}

char* JsonEncoder::Room(std::size_t bytes) {
    if (text_.size() - used_ < bytes) text_.resize(std::max(2 * text_.size(), used_ + bytes + 256));
    return text_.data() + used_;
}

void JsonEncoder::Write(std::string_view text) {
    std::memcpy(Room(text.size()), text.data(), text.size());
    used_ += text.size();
}

void JsonEncoder::Write(char c) {
    *Room(1) = c;
    ++used_;
}

void JsonEncoder::WriteValue(const Variant& value, int depth) {
    switch (value.Type()) {
        case VariantType::Empty:
        case VariantType::Null:
            Write("null");
            return;
        case VariantType::Boolean:
            Write(std::get<bool>(value.Raw()) ? "true" : "false");
            return;
        case VariantType::Int16:
        case VariantType::Int32:
        case VariantType::Int64:
            WriteInteger(value.ToInt64());
            return;
        case VariantType::Double:
            WriteDouble(std::get<double>(value.Raw()));
            return;
        case VariantType::Decimal:
            Write(value.ToText());
            return;
        case VariantType::Date:
            WriteString(value.ToText());
            return;
        case VariantType::Text:
            WriteString(std::get<std::string>(value.Raw()));
            return;
        case VariantType::Array:
            WriteArray(value.AsArray(), depth + 1);
            return;
        case VariantType::Object:
            WriteObject(std::get<automation::ObjectRef>(value.Raw()), depth + 1);
            return;
        case VariantType::Error:
            break;
    }
    throw Error(automation::error_number::kTypeMismatch, {}, kSource);
}

void JsonEncoder::WriteArray(const automation::VariantArray& items, int depth) {
    if (depth > VbsJson::kMaxDepth) throw Error(json_error::kNumber, json_error::kTooDeep, kSource);
    Write('[');
    bool first = true;
    for (const Variant& item : items) {
        if (!std::exchange(first, false)) Write(',');
        WriteValue(item, depth);
    }
    Write(']');
}

void JsonEncoder::WriteObject(const automation::ObjectRef& object, int depth) {
    if (depth > VbsJson::kMaxDepth) throw Error(json_error::kNumber, json_error::kTooDeep, kSource);
    if (const auto* dictionary = dynamic_cast<const scripting::Dictionary*>(object.get())) {
        Write('{');
        for (std::size_t i = 0; i < dictionary->Count(); ++i) {
            if (i != 0) Write(',');
            const Variant& key = dictionary->KeyAt(i);
            if (const auto* text = std::get_if<std::string>(&key.Raw())) {
                WriteString(*text);
            } else {
                WriteValue(key, depth);
            }
            Write(':');
            WriteValue(dictionary->ItemAt(i), depth);
        }
        Write('}');
        return;
    }
    if (!object || object->TypeName() != "Dictionary")
        throw Error(json_error::kNumber, json_error::kNotDictionary, kSource);
    // A dictionary of the host's own.
    const Variant keys = object->Call("Keys");
    Write('{');
    bool first = true;
    for (const Variant& key : keys.AsArray()) {
        if (!std::exchange(first, false)) Write(',');
        WriteValue(key, depth);
        Write(':');
        WriteValue(object->Get("Item", {key}), depth);
    }
    Write('}');
}

void JsonEncoder::WriteString(std::string_view text) {
    const char* from = text.data();
    const char* end = from + text.size();
    char* out = Room(text.size() + 2);
    *out++ = '"';
    while (true) {
        const char* stop = FindSpecial(from, end);
        const auto run = static_cast<std::size_t>(stop - from);
        std::memcpy(out, from, run);
        out += run;
        if (stop == end) break;
        // Room for this escape and the rest as it stands: whatever comes needs no more until the next escape.
        used_ = static_cast<std::size_t>(out - text_.data());
        out = WriteEscape(Room(kLongestEscape + static_cast<std::size_t>(end - stop) + 1), *stop);
        from = stop + 1;
    }
    *out++ = '"';
    used_ = static_cast<std::size_t>(out - text_.data());
}

void JsonEncoder::WriteInteger(std::int64_t value) {
    char* out = Room(kLongestNumber);
    used_ += static_cast<std::size_t>(std::to_chars(out, out + kLongestNumber, value).ptr - out);
}

void JsonEncoder::WriteDouble(double value) {
    if (!std::isfinite(value)) throw Error(automation::error_number::kOverflow, {}, kSource);
    if (std::fabs(value) < 1e15 && value == std::trunc(value)) {
        WriteInteger(static_cast<std::int64_t>(value));
        return;
    }
    // Amounts: a decimal of at most 15 digits that reads back as the same double is its shortest text.
    constexpr double kScale = 10000;
    const double scaled = std::nearbyint(value * kScale);
    if (std::fabs(scaled) < 1e15 && scaled / kScale == value) {
        WriteScaled(static_cast<std::int64_t>(scaled));
        return;
    }
    Write(automation::DoubleToText(value));
}

// A number of ten-thousandths that is no whole number.
void JsonEncoder::WriteScaled(std::int64_t scaled) {
    char* out = Room(kLongestNumber);
    char* const begin = out;
    if (scaled < 0) *out++ = '-';
    const std::uint64_t magnitude = static_cast<std::uint64_t>(scaled < 0 ? -scaled : scaled);
    out = std::to_chars(out, begin + kLongestNumber, magnitude / 10000).ptr;
    *out++ = '.';
    auto fraction = static_cast<unsigned>(magnitude % 10000);
    for (unsigned unit = 1000; fraction != 0; unit /= 10) {
        *out++ = static_cast<char>('0' + fraction / unit);
        fraction %= unit;
    }
    used_ += static_cast<std::size_t>(out - begin);
}

}  // namespace vicenter::support
