#pragma once

// The status line below the grid: lines and template numbers in use, the sums of the current number, the
// selection's sum, and why the active cell is red. User-interface thread only.

#include <QLabel>
#include <QStatusBar>
#include <QTimer>
#include <QToolButton>

#include "center/frame/vicenter_view.h"

namespace vicenter::ui {

class StatusLine : public QStatusBar {
    Q_OBJECT

  public:
    explicit StatusLine(QWidget* parent = nullptr);

    void SetState(const center::StatusState& state);
    // A short word to the user, in place of the hint for a few seconds.
    void Flash(const QString& text);
    // What it was about is no longer before the user.
    void EndFlash();

  signals:
    void faultsClicked();

  private:
    void ShowHint();

    QLabel* hint_;
    QToolButton* faults_;
    QLabel* unbalanced_;
    QLabel* selection_;
    QLabel* sums_;
    QLabel* counts_;
    QTimer flash_;
    QString hintText_;
    QString flashText_;
};

}  // namespace vicenter::ui
