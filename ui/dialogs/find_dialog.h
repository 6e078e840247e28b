#pragma once

// The window of FrmSearch: three boxes and find next. Modal, lives for one use. User-interface thread only.

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <functional>

#include "dialogs/frm_search.h"

namespace vicenter::ui {

class FindDialog : public QDialog, private dialogs::FrmSearchView {
    Q_OBJECT

  public:
    // `foundRow` gives the global rectangle of the row that was found last, so that the dialog keeps off it.
    FindDialog(dialogs::FrmSearch& search, std::function<QRect()> foundRow, QWidget* parent = nullptr);

  private:
    dialogs::SearchFields Fields() const override;
    void SetAccount(const std::string& number) override;
    void Unload() override;

    void FindNext();
    void ShowHits();
    void KeepOffFoundRow();

    dialogs::FrmSearch& search_;
    std::function<QRect()> foundRow_;
    QLineEdit* txtExp_;
    QLineEdit* txtAcct_;
    QLineEdit* txtBZ_;
    QLabel* hits_;
};

}  // namespace vicenter::ui
