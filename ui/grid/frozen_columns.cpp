#include "ui/grid/frozen_columns.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include "ui/grid/grid_view.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {

FrozenColumns::FrozenColumns(GridView& view) : QWidget(&view), view_(view) {
    setObjectName(QStringLiteral("frozenColumns"));
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    hide();
}

void FrozenColumns::Follow() {
    const int width = view_.FrozenWidth();
    const bool covers = width > 0 && view_.horizontalScrollBar()->value() > 0;
    if (covers) {
        const QRect port = view_.viewport()->geometry();
        const int head = view_.horizontalHeader()->height();
        setGeometry(port.left(), port.top() - head, width, port.height() + head);
        raise();
        update();
    }
    setVisible(covers);
}

void FrozenColumns::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    Guarded([&] { view_.PaintFrozen(painter, size()); });
}

// At its beginning the grid shows the same cells in the same places.
void FrozenColumns::HandOver(QMouseEvent& event) {
    const int head = view_.horizontalHeader()->height();
    const QPointF at = event.position();
    QWidget* target = at.y() < head ? view_.horizontalHeader()->viewport() : view_.viewport();
    const QPointF there = at.y() < head ? at : at - QPointF(0, head);
    view_.horizontalScrollBar()->setValue(0);
    QMouseEvent handed(event.type(), there, event.globalPosition(), event.button(), event.buttons(),
                       event.modifiers());
    QApplication::sendEvent(target, &handed);
    // Its release comes to whom it was pressed on, which is hidden by now.
    if (event.type() != QEvent::MouseButtonPress) return;
    QMouseEvent released(QEvent::MouseButtonRelease, there, event.globalPosition(), event.button(),
                         Qt::NoButton, event.modifiers());
    QApplication::sendEvent(target, &released);
}

void FrozenColumns::mousePressEvent(QMouseEvent* event) {
    HandOver(*event);
}

void FrozenColumns::mouseDoubleClickEvent(QMouseEvent* event) {
    HandOver(*event);
}

void FrozenColumns::wheelEvent(QWheelEvent* event) {
    QApplication::sendEvent(view_.viewport(), event);
}

void FrozenColumns::contextMenuEvent(QContextMenuEvent* event) {
    QContextMenuEvent handed(event->reason(), view_.viewport()->mapFromGlobal(event->globalPos()),
                             event->globalPos(), event->modifiers());
    QApplication::sendEvent(view_.viewport(), &handed);
}

}  // namespace vicenter::ui
