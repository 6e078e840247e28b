#pragma once

// One filled row of the entry grid: 21 texts packed into one string, colours, failed checks and refused
// texts. A value held by the grid, or by the undo journal once the row is gone.

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "center/editing/cell_rules.h"
#include "center/grid/columns.h"

namespace vicenter::center {

namespace color {
inline constexpr std::int32_t kBlack = 0;
inline constexpr std::int32_t kRed = 255;  // 0x00BBGGRR
inline constexpr std::int32_t kWhite = 0xFFFFFF;
}  // namespace color

class GridRow {
  public:
    // Valid until the row changes. column from 1.
    std::string_view Text(int column) const;
    void SetText(int column, std::string_view text);
    void SetTexts(const std::array<std::string, kColumnCount>& texts);
    bool IsBlank() const { return texts_.empty(); }

    std::int32_t ForeColor(int column) const { return ColorAt(foreColors_, column, color::kBlack); }
    std::int32_t BackColor(int column) const { return ColorAt(backColors_, column, color::kWhite); }
    // True when the colour changed.
    bool SetForeColor(int column, std::int32_t value) {
        return Paint(foreColors_, column, value, color::kBlack);
    }
    bool SetBackColor(int column, std::int32_t value) {
        return Paint(backColors_, column, value, color::kWhite);
    }

    bool HasFault(int check) const { return (faults_ >> check & 1U) != 0; }
    void SetFault(int check, bool faulty);

    // Why the column does not take the cell's text; Taken for every text that it does.
    TextVerdict Refusal(int column) const { return refusals_[static_cast<std::size_t>(column - 1)]; }
    void SetRefusal(int column, TextVerdict verdict) {
        refusals_[static_cast<std::size_t>(column - 1)] = verdict;
    }

  private:
    using Colors = std::vector<std::int32_t>;  // empty while every cell has the usual colour
    static std::int32_t ColorAt(const Colors& colors, int column, std::int32_t usual);
    static bool Paint(Colors& colors, int column, std::int32_t value, std::int32_t usual);

    std::string texts_;
    std::array<std::uint32_t, kColumnCount> ends_{};  // of each text within texts_
    Colors foreColors_;
    Colors backColors_;
    std::uint8_t faults_ = 0;
    std::array<TextVerdict, kColumnCount> refusals_{};
};

// No object stands for a blank row.
using GridRowPtr = std::unique_ptr<GridRow>;

}  // namespace vicenter::center
