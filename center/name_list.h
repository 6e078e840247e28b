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
#include <vector>

#include "center/window_state.h"
#include "platform/system/narrowing_index.h"

namespace vicenter::center {

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

    struct Entry {
        std::string id;
        std::string number;
        std::string name;
        bool selectable = true;
    };

    WindowState& state_;
    std::vector<Entry> entries_;
    system::NarrowingIndex index_;  // of entries_
    NameListState list_;
    std::vector<std::size_t> shown_;
    CellAddress cell_{0, 0};  // whose entries the index holds
};

}  // namespace vicenter::center
