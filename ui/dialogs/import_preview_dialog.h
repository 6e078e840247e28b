#pragma once

// What an import would change, shown before the user is asked whether it may: the summary, what stands out,
// the changes cell by cell, the totals of each number, the faults. Accepted to go on. Modal, lives for one
// use. User-interface thread only.

#include <QDialog>
#include <QTabWidget>
#include <QTableWidget>

#include "exchange/import_preview.h"

namespace vicenter::ui {

class ImportPreviewDialog : public QDialog {
    Q_OBJECT

  public:
    explicit ImportPreviewDialog(const exchange::ImportPreview& preview, QWidget* parent = nullptr);

  private:
    QTableWidget* MakeTable(const char* name, const QString& spoken, const QStringList& headings);
    void AddChanges();
    void AddTotals();
    void AddFaults();
    QLayout* Buttons();

    const exchange::ImportPreview& preview_;
    QTabWidget* pages_;
};

}  // namespace vicenter::ui
