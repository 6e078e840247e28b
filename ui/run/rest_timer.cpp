#include "ui/run/rest_timer.h"

namespace vicenter::ui {

RestTimer::RestTimer(const QString& name, int milliseconds, QObject* parent) : QTimer(parent) {
    setObjectName(name);
    setSingleShot(true);
    setInterval(milliseconds);
}

}  // namespace vicenter::ui
