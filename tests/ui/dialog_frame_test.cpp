// What every dialog has alike: no way to lose it behind its window, and room on a small screen.

#include <QDialog>
#include <QScreen>

#include <gtest/gtest.h>

#include "center/frame/silent_view.h"
#include "center/grid/entry_grid.h"
#include "center/history/template_history.h"
#include "center/print/voucher_preview.h"
#include "dialogs/frm_search.h"
#include "dialogs/frm_set_colume.h"
#include "tests/ui/scripted_ledger.h"
#include "ui/dialogs/column_dialog.h"
#include "ui/dialogs/find_dialog.h"
#include "ui/dialogs/history_dialog.h"
#include "ui/dialogs/voucher_dialog.h"

namespace vicenter::ui {
namespace {

// Of a screen of 1366 x 768 points at scale 2, less a panel and a title bar.
constexpr QSize kSmallest{683, 384 - 60};

void ExpectFramed(const QDialog& dialog) {
    const std::string name = dialog.objectName().toStdString();
    EXPECT_FALSE(dialog.windowFlags() & Qt::WindowMinimizeButtonHint) << name;
    EXPECT_FALSE(dialog.windowFlags() & Qt::WindowContextHelpButtonHint) << name;
    EXPECT_TRUE(dialog.windowFlags() & Qt::WindowCloseButtonHint) << name;
    EXPECT_LE(dialog.minimumSizeHint().width(), kSmallest.width()) << name;
    EXPECT_LE(dialog.minimumSizeHint().height(), kSmallest.height()) << name;
    EXPECT_LE(dialog.height(), dialog.screen()->availableSize().height()) << name;
}

TEST(DialogFrame, IsThatOfEveryDialog) {
    testing::ScriptedLedger ledger;
    const auto grid = std::make_shared<center::EntryGrid>();
    grid->SetRowTotal(10);
    grid->SetText(1, 1, "1");
    dialogs::FrmSearch search;
    search.SetGrid(grid);
    ExpectFramed(FindDialog(search, {}));
    dialogs::frmSetColume columns;
    columns.SetGrid(grid);
    ExpectFramed(ColumnDialog(columns));
    center::TemplateHistory history("5", "日常费用", "1", true);
    ExpectFramed(HistoryDialog(history));
    const center::VoucherPreview preview(*grid, 1, 1, {"日常费用", "账套", "用户"});
    center::SilentView view;
    ExpectFramed(VoucherDialog(preview, view));
}

}  // namespace
}  // namespace vicenter::ui
