#pragma once

// Texts and other values as the bytes that the server keeps them as, and back. Pure functions.

#include <string>
#include <string_view>

#include "tsql/types/value.h"

namespace vicenter::tsql::engine {

// Two bytes of each unit of an nvarchar; of a varchar those of its code page, which is known here for ASCII
// alone: error 40510 by that name for anything else.
std::string BytesOfText(std::string_view text, bool unicode, const std::string& name);
// The text that an nvarchar or a varchar of these bytes is; error 40510 beyond ASCII of varchar.
std::string TextOfBytes(std::string_view bytes, bool unicode, const std::string& name);

Value ToBinary(const Value& value, const SqlType& from, const SqlType& to, int style);

}  // namespace vicenter::tsql::engine
