#pragma once

// What the host keeps for a user, asked through its own connection component. User-interface thread.

#include <cstdint>
#include <string_view>

namespace vicenter::store {

// A user's number among the settings of category Vela_APFC (table t_UserSetting), read from the leading
// digits of the stored text; `otherwise` without a stored row and on every error.
double GetUserSettingNumber(std::int32_t userId, std::string_view key, double otherwise);

}  // namespace vicenter::store
