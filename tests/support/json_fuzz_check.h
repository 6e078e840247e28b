#pragma once

// What holds for every text: decoding ends with a value or one of the codec's errors, and what a value
// encodes to decodes to the same text again.

#include <cstdlib>
#include <string>
#include <string_view>

#include "automation/error.h"
#include "support/vbs_json.h"

namespace vicenter::support {

// False, with nothing thrown, when the text breaks a rule.
inline bool KeepsTheRules(std::string_view text) {
    VbsJson json;
    automation::Variant value;
    try {
        value = json.Decode(text);
    } catch (const automation::Error& error) {
        return error.Number() == json_error::kNumber || error.Number() == 6 || error.Number() == 457;
    }
    const std::string encoded = json.Encode(value);
    return json.Encode(json.Decode(encoded)) == encoded;
}

}  // namespace vicenter::support
