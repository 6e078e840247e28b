#pragma once

// The window of frmSetColume: a list to tick and three buttons. Modal, lives for one use. User-interface
// thread only.

#include <QDialog>
#include <QListWidget>

#include "dialogs/frm_set_colume.h"

namespace vicenter::ui {

class ColumnDialog : public QDialog, private dialogs::frmSetColumeView {
    Q_OBJECT

  public:
    explicit ColumnDialog(dialogs::frmSetColume& columns, QWidget* parent = nullptr);

  private:
    void Unload() override;
    void RunCommand(int index);

    dialogs::frmSetColume& columns_;
    QListWidget* list_;
};

}  // namespace vicenter::ui
