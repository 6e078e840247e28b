#pragma once

// The editors of the grid's cells: a text field, and the drop-down list of the direction column. Created by
// the cell delegate, owned by the view's viewport. User-interface thread only.

#include <QComboBox>
#include <QLineEdit>

#include "center/editing/cell_rules.h"
#include "ui/run/single_line.h"

namespace vicenter::ui {

// Lets everything into a text field that its column may judge as a whole later: what it keeps out is what no
// key can enter either, and texts that no cell could keep.
class ColumnValidator : public SingleLine {
    Q_OBJECT

  public:
    ColumnValidator(int column, QLineEdit& field);
    // Why the last text was kept out.
    center::TextVerdict LastRefusal() const { return refusal_; }

  protected:
    State Judge(const QString& text) const override;
    void ControlCharacterRefused() const override { refusal_ = center::TextVerdict::BadCharacter; }

  private:
    int column_;
    mutable center::TextVerdict refusal_ = center::TextVerdict::Taken;
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

  protected:
    // An input method's characters are typed like any others.
    void inputMethodEvent(QInputMethodEvent* event) override;

  private:
    int column_;
    ColumnValidator* validator_;
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
