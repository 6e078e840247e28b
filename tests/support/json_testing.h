#pragma once

// Short forms for tests of the JSON codec.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "automation/error.h"
#include "platform/scripting/dictionary.h"
#include "support/vbs_json.h"

namespace vicenter::support {

inline automation::Variant Decoded(std::string_view text) {
    return VbsJson().Decode(text);
}

inline scripting::DictionaryRef DecodedObject(std::string_view text) {
    return std::dynamic_pointer_cast<scripting::Dictionary>(Decoded(text).AsObject());
}

inline std::string EncodedAgain(std::string_view text) {
    return VbsJson().Encode(Decoded(text));
}

// The number of the error that the text ends with, 0 for none.
inline std::int32_t NumberOfError(std::string_view text) {
    try {
        Decoded(text);
        return 0;
    } catch (const automation::Error& error) {
        return error.Number();
    }
}

// The text of the codec's own error; "none", or "other" with the number of another one.
inline std::string ErrorOf(std::string_view text) {
    try {
        Decoded(text);
        return "none";
    } catch (const automation::Error& error) {
        if (error.Number() != json_error::kNumber) return "other " + std::to_string(error.Number());
        return error.Text();
    }
}

}  // namespace vicenter::support
