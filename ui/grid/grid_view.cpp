#include "ui/grid/grid_view.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <algorithm>
#include <utility>

#include "ui/grid/cell_delegate.h"
#include "ui/grid/cell_editor.h"
#include "ui/grid/frozen_columns.h"
#include "ui/look/qt_text.h"
#include "ui/look/theme.h"
#include "ui/look/twips.h"
#include "ui/run/application.h"
#include "ui/run/composition.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {

namespace {

constexpr int kMinimumColumnWidth = 12;

// Sets a flag for the length of a scope and puts the old value back.
class FlagScope {
  public:
    explicit FlagScope(bool& flag) : flag_(flag), before_(std::exchange(flag, true)) {}
    FlagScope(const FlagScope&) = delete;
    FlagScope& operator=(const FlagScope&) = delete;
    ~FlagScope() { flag_ = before_; }

  private:
    bool& flag_;
    bool before_;
};

}  // namespace

GridView::GridView(GridModel& model, center::GridActions& actions, center::NameListActions& names,
                   QWidget* parent)
    : QTableView(parent),
      model_(model),
      actions_(actions),
      names_(names),
      columnHeader_(new GridHeader(Qt::Horizontal, this)),
      rowHeader_(new GridHeader(Qt::Vertical, this)),
      frozen_(new FrozenColumns(*this)) {
    setObjectName(QStringLiteral("vsEntrys"));
    setAccessibleName(QStringLiteral("凭证模板分录"));
    setHorizontalHeader(columnHeader_);
    setVerticalHeader(rowHeader_);
    rowHeader_->setSectionResizeMode(QHeaderView::Fixed);
    rowHeader_->SetPullable([this](int section) {
        const center::CellSelection selection = Selected();
        return selection.wholeRows &&
               selectionModel()->isSelected(model_.index(section, FirstVisibleColumn()));
    });
    connect(rowHeader_, &GridHeader::pulledOut, this, &GridView::rowsPulledOut);
    columnHeader_->setMinimumSectionSize(kMinimumColumnWidth);
    setItemDelegate(new CellDelegate(*this));
    setWordWrap(false);
    setShowGrid(true);
    setGridStyle(Qt::SolidLine);
    setCornerButtonEnabled(false);
    setSelectionMode(ExtendedSelection);
    setSelectionBehavior(SelectItems);
    setEditTriggers(EditKeyPressed | AnyKeyPressed | DoubleClicked);
    setTabKeyNavigation(false);
    setVerticalScrollMode(ScrollPerItem);
    setHorizontalScrollMode(ScrollPerPixel);
    setFrameShape(QFrame::StyledPanel);
    ApplyColors();
    connect(&Theme::Process(), &Theme::changed, this, &GridView::ApplyColors);
    QTableView::setModel(&model_);

    connect(&model_, &GridModel::columnLayoutChanged, this, &GridView::ApplyColumns);
    connect(&model_, &GridModel::rowHeightsChanged, this, &GridView::ApplyRowHeights);
    connect(&model_, &GridModel::gridFontChanged, this, &GridView::ApplyFont);
    connect(&model_, &GridModel::activeCellChanged, this, &GridView::FollowActiveCell);
    connect(&model_, &GridModel::textRefused, this, &GridView::textRefused);
    connect(&model_, &GridModel::scrolledIntoView, this, [this](int row, int column) {
        const QModelIndex index = model_.IndexOf({row, std::max(column, 1)});
        if (index.isValid()) scrollTo(index, EnsureVisible);
    });
    connect(&model_, &GridModel::columnOrderChanged, this, &GridView::ApplyOrder);
    connect(columnHeader_, &QHeaderView::sectionMoved, this, &GridView::HandInOrder);
    connect(this, &GridView::contentsMoved, this, &GridView::ShowFrozen);
    connect(this, &GridView::editingChanged, this, &GridView::ShowFrozen);
    connect(&model_, &GridModel::dataChanged, frozen_, qOverload<>(&QWidget::update));
    connect(columnHeader_, &GridHeader::menuRequested, this, &GridView::ShowColumnMenu);
    connect(rowHeader_, &GridHeader::menuRequested, this, &GridView::ShowGridMenu);
    for (const auto moved : {&GridModel::rowsInserted, &GridModel::rowsRemoved})
        connect(&model_, moved, this, &GridView::PaintProposals);
    connect(&model_, &GridModel::dataChanged, this, &GridView::PaintProposals);
    connect(&model_, &GridModel::activeCellChanged, this, &GridView::PaintProposals);
    connect(&model_, &GridModel::dataChanged, this, &GridView::RepaintBeyond);
    connect(columnHeader_, &QHeaderView::sectionResized, this,
            [this](int section, int /*before*/, int now) { SectionResized(section, now); });
    connect(columnHeader_, &QHeaderView::sectionMoved, this, &GridView::FillWidth);
    connect(columnHeader_, &GridHeader::released, this, &GridView::FillWidth);
    ApplyOrder();
    ApplyColumns(1, center::kColumnCount);
    ApplyRowHeights();
    ApplyFont();
    FollowActiveCell();
}

void GridView::ApplyColors() {
    QPalette own;
    own.setColor(QPalette::Highlight, colors::kSelection);
    own.setColor(QPalette::HighlightedText, colors::kInk);
    own.setColor(QPalette::Mid, colors::kGridLine);
    setPalette(own);
}

void GridView::setModel(QAbstractItemModel* model) {
    QTableView::setModel(model);
}

void GridView::SetInteractive(bool interactive) {
    if (!interactive) CommitOpenEditor();
    model_.SetInteractive(interactive);
    viewport()->update();
}

bool GridView::HasFocusWithin() const {
    const QWidget* focus = QApplication::focusWidget();
    return focus && (focus == this || isAncestorOf(focus));
}

QWidget* GridView::OpenEditor() const {
    return currentIndex().isValid() ? indexWidget(currentIndex()) : nullptr;
}

bool GridView::IsEditing() const {
    return state() == EditingState;
}

std::optional<center::TypedText> GridView::TextInEditor() const {
    const auto* field = qobject_cast<const CellEditor*>(OpenEditor());
    if (field == nullptr || field->text() == currentIndex().data(Qt::EditRole).toString())
        return std::nullopt;
    return center::TypedText{model_.AddressOf(currentIndex()), FromQt(field->text())};
}

void GridView::CommitOpenEditor() {
    if (QWidget* editor = OpenEditor()) FinishEditing(editor);
}

void GridView::FinishEditing(QWidget* editor) {
    Composition::Finish(*editor);
    Guarded([&] { names_.Close(); });
    commitData(editor);
    GridView::closeEditor(editor, QAbstractItemDelegate::NoHint);
}

void GridView::DropOpenEditor() {
    if (QWidget* editor = OpenEditor()) closeEditor(editor, QAbstractItemDelegate::RevertModelCache);
}

void GridView::ApplyColumns(int firstColumn, int lastColumn) {
    const FlagScope scope(applyingColumns_);
    for (int column = firstColumn; column <= lastColumn; ++column) {
        const center::ColumnLayout layout = model_.Grid().Layout(column);
        const int pixels = std::max(TwipsToPixels(layout.width, *this), kMinimumColumnWidth);
        if (!layout.hidden) setColumnWidth(column - 1, pixels);
        if (isColumnHidden(column - 1) != layout.hidden) {
            // A selection speaks of the columns that were shown when it was made.
            CommitOpenEditor();
            if (currentIndex().isValid())
                selectionModel()->select(currentIndex(), QItemSelectionModel::ClearAndSelect);
        }
        setColumnHidden(column - 1, layout.hidden);
        if (!layout.hidden) setColumnWidth(column - 1, pixels);
    }
    KeepCursorShown();
    FillWidth();
    emit contentsMoved();
}

void GridView::SectionResized(int section, int now) {
    if (!applyingColumns_ && now > 0) {
        Guarded([&] { model_.Grid().SetColumnWidth(section + 1, PixelsToTwips(now, *this)); });
        // Not under the hand that is dragging the last column's own edge.
        if (section != LastShownColumn() || !columnHeader_->IsPressed()) FillWidth();
    }
    emit contentsMoved();
}

int GridView::LastShownColumn() const {
    for (int visual = columnHeader_->count() - 1; visual >= 0; --visual) {
        const int column = columnHeader_->logicalIndex(visual);
        if (!isColumnHidden(column)) return column;
    }
    return -1;
}

// On the screen alone: the grid keeps the width that the profile or the user gave the column.
void GridView::FillWidth() {
    const int last = LastShownColumn();
    if (last < 0) return;
    const FlagScope scope(applyingColumns_);
    const auto widthOf = [this](int column) {
        return std::max(TwipsToPixels(model_.Grid().Layout(column + 1).width, *this), kMinimumColumnWidth);
    };
    int others = 0;
    for (int column = 0; column < center::kColumnCount; ++column) {
        if (column == last || isColumnHidden(column)) continue;
        // One that was the last has filled the width until now.
        if (columnWidth(column) != widthOf(column)) setColumnWidth(column, widthOf(column));
        others += columnWidth(column);
    }
    setColumnWidth(last, std::max(widthOf(last), viewport()->width() - others));
}

std::optional<center::NumberTotals> GridView::TotalsEndingAt(int row) const {
    return GuardedOr(std::optional<center::NumberTotals>(), [&] { return actions_.TotalsEndingAt(row); });
}

void GridView::ToggleTotals() {
    Guarded([&] { actions_.SetShowsTotals(!actions_.ShowsTotals()); });
    viewport()->update();
}

void GridView::ShowVoucher() {
    Guarded([&] { actions_.ShowVoucher(model_.AddressOf(currentIndex()).row); });
}

// A number, a side or an amount shows in other cells, too: bands, rules, indents and sums.
void GridView::RepaintBeyond(const QModelIndex& topLeft, const QModelIndex& bottomRight) {
    for (const int column : {center::column::kNo, center::column::kDirection, center::column::kAmount}) {
        if (topLeft.column() < column && column <= bottomRight.column() + 1) return viewport()->update();
    }
}

int GridView::ShownColumnNear(int column) const {
    for (int right = PlaceOf(column); right < center::kColumnCount; ++right) {
        if (!isColumnHidden(ColumnAt(right))) return ColumnAt(right);
    }
    for (int left = PlaceOf(column); left >= 0; --left) {
        if (!isColumnHidden(ColumnAt(left))) return ColumnAt(left);
    }
    return column;
}

// What nobody sees is not worked on.
void GridView::KeepCursorShown() {
    const QModelIndex current = currentIndex();
    if (!current.isValid() || !isColumnHidden(current.column())) return;
    const int shown = ShownColumnNear(current.column());
    if (shown != current.column()) MoveTo(current.row(), shown);
}

void GridView::ApplyRowHeights() {
    rowHeader_->setMinimumSectionSize(1);
    rowHeader_->setDefaultSectionSize(std::max(TwipsToPixels(model_.Grid().RowHeight(), *this), 1));
    columnHeader_->setFixedHeight(std::max(TwipsToPixels(model_.Grid().HeaderHeight(), *this), 1));
    emit contentsMoved();
}

void GridView::ApplyFont() {
    const center::GridFont& wanted = model_.Grid().Font();
    QFont font = this->font();  // bold and italic stay as they are
    font.setFamilies({BillFontFamily()});
    font.setPointSizeF(wanted.size);
    setFont(font);
    columnHeader_->setFont(font);
    rowHeader_->setFont(font);
}

// By the view's own member: Shift with an arrow then selects from here.
void GridView::Place(const QModelIndex& index) {
    const FlagScope scope(placing_);
    anchor_ = index;
    setCurrentIndex(index);
}

void GridView::FollowActiveCell() {
    if (model_.IsChangingRows()) return;
    const QModelIndex index = model_.IndexOf(model_.Grid().ActiveCell());
    if (index == currentIndex()) {
        // Rows that came or went have moved it without a word.
        ShowActiveSections();
        return;
    }
    {
        const FlagScope scope(following_);
        if (index.isValid()) {
            Place(index);
        } else {
            selectionModel()->clear();
        }
    }
    KeepCursorShown();
}

void GridView::ShowActiveSections() {
    const QModelIndex current = currentIndex();
    columnHeader_->SetActiveSection(current.isValid() ? current.column() : -1);
    rowHeader_->SetActiveSection(current.isValid() ? current.row() : -1);
    frozen_->update();
}

void GridView::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QTableView::currentChanged(current, previous);
    // The rows that it was among may have gone.
    if (!selecting_ || !anchor_.isValid()) anchor_ = selecting_ ? previous : current;
    ShowActiveSections();
    if (following_ || model_.IsChangingRows() || !current.isValid()) return;
    const bool selecting = selecting_ || rowHeader_->IsPressed() || columnHeader_->IsPressed();
    const auto how = selecting ? center::CursorMove::Selecting : center::CursorMove::Going;
    Guarded([&] { actions_.MoveActiveCell(model_.AddressOf(current), how); });
    FollowActiveCell();
}

void GridView::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) {
    QTableView::selectionChanged(selected, deselected);
    frozen_->update();
    if (model_.IsChangingRows()) return;
    Guarded([&] { actions_.SelectionChanged(Selected()); });
}

center::CellSelection GridView::Selected() const {
    const QItemSelection selection = selectionModel()->selection();
    if (selection.isEmpty()) {
        const QModelIndex current = currentIndex();
        if (!current.isValid()) return {};
        const center::CellAddress cell = model_.AddressOf(current);
        return {cell.row, cell.column};
    }
    center::CellSelection selected;
    selected.wholeRows = true;
    for (const QItemSelectionRange& range : selection) {
        selected.pieces.push_back({range.top() + 1, range.left() + 1, range.bottom() + 1, range.right() + 1});
        if (range.width() < center::kColumnCount) selected.wholeRows = false;
    }
    return selected;
}

// Blocks of cells hold what is shown; Qt's own would take the hidden columns between them along. Qt knows
// where a block begins by a place on the screen, which may have been scrolled below other columns by now.
void GridView::setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command) {
    const bool extends = command & QItemSelectionModel::Current;
    if (!extends) anchor_ = indexAt(rect.topLeft());
    const QModelIndex end = !extends ? QModelIndex(anchor_) : pulling_ ? indexAt(pulledTo_) : currentIndex();
    if (command & (QItemSelectionModel::Rows | QItemSelectionModel::Columns) || !anchor_.isValid() ||
        !end.isValid()) {
        QTableView::setSelection(rect, command);
        return;
    }
    QItemSelection selection;
    const auto [firstRow, lastRow] = std::minmax({anchor_.row(), end.row()});
    const auto [firstPlace, lastPlace] = std::minmax({PlaceOf(anchor_.column()), PlaceOf(end.column())});
    for (int place = firstPlace; place <= lastPlace; ++place) {
        const int column = ColumnAt(place);
        if (isColumnHidden(column)) continue;
        int last = column;
        while (place < lastPlace && ColumnAt(place + 1) == last + 1 && !isColumnHidden(last + 1)) {
            ++last;
            ++place;
        }
        selection.append(QItemSelectionRange(model_.index(firstRow, column), model_.index(lastRow, last)));
    }
    selectionModel()->select(selection, command);
}

void GridView::selectAll() {
    if (model_.rowCount() < 1) return;
    const QItemSelection all(model_.index(0, 0), model_.index(model_.rowCount() - 1, 0));
    selectionModel()->select(all, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

QRect GridView::CellRectIn(const center::CellAddress& cell, const QWidget& ancestor) const {
    const QRect rect = visualRect(model_.IndexOf(cell));
    return QRect(viewport()->mapTo(&ancestor, rect.topLeft()), rect.size());
}

bool GridView::StoodBelowRows() {
    const QModelIndex current = currentIndex();
    if (!current.isValid() || !IsInteractive()) return false;
    const int used = GuardedOr(0, [&] { return actions_.RowsInUse(); });
    const center::CellAddress cell = model_.AddressOf(current);
    if (cell.row <= used + 1) return false;
    Guarded([&] { actions_.MoveActiveCell(cell, center::CursorMove::Going); });
    FollowActiveCell();
    return true;
}

bool GridView::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) {
    const bool asked = trigger == AnyKeyPressed || trigger == EditKeyPressed || trigger == DoubleClicked;
    if (asked && index == currentIndex() && StoodBelowRows()) return false;
    // What is typed into a cell is seen, wherever the wheel has gone.
    if (asked && index.isValid()) scrollTo(index, EnsureVisible);
    bool opened = false;
    {
        const bool before = std::exchange(openingByTyping_, trigger == AnyKeyPressed);
        opened = QTableView::edit(index, trigger, event);
        openingByTyping_ = before;
    }
    if (opened && trigger != AnyKeyPressed) {
        if (auto* list = qobject_cast<DirectionEditor*>(indexWidget(index))) list->showPopup();
        // The text is gone on with, not typed over: nothing of it is selected.
        if (auto* field = qobject_cast<CellEditor*>(indexWidget(index))) field->end(false);
    }
    if (opened) emit editingChanged(true);
    return opened;
}

void GridView::closeEditor(QWidget* editor, QAbstractItemDelegate::EndEditHint hint) {
    QTableView::closeEditor(editor, hint);
    Guarded([&] { names_.Close(); });
    emit editingChanged(false);
}

void GridView::EditorTextEdited(const QString& text) {
    emit textTaken();
    Guarded([&] { names_.TextTyped(FromQt(text)); });
}

void GridView::mousePressEvent(QMouseEvent* event) {
    rowHeader_->EndPress();
    columnHeader_->EndPress();
    const QModelIndex pressed = indexAt(event->pos());
    const QModelIndex before = currentIndex();
    if (event->button() == Qt::LeftButton && pressed.isValid() && pressed == before && IsInteractive()) {
        const int column = model_.AddressOf(pressed).column;
        if (CellDelegate::HasButton(column) &&
            CellDelegate::ButtonRect(visualRect(pressed)).contains(event->pos())) {
            if (column == center::column::kDirection) {
                edit(pressed, AllEditTriggers, event);
            } else {
                OpenLookUp();
            }
            return;
        }
    }
    {
        // The message about gaps is for a click that goes somewhere, not for building a selection.
        const bool selectingBefore = selecting_;
        selecting_ = event->button() != Qt::LeftButton ||
                     event->modifiers() & (Qt::ShiftModifier | Qt::ControlModifier);
        QTableView::mousePressEvent(event);
        selecting_ = selectingBefore;
    }
    // The rules may have sent the cursor elsewhere than where the press was: the selection goes with it.
    const QModelIndex current = currentIndex();
    if (current.isValid() && pressed.isValid() && current != pressed &&
        event->modifiers() == Qt::NoModifier) {
        const FlagScope scope(following_);
        anchor_ = current;
        selectionModel()->select(current, QItemSelectionModel::ClearAndSelect);
    }
}

void GridView::mouseMoveEvent(QMouseEvent* event) {
    const FlagScope scope(selecting_);
    const FlagScope pulling(pulling_);
    pulledTo_ = event->pos();
    QTableView::mouseMoveEvent(event);
}

void GridView::focusInEvent(QFocusEvent* event) {
    QTableView::focusInEvent(event);
    viewport()->update();
}

void GridView::focusOutEvent(QFocusEvent* event) {
    QTableView::focusOutEvent(event);
    viewport()->update();
}

void GridView::inputMethodEvent(QInputMethodEvent* event) {
    const bool empty = event->commitString().isEmpty() && event->preeditString().isEmpty();
    const QModelIndex current = currentIndex();
    if (!empty && current.isValid() && IsInteractive() && !IsEditing() &&
        model_.AddressOf(current).column == center::column::kDirection) {
        const QString choice = DirectionForKey(event->commitString());
        if (!choice.isNull() && !StoodBelowRows()) SetDirection(choice);
        event->accept();
        return;
    }
    // A text that comes without having been composed: Qt would open the editor and lose it.
    if (!event->commitString().isEmpty() && event->preeditString().isEmpty() && current.isValid() &&
        IsInteractive() && !IsEditing() && edit(current, AnyKeyPressed, nullptr)) {
        if (QWidget* editor = indexWidget(current)) QApplication::sendEvent(editor, event);
        event->accept();
        return;
    }
    QTableView::inputMethodEvent(event);
}

void GridView::scrollContentsBy(int dx, int dy) {
    QTableView::scrollContentsBy(dx, dy);
    // What has been scrolled along stays with the columns that have not.
    if (dx != 0 && !FrozenEditorRect().isEmpty()) updateEditorGeometries();
    emit contentsMoved();
}

void GridView::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    FillWidth();
    emit contentsMoved();
}

}  // namespace vicenter::ui
