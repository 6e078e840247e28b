#pragma once

// The tree's side of the main window: serves its view by the parts behind it. Part of frmVICenter.

#include "center/tree/tree_actions.h"

namespace vicenter::center {

class TemplateHistory;
struct WindowParts;

class TreeFacet final : public TreeActions {
  public:
    explicit TreeFacet(WindowParts& parts) : parts_(parts) {}

    void GotFocus() override;
    void LostFocus() override;
    void NodeClick(const std::string& key) override;
    void DoubleClick() override;
    bool BeforeLabelEdit() override;
    bool AfterLabelEdit(const std::string& newText) override;
    bool EditsLabels() override;
    void DeleteSelected() override;
    std::vector<TreeMenuItem> MenuItems() override;

  private:
    void CheckTemplates();
    void ShowHistory();
    void ShowDeletedTemplates();
    void Show(TemplateHistory history);

    WindowParts& parts_;
};

}  // namespace vicenter::center
