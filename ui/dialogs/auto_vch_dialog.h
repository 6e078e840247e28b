#pragma once

// The window of frmAutoVch: the voucher filter and the button that generates. Modal, lives for one use.
// User-interface thread only.

#include <QCheckBox>
#include <QComboBox>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <array>

#include "autovch/frm_auto_vch.h"
#include "ui/run/rest_timer.h"

namespace vicenter::ui {

class AutoVchDialog : public QDialog, private autovch::AutoVchView {
    Q_OBJECT

  public:
    explicit AutoVchDialog(QWidget* parent = nullptr);

    // What came of it, once the dialog is closed.
    const autovch::GenerationResult& Result() const { return form_.Result(); }

    void reject() override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void Show(const autovch::AutoVchState& state) override;
    bool ShowProgress(std::int64_t done, std::int64_t all) override;
    void HideProgress() override;
    void ShowColumnDialog(dialogs::frmSetColume& dialog) override;
    bool ShowPatterns(const autovch::GenerationPreview& preview, autovch::LeftOut& without) override;
    void Unload() override;

    QWidget* BuildFilter();
    QLayout* BuildWarning();
    QWidget* BuildUpDown(autovch::Box box, const char* name);
    void BoxEdited(autovch::Box box);
    void FilterChanged();
    // Nothing but Cancel can be used while a generation runs.
    void EnableInputs(bool enabled);
    void RunCommand(int index);

    autovch::frmAutoVch form_{*this};
    std::array<QLineEdit*, autovch::kBoxCount> boxes_{};
    QComboBox* groups_ = nullptr;
    QCheckBox* system_ = nullptr;
    QLineEdit* name_ = nullptr;
    QPushButton* columns_ = nullptr;
    QLabel* selected_ = nullptr;
    QLabel* warning_ = nullptr;
    QPushButton* oneGroup_ = nullptr;
    QPushButton* patterns_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QWidget* filter_ = nullptr;
    QPushButton* generate_ = nullptr;
    RestTimer settled_;
    bool showing_ = false;     // the presenter's own texts are no edits of the user
    bool generating_ = false;  // Cancel then ends the generation, not the dialog
    bool cancelled_ = false;
};

}  // namespace vicenter::ui
