#pragma once

// The error of the last failing call of each thread, for the functions that tell about it. Any thread.

#include "automation/error.h"
#include "front/include/vicenter/vicenter.h"

namespace vicenter::front {

// Keeps the error and answers its number.
// When there is no memory for it, error 7 takes its place.
vic_status SetLastError(const automation::Error& error) noexcept;
void ForgetLastError();
vic_int32 LastErrorNumber();
const char* LastErrorDescription();
const char* LastErrorSource();
// The error that a host's function answered with: the one it raised, or one of that number.
automation::Error ErrorOfStatus(vic_status status);

}  // namespace vicenter::front
