#pragma once

// The progress panel of the main window: a label, a bar and, while rows are counted, a button to cancel.
// User-interface thread only.

#include <QFrame>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

#include "center/frame/vicenter_view.h"

namespace vicenter::ui {

class ProgressFrame : public QFrame {
    Q_OBJECT

  public:
    explicit ProgressFrame(QWidget* parent);

    void SetState(const center::ProgressState& state);
    // Where it stands and how large it is at least; it grows with what it shows and stays within its parent.
    void SetPlace(const QRect& place);
    // Takes the user's clicks on the panel alone, the rest of the window being closed to them, and tells
    // whether Cancel was among them since the panel was last shown.
    bool PollCancelled();
    // While PollCancelled runs: the window must not be closed under the command that asked.
    bool IsPolling() const { return polling_; }

  private:
    void Fit();

    QRect place_;
    QLabel* label_;
    QProgressBar* bar_;
    QPushButton* cancel_;
    bool cancelled_ = false;
    bool polling_ = false;
};

}  // namespace vicenter::ui
