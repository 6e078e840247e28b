#include "ui/run/composition.h"

#include <QApplication>
#include <QInputMethod>
#include <QInputMethodEvent>

namespace vicenter::ui {

Composition::Composition(QLineEdit& field) : QObject(&field) {
    field.installEventFilter(this);
}

void Composition::Finish(QWidget& field) {
    const auto* composition = field.findChild<Composition*>(QString(), Qt::FindDirectChildrenOnly);
    if (!composition || composition->composed_.isEmpty()) return;
    QGuiApplication::inputMethod()->commit();
    // An input method that did not answer: what is on the screen is what was meant.
    if (composition->composed_.isEmpty()) return;
    QInputMethodEvent event;
    event.setCommitString(composition->composed_);
    QApplication::sendEvent(&field, &event);
}

bool Composition::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::InputMethod) {
        composed_ = static_cast<const QInputMethodEvent*>(event)->preeditString();
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace vicenter::ui
