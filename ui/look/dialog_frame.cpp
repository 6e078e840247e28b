#include "ui/look/dialog_frame.h"

#include <QDialog>
#include <QGuiApplication>
#include <QLayout>
#include <QList>
#include <QScreen>
#include <QTabWidget>

#include "ui/look/twips.h"

namespace vicenter::ui {

namespace {

constexpr int kFrame = 40;  // pixels that a title bar and a panel take

// What Tab stops at, in the order in which it was laid out.
void CollectStops(const QLayout& layout, QList<QWidget*>& stops);

void CollectStops(QWidget& widget, QList<QWidget*>& stops) {
    const auto* tabs = qobject_cast<const QTabWidget*>(&widget);
    if (tabs == nullptr && widget.layout() != nullptr) {
        CollectStops(*widget.layout(), stops);
    } else if ((widget.focusPolicy() & Qt::TabFocus) != 0) {
        stops << &widget;
    }
    for (int page = 0; tabs != nullptr && page < tabs->count(); ++page)
        CollectStops(*tabs->widget(page), stops);
}

void CollectStops(const QLayout& layout, QList<QWidget*>& stops) {
    for (int i = 0; i < layout.count(); ++i) {
        QLayoutItem* item = layout.itemAt(i);
        if (item->widget() != nullptr) {
            CollectStops(*item->widget(), stops);
        } else if (item->layout() != nullptr) {
            CollectStops(*item->layout(), stops);
        }
    }
}

// Else Tab goes by the order in which the fields were made.
void OrderStops(const QDialog& dialog) {
    if (dialog.layout() == nullptr) return;
    QList<QWidget*> stops;
    CollectStops(*dialog.layout(), stops);
    for (qsizetype i = 1; i < stops.size(); ++i)
        QWidget::setTabOrder(stops[i - 1], stops[i]);
}

}  // namespace

void FrameTitleBar(QDialog& dialog) {
    dialog.setWindowFlags(
        (dialog.windowFlags() | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint |
         Qt::WindowSystemMenuHint) &
        ~(Qt::WindowMinimizeButtonHint | Qt::WindowMaximizeButtonHint | Qt::WindowContextHelpButtonHint));
}

void FrameDialog(QDialog& dialog, const QSize& wanted) {
    FrameTitleBar(dialog);
    OrderStops(dialog);
    QSize size = wanted.isEmpty() ? dialog.sizeHint()
                                  : QSize(TwipsToPixels(wanted.width() * 15.0, dialog),
                                          TwipsToPixels(wanted.height() * 15.0, dialog));
    dialog.resize(size.boundedTo(RoomOnScreen(dialog)));
}

QSize RoomOnScreen(const QWidget& window) {
    const QScreen* screen = window.screen();
    return screen == nullptr ? QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX)
                             : screen->availableSize() - QSize(kFrame, 2 * kFrame);
}

}  // namespace vicenter::ui
