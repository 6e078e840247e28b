#pragma once

// The patterns of the vouchers that a generation would take, a tick each: what is not ticked is left out.
// Accepted to keep the ticks. Modal, lives for one use. User-interface thread only.

#include <QDialog>
#include <QLabel>
#include <QTableWidget>

#include "autovch/generation_preview.h"

namespace vicenter::ui {

class PatternDialog : public QDialog {
    Q_OBJECT

  public:
    PatternDialog(const autovch::GenerationPreview& preview, const autovch::LeftOut& without,
                  QWidget* parent = nullptr);

    // What is not ticked.
    autovch::LeftOut Without() const;

  private:
    void Fill(const autovch::LeftOut& without);
    void TickAll(bool ticked);
    void ShowCount();

    const autovch::GenerationPreview& preview_;
    QTableWidget* patterns_;
    QLabel* note_;
};

}  // namespace vicenter::ui
