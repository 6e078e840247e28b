#pragma once

// The window of TemplateHistory: versions above, what differs from now below, and the ways back. Modal, lives
// for one use. User-interface thread only.

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QTableWidget>

#include "center/history/template_history.h"

namespace vicenter::ui {

class HistoryDialog : public QDialog, private center::TemplateHistoryView {
    Q_OBJECT

  public:
    explicit HistoryDialog(center::TemplateHistory& history, QWidget* parent = nullptr);

  private:
    void Unload() override;
    QTableWidget* MakeTable(const char* name, const QString& spoken, const QStringList& headings);
    void FillVersions();
    void ShowChosen();
    QLayout* Buttons();

    center::TemplateHistory& history_;
    QTableWidget* versions_;
    QTableWidget* changes_;
    QLabel* note_;
    QLineEdit* newName_;
};

}  // namespace vicenter::ui
