#pragma once

// The status line below the grid: lines and template numbers in use, the sums of the current number, the
// selection's sum, why the active cell is red, and what has just been done. User-interface thread only.

#include <QLabel>
#include <QStatusBar>
#include <QToolButton>

#include "center/frame/vicenter_view.h"
#include "ui/run/rest_timer.h"

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
    // What has been done, with the file that it made as a link, until something else has been done or half a
    // minute is over. What is wrong with the active cell comes before it.
    void TellDone(const QString& text, const QString& file);

  signals:
    void faultsClicked();
    void fileClicked(const QString& file);

  private:
    void ShowHint();
    void ApplyColors();
    void EndDone();
    QString DoneText() const;  // as mark-up

    QLabel* hint_;
    QToolButton* faults_;
    QLabel* unbalanced_;
    QLabel* selection_;
    QLabel* sums_;
    QLabel* counts_;
    RestTimer flash_;
    QString hintText_;
    QString flashText_;
    RestTimer done_;
    QString doneText_;
    QString doneFile_;
};

}  // namespace vicenter::ui
