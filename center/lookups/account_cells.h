#pragma once

// Which cells of a line its account has a use for. What the account set has said of an account is remembered
// until another template is opened. Part of frmVICenter; user-interface thread.

#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "center/grid/entry_grid.h"
#include "store/account_needs.h"

namespace vicenter::center {

class AccountCells {
  public:
    // Called when an account is known that was not.
    void OnLearned(std::function<void()> learned) { learned_ = std::move(learned); }

    // Asks the account set unless it is known. None for what is no detail account or could not be read.
    const store::AccountNeeds* Ask(std::string_view accountNumber);
    // Those of the lines, by one question, unless they have been asked about before.
    void AskOfLines(const EntryGrid& grid, int rowCount);
    const store::AccountNeeds* IfKnown(std::string_view accountNumber) const;
    void Forget() {
        known_.clear();
        asked_.clear();
    }

    // The account of the row has no use for that cell, which is empty, or its code brings the text: the
    // cursor may pass it by.
    bool IsPassedBy(const EntryGrid& grid, const CellAddress& cell);
    // What the row's account wants there and nobody has entered, for users; empty for all others and as long
    // as the account is not known.
    std::string MissingText(const EntryGrid& grid, const CellAddress& cell) const;

  private:
    std::map<std::string, store::AccountNeeds, std::less<>> known_;
    std::set<std::string, std::less<>> asked_;  // with others, answered or not
    std::function<void()> learned_;
};

}  // namespace vicenter::center
