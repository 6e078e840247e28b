#pragma once

// FrmSearch: finds the next entry line in the grid that the caller hands over.
//
// The grid is a late-bound object with the spread control's members (Row, Col, Text, SetActiveCell and those
// that HighlightGridRow uses). One object per use; the view outlives it. User-interface thread.

#include <cstdint>
#include <string>

#include "automation/object.h"

namespace vicenter::dialogs {

// The texts of the three boxes.
struct SearchFields {
    std::string txtExp;   // explanation
    std::string txtAcct;  // account code or name
    std::string txtBZ;    // remark
};

class FrmSearchView {
  public:
    virtual ~FrmSearchView() = default;
    virtual SearchFields Fields() const = 0;
    virtual void SetAccount(const std::string& number) = 0;  // txtAcct
    virtual void Unload() = 0;
};

class FrmSearch {
  public:
    // Set by the caller before the dialog is shown.
    void SetGrid(automation::ObjectRef grid) { grid_ = std::move(grid); }
    void SetEntryCount(std::int32_t count) { entryCount_ = count; }

    // Form load: the search starts at the top.
    void Load(FrmSearchView& view);
    void cmdOK_Click();
    void cmdAcct_Click();
    void cmdCancel_Click();

    std::int32_t LastRow() const { return lastRow_; }
    // How many lines fit what stands in the boxes; 0 while nothing does. Moves nothing.
    std::int32_t HitCount();

  private:
    // The texts of the boxes as they are searched for.
    SearchFields Filter() const;
    bool Matches(std::int32_t row, const SearchFields& filter);
    std::string CellText(std::int32_t row, std::int32_t column);

    FrmSearchView* view_ = nullptr;
    automation::ObjectRef grid_;
    std::int32_t entryCount_ = 0;
    std::int32_t lastRow_ = 0;
    std::string lastKey_;
};

}  // namespace vicenter::dialogs
