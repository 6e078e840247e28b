#pragma once

// Key codes as the component's key tables know them; windows translate theirs.

namespace vicenter::center::key_code {

inline constexpr int kBack = 8;
inline constexpr int kLeft = 37;
inline constexpr int kRight = 39;
inline constexpr int kInsert = 45;
inline constexpr int kKeypadDecimal = 110;
inline constexpr int kF1 = 112;
inline constexpr int kF7 = 118;

}  // namespace vicenter::center::key_code
