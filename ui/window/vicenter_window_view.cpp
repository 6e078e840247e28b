// What the main window shows, as its presenter asks for it.

#include "ui/dialogs/column_dialog.h"
#include "ui/dialogs/find_dialog.h"
#include "ui/dialogs/grid_replace_dialog.h"
#include "ui/dialogs/history_dialog.h"
#include "ui/dialogs/log_dialog.h"
#include "ui/dialogs/name_dialog.h"
#include "ui/dialogs/replacement_dialog.h"
#include "ui/dialogs/voucher_dialog.h"
#include "ui/look/one_line.h"
#include "ui/look/qt_text.h"
#include "ui/print/sheet_painter.h"
#include "ui/run/slot_guard.h"
#include "ui/window/vicenter_window.h"

namespace vicenter::ui {

void VICenterWindow::SetTree(const std::vector<center::TreeNode>& nodes) {
    tree_->SetNodes(nodes);
    if (filter_) filter_->NodesChanged();
}

void VICenterWindow::AddTreeNode(const center::TreeNode& node) {
    tree_->AddNode(node);
    if (filter_) filter_->NodesChanged();
}

void VICenterWindow::RemoveTreeNode(const std::string& key) {
    tree_->RemoveNode(key);
    if (filter_) filter_->NodesChanged();
}

void VICenterWindow::SetTreeNodeText(const std::string& key, const std::string& text) {
    tree_->SetNodeText(key, text);
    if (filter_) filter_->NodesChanged();
}

void VICenterWindow::SelectTreeNode(const std::string& key) {
    tree_->SelectNode(key);
    if (filter_) filter_->NodesChanged();
}

void VICenterWindow::StartLabelEdit() {
    tree_->StartLabelEdit();
}

void VICenterWindow::SetModified(const std::string& key, bool modified) {
    modified_ = modified;
    ShowTitle();
    if (tree_) tree_->SetModified(key, modified);
}

void VICenterWindow::SetAccount(const std::string& accountSet, const std::string& user) {
    account_.clear();
    for (const std::string& name : {accountSet, user}) {
        if (!name.empty()) account_ += QStringLiteral(" - ") + ToSentence(name);
    }
    ShowTitle();
}

void VICenterWindow::ShowTitle() {
    // Qt would take the sign for its own placeholder.
    const QString account = QString(account_).replace(QLatin1String("[*]"), QLatin1String("[*][*]"));
    setWindowTitle(QStringLiteral("凭证模板") + (modified_ ? QStringLiteral(" *") : QString()) + account);
}

void VICenterWindow::TellDone(const std::string& text, const std::string& file) {
    status_->TellDone(ToQt(text), ToQt(file));
}

void VICenterWindow::SetUnusableNodes(const std::vector<std::string>& keys) {
    tree_->SetUnusable(keys);
}

void VICenterWindow::FaultsChanged() {
    if (grid_) grid_->viewport()->update();  // hints come and go with texts elsewhere
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
    if (presenter_ && state.visible && state.expanded)
        items_->SetNames(
            GuardedOr(std::vector<std::string>(), [this] { return presenter_->Items().Names(); }));
    PlaceOverlays();
}

void VICenterWindow::SetStatus(const center::StatusState& state) {
    status_->SetState(state);
}

void VICenterWindow::SetNameList(const center::NameListState& state) {
    nameList_->SetState(state);
    PlaceOverlays();
}

void VICenterWindow::Show(QDialog& dialog) const {
    if (!unloaded_) dialog.exec();
}

void VICenterWindow::ShowFindDialog(dialogs::FrmSearch& dialog) {
    FindDialog window(
        dialog, [this] { return ActiveRowOnScreen(); }, this);
    window.adjustSize();
    // In the corner where it hides the fewest rows.
    const QPoint corner = mapToGlobal(QPoint(width() - window.width() - 30, height() - window.height() - 60));
    window.move(corner);
    Show(window);
}

void VICenterWindow::ShowColumnDialog(dialogs::frmSetColume& dialog) {
    ColumnDialog window(dialog, this);
    Show(window);
}

void VICenterWindow::ShowHistory(center::TemplateHistory& history) {
    HistoryDialog window(history, this);
    Show(window);
}

void VICenterWindow::ShowReplacement(center::CodeReplacement& replacement) {
    ReplacementDialog window(replacement, this);
    Show(window);
}

void VICenterWindow::ShowGridReplace(center::GridReplace& replace) {
    GridReplaceDialog window(replace, this);
    window.adjustSize();
    // In the corner where it hides the fewest rows.
    window.move(mapToGlobal(QPoint(width() - window.width() - 30, height() - window.height() - 60)));
    Show(window);
}

void VICenterWindow::ShowLog(center::OperationLog& log) {
    LogDialog window(log, this);
    Show(window);
}

void VICenterWindow::ShowSearch() {
    search_->TakeKeyboard();
}

std::optional<std::string> VICenterWindow::AskName(const std::string& caption, const std::string& proposed) {
    return unloaded_ ? std::nullopt : AskForName(caption, proposed, this);
}

void VICenterWindow::ShowVoucher(center::VoucherPreview& preview) {
    VoucherDialog window(preview, *this, this);
    Show(window);
}

bool VICenterWindow::Print(const center::PrintSheet& sheet) {
    return !unloaded_ && PrintOnPaper(sheet, this);
}

void VICenterWindow::WritePdf(const center::PrintSheet& sheet, const std::string& file) {
    WriteSheetAsPdf(sheet, file);
}

}  // namespace vicenter::ui
