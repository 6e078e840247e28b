#pragma once

// Tests press keys and click and never rest, however slow the machine is that they run on: what happens while
// the user rests happens when a test says so.

#include <QTimerEvent>

#include <gtest/gtest.h>

#include "ui/run/rest_timer.h"

namespace vicenter::ui {

// Installed in the application of every window test.
class NobodyRests : public QObject {
  public:
    using QObject::QObject;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        return event->type() == QEvent::Timer && qobject_cast<RestTimer*>(watched) != nullptr;
    }
};

// Until the timer of that name runs out, which must be running.
inline void Rest(const QObject& owner, const char* timer) {
    auto* running = owner.findChild<RestTimer*>(QString::fromLatin1(timer));
    ASSERT_NE(running, nullptr) << timer;
    ASSERT_TRUE(running->isActive()) << timer;
    QTimerEvent event(running->timerId());
    static_cast<QObject*>(running)->event(&event);
}

}  // namespace vicenter::ui
