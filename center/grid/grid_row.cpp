#include "center/grid/grid_row.h"

#include <algorithm>

namespace vicenter::center {

std::string_view GridRow::Text(int column) const {
    const auto index = static_cast<std::size_t>(column - 1);
    const std::size_t begin = index == 0 ? 0 : ends_[index - 1];
    return std::string_view(texts_).substr(begin, ends_[index] - begin);
}

void GridRow::SetText(int column, std::string_view text) {
    const auto index = static_cast<std::size_t>(column - 1);
    const std::size_t begin = index == 0 ? 0 : ends_[index - 1];
    const std::size_t oldLength = ends_[index] - begin;
    // The text may be a part of this very row.
    const std::string copy(text);
    texts_.replace(begin, oldLength, copy);
    for (std::size_t i = index; i < ends_.size(); ++i) {
        ends_[i] = static_cast<std::uint32_t>(ends_[i] + copy.size() - oldLength);
    }
}

void GridRow::SetTexts(const std::array<std::string, kColumnCount>& texts) {
    std::size_t length = 0;
    for (const std::string& text : texts)
        length += text.size();
    texts_.clear();
    texts_.reserve(length);
    refusals_ = {};
    for (std::size_t i = 0; i < texts.size(); ++i) {
        texts_ += texts[i];
        ends_[i] = static_cast<std::uint32_t>(texts_.size());
    }
}

void GridRow::SetFault(int check, bool faulty) {
    const auto bit = static_cast<std::uint8_t>(1U << check);
    faults_ = static_cast<std::uint8_t>(faulty ? faults_ | bit : faults_ & ~bit);
}

std::int32_t GridRow::ColorAt(const Colors& colors, int column, std::int32_t usual) {
    return colors.empty() ? usual : colors[static_cast<std::size_t>(column - 1)];
}

bool GridRow::Paint(Colors& colors, int column, std::int32_t value, std::int32_t usual) {
    if (ColorAt(colors, column, usual) == value) return false;
    if (colors.empty()) colors.assign(kColumnCount, usual);
    colors[static_cast<std::size_t>(column - 1)] = value;
    const bool plain =
        std::all_of(colors.begin(), colors.end(), [usual](std::int32_t c) { return c == usual; });
    if (plain) Colors().swap(colors);
    return true;
}

}  // namespace vicenter::center
