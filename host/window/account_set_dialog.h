#pragma once

// The dialog that opens another account set: the files opened last, a file from elsewhere, the user. The
// rules are AccountSetChoice's. User-interface thread only.

#include <QDialog>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>

#include "host/account_set_choice.h"

namespace vicenter::host {

class AccountSetDialog : public QDialog {
    Q_OBJECT

  public:
    // The choice outlives the dialog.
    explicit AccountSetDialog(AccountSetChoice& choice, QWidget* parent = nullptr);

  private:
    void AddFile(const std::string& file);
    void Browse();
    void FileChosen();
    void ShowUsers();
    void Take();

    AccountSetChoice& choice_;
    QListWidget* files_;
    QListWidget* users_;
    QLabel* note_;
    QPushButton* open_;
};

// Shows it modally over the active window.
void ChooseAccountSet();

}  // namespace vicenter::host
