#pragma once

// The template tree `trv`. Nodes are known by their keys; what a click, a double-click or an edited label
// means is TreeActions' to say. User-interface thread only.

#include <QPersistentModelIndex>
#include <QTreeWidget>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "center/frame/vicenter_view.h"
#include "center/tree/tree_actions.h"

namespace vicenter::ui {

class TemplateTree : public QTreeWidget {
    Q_OBJECT

  public:
    TemplateTree(center::TreeActions& actions, QWidget* parent = nullptr);

    void SetNodes(const std::vector<center::TreeNode>& nodes);
    void AddNode(const center::TreeNode& node);
    void RemoveNode(const std::string& key);
    void SetNodeText(const std::string& key, const std::string& text);
    // A sign behind the name of the one template whose changes are not saved.
    void SetModified(const std::string& key, bool modified);
    bool ShowsModified(const std::string& key) const;
    // Names in red and tooltips that say so: those templates have numbers that cannot be used.
    void SetUnusable(const std::vector<std::string>& keys);
    bool ShowsUnusable(const std::string& key) const;
    // The nodes of those keys; all of them without a list.
    void ShowOnly(const std::optional<std::vector<std::string>>& keys);
    // Without a node click.
    void SelectNode(const std::string& key);
    void StartLabelEdit();
    bool IsEditingLabel() const { return state() == EditingState; }
    // Ends an open label edit as leaving it with the mouse does.
    void EndLabelEdit();

    // What dragged rows are over: where they may be dropped, and where they may not.
    enum class DropMark { None, Takes, Refuses };
    DropMark MarkOf(const QModelIndex& index) const;

    std::string SelectedKey() const;
    QTreeWidgetItem* FindNode(const std::string& key) const;

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) override;

  private:
    class LabelDelegate;

    QTreeWidgetItem* MakeItem(const center::TreeNode& node) const;
    void ShowModified(QTreeWidgetItem& item) const;
    void ShowUnusable(QTreeWidgetItem& item) const;
    void ShowSpoken(QTreeWidgetItem& item) const;
    void Click(QTreeWidgetItem* item);
    // The node that rows may be dropped on there; none for anything else that is dragged.
    QTreeWidgetItem* DropTarget(const QDropEvent& event) const;
    void MarkDrop(const QModelIndex& index, bool takes);
    void FinishLabel();
    void GiveUpLabel();

    center::TreeActions& actions_;
    LabelDelegate* labels_;
    std::set<std::string> unusable_;  // keys
    std::string modified_;            // key of the modified template; empty for none
    QPersistentModelIndex pressed_;   // by the left button
    QPersistentModelIndex under_;     // dragged rows
    bool takes_ = false;              // and they may be dropped there
    bool selecting_ = false;          // the selection is being set by the program
    bool doubleClicked_ = false;
};

}  // namespace vicenter::ui
