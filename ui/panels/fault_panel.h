#pragma once

// The list of faults below the window: row, column, value and reason of every faulty cell, and of what a
// workbook or vouchers brought that could not be taken, with its source; to be sorted, copied and gone to.
// Hidden until it is asked for. User-interface thread only.

#include <QDockWidget>
#include <QTableView>
#include <string>

#include "center/faults/fault_actions.h"

namespace vicenter::ui {

class FaultModel;

class FaultPanel : public QDockWidget {
    Q_OBJECT

  public:
    FaultPanel(center::FaultActions& actions, QWidget* parent);
    ~FaultPanel() override;

    // The faults may be others: read again when the panel is seen.
    void Refresh();
    QTableView& Table() const { return *table_; }

  protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void Read();
    void GoTo(const QModelIndex& index);
    void GoToCurrent();
    void CopyRows();
    void DropRows();
    // The workbook of the current row; empty where it has none.
    std::string CurrentWorkbook() const;
    void SaveMarkedCopy();
    void ImportTidily();
    void ShowMenu(const QPoint& at);

    center::FaultActions& actions_;
    FaultModel* model_;
    QTableView* table_;
    bool waiting_ = false;  // for the moment in which the list is read again
};

}  // namespace vicenter::ui
