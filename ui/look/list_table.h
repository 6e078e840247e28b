#pragma once

// How every list of records in a dialog or a panel behaves: whole rows are selected, nothing is edited in
// place, Tab leaves it, the last column takes what is left of the width, and a screen reader has a name for
// it.

#include <QTableWidget>

namespace vicenter::ui {

void SetUpList(QTableWidget& table, const QString& name);
// With its headings and what scrolls it.
int HeightOfOneRow(const QTableView& table);
// Columns as wide as their headings and texts, with room between them; after the rows have changed.
void FitColumns(QTableWidget& table);

}  // namespace vicenter::ui
