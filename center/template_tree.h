#pragma once

// The template tree: nodes, opening, new, rename, delete. Part of frmVICenter.

#include <functional>
#include <string>
#include <vector>

#include "center/window_state.h"

namespace vicenter::center {

class TemplateTree {
  public:
    // confirm: the unsaved-changes gate. opened: called whenever another template, or none, is in the grid.
    TemplateTree(WindowState& state, std::function<bool()> confirm, std::function<void()> opened);

    void Build();
    void RebuildAndSelect(std::int32_t id);
    // Any of the three may be empty.
    void Open(const std::string& name, const std::string& id, const std::string& displayName);

    void GotFocus();
    void LostFocus();
    void NodeClick(const std::string& key);
    void DoubleClick();
    bool BeforeLabelEdit();
    bool AfterLabelEdit(const std::string& label);

    // True when a template was created.
    bool CreateTemplate();
    void DeleteSelected();

    const std::vector<TreeNode>& Nodes() const { return nodes_; }
    const std::string& SelectedKey() const { return selected_; }
    bool EditsLabels() const { return editsLabels_; }

  private:
    void StartRenaming();
    void ReadNodes();
    void Select(const std::string& key);
    const TreeNode* Find(const std::string& key) const;
    std::string TextOf(const std::string& key) const;

    WindowState& state_;
    std::function<bool()> confirm_;
    std::function<void()> opened_;
    std::vector<TreeNode> nodes_;
    std::string selected_;
    bool editsLabels_ = false;
};

}  // namespace vicenter::center
