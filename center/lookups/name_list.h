#pragma once

// The typing name lists of columns 2, 5, 9, 13 and 17. Part of frmVICenter.
//
// A list comes from the host's name-list component when typing in a cell starts, narrows with every key by
// code, name or pinyin initials, and closes when the cell is left. It never stops plain typing: a component
// that is not there, or fails, means no list.
//
// A list is folded once and kept as long as the component says that nothing has changed (ListVersion, below);
// Prepare() reads it before the first key. Without such a word it is read anew for every cell.
//
// The component (VelaGLNameListLib.GLNameList for columns 2 and 5, VelaGLNameListLib2.GLNameList for 9, 13
// and 17) answers GetNameList(column, text) with records of FID, FNumber, FName and FDetail; text is the
// account's unit group in column 17, else empty. FID is what the column's look-up returns as the id; for
// explanations it is the bound account. A component may have a property ListVersion: another text whenever a
// list may have changed, empty when that cannot be told.

#include <map>
#include <string>
#include <vector>

#include "center/frame/window_state.h"
#include "platform/system/narrowing_index.h"

namespace vicenter::center {

class NameList {
  public:
    static constexpr std::size_t kMostShown = 200;

    explicit NameList(WindowState& state) : state_(state) {}

    // Reads again what has changed since it was last read, while nobody waits for a key.
    void Prepare();
    void TextTyped(const std::string& text);
    void Select(int index);
    void Move(int steps);
    // Writes the selected entry as the column's look-up would; false when it cannot be taken.
    bool Take();
    void Close();
    bool IsOpen() const { return list_.open; }
    const NameListState& State() const { return list_; }

  private:
    struct Entry {
        std::string id;
        std::string number;
        std::string name;
        bool selectable = true;
        bool operator==(const Entry&) const = default;
    };
    // What a column's component offered when it was last asked.
    struct Source {
        std::vector<Entry> entries;
        system::NarrowingIndex index;  // of the entries
        std::string text;              // that the component was asked with
        std::string version;           // empty: not known to be still true
    };

    // The source for a cell, up to date; none when there is no list.
    Source* Fetch(const CellAddress& cell);
    static std::vector<Entry> EntriesOf(const automation::Variant& records);
    void Read(Source& source, automation::Object& component, int gridColumn);

    WindowState& state_;
    std::map<int, Source> sources_;  // by column
    NameListState list_;
    Source* source_ = nullptr;  // of cell_; none when its list is empty
    std::vector<std::size_t> shown_;
    CellAddress cell_{0, 0};  // that is being typed in
};

}  // namespace vicenter::center
