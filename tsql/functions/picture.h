#pragma once

// Numbers and dates by a picture, as FORMAT has them under the culture en-US: "#,##0.00", "N2", "yyyy-MM-dd".
// Pure functions. What is a picture on the server and not here throws 40510 by name.

#include <string>
#include <string_view>

#include "tsql/types/value.h"

namespace vicenter::tsql::engine {

std::string NumberByPicture(const Decimal& number, bool isInteger, std::string_view picture);
std::string DateByPicture(const DateTime& date, std::string_view picture);

}  // namespace vicenter::tsql::engine
