#pragma once

// What became of several workbooks that were imported at once: a row each, and the way to keep it as a
// workbook. Modal, lives for one use. User-interface thread only.

#include <QDialog>
#include <vector>

#include "exchange/import_outcome.h"

namespace vicenter::ui {

class ImportReportDialog : public QDialog {
    Q_OBJECT

  public:
    explicit ImportReportDialog(const std::vector<exchange::ImportOutcome>& outcomes,
                                QWidget* parent = nullptr);

  private:
    QWidget* MakeTable();

    const std::vector<exchange::ImportOutcome>& outcomes_;
};

}  // namespace vicenter::ui
