#pragma once

// frmSetColume: which optional columns are shown (grid mode) or carried over (selection mode).
//
// In grid mode it reads and writes ColHidden of a late-bound grid at once; in selection mode it reads a
// Scripting.Dictionary and fills it on OK. One object per use; the view outlives it. User-interface thread.

#include <string>
#include <vector>

#include "automation/object.h"

namespace vicenter::dialogs {

struct ColumnChoice {
    std::string caption;
    int column = 0;  // the row's item data
    bool ticked = false;
};

class frmSetColumeView {
  public:
    virtual ~frmSetColumeView() = default;
    virtual void Unload() = 0;
};

class frmSetColume {
  public:
    // Set by the caller before the dialog is shown.
    void SetGrid(automation::ObjectRef grid) { grid_ = std::move(grid); }
    void SetSelectionMode(bool on) { selectionMode_ = on; }
    void SetSelection(automation::ObjectRef dictionary) { selection_ = std::move(dictionary); }
    const automation::ObjectRef& Selection() const { return selection_; }

    // Form load: fills the list.
    void Load(frmSetColumeView& view);
    std::string Caption() const;
    // The button 1 (apply) is shown; when it is not, button 2 (cancel) stands in its place.
    bool ShowsApply() const { return !selectionMode_; }
    const std::vector<ColumnChoice>& ColList() const { return choices_; }
    void SetTick(std::size_t row, bool ticked);
    // 0 OK, 1 apply, 2 cancel.
    void Command(int index);

  private:
    void ApplyToGrid();
    void FillSelection();

    frmSetColumeView* view_ = nullptr;
    automation::ObjectRef grid_;
    automation::ObjectRef selection_;
    bool selectionMode_ = false;
    std::vector<ColumnChoice> choices_;
};

}  // namespace vicenter::dialogs
