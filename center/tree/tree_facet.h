#pragma once

// The tree's side of the main window: serves its view by the parts behind it. Part of frmVICenter.

#include <optional>

#include "center/print/print_sheet.h"
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
    void LabelEditGivenUp() override;
    bool EditsLabels() override;
    void DeleteSelected() override;
    void SaveAs() override;
    void DropRows(const std::string& key, const CopiedBlock& rows) override;
    bool OffersFilter() override;
    std::vector<std::string> Fitting(const std::string& filter) override;
    void PrintTemplate() override;
    std::vector<TreeMenuItem> MenuItems() override;

  private:
    void SaveUnder(const std::string& name);
    void Duplicate();
    void CheckTemplates();
    void ShowHistory();
    void BackUp();
    void SaveTemplateAsPdf();
    // Nothing, and the user has been told, without lines.
    std::optional<PrintSheet> SheetOfOpenTemplate();
    void ShowDeletedTemplates();
    void Show(TemplateHistory history);

    WindowParts& parts_;
};

}  // namespace vicenter::center
