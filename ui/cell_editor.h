#pragma once

// The editors of the grid's cells: a text field that takes nothing its column refuses, and the drop-down list
// of the direction column. Created by the cell delegate, owned by the view's viewport. User-interface thread
// only.

#include <QComboBox>
#include <QLineEdit>
#include <QValidator>

#include "center/columns.h"

namespace vicenter::ui {

// Holds a text field to the filter and the length limit of a column, whichever way the text comes in: typing,
// pasting, dropping and input methods all pass the validator.
class ColumnValidator : public QValidator {
    Q_OBJECT

  public:
    ColumnValidator(int column, QObject* parent);
    State validate(QString& text, int& position) const override;

  private:
    int column_;
};

class CellEditor : public QLineEdit {
    Q_OBJECT

  public:
    CellEditor(int column, QWidget* parent);

    int Column() const { return column_; }
    // Editing began by typing over the cell: the arrow keys then leave the cell, as in a spreadsheet.
    bool WasOpenedByTyping() const { return openedByTyping_; }
    void SetOpenedByTyping(bool typing) { openedByTyping_ = typing; }

  signals:
    void textRejected(const QString& reason);

  private:
    int column_;
    bool openedByTyping_ = false;
};

// Blank, 借 and 贷; nothing else can be typed.
class DirectionEditor : public QComboBox {
    Q_OBJECT

  public:
    explicit DirectionEditor(QWidget* parent);
    void keyPressEvent(QKeyEvent* event) override;
};

// The text of the choice that a key stands for ("借" for j, "贷" for d); a null text for any other key.
QString DirectionForKey(const QString& typed);

}  // namespace vicenter::ui
