#pragma once

// JSON documents of the command line, by the project's own codec. Objects are Scripting.Dictionary objects in
// the order in which their keys were added.

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "automation/variant.h"
#include "platform/scripting/dictionary.h"

namespace vicenter::host {

using automation::Variant;
using automation::VariantArray;

using JsonMember = std::pair<const char*, Variant>;
using JsonMembers = std::vector<JsonMember>;

Variant JsonObject(const JsonMembers& members);

// Without blanks or line breaks. Decimals and dates must have become texts before.
std::string EncodeJson(const Variant& value);

// One object and nothing else, with or without a byte order mark. Throws Error 8732 with the place of the
// first fault.
Variant DecodeJson(std::string_view text);

// The value as the command line prints it: whole and floating numbers stay numbers, booleans of a row become
// 0 or 1, exact decimals and dates become texts.
Variant JsonValue(const Variant& value);

}  // namespace vicenter::host
