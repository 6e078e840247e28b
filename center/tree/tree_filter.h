#pragma once

// Which templates of the tree fit what has been typed into its filter. Pure functions of texts.

#include <cstddef>
#include <string>

namespace vicenter::center {

// Fewer are seen at once.
inline constexpr std::size_t kTemplatesWorthAFilter = 10;

// The name holds the text, whatever its case and width, or its pinyin initials do.
bool FitsFilter(const std::string& name, const std::string& filter);

}  // namespace vicenter::center
