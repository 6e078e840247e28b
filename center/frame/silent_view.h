#pragma once

// A view that shows nothing: for presenters that run without a window, and the base of views that care for
// little. User-interface thread only.

#include <string>
#include <vector>

#include "center/frame/vicenter_view.h"

namespace vicenter::center {

class SilentView : public VICenterView {
  public:
    void ShowModeless() override {}
    void CloseWindow() override {}
    void CommitTyping() override {}
    void SetTree(const std::vector<TreeNode>&) override {}
    void AddTreeNode(const TreeNode&) override {}
    void RemoveTreeNode(const std::string&) override {}
    void SetTreeNodeText(const std::string&, const std::string&) override {}
    void SelectTreeNode(const std::string&) override {}
    void StartLabelEdit() override {}
    void SetToolStates(const ToolStates&) override {}
    void SetTemplateName(const std::string&) override {}
    void SetGridInteractive(bool) override {}
    void SetProgress(const ProgressState&) override {}
    void SetItemPanel(const ItemPanelState&) override {}
    void SetStatus(const StatusState&) override {}
    void SetNameList(const NameListState&) override {}
    int ApplyFont(const std::string&, double) override { return 0; }
    Size WindowSize() const override { return {}; }
    void PlaceProgressFrame(const Corner&) override {}
    void ShowFindDialog(dialogs::FrmSearch&) override {}
    void ShowColumnDialog(dialogs::frmSetColume&) override {}
};

}  // namespace vicenter::center
