#pragma once

// The window of OperationLog: days, user, kind and template above, the entries that fit below. Modal, lives
// for one use. User-interface thread only.

#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTableWidget>

#include "center/search/operation_log.h"

namespace vicenter::ui {

class LogDialog : public QDialog {
    Q_OBJECT

  public:
    explicit LogDialog(center::OperationLog& log, QWidget* parent = nullptr);

  private:
    QLayout* Filter();
    QLineEdit* AddField(QLayout& row, const QString& label, const char* name, const QString& hint);
    void Narrow();
    void ShowEntries();

    center::OperationLog& log_;
    QTableWidget* entries_;
    QLabel* note_;
    QLineEdit* from_ = nullptr;
    QLineEdit* to_ = nullptr;
    QLineEdit* user_ = nullptr;
    QLineEdit* template_ = nullptr;
    QComboBox* kind_;
};

}  // namespace vicenter::ui
