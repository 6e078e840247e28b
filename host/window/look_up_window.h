#pragma once

// The dialog of the host's look-ups: a filter box above a list or tree of records.
//
// Typing narrows by code, name and pinyin initials, arrows and Enter choose, Esc cancels; nothing is
// remembered across calls. QtLookUpDialog shows it modally for the process. User-interface thread only.

#include <QDialog>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <optional>
#include <vector>

#include "host/components/look_up_dialog.h"

namespace vicenter::host {

class LookUpWindow : public QDialog {
    Q_OBJECT

  public:
    // The request outlives the dialog.
    explicit LookUpWindow(const LookUpRequest& request, QWidget* parent = nullptr);
    // The record that the dialog was closed with.
    std::optional<std::size_t> Chosen() const { return chosen_; }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void AddRecords();
    void Narrow(const QString& text);
    void SetCurrent(std::optional<std::size_t> record);
    void Take();
    void RefreshTake();
    // The record under the cursor when it can be chosen.
    std::optional<std::size_t> Current() const;

    const LookUpRequest& request_;
    LookUpFilter filter_;
    QLineEdit* text_;
    QTreeWidget* list_;
    QPushButton* take_;
    std::vector<QTreeWidgetItem*> items_;  // by record
    std::optional<std::size_t> chosen_;
};

class QtLookUpDialog : public LookUpDialog {
  public:
    std::optional<std::size_t> Choose(const LookUpRequest& request) override;
};

}  // namespace vicenter::host
