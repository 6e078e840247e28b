#pragma once

// One thing that keeps lines from being written, as an import or a generation found it: where it stands in
// what was read, and why. A value.

#include <cstdint>
#include <string>

namespace vicenter::store {

struct LineFault {
    std::int32_t row = 0;     // of the sheet or of the vouchers' lines, from 1; 0: the whole
    std::int32_t column = 0;  // of the sheet, from 1; 0: the whole row, or no sheet
    std::string header = {};  // of the column
    std::string value = {};   // as one would type it
    std::string reason = {};
    bool hint = false;  // may be as meant
};

}  // namespace vicenter::store
