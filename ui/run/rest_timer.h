#pragma once

// A timer that runs out while the user does nothing: whatever happens some time after the last key or click,
// or every now and then, is started by one of these and by no other. Who drives a window by keys and clicks
// alone finds them by their type and holds them back. User-interface thread only.

#include <QTimer>

namespace vicenter::ui {

class RestTimer : public QTimer {
    Q_OBJECT

  public:
    // Runs out once, so long after each start; not started yet. Found by its name below its parent.
    RestTimer(const QString& name, int milliseconds, QObject* parent);
};

}  // namespace vicenter::ui
