#pragma once

// What the windows do while a statement takes its time: from the first second on a box with a button to stop
// it, and whatever is shown stays painted. Nothing else happens meanwhile: other windows take no keys and no
// clicks, do not close, and their timers wait, so that the work is not met by a second one. User-interface
// thread only.

#include <QDialog>
#include <memory>

#include "platform/system/surroundings.h"

namespace vicenter::ui {

class LongWorkBox;

class QtLongWork : public system::LongWork {
  public:
    QtLongWork();
    ~QtLongWork() override;
    bool GoOn(std::chrono::milliseconds taken) override;
    void Done() noexcept override;

  private:
    std::unique_ptr<LongWorkBox> box_;
    bool polling_ = false;
};

// The box; named "longWork", its button "cmdCancelLongWork".
class LongWorkBox : public QDialog {
    Q_OBJECT

  public:
    explicit LongWorkBox(QWidget* parent);
    bool IsCancelled() const { return cancelled_; }
    // Runs the events that are due, timers excepted.
    void Poll();

  protected:
    void reject() override { cancelled_ = true; }  // Esc and the frame
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    bool cancelled_ = false;
};

}  // namespace vicenter::ui
