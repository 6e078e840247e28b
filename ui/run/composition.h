#pragma once

// What an input method is composing in a line edit is no part of its text yet. A command that ends the
// editing without taking the focus away (a click on the command bar) would leave it behind. Owned by the line
// edit. User-interface thread only.

#include <QLineEdit>
#include <QObject>
#include <QString>

namespace vicenter::ui {

class Composition : public QObject {
    Q_OBJECT

  public:
    explicit Composition(QLineEdit& field);

    // Makes what is being composed in the field part of its text; nothing for a widget without composition.
    static void Finish(QWidget& field);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QString composed_;
};

}  // namespace vicenter::ui
