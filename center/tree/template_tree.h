#pragma once

// The template tree: nodes, opening, new, rename, delete. Part of frmVICenter.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "center/frame/window_state.h"
#include "center/template/template_fate.h"

namespace vicenter::center {

class TemplateTree {
  public:
    // confirm: the unsaved-changes gate. leaving and opened: called whenever what is in the grid gives way to
    // another template, or none, before and after.
    TemplateTree(WindowState& state, std::function<bool()> confirm, std::function<void()> leaving,
                 std::function<void()> opened);

    void Build();
    void RebuildAndSelect(std::int32_t id);
    // Builds the tree anew, lights the template that has just been written and opens it; 0 is the standard
    // one. False when the tree cannot be read: it and what is open stay, which the user has been told.
    bool ShowStored(std::int32_t id);
    // Any of the three may be empty.
    void Open(const std::string& name, const std::string& id, const std::string& displayName);
    // The standard template under its own name, without a word when its lines cannot be read.
    void OpenAtLoad();
    // The open template once more; false when its lines could not be read, which nobody has been told then.
    bool Reload();
    // Builds the tree anew and opens that template, or the standard template when it is gone. A tree that
    // cannot be read stays as it is, which the user has been told then, and nothing is opened.
    void ReadAgain(const std::string& id);
    // Builds the tree anew and opens that template. False, and nothing has changed, when the tree cannot be
    // read or holds it no more; lines that cannot be read are told to nobody.
    bool ShowAgain(const std::string& id);
    // That the lines of the open template could not be read.
    void TellUnreadable() const;

    void GotFocus();
    void LostFocus();
    void NodeClick(const std::string& key);
    void DoubleClick();
    // The unsaved-changes gate of whatever is to be done to the node that is lit. A save that became a new
    // template lights that one: what the user meant is then lit and opened again. False when the gate says
    // no, or when what was meant is gone, which the user has been told.
    bool PassGate();
    bool BeforeLabelEdit();
    bool AfterLabelEdit(const std::string& label);
    // The edit that was asked for has ended without a new text, or never begun.
    void LabelEditGivenUp();

    // True when a template was created.
    bool CreateTemplate();
    // A new template of the user's, its node selected; none when the account set made none, or when the one
    // that it made cannot be told from another user's: the user has been told, and the nodes are read anew.
    std::optional<TreeNode> InsertTemplate();
    // The key of that template's node, empty when the tree has none under that name.
    std::string KeyOfTemplate(const std::string& id, const std::string& name) const;
    void DeleteSelected();

    const std::vector<TreeNode>& Nodes() const { return nodes_; }
    const std::string& SelectedKey() const { return selected_; }
    bool EditsLabels() const { return editsLabels_; }

  private:
    void StartRenaming();
    void OpenSelected();
    void Read(const std::string& name, const std::string& id, const std::string& displayName);
    // Opens a node by what it stands for now.
    void OpenNode(const std::string& key);
    // What the user wants deleted; nothing when the template of the selected node is not to be.
    std::optional<SeenTemplate> SeenForDeletion(const std::string& text);
    // What the user wants renamed; nothing when the template of the selected node is not to be.
    std::optional<SeenTemplate> SeenForRenaming(const std::string& text, const std::string& id);
    void SetNodeText(const std::string& key, const std::string& text);
    // What the account set lists now; nothing when it does not answer.
    std::optional<std::vector<TreeNode>> AskNodes() const;
    void ShowNodes(std::vector<TreeNode> nodes);
    // False: the tree cannot be read, stays as it is, and the user has been told.
    bool ReadNodes();
    void Select(const std::string& key);
    const TreeNode* Find(const std::string& key) const;
    std::string TextOf(const std::string& key) const;

    WindowState& state_;
    std::function<bool()> confirm_;
    std::function<void()> leaving_;
    std::function<void()> opened_;
    std::vector<TreeNode> nodes_;
    std::string selected_;
    std::string unnamed_;  // the node that was made last, until it has got a name
    bool editsLabels_ = false;
};

}  // namespace vicenter::center
