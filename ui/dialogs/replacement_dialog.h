#pragma once

// The window of CodeReplacement: which code by which, the lines that would change with a tick each, and the
// ways to write them and to take the last replacement back. Modal, lives for one use. User-interface thread
// only.

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>

#include "center/search/code_replacement.h"

namespace vicenter::ui {

class ReplacementDialog : public QDialog {
    Q_OBJECT

  public:
    explicit ReplacementDialog(center::CodeReplacement& replacement, QWidget* parent = nullptr);

  private:
    QLayout* Wish();
    QLayout* Buttons();
    void ListLines();
    void ShowLines();
    void ShowChosen();
    void TickChanged(const QTableWidgetItem& item);

    center::CodeReplacement& replacement_;
    QComboBox* column_;
    QLineEdit* from_;
    QLineEdit* to_;
    QTableWidget* lines_;
    QLabel* note_;
    QPushButton* replace_ = nullptr;
    bool showing_ = false;  // ticks are set by the program
};

}  // namespace vicenter::ui
