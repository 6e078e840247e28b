#pragma once

// The window of GridReplace: what to look for in which column, by what to replace it, and how many cells hold
// it. Modal, lives for one use. User-interface thread only.

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <functional>

#include "center/search/grid_replace.h"

namespace vicenter::ui {

class GridReplaceDialog : public QDialog {
    Q_OBJECT

  public:
    explicit GridReplaceDialog(center::GridReplace& replace, QWidget* parent = nullptr);

  private:
    QLayout* Buttons();
    void ShowCount();
    void Do(const std::function<void()>& step);

    center::GridReplace& replace_;
    QComboBox* column_;
    QLineEdit* text_;
    QLineEdit* with_;
    QCheckBox* whole_;
    QLabel* count_;
};

}  // namespace vicenter::ui
