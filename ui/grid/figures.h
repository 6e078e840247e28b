#pragma once

// Numbers of a column, drawn so that their digits stand below each other whatever the font: every digit takes
// the room of the widest. User-interface thread only.

#include <QFontMetrics>
#include <QPainter>
#include <QString>

namespace vicenter::ui {

int FiguresWidth(const QFontMetrics& metrics, const QString& text);
// With the painter's font and pen, in the middle of the height.
void DrawFigures(QPainter& painter, const QRect& rect, Qt::Alignment side, const QString& text);

}  // namespace vicenter::ui
