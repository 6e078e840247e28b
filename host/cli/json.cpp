#include "host/cli/json.h"

#include <optional>

#include "automation/error.h"
#include "host/cli/json_syntax.h"
#include "support/vbs_json.h"

namespace vicenter::host {

using automation::Error;
using automation::VariantType;

Variant JsonObject(const JsonMembers& members) {
    const auto dictionary = std::make_shared<scripting::Dictionary>();
    for (const auto& [name, value] : members)
        dictionary->Add(name, value);
    return dictionary;
}

std::string EncodeJson(const Variant& value) {
    return support::VbsJson().Encode(value);
}

Variant DecodeJson(std::string_view text) {
    // What programs of other systems write may begin with the mark of its encoding.
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    if (const std::optional<JsonFault> fault = FindJsonFault(text)) {
        throw Error(support::json_error::kNumber, "输入不是有效的 JSON（第 " + std::to_string(fault->line) +
                                                      " 行第 " + std::to_string(fault->column) + " 列）：" +
                                                      fault->text);
    }
    try {
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
