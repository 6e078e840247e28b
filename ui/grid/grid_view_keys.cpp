// The keys of the entry grid: moving about, editing, blocks. Its menu is in grid_view_menu.cpp, the rest of
// GridView in grid_view.cpp.

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QMimeData>
#include <QScrollBar>
#include <algorithm>
#include <optional>
#include <utility>

#include "center/frame/key_code.h"
#include "ui/grid/cell_editor.h"
#include "ui/grid/grid_view.h"
#include "ui/grid/key_codes.h"
#include "ui/grid/rows_format.h"
#include "ui/look/qt_text.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {

namespace key_code = center::key_code;

namespace {

constexpr int kListPage = 8;

bool IsModifierKey(int key) {
    return key == Qt::Key_Shift || key == Qt::Key_Control || key == Qt::Key_Alt || key == Qt::Key_Meta ||
           key == Qt::Key_AltGr || key == Qt::Key_CapsLock || key == Qt::Key_NumLock;
}

bool IsCursorKey(int key) {
    return key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up || key == Qt::Key_Down ||
           key == Qt::Key_Home || key == Qt::Key_End || key == Qt::Key_PageUp || key == Qt::Key_PageDown;
}

// Ctrl with + and -, of the keypad too, insert and delete rows as in a spreadsheet. + is Shift and = on many
// keyboards.
bool IsInsertKey(const QKeyEvent& event) {
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (event.key() == Qt::Key_Equal) return modifiers == (Qt::ControlModifier | Qt::ShiftModifier);
    return event.key() == Qt::Key_Plus && (modifiers & ~Qt::ShiftModifier) == Qt::ControlModifier;
}

bool IsDeleteKey(const QKeyEvent& event) {
    return event.key() == Qt::Key_Minus && (event.modifiers() & ~Qt::KeypadModifier) == Qt::ControlModifier;
}

}  // namespace

int GridView::FirstVisibleColumn() const {
    for (int place = 0; place < center::kColumnCount; ++place) {
        if (!isColumnHidden(ColumnAt(place))) return ColumnAt(place);
    }
    return 0;
}

int GridView::LastVisibleColumn() const {
    for (int place = center::kColumnCount - 1; place >= 0; --place) {
        if (!isColumnHidden(ColumnAt(place))) return ColumnAt(place);
    }
    return 0;
}

void GridView::MoveTo(int row, int column) {
    const QModelIndex index = model_.index(std::clamp(row, 0, model_.rowCount() - 1), column);
    if (index.isValid()) Place(index);
}

// Through the visible columns and from the last to the first of the next row, as a form is filled in. What
// the line's account has no use for is passed by.
void GridView::MoveOn(bool back) {
    const QModelIndex current = currentIndex();
    if (!current.isValid()) return;
    const int step = back ? -1 : 1;
    for (int place = PlaceOf(current.column()) + step; place >= 0 && place < center::kColumnCount;
         place += step) {
        const int column = ColumnAt(place);
        if (isColumnHidden(column)) continue;
        const center::CellAddress cell{current.row() + 1, column + 1};
        if (!GuardedOr(false, [&] { return actions_.IsPassedBy(cell); }))
            return MoveTo(current.row(), column);
    }
    if (!back) {
        const auto stop = GuardedOr(std::optional<center::CellAddress>(),
                                    [&] { return actions_.StopInRow(current.row() + 1); });
        if (stop) return MoveTo(stop->row - 1, stop->column - 1);
    }
    const int row = current.row() + step;
    if (row < 0 || row >= model_.rowCount()) return;
    MoveTo(row, back ? LastVisibleColumn() : FirstVisibleColumn());
}

void GridView::MoveRows(int rows) {
    const QModelIndex current = currentIndex();
    if (current.isValid()) MoveTo(current.row() + rows, current.column());
}

bool GridView::focusNextPrevChild(bool /*next*/) {
    return false;  // Tab moves between cells
}

// Qt leaves the selection behind when Ctrl is held on the way; in a spreadsheet it goes along.
QItemSelectionModel::SelectionFlags GridView::selectionCommand(const QModelIndex& index,
                                                               const QEvent* event) const {
    if (placing_) return QItemSelectionModel::ClearAndSelect;
    if (event != nullptr && event->type() == QEvent::KeyPress) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        if (IsCursorKey(key.key()) && key.modifiers() & Qt::ControlModifier) {
            const QKeyEvent plain(QEvent::KeyPress, key.key(), key.modifiers() & ~Qt::ControlModifier);
            return QTableView::selectionCommand(index, &plain);
        }
    }
    return QTableView::selectionCommand(index, event);
}

QModelIndex GridView::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) {
    const QModelIndex current = currentIndex();
    if (!current.isValid()) return QTableView::moveCursor(action, modifiers);
    const bool control = modifiers & Qt::ControlModifier;
    const int used = GuardedOr(0, [&] { return actions_.RowsInUse(); });
    // Jumps never pass the first blank row: lines are entered without gaps.
    const int lastRow = std::clamp(used, 0, model_.rowCount() - 1);
    const int lastUsed = std::clamp(used - 1, 0, model_.rowCount() - 1);
    switch (action) {
        case MoveHome:
            return model_.index(control ? 0 : current.row(), FirstVisibleColumn());
        case MoveEnd:
            return model_.index(control ? lastUsed : current.row(), LastVisibleColumn());
        case MoveLeft:
            if (control) return model_.index(current.row(), FirstVisibleColumn());
            break;
        case MoveRight:
            if (control) return model_.index(current.row(), LastVisibleColumn());
            break;
        case MoveUp:
            if (control) return model_.index(0, current.column());
            break;
        case MoveDown:
            if (control) return model_.index(current.row() < lastUsed ? lastUsed : lastRow, current.column());
            break;
        case MovePageDown: {
            const QModelIndex target = QTableView::moveCursor(action, modifiers);
            if (current.row() > lastRow) return current;
            return model_.index(std::min(target.row(), lastRow), current.column());
        }
        default:
            break;
    }
    return QTableView::moveCursor(action, modifiers);
}

QMimeData* GridView::CopiedSelection() {
    const std::optional<center::CopiedBlock> block = actions_.CopyBlock(Selected());
    if (!block) return nullptr;
    auto* copied = new QMimeData;
    copied->setText(ToQt(block->text));
    if (!block->rows.empty()) copied->setData(RowsFormat(), QByteArray::fromStdString(block->rows));
    return copied;
}

bool GridView::CopySelection() {
    return GuardedOr(false, [&] {
        QMimeData* copied = CopiedSelection();
        if (copied != nullptr) QApplication::clipboard()->setMimeData(copied);
        return copied != nullptr;
    });
}

void GridView::CutSelection() {
    if (CopySelection()) ClearSelection();
}

void GridView::Paste() {
    const QMimeData* offered = QApplication::clipboard()->mimeData();
    if (!IsInteractive() || !offered || !offered->hasText()) return;
    const center::CopiedBlock block(FromQt(offered->text()), offered->data(RowsFormat()).toStdString());
    if (block.text.empty()) return;
    Guarded([&] { actions_.PasteBlock(Selected(), block); });
}

void GridView::ClearSelection() {
    if (!IsInteractive()) return;
    scrollTo(currentIndex(), EnsureVisible);
    Guarded([&] { actions_.ClearCells(Selected()); });
}

void GridView::DuplicateRows() {
    if (IsInteractive()) Guarded([&] { actions_.DuplicateRows(Selected()); });
}

void GridView::InsertRows() {
    if (IsInteractive()) Guarded([&] { actions_.InsertRows(Selected()); });
}

void GridView::DeleteRows() {
    if (IsInteractive()) Guarded([&] { actions_.DeleteRows(Selected()); });
}

void GridView::FillDown() {
    if (IsInteractive()) Guarded([&] { actions_.FillDown(Selected()); });
}

void GridView::OpenLookUp() {
    if (IsInteractive()) Guarded([&] { actions_.OpenLookUp(); });
}

void GridView::SetDirection(const QString& text) {
    scrollTo(currentIndex(), EnsureVisible);
    model_.setData(currentIndex(), text);
}

bool GridView::HandleShortcut(const QKeyEvent& event) {
    if (event.matches(QKeySequence::Copy)) return CopySelection(), true;
    if (event.matches(QKeySequence::Cut)) return CutSelection(), true;
    if (event.matches(QKeySequence::Paste)) return Paste(), true;
    if (event.matches(QKeySequence::Undo)) {
        if (IsInteractive()) Guarded([&] { actions_.Undo(); });
        return true;
    }
    if (event.matches(QKeySequence::Redo) ||
        (event.key() == Qt::Key_Y && event.modifiers() == Qt::ControlModifier)) {
        if (IsInteractive()) Guarded([&] { actions_.Redo(); });
        return true;
    }
    if (event.key() == Qt::Key_D && event.modifiers() == Qt::ControlModifier) {
        FillDown();
        return true;
    }
    if (event.key() == Qt::Key_D && event.modifiers() == (Qt::ControlModifier | Qt::ShiftModifier)) {
        DuplicateRows();
        return true;
    }
    if (event.key() == Qt::Key_T && event.modifiers() == (Qt::ControlModifier | Qt::ShiftModifier)) {
        ToggleTotals();
        return true;
    }
    if (event.key() == Qt::Key_F9 && event.modifiers() == Qt::NoModifier) return ShowVoucher(), true;
    if (HandleOwnShortcut(event)) return true;
    if (event.matches(QKeySequence::SelectAll)) return selectAll(), true;
    if (IsInsertKey(event)) return InsertRows(), true;
    if (IsDeleteKey(event)) return DeleteRows(), true;
    return false;
}

// What no spreadsheet has a key for: whole patterns, and the columns' places.
bool GridView::HandleOwnShortcut(const QKeyEvent& event) {
    using center::PatternCommand;
    const int key = event.key();
    if (event.modifiers() == (Qt::ControlModifier | Qt::ShiftModifier)) {
        if (key == Qt::Key_C) return EditPatterns(PatternCommand::Copy), true;
        if (key == Qt::Key_O) return EditPatterns(PatternCommand::Sort), true;
        if (key == Qt::Key_R) return EditPatterns(PatternCommand::Renumber), true;
        if (key == Qt::Key_W) return FitColumns(), true;
    }
    if ((event.modifiers() & ~Qt::KeypadModifier) != Qt::AltModifier) return false;
    if (key == Qt::Key_Up) return EditPatterns(PatternCommand::MoveUp), true;
    if (key == Qt::Key_Down) return EditPatterns(PatternCommand::MoveDown), true;
    if (key == Qt::Key_Left) return MoveColumn(-1), true;
    if (key == Qt::Key_Right) return MoveColumn(1), true;
    return false;
}

void GridView::EditPatterns(center::PatternCommand command) {
    if (IsInteractive()) Guarded([&] { actions_.EditPatterns(command); });
}

void GridView::keyPressEvent(QKeyEvent* event) {
    if (IsModifierKey(event->key()) || !currentIndex().isValid()) return QTableView::keyPressEvent(event);
    event->accept();
    if (HandleShortcut(*event) || HandleCellKey(*event) || HandleTyping(*event)) return;
    const bool before = selecting_;
    selecting_ = event->modifiers() & Qt::ShiftModifier && IsCursorKey(event->key());
    QTableView::keyPressEvent(event);
    if (!(event->modifiers() & Qt::ShiftModifier)) anchor_ = currentIndex();
    if (event->key() == Qt::Key_Home) horizontalScrollBar()->setValue(0);
    selecting_ = before;
}

// The keys of a cell that is not being edited.
bool GridView::HandleCellKey(QKeyEvent& event) {
    const QModelIndex current = currentIndex();
    switch (event.key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (event.modifiers() & Qt::ControlModifier && TakeProposedRow()) return true;
            if (event.modifiers() & Qt::ShiftModifier) return MoveOn(true), true;
            TakeProposal();
            return GoOn(), true;
        case Qt::Key_Tab:
            TakeProposal();
            return GoOn(), true;
        case Qt::Key_Backtab:
            return MoveOn(true), true;
        case Qt::Key_Delete:
            return ClearSelection(), true;
        case Qt::Key_Backspace:
            if (IsInteractive() && edit(current, AnyKeyPressed, nullptr)) {
                if (auto* field = qobject_cast<CellEditor*>(indexWidget(current))) field->clear();
            }
            return true;
        case Qt::Key_F2:
            return edit(current, EditKeyPressed, &event), true;
        case Qt::Key_F4:
            if (model_.AddressOf(current).column == center::column::kItems) emit itemPanelRequested();
            return true;
        case Qt::Key_Escape:
            if (!RefuseProposals()) event.ignore();
            return true;
        default:
            return false;
    }
}

// --- what is proposed of the next row

void GridView::TakeProposal() {
    if (!IsInteractive() || !currentIndex().isValid()) return;
    Guarded([&] { actions_.TakeProposal(model_.AddressOf(currentIndex())); });
}

// On through the row by Tab or Enter.
void GridView::GoOn() {
    if (IsInteractive() && currentIndex().isValid())
        Guarded([&] { actions_.TakePassed(model_.AddressOf(currentIndex())); });
    MoveOn(false);
}

bool GridView::TakeProposedRow() {
    if (!IsInteractive()) return false;
    const auto next = GuardedOr(std::optional<center::CellAddress>(), [&] { return actions_.TakeRow(); });
    if (next) MoveTo(next->row - 1, ShownColumnNear(next->column - 1));
    return next.has_value();
}

bool GridView::RefuseProposals() {
    const bool refused = IsInteractive() && GuardedOr(false, [&] { return actions_.RefuseProposals(); });
    if (refused) PaintProposals();
    return refused;
}

// The row that has proposals now, and the one that had.
void GridView::PaintProposals() {
    const int row = GuardedOr(0, [&] { return actions_.ProposedRow(); });
    for (const int painted : {std::exchange(proposedRow_, row), row}) {
        if (painted < 1 || painted > model_.rowCount()) continue;
        viewport()->update(0, rowViewportPosition(painted - 1), viewport()->width(), rowHeight(painted - 1));
    }
}

// What the rules know the key for, and characters: true when nothing is left for an editor to do.
bool GridView::HandleTyping(QKeyEvent& event) {
    if (TypesNothing(event)) return false;
    const QModelIndex current = currentIndex();
    const center::CellAddress cell = model_.AddressOf(current);
    const int code = KeyCodeOf(event);
    if (IsInteractive() && code != 0 && !(event.modifiers() & Qt::ControlModifier)) {
        const std::string text(model_.Grid().Text(cell.row, cell.column));
        if (GuardedOr(true, [&] { return actions_.KeyDown(code, text); })) return true;
    }
    const char32_t typed = TypedCharacter(event);
    if (typed == 0) return false;
    if (!IsInteractive()) return true;
    if (cell.column == center::column::kDirection) {
        const QString choice = DirectionForKey(event.text());
        if (!choice.isNull()) {
            if (!StoodBelowRows()) SetDirection(choice);
        } else if (typed == U' ') {
            edit(current, EditKeyPressed, &event);
        }
        return true;
    }
    if (GuardedOr(false, [&] { return actions_.KeyPress(typed); })) return false;
    emit textRefused(ToQt(center::VerdictText(center::TextVerdict::BadCharacter, cell.column)));
    return true;
}

bool GridView::HandleNameListKey(QWidget& editor, const QKeyEvent& event) {
    if (!GuardedOr(false, [&] { return names_.IsOpen(); })) return false;
    switch (event.key()) {
        case Qt::Key_Up:
            Guarded([&] { names_.Move(-1); });
            return true;
        case Qt::Key_Down:
            Guarded([&] { names_.Move(1); });
            return true;
        case Qt::Key_PageUp:
            Guarded([&] { names_.Move(-kListPage); });
            return true;
        case Qt::Key_PageDown:
            Guarded([&] { names_.Move(kListPage); });
            return true;
        case Qt::Key_Escape:
            Guarded([&] { names_.Close(); });
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Tab: {
            const bool taken = GuardedOr(false, [&] { return names_.Take(); });
            if (!taken) return false;
            // The choice is in the row already; what was typed goes with the editor.
            closeEditor(&editor, QAbstractItemDelegate::RevertModelCache);
            if (!(event.modifiers() & Qt::ControlModifier) || !TakeProposedRow()) GoOn();
            return true;
        }
        default:
            return false;
    }
}

bool GridView::EditorKeyPressed(QWidget& editor, QKeyEvent& event) {
    // The key that opened the editor has been asked about before.
    if (openingByTyping_ || IsModifierKey(event.key())) return false;
    if (HandleNameListKey(editor, event)) return true;
    auto* field = qobject_cast<CellEditor*>(&editor);
    const bool shift = event.modifiers() & Qt::ShiftModifier;
    switch (event.key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Tab:
        case Qt::Key_Backtab:
            FinishEditing(&editor);
            if (event.key() == Qt::Key_Backtab || (event.key() != Qt::Key_Tab && shift))
                return MoveOn(true), true;
            if (event.key() == Qt::Key_Tab || !(event.modifiers() & Qt::ControlModifier) ||
                !TakeProposedRow())
                GoOn();
            return true;
        case Qt::Key_Escape:
            closeEditor(&editor, QAbstractItemDelegate::RevertModelCache);
            return true;
        case Qt::Key_Up:
        case Qt::Key_Down:
            if (!field) return false;  // the list's own keys
            FinishEditing(&editor);
            // With a key held it is what it is in a cell that is not being edited.
            if ((event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
                return keyPressEvent(&event), true;
            MoveRows(event.key() == Qt::Key_Up ? -1 : 1);
            return true;
        case Qt::Key_Left:
        case Qt::Key_Right:
            if (!field || !field->WasOpenedByTyping() || event.modifiers() & ~Qt::KeypadModifier)
                return false;
            FinishEditing(&editor);
            if (const QModelIndex to = moveCursor(event.key() == Qt::Key_Left ? MoveLeft : MoveRight, {});
                to.isValid()) {
                MoveTo(to.row(), to.column());
            }
            return true;
        default:
            break;
    }
    return field && HandleFieldKey(*field, event);
}

// What is typed into a text field passes the rules key by key.
bool GridView::HandleFieldKey(CellEditor& field, QKeyEvent& event) {
    const int code = KeyCodeOf(event);
    if (event.key() == Qt::Key_F2) {
        field.SetOpenedByTyping(false);
        return true;
    }
    // With Shift or Ctrl the key pastes or copies, as in any text field.
    const Qt::KeyboardModifiers held = event.modifiers() & ~Qt::KeypadModifier;
    if (code == key_code::kInsert && held != Qt::NoModifier) return false;
    if (code == key_code::kInsert || code == key_code::kF7) {
        FinishEditing(&field);
        const center::CellAddress cell = model_.AddressOf(currentIndex());
        Guarded([&] { actions_.KeyDown(code, std::string(model_.Grid().Text(cell.row, cell.column))); });
        return true;
    }
    if (TypesNothing(event)) return true;
    const bool command = event.modifiers() & (Qt::ControlModifier | Qt::AltModifier);
    if (command && TypedCharacter(event) == 0) return false;
    if (code != 0 && GuardedOr(true, [&] { return actions_.KeyDown(code, FromQt(field.text())); })) {
        // The rules wrote the cell themselves: the editor goes on from there.
        const center::CellAddress cell = model_.AddressOf(currentIndex());
        const QString now = ToQt(model_.Grid().Text(cell.row, cell.column));
        if (field.text() != now) field.setText(now);
        field.end(false);
        return true;
    }
    const char32_t typed = TypedCharacter(event);
    if (typed != 0 && !GuardedOr(false, [&] { return actions_.KeyPress(typed); })) {
        emit textRefused(ToQt(center::VerdictText(center::TextVerdict::BadCharacter, field.Column())));
        return true;
    }
    return false;
}

}  // namespace vicenter::ui
