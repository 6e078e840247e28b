#pragma once

// What the host's look-up components show, without a window system.
//
// A component fills a LookUpRequest and asks the process's LookUpDialog, which a window system provides; with
// none, nobody can choose and every look-up counts as cancelled. LookUpFilter holds the rules of the filter
// box. User-interface thread.

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/system/narrowing_index.h"

namespace vicenter::host {

struct LookUpRecord {
    std::string number;
    std::string name;
    std::vector<std::string> details;  // texts of the further columns
    int level = 0;                     // depth in the tree; children follow their parent
    bool selectable = true;            // group accounts are shown but cannot be chosen
};

struct LookUpRequest {
    std::string title;
    std::vector<std::string> headers;  // of number, name and the further columns
    bool tree = false;
    std::vector<LookUpRecord> records;
    std::optional<std::size_t> selected;  // where the cursor stands at first
};

// Modal. Narrows while the filter box is typed into; arrows and Enter choose, Esc cancels; remembers nothing.
class LookUpDialog {
  public:
    virtual ~LookUpDialog() = default;
    // The index of the chosen record; nothing when the user cancelled.
    virtual std::optional<std::size_t> Choose(const LookUpRequest& request) = 0;

    // The dialog of the process; none when no window system is there.
    static std::shared_ptr<LookUpDialog> Process();
    static void SetProcess(std::shared_ptr<LookUpDialog> dialog);
};

// Which records a dialog shows for the text of its filter box. The records outlive it.
class LookUpFilter {
  public:
    explicit LookUpFilter(const std::vector<LookUpRecord>& records);

    struct Shown {
        std::size_t record = 0;
        bool matches = true;  // false: shown as the way to a record that does
    };
    // By number, name or pinyin initials, in the records' order; in a tree the parents of what matches come
    // along. A blank text shows everything.
    std::vector<Shown> Narrow(std::string_view text);
    // The record that Enter would take: of those that match and can be chosen, the first whose number is or
    // begins with the text, else the first; nothing when none can be chosen.
    std::optional<std::size_t> Best(std::string_view text);

  private:
    const std::vector<LookUpRecord>& records_;
    std::vector<std::optional<std::size_t>> parents_;
    system::NarrowingIndex index_;
};

}  // namespace vicenter::host
