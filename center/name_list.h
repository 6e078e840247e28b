#pragma once

// The typing name lists of columns 2, 5, 9, 13 and 17. Part of frmVICenter.
//
// A list comes from the host's name-list component when typing in a cell starts, narrows with every key by
// code, name or pinyin initials, and is gone when the cell is left. It never stops plain typing: a component
// that is not there, or fails, means no list.
//
// The component (VelaGLNameListLib.GLNameList for columns 2 and 5, VelaGLNameListLib2.GLNameList for 9, 13
// and 17) answers GetNameList(column, text) with records of FID, FNumber, FName and FDetail; text is the
// account's unit group in column 17, else empty. FID is what the column's look-up returns as the id; for
// explanations it is the bound account.

#include <string>
#include <string_view>
#include <vector>

#include "center/window_state.h"

namespace vicenter::center {

// Entries that narrow quickly: everything that is compared is folded once.
class NameIndex {
  public:
    struct Entry {
        std::string id;
        std::string number;
        std::string name;
        bool selectable = true;
    };

    void Clear();
    void Add(Entry entry);
    bool IsEmpty() const { return entries_.empty(); }
    const Entry& At(std::size_t index) const { return entries_[index]; }

    // Indexes of the entries whose code, name or initials contain the text: codes that begin with it first,
    // otherwise in the list's order; at most `most`.
    std::vector<std::size_t> Narrow(std::string_view text, std::size_t most);

  private:
    std::vector<Entry> entries_;
    std::vector<std::string> folded_;      // code, name and initials, each ended by a NUL
    std::vector<std::size_t> candidates_;  // of the last text, which the next one mostly extends
    std::string lastText_;
};

class NameList {
  public:
    static constexpr std::size_t kMostShown = 200;

    explicit NameList(WindowState& state) : state_(state) {}

    void TextTyped(const std::string& text);
    void Select(int index);
    void Move(int steps);
    // Writes the selected entry as the column's look-up would; false when it cannot be taken.
    bool Take();
    void Close();
    bool IsOpen() const { return list_.open; }
    const NameListState& State() const { return list_; }

  private:
    void ReadEntries(const CellAddress& cell);

    WindowState& state_;
    NameIndex index_;
    NameListState list_;
    std::vector<std::size_t> shown_;
    CellAddress cell_{0, 0};  // whose entries the index holds
};

}  // namespace vicenter::center
