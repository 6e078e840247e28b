#include "ui/grid/rows_badge.h"

#include <QMimeData>
#include <QPainter>
#include <QWidget>

#include "ui/grid/rows_format.h"
#include "ui/look/theme.h"

namespace vicenter::ui {

namespace {

constexpr int kPadding = 6;
constexpr double kRounding = 3;

}  // namespace

int CountOfRows(const QMimeData& rows) {
    // The first line says where they come from.
    return static_cast<int>(rows.data(RowsFormat()).count('\n')) - 1;
}

QPixmap RowsBadge(int rows, const QWidget& widget) {
    const QString text = QStringLiteral("%1 行分录").arg(rows);
    const QFontMetrics metrics = widget.fontMetrics();
    const QSize size(metrics.horizontalAdvance(text) + 2 * kPadding, metrics.height() + kPadding);
    QPixmap badge(size * widget.devicePixelRatioF());
    badge.setDevicePixelRatio(widget.devicePixelRatioF());
    badge.fill(QColor(0, 0, 0, 0));
    QPainter painter(&badge);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colors::kAccent());
    painter.drawRoundedRect(QRectF(QPointF(), QSizeF(size)), kRounding, kRounding);
    painter.setFont(widget.font());
    painter.setPen(colors::kOnAccent);
    painter.drawText(QRect(QPoint(), size), Qt::AlignCenter, text);
    return badge;
}

}  // namespace vicenter::ui
