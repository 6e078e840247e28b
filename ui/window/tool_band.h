#pragma once

// The command bar "BandToolBar": thirteen tools by key, icon above caption. User-interface thread only.

#include <QAction>
#include <QPointer>
#include <QToolBar>
#include <array>

#include "center/frame/vicenter_view.h"

namespace vicenter::ui {

class ToolBand : public QToolBar {
    Q_OBJECT

  public:
    explicit ToolBand(QWidget* parent = nullptr);

    QAction& ActionOf(center::Tool tool) const { return *actions_[static_cast<std::size_t>(tool)]; }
    // Also lays the bar out anew.
    void SetStates(const center::ToolStates& states);
    // Hands the keyboard to the bar: arrows move, Enter and space click, Esc and F10 give it back. Before a
    // click it is back already, since some commands act on what has the focus.
    void TakeKeyboard();

  signals:
    void toolClicked(const QString& key);
    // Who had the keyboard before is gone or hidden.
    void keyboardLeft();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    bool HandleKey(QWidget& button, int key);
    void MoveFocus(int from, int step);
    void GiveKeyboardBack();

    QPointer<QWidget> before_;  // had the keyboard
    std::array<QAction*, center::kToolCount> actions_{};
};

}  // namespace vicenter::ui
