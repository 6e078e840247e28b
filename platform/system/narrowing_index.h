#pragma once

// A list that is narrowed while a text is typed: by code, name or pinyin initials of the name.
//
// Everything that is compared is folded once, when an entry is added; a text that extends the one before only
// looks at the entries that were left. A value type; user-interface thread.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vicenter::system {

class NarrowingIndex {
  public:
    void Clear();
    void Reserve(std::size_t count);
    void Add(std::string_view code, std::string_view name);
    std::size_t Count() const { return folded_.size(); }

    // Indexes of the entries whose code, name or initials contain the text, in the order of their addition;
    // all of them for a blank text. Valid until the next call.
    const std::vector<std::size_t>& Narrow(std::string_view text);
    // The same, codes that begin with the text first, at most `most`.
    std::vector<std::size_t> Best(std::string_view text, std::size_t most);

  private:
    std::vector<std::string> folded_;      // code, name and initials, each ended by a NUL
    std::vector<std::size_t> candidates_;  // of the last text
    std::string lastText_;
    bool narrowed_ = false;  // candidates_ are those of lastText_
};

}  // namespace vicenter::system
