#include "ui/run/keyboard_home.h"

#include <QAbstractItemView>
#include <QEvent>

namespace vicenter::ui {

bool KeyboardHome::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Hide && !event->spontaneous() && watched->isWidgetType()) {
        const auto* hiding = static_cast<const QWidget*>(watched);
        const QWidget* focused = hiding->window()->focusWidget();
        if (focused != nullptr && (focused == hiding || hiding->isAncestorOf(focused))) GiveKeyboardTo(home_);
    }
    return QObject::eventFilter(watched, event);
}

QPointer<QWidget> LastingHolder(QWidget* focused) {
    for (QWidget* widget = focused; widget != nullptr && !widget->isWindow();
         widget = widget->parentWidget()) {
        if (qobject_cast<QAbstractItemView*>(widget) != nullptr) return widget;
    }
    return focused;
}

bool GiveKeyboardTo(QWidget* holder) {
    if (holder == nullptr || !holder->isVisible() || !holder->isEnabled()) return false;
    holder->setFocus(Qt::OtherFocusReason);
    return true;
}

}  // namespace vicenter::ui
