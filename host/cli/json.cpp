#include "host/cli/json.h"

#include <string_view>

#include "automation/error.h"
#include "support/vbs_json.h"

namespace vicenter::host {

using automation::Error;
using automation::VariantType;

namespace {

// Behind the bracket that closes the object with which the text begins; npos when there is none.
std::size_t EndOfObject(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t\r\n");
    if (start == std::string_view::npos || text[start] != '{') return std::string_view::npos;
    int depth = 0;
    bool inString = false;
    for (std::size_t i = start; i < text.size(); ++i) {
        const char c = text[i];
        if (inString) {
            if (c == '\\') ++i;
            if (c == '"') inString = false;
        } else if (c == '"') {
            inString = true;
        } else if (c == '{' || c == '[') {
            ++depth;
        } else if ((c == '}' || c == ']') && --depth == 0) {
            return i + 1;
        }
    }
    return std::string_view::npos;
}

}  // namespace

Variant JsonObject(std::initializer_list<JsonMember> members) {
    const auto dictionary = std::make_shared<scripting::Dictionary>();
    for (const auto& [name, value] : members)
        dictionary->Add(name, value);
    return dictionary;
}

std::string EncodeJson(const Variant& value) {
    return support::VbsJson().Encode(value);
}

Variant DecodeJson(const std::string& text) {
    try {
        // The codec reads the first value and leaves the rest to its caller; a document is one object alone.
        const std::size_t end = EndOfObject(text);
        if (end == std::string::npos || text.find_first_not_of(" \t\r\n", end) != std::string::npos)
            throw Error(support::json_error::kNumber, "应为一个 JSON 对象");
        return support::VbsJson().Decode(text);
    } catch (const Error& error) {
        throw Error(support::json_error::kNumber, "输入不是有效的 JSON：" + error.Text());
    }
}

Variant JsonValue(const Variant& value) {
    switch (value.Type()) {
        case VariantType::Boolean:
            return Variant(static_cast<std::int32_t>(value.ToBoolean() ? 1 : 0));
        case VariantType::Empty:
        case VariantType::Null:
            return Variant::Null();
        case VariantType::Decimal:
        case VariantType::Date:
        case VariantType::Error:
            return Variant(value.ToText());
        default:
            return value;
    }
}

}  // namespace vicenter::host
