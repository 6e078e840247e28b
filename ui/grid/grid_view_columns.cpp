// The columns of the entry grid: their order, their widths by their content, the first ones kept in sight.
// The rest of GridView is in grid_view.cpp.

#include <QHeaderView>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>
#include <set>
#include <utility>

#include "ui/grid/frozen_columns.h"
#include "ui/grid/grid_view.h"
#include "ui/look/theme.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {

// --- order

int GridView::PlaceOf(int column) const {
    return columnHeader_->visualIndex(column);
}

int GridView::ColumnAt(int place) const {
    return columnHeader_->logicalIndex(place);
}

void GridView::ApplyOrder() {
    const bool before = std::exchange(applyingColumns_, true);
    const center::ColumnOrder& order = model_.Grid().Order();
    for (int place = 0; place < center::kColumnCount; ++place)
        columnHeader_->moveSection(PlaceOf(order[static_cast<std::size_t>(place)] - 1), place);
    applyingColumns_ = before;
    emit contentsMoved();
}

// The user has moved one.
void GridView::HandInOrder() {
    if (applyingColumns_) return;
    center::ColumnOrder order{};
    for (int place = 0; place < center::kColumnCount; ++place)
        order[static_cast<std::size_t>(place)] = ColumnAt(place) + 1;
    Guarded([&] { actions_.SetColumnOrder(order); });
    emit contentsMoved();
}

void GridView::MoveColumn(int step) {
    const QModelIndex current = currentIndex();
    if (!current.isValid()) return;
    const int from = PlaceOf(current.column());
    for (int to = from + step; to >= 0 && to < center::kColumnCount; to += step) {
        if (isColumnHidden(ColumnAt(to))) continue;
        CommitOpenEditor();
        columnHeader_->moveSection(from, to);
        scrollTo(current);
        return;
    }
}

void GridView::ResetOrder() {
    Guarded([&] { actions_.SetColumnOrder(center::DesignedOrder()); });
}

void GridView::ResetWidths() {
    for (int column = 1; column <= center::kColumnCount; ++column)
        model_.Grid().SetColumnWidth(column, center::Column(column).designedWidth);
}

void GridView::FitColumns() {
    std::set<int> columns;
    for (const center::CellRange& piece : Selected().pieces) {
        for (int c = piece.firstColumn; c <= piece.lastColumn; ++c)
            columns.insert(c - 1);
    }
    for (const int column : columns) {
        if (!isColumnHidden(column)) resizeColumnToContents(column);
    }
}

// --- the first columns

int GridView::FrozenPlaces() const {
    return GuardedOr(0, [&] { return actions_.FrozenPlaces(); });
}

void GridView::Freeze(int places) {
    Guarded([&] { actions_.SetFrozenPlaces(places); });
    ShowFrozen();
}

bool GridView::IsFrozen(int column) const {
    return PlaceOf(column) < FrozenPlaces() && FrozenWidth() > 0;
}

int GridView::FrozenWidth() const {
    int width = 0;
    for (int place = 0; place < FrozenPlaces(); ++place)
        width += columnWidth(ColumnAt(place));
    // In a narrow window the others need the room.
    return width < viewport()->width() * 3 / 4 ? width : 0;
}

int GridView::CoveredWidth() const {
    return horizontalScrollBar()->value() > 0 ? FrozenWidth() : 0;
}

void GridView::ShowFrozen() {
    frozen_->Follow();
}

void GridView::PaintFrozen(QPainter& painter, const QSize& size) {
    const int head = columnHeader_->height();
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    painter.fillRect(QRect(QPoint(0, 0), size), colors::kPaper);
    const int lastRow = rowAt(viewport()->height() - 1);
    int left = 0;
    for (int place = 0; place < FrozenPlaces(); ++place) {
        const int column = ColumnAt(place);
        const int width = columnWidth(column);
        if (isColumnHidden(column)) continue;
        for (int row = rowAt(0); row >= 0 && row <= (lastRow < 0 ? model_.rowCount() - 1 : lastRow); ++row) {
            const QModelIndex index = model_.index(row, column);
            const QRect cell(left, head + rowViewportPosition(row), width, rowHeight(row));
            option.rect = cell.adjusted(0, 0, -1, -1);
            option.state.setFlag(QStyle::State_Selected, selectionModel()->isSelected(index));
            painter.save();
            painter.setClipRect(option.rect);
            itemDelegate()->paint(&painter, option, index);
            painter.restore();
            painter.setPen(colors::kGridLine);
            painter.drawLine(cell.bottomLeft(), cell.bottomRight());
            painter.drawLine(cell.topRight(), cell.bottomRight());
        }
        columnHeader_->PaintSection(painter, QRect(left, 0, width, head), column);
        left += width;
    }
    painter.setPen(colors::kLine);
    painter.drawLine(size.width() - 1, 0, size.width() - 1, size.height());
}

// Rows stand as the grid has them, columns from its beginning.
void GridView::ShowFrozenToolTip(QHelpEvent& event) {
    const int head = columnHeader_->height();
    const int column = columnHeader_->logicalIndexAt(event.x() - columnHeader_->offset());
    if (event.y() < head) return columnHeader_->ShowToolTip(column, event.globalPos());
    const QModelIndex index = model_.index(rowAt(event.y() - head), column);
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    option.rect = visualRect(index);
    itemDelegate()->helpEvent(&event, this, option, index);
}

void GridView::paintEvent(QPaintEvent* event) {
    QTableView::paintEvent(event);
    if (frozen_->isVisible()) frozen_->update();
}

QRect GridView::visualRect(const QModelIndex& index) const {
    QRect rect = QTableView::visualRect(index);
    if (rect.isValid() && CoveredWidth() > 0 && IsFrozen(index.column()))
        rect.translate(columnHeader_->offset(), 0);
    return rect;
}

QModelIndex GridView::indexAt(const QPoint& point) const {
    const bool frozen = point.x() >= 0 && point.x() < CoveredWidth();
    return QTableView::indexAt(frozen ? point - QPoint(columnHeader_->offset(), 0) : point);
}

QRect GridView::FrozenEditorRect() const {
    const QWidget* editor = OpenEditor();
    if (editor == nullptr || CoveredWidth() == 0 || !IsFrozen(currentIndex().column())) return {};
    return editor->geometry();
}

// A cell that the first columns cover is not in sight; their own always are.
void GridView::scrollTo(const QModelIndex& index, ScrollHint hint) {
    QScrollBar& bar = *horizontalScrollBar();
    const int before = bar.value();
    QTableView::scrollTo(index, hint);
    const int frozen = index.isValid() ? FrozenWidth() : 0;
    if (frozen == 0) return;
    if (IsFrozen(index.column())) return bar.setValue(before);
    const int left = columnViewportPosition(index.column());
    if (left < frozen) bar.setValue(bar.value() - (frozen - left));
}

}  // namespace vicenter::ui
