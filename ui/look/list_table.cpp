#include "ui/look/list_table.h"

#include <QHeaderView>
#include <QScrollBar>

namespace vicenter::ui {

namespace {

constexpr int kRoom = 10;  // pixels between a text and the next column

}  // namespace

void SetUpList(QTableWidget& table, const QString& name) {
    table.setAccessibleName(name);
    table.setSelectionBehavior(QAbstractItemView::SelectRows);
    table.setEditTriggers(QAbstractItemView::NoEditTriggers);
    table.setTabKeyNavigation(false);
    table.verticalHeader()->hide();
    table.horizontalHeader()->setStretchLastSection(true);
    // Whole rows are selected, which says nothing of a heading; bold ones need more room than they have.
    table.horizontalHeader()->setHighlightSections(false);
}

int HeightOfOneRow(const QTableView& table) {
    return table.horizontalHeader()->sizeHint().height() + table.verticalHeader()->defaultSectionSize() +
           table.horizontalScrollBar()->sizeHint().height() + 2 * table.frameWidth();
}

void FitColumns(QTableWidget& table) {
    QHeaderView& header = *table.horizontalHeader();
    const int last = table.columnCount() - 1;
    // Fitting takes the last column for one like the others; and as a header stretches its last one, that
    // never gets narrower than a column is at first.
    header.setStretchLastSection(false);
    header.setSectionResizeMode(last, QHeaderView::Interactive);
    table.resizeColumnsToContents();
    int width = table.columnWidth(last) + kRoom;
    const int wanted = width;
    for (int column = 0; column < last; ++column) {
        table.setColumnWidth(column, table.columnWidth(column) + kRoom);
        width += table.columnWidth(column);
    }
    // Whoever sees the list is rather led aside by it than left without the end of a text.
    const bool aside = table.isVisible() && width > table.viewport()->width();
    header.setSectionResizeMode(last, aside ? QHeaderView::Interactive : QHeaderView::Stretch);
    if (aside) table.setColumnWidth(last, wanted);
}

}  // namespace vicenter::ui
