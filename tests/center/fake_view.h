#pragma once

// A main window that shows nothing: it keeps the last state of everything and the order of what it was told.

#include <functional>
#include <string>
#include <vector>

#include "center/frame/vicenter_view.h"
#include "dialogs/frm_search.h"
#include "dialogs/frm_set_colume.h"

namespace vicenter::center::test {

class FakeVICenterView : public VICenterView {
  public:
    void ShowModeless() override { calls.emplace_back("show"); }
    void CloseWindow() override {
        calls.emplace_back("close");
        if (onClose) onClose();
    }
    void CommitTyping() override {
        if (onCommitTyping) onCommitTyping();
    }

    void SetTree(const std::vector<TreeNode>& nodes) override {
        calls.emplace_back("tree");
        tree = nodes;
        selected.clear();
    }
    void AddTreeNode(const TreeNode& node) override {
        calls.push_back("add " + node.key);
        tree.push_back(node);
    }
    void RemoveTreeNode(const std::string& key) override {
        calls.push_back("remove " + key);
        std::erase_if(tree, [&](const TreeNode& node) { return node.key == key; });
    }
    void SetTreeNodeText(const std::string& key, const std::string& text) override {
        calls.push_back("text " + key + " " + text);
        for (TreeNode& node : tree) {
            if (node.key == key) node.text = text;
        }
    }
    void SelectTreeNode(const std::string& key) override {
        calls.push_back("select " + key);
        selected = key;
    }
    void StartLabelEdit() override { calls.emplace_back("edit label"); }

    void SetModified(const std::string& key, bool modified) override {
        calls.push_back((modified ? "modified " : "unmodified ") + key);
    }
    void SetUnusableNodes(const std::vector<std::string>& keys) override { unusable = keys; }
    void FocusGrid() override { calls.emplace_back("focus grid"); }
    void ShowFaults() override { calls.emplace_back("show faults"); }

    void SetToolStates(const ToolStates& states) override {
        calls.emplace_back("tools");
        tools = states;
    }
    void SetTemplateName(const std::string& text) override {
        calls.push_back("name " + text);
        name = text;
    }
    void SetGridInteractive(bool on) override {
        calls.push_back(on ? "interactive" : "not interactive");
        interactive = on;
    }
    void SetProgress(const ProgressState& state) override { progress = state; }
    bool ProgressCancelled() override { return cancelled; }
    void SetItemPanel(const ItemPanelState& state) override { itemPanel = state; }
    void SetStatus(const StatusState& state) override { status = state; }
    void SetNameList(const NameListState& state) override { nameList = state; }

    int ApplyFont(const std::string& fontName, double size) override {
        fonts.push_back(fontName + " " + std::to_string(static_cast<int>(size)));
        return labelHeight;
    }
    Size WindowSize() const override { return windowSize; }
    void PlaceProgressFrame(const Corner& corner) override {
        calls.push_back("progress frame " + std::to_string(corner.left) + "," + std::to_string(corner.top));
    }

    void ShowFindDialog(dialogs::FrmSearch& dialog) override {
        calls.emplace_back("find");
        if (onFind) onFind(dialog);
    }
    void ShowColumnDialog(dialogs::frmSetColume& dialog) override {
        calls.emplace_back("columns");
        if (onColumns) onColumns(dialog);
    }

    void ShowGridReplace(GridReplace& replace) override {
        calls.emplace_back("replace");
        if (onGridReplace) onGridReplace(replace);
    }
    void ShowSearch() override { calls.emplace_back("search"); }
    std::optional<std::string> AskName(const std::string& caption, const std::string& proposed) override {
        return onAskName ? onAskName(caption, proposed) : std::nullopt;
    }

    // How often it was told that.
    int Count(const std::string& call) const {
        int count = 0;
        for (const std::string& made : calls)
            count += made == call ? 1 : 0;
        return count;
    }
    bool Enabled(Tool tool) const { return tools[static_cast<std::size_t>(tool)]; }

    std::vector<std::string> calls;
    std::vector<TreeNode> tree;
    std::string selected;
    std::vector<std::string> unusable;
    ToolStates tools{};
    std::string name;
    bool interactive = true;
    ProgressState progress;
    bool cancelled = false;
    ItemPanelState itemPanel;
    StatusState status;
    NameListState nameList;
    std::vector<std::string> fonts;
    int labelHeight = 180;
    Size windowSize{12000, 8000};
    std::function<void()> onClose;
    std::function<void()> onCommitTyping;  // what an open editor does
    std::function<void(dialogs::FrmSearch&)> onFind;
    std::function<void(dialogs::frmSetColume&)> onColumns;
    std::function<void(GridReplace&)> onGridReplace;
    std::function<std::optional<std::string>(const std::string&, const std::string&)> onAskName;
};

}  // namespace vicenter::center::test
