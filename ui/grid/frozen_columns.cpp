#include "ui/grid/frozen_columns.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>
#include <algorithm>

#include "ui/grid/grid_view.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {

FrozenColumns::FrozenColumns(GridView& view) : QWidget(&view), view_(view) {
    setObjectName(QStringLiteral("frozenColumns"));
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    hide();
}

void FrozenColumns::Follow() {
    const int width = view_.FrozenWidth();
    const bool covers = width > 0 && view_.horizontalScrollBar()->value() > 0;
    if (covers) {
        const QRect port = view_.viewport()->geometry();
        const int head = view_.horizontalHeader()->height();
        setGeometry(port.left(), port.top() - head, width, port.height() + head);
        const QRect editor = view_.FrozenEditorRect();
        if (editor.isEmpty()) {
            clearMask();
        } else {
            setMask(QRegion(rect()).subtracted(editor.translated(0, head)));
        }
        raise();
        update();
    }
    setVisible(covers);
}

void FrozenColumns::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    Guarded([&] { view_.PaintFrozen(painter, size()); });
}

// Cells are below where they are seen; the header has its sections where it has scrolled them to.
void FrozenColumns::HandOn(QMouseEvent& event) {
    const int head = view_.horizontalHeader()->height();
    QPointF at = event.position();
    if (event.type() != QEvent::MouseMove && event.type() != QEvent::MouseButtonRelease) {
        onHeader_ = at.y() < head;
        if (!onHeader_) view_.setFocus(Qt::MouseFocusReason);
    }
    QWidget* target = onHeader_ ? view_.horizontalHeader()->viewport() : view_.viewport();
    if (!onHeader_) {
        at -= QPointF(0, head);
    } else if (at.x() < width()) {
        at -= QPointF(view_.ColumnHeader().offset(), 0);
    }
    QMouseEvent handed(event.type(), at, event.globalPosition(), event.button(), event.buttons(),
                       event.modifiers());
    QApplication::sendEvent(target, &handed);
}

int FrozenColumns::EdgeAt(const QPoint& at) const {
    const GridHeader& header = view_.ColumnHeader();
    return at.y() < header.height() ? header.EdgeAt(at.x() - header.offset()) : -1;
}

// The header takes no mouse where it has scrolled its own edge to, beyond its left end.
void FrozenColumns::mousePressEvent(QMouseEvent* event) {
    const int edge = event->button() == Qt::LeftButton ? EdgeAt(event->pos()) : -1;
    if (edge < 0) return HandOn(*event);
    dragged_ = Drag{edge, event->pos().x(), view_.ColumnHeader().sectionSize(edge)};
}

void FrozenColumns::mouseMoveEvent(QMouseEvent* event) {
    if (dragged_) {
        GridHeader& header = view_.ColumnHeader();
        const int width = dragged_->width + event->pos().x() - dragged_->from;
        header.resizeSection(dragged_->section, std::max(width, header.minimumSectionSize()));
    } else if (event->buttons() != Qt::NoButton) {
        HandOn(*event);
    } else if (EdgeAt(event->pos()) >= 0) {
        setCursor(Qt::SplitHCursor);
    } else {
        unsetCursor();
    }
}

void FrozenColumns::mouseReleaseEvent(QMouseEvent* event) {
    if (!dragged_) return HandOn(*event);
    if (event->button() == Qt::LeftButton) dragged_.reset();
}

void FrozenColumns::mouseDoubleClickEvent(QMouseEvent* event) {
    const int edge = event->button() == Qt::LeftButton ? EdgeAt(event->pos()) : -1;
    if (edge < 0) return HandOn(*event);
    view_.resizeColumnToContents(edge);
}

// Columns that are dragged wide leave no room to keep them in sight.
void FrozenColumns::hideEvent(QHideEvent* event) {
    dragged_.reset();
    QWidget::hideEvent(event);
}

bool FrozenColumns::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QWidget::event(event);
    view_.ShowFrozenToolTip(static_cast<QHelpEvent&>(*event));
    return true;
}

void FrozenColumns::wheelEvent(QWheelEvent* event) {
    QApplication::sendEvent(view_.viewport(), event);
}

void FrozenColumns::contextMenuEvent(QContextMenuEvent* event) {
    if (event->pos().y() < view_.horizontalHeader()->height())
        return view_.ShowColumnMenu(event->globalPos());
    QContextMenuEvent handed(event->reason(), view_.viewport()->mapFromGlobal(event->globalPos()),
                             event->globalPos(), event->modifiers());
    QApplication::sendEvent(view_.viewport(), &handed);
}

}  // namespace vicenter::ui
