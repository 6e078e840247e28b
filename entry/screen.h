#pragma once

// Small conveniences on the screen: the busy pointer and the highlighted row of a grid.

#include <cstdint>

#include "automation/object.h"

namespace vicenter::entry {

void BeginBusy();
void EndBusy();

// Shows the hourglass until the end of the scope.
class BusyScope {
  public:
    BusyScope() { BeginBusy(); }
    BusyScope(const BusyScope&) = delete;
    BusyScope& operator=(const BusyScope&) = delete;
    ~BusyScope() { EndBusy(); }
};

// Colours as grids hold them: 0x00BBGGRR.
inline constexpr std::int32_t kWhite = 0xFFFFFF;
inline constexpr std::int32_t kPaleYellow = 255 + 247 * 256 + 185 * 65536;

// Makes every row of the spread grid white and the given one pale yellow; row -1 only clears. The grid is
// driven by its properties' names, so that any grid of the host serves.
void HighlightGridRow(std::int32_t row, automation::Object& grid);

}  // namespace vicenter::entry
