#pragma once

// Where the keyboard goes when what has it is hidden, shut or closed. Qt gives it to the next control in the
// tab order, which is the tree: the keys that follow would open and delete templates. User-interface thread
// only.

#include <QObject>
#include <QPointer>
#include <QWidget>

namespace vicenter::ui {

// Gives the keyboard to the home as soon as a widget that is watched hides with it. Owned by its parent.
class KeyboardHome : public QObject {
  public:
    KeyboardHome(QWidget& home, QObject* parent) : QObject(parent), home_(&home) {}
    void Watch(QWidget& widget) { widget.installEventFilter(this); }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QPointer<QWidget> home_;
};

// Who has the keyboard and will still be there: the list whose cell is being edited, not the editor.
QPointer<QWidget> LastingHolder(QWidget* focused);
// Back to the holder; false when it is gone or cannot take it.
bool GiveKeyboardTo(QWidget* holder);

}  // namespace vicenter::ui
