#pragma once

// One pattern as the voucher that it would make. User-interface thread only.

#include <QDialog>

#include "center/frame/vicenter_view.h"
#include "center/print/voucher_preview.h"

class QTableWidget;

namespace vicenter::ui {

class VoucherDialog : public QDialog {
    Q_OBJECT

  public:
    // Both outlive the dialog; the view prints.
    VoucherDialog(const center::VoucherPreview& preview, center::VICenterView& view,
                  QWidget* parent = nullptr);

  private:
    void FillLines(QTableWidget& table) const;

    const center::VoucherPreview& preview_;
};

}  // namespace vicenter::ui
