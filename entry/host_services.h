#pragma once

// Calls to the host's own components: profile values and logs.
//
// Each creates its component by ProgID at the point of use and releases it afterwards. None ever fails: an
// error gives the empty default, and a log that cannot be written is ignored. User-interface thread.

#include <cstdint>
#include <string_view>

#include "automation/variant.h"

namespace vicenter::entry {

// The function code under which the template center logs.
inline constexpr const char* kFunctionCode = "K831000";

enum class LogKind : std::int32_t { Requested = 1, Closed = 2, Succeeded = 3, Failed = 4 };

// A value of the host's system profile; the ledger's category is "GL". Empty on failure.
automation::Variant GetSystemProfile(std::string_view category, std::string_view key);

// One entry of the host's operation log.
void WriteOperationLog(std::string_view code, LogKind kind, std::string_view text);
// The same under the template center's own code.
void WriteOperationLog(LogKind kind, std::string_view text);

// One usage record of the host's frame.
void WriteFrameLog(std::string_view code, std::string_view name);

}  // namespace vicenter::entry
