#pragma once

#include <cstdint>

#include "automation/error.h"

namespace vicenter::fakes {

// Of the error that a call ends with; 0 when it ends well.
template <class Call>
std::int32_t NumberOfError(Call call) {
    try {
        call();
    } catch (const automation::Error& error) {
        return error.Number();
    }
    return 0;
}

}  // namespace vicenter::fakes
