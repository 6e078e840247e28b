// What the grid and the tree of the main window ask for, forwarded to its presenter.

#include "platform/system/surroundings.h"
#include "platform/system/utf8.h"
#include "ui/window/vicenter_window.h"

namespace vicenter::ui {

namespace {

constexpr std::size_t kRefusedNamed = 12;
constexpr std::size_t kCharactersNamed = 60;  // of a text

}  // namespace

void VICenterWindow::ShowRefused(const center::PasteResult& result) {
    if (result.refused.empty()) return;
    std::string text =
        "以下 " + std::to_string(result.refused.size()) + " 个单元格的内容不能使用，更正后才能保存：\r\n";
    for (std::size_t i = 0; i < result.refused.size() && i < kRefusedNamed; ++i) {
        const center::RefusedCell& refused = result.refused[i];
        text += "\r\n行" + std::to_string(refused.cell.row);
        if (refused.cell.column >= 1 && refused.cell.column <= center::kColumnCount) {
            text += " " + std::string(center::Column(refused.cell.column).header);
        }
        text += "：“" + std::string(system::Head(refused.text, kCharactersNamed)) +
                (system::CharacterCount(refused.text) > kCharactersNamed ? "…" : "") + "” " + refused.reason;
        if (!refused.kept) text += "，保持原样";
    }
    if (result.refused.size() > kRefusedNamed) text += "\r\n……";
    system::Surroundings::Current().messageBoxes->Show(text, system::MessageButtons::Ok,
                                                       system::MessageIcon::Information, "信息提示");
}

void VICenterWindow::MoveActiveCell(const center::CellAddress& to, center::CursorMove how) {
    presenter_->MoveActiveCell(to, how);
}

void VICenterWindow::SelectionChanged(const center::CellSelection& selection) {
    if (loaded_ && !unloaded_) presenter_->SelectionChanged(selection);
}

bool VICenterWindow::KeyPress(char32_t character) {
    return presenter_->GridKeyPress(character);
}

bool VICenterWindow::KeyDown(int keyCode, const std::string& cellText) {
    return presenter_->GridKeyDown(keyCode, cellText);
}

void VICenterWindow::OpenLookUp() {
    presenter_->OpenLookUp();
}

int VICenterWindow::RowsInUse() {
    return presenter_->RowCount();
}

void VICenterWindow::ClearCells(const center::CellSelection& selection) {
    presenter_->ClearCells(selection);
}

std::optional<center::CopiedBlock> VICenterWindow::CopyBlock(const center::CellSelection& selection) {
    return presenter_->CopyBlock(selection);
}

void VICenterWindow::PasteBlock(const center::CellSelection& selection, const center::CopiedBlock& block) {
    ShowRefused(presenter_->PasteBlock(selection, block));
}

void VICenterWindow::FillDown(const center::CellSelection& selection) {
    presenter_->FillDown(selection);
}

void VICenterWindow::DuplicateRows(const center::CellSelection& selection) {
    presenter_->DuplicateRows(selection);
}

void VICenterWindow::InsertRows(const center::CellSelection& selection) {
    presenter_->InsertRows(selection);
}

void VICenterWindow::DeleteRows(const center::CellSelection& selection) {
    presenter_->DeleteRows(selection);
}

void VICenterWindow::Undo() {
    presenter_->Undo();
}

void VICenterWindow::Redo() {
    presenter_->Redo();
}

bool VICenterWindow::IsNameListOpen() {
    return nameList_->State().open;
}

void VICenterWindow::NameListKey(const std::string& typedText) {
    presenter_->NameListKey(typedText);
}

void VICenterWindow::NameListMove(int steps) {
    presenter_->NameListMove(steps);
}

bool VICenterWindow::NameListTake() {
    return presenter_->NameListTake();
}

void VICenterWindow::NameListClose() {
    if (nameList_->State().open) presenter_->NameListClose();
}

void VICenterWindow::NodeClick(const std::string& key) {
    grid_->CommitOpenEditor();
    items_->CommitTyping();
    presenter_->TreeNodeClick(key);
}

void VICenterWindow::DoubleClick() {
    presenter_->TreeDoubleClick();
}

bool VICenterWindow::BeforeLabelEdit() {
    return presenter_->TreeBeforeLabelEdit();
}

bool VICenterWindow::AfterLabelEdit(const std::string& newText) {
    return presenter_->TreeAfterLabelEdit(newText);
}

bool VICenterWindow::EditsLabels() {
    return presenter_->TreeEditsLabels();
}

void VICenterWindow::DeleteSelected() {
    if (band_->ActionOf(center::Tool::Del).isEnabled()) presenter_->ToolClick("mnuDel");
}

std::vector<TreeMenuItem> VICenterWindow::MenuItems() {
    if (!presenter_->OffersAccountSetCare()) return {};
    return {{"mnuBackUpAccountSet", "备份账套(&B)…", [this] { presenter_->BackUpAccountSet(); }},
            {"mnuVerifyAccountSet", "检查账套(&V)", [this] { presenter_->VerifyAccountSet(); }}};
}

}  // namespace vicenter::ui
