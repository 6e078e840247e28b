#pragma once

// What hangs at the cursor while whole rows are dragged: how many they are. User-interface thread only.

#include <QPixmap>

class QMimeData;
class QWidget;

namespace vicenter::ui {

int CountOfRows(const QMimeData& rows);
// In the widget's font, for its screen.
QPixmap RowsBadge(int rows, const QWidget& widget);

}  // namespace vicenter::ui
