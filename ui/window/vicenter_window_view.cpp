// What the main window shows, as its presenter asks for it.

#include "ui/dialogs/column_dialog.h"
#include "ui/dialogs/history_dialog.h"
#include "ui/dialogs/find_dialog.h"
#include "ui/look/qt_text.h"
#include "ui/window/vicenter_window.h"

namespace vicenter::ui {

void VICenterWindow::SetTree(const std::vector<center::TreeNode>& nodes) {
    tree_->SetNodes(nodes);
}

void VICenterWindow::AddTreeNode(const center::TreeNode& node) {
    tree_->AddNode(node);
}

void VICenterWindow::RemoveTreeNode(const std::string& key) {
    tree_->RemoveNode(key);
}

void VICenterWindow::SetTreeNodeText(const std::string& key, const std::string& text) {
    tree_->SetNodeText(key, text);
}

void VICenterWindow::SelectTreeNode(const std::string& key) {
    tree_->SelectNode(key);
}

void VICenterWindow::StartLabelEdit() {
    tree_->StartLabelEdit();
}

void VICenterWindow::SetModified(const std::string& key, bool modified) {
    setWindowTitle(modified ? QStringLiteral("凭证模板 *") : QStringLiteral("凭证模板"));
    if (tree_) tree_->SetModified(key, modified);
}

void VICenterWindow::SetUnusableNodes(const std::vector<std::string>& keys) {
    tree_->SetUnusable(keys);
}

void VICenterWindow::FaultsChanged() {
    if (faults_) faults_->Refresh();
}

void VICenterWindow::ShowFaults() {
    if (faults_) faults_->show();
}

void VICenterWindow::FocusGrid() {
    grid_->setFocus(Qt::OtherFocusReason);
}

void VICenterWindow::SetToolStates(const center::ToolStates& states) {
    band_->SetStates(states);
}

void VICenterWindow::SetTemplateName(const std::string& name) {
    name_->setText(ToQt(name));
    name_->setCursorPosition(0);
}

void VICenterWindow::SetGridInteractive(bool interactive) {
    grid_->SetInteractive(interactive);
    items_->SetInteractive(interactive);
}

void VICenterWindow::SetProgress(const center::ProgressState& state) {
    progress_->SetState(state);
}

bool VICenterWindow::ProgressCancelled() {
    return progress_->PollCancelled();
}

void VICenterWindow::SetItemPanel(const center::ItemPanelState& state) {
    items_->SetState(state);
    PlaceOverlays();
}

void VICenterWindow::SetStatus(const center::StatusState& state) {
    status_->SetState(state);
}

void VICenterWindow::SetNameList(const center::NameListState& state) {
    nameList_->SetState(state);
    PlaceOverlays();
}

void VICenterWindow::ShowFindDialog(dialogs::FrmSearch& dialog) {
    FindDialog window(
        dialog, [this] { return ActiveRowOnScreen(); }, this);
    window.adjustSize();
    // In the corner where it hides the fewest rows.
    const QPoint corner = mapToGlobal(QPoint(width() - window.width() - 30, height() - window.height() - 60));
    window.move(corner);
    window.exec();
}

void VICenterWindow::ShowColumnDialog(dialogs::frmSetColume& dialog) {
    ColumnDialog window(dialog, this);
    window.exec();
}

void VICenterWindow::ShowHistory(center::TemplateHistory& history) {
    HistoryDialog window(history, this);
    window.exec();
}

}  // namespace vicenter::ui
