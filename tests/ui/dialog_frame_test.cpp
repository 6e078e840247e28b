// What every dialog has alike: no way to lose it behind its window, and room on a small screen.

#include <QAbstractButton>
#include <QAccessible>
#include <QDialog>
#include <QFileDialog>
#include <QKeySequence>
#include <QLabel>
#include <QLayout>
#include <QMessageBox>
#include <QScreen>
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <vector>

#include <gtest/gtest.h>

#include "center/frame/silent_view.h"
#include "center/grid/entry_grid.h"
#include "center/history/template_history.h"
#include "center/print/voucher_preview.h"
#include "center/search/code_replacement.h"
#include "center/search/operation_log.h"
#include "dialogs/frm_search.h"
#include "dialogs/frm_set_colume.h"
#include "tests/paths/source_folder.h"
#include "tests/ui/scripted_ledger.h"
#include "ui/dialogs/auto_vch_dialog.h"
#include "ui/dialogs/column_dialog.h"
#include "ui/dialogs/find_dialog.h"
#include "ui/dialogs/history_dialog.h"
#include "ui/dialogs/import_preview_dialog.h"
#include "ui/dialogs/import_report_dialog.h"
#include "ui/dialogs/log_dialog.h"
#include "ui/dialogs/replacement_dialog.h"
#include "ui/dialogs/voucher_dialog.h"
#include "ui/run/long_work.h"
#include "ui/run/qt_surroundings.h"

namespace vicenter::ui {
namespace {

// Of a screen of 1366 x 768 points at scale 2, less a panel and a title bar.
constexpr QSize kSmallest{683, 384 - 60};

// Without the first flag a window manager follows its own mind.
void ExpectTitleBar(const QDialog& dialog) {
    const std::string name = dialog.objectName().toStdString();
    EXPECT_TRUE(dialog.windowFlags() & Qt::CustomizeWindowHint) << name;
    EXPECT_TRUE(dialog.windowFlags() & Qt::WindowTitleHint) << name;
    EXPECT_FALSE(dialog.windowFlags() & Qt::WindowMinimizeButtonHint) << name;
    EXPECT_FALSE(dialog.windowFlags() & Qt::WindowMaximizeButtonHint) << name;
    EXPECT_FALSE(dialog.windowFlags() & Qt::WindowContextHelpButtonHint) << name;
    EXPECT_EQ(dialog.windowType(), Qt::Dialog) << name;
}

// Where Tab stops.
std::vector<QWidget*> StopsOf(const QDialog& dialog) {
    std::vector<QWidget*> stops;
    for (QWidget* at = dialog.nextInFocusChain(); at != &dialog; at = at->nextInFocusChain()) {
        if ((at->focusPolicy() & Qt::TabFocus) != 0 && at->isVisibleTo(&dialog) && at->isEnabled() &&
            at->focusProxy() == nullptr)
            stops.push_back(at);
    }
    return stops;
}

// What a screen reader says of each.
void ExpectStopsHaveNames(const QDialog& dialog) {
    for (QWidget* stop : StopsOf(dialog)) {
        QAccessibleInterface* spoken = QAccessible::queryAccessibleInterface(stop);
        ASSERT_NE(spoken, nullptr);
        EXPECT_NE(spoken->text(QAccessible::Name).toStdString(), "")
            << dialog.objectName().toStdString() << ": " << stop->objectName().toStdString();
    }
}

// With Alt each leads to one place.
void ExpectLettersOnce(const QDialog& dialog) {
    std::map<QString, std::string> seen;
    const auto take = [&](const QString& text, const QWidget& widget) {
        const QString letter = QKeySequence::mnemonic(text).toString();
        if (letter.isEmpty()) return;
        const std::string name = widget.objectName().toStdString();
        const auto [at, isNew] = seen.emplace(letter, name);
        EXPECT_TRUE(isNew) << dialog.objectName().toStdString() << ": " << letter.toStdString() << " of "
                           << name << " and " << at->second;
    };
    for (const QAbstractButton* button : dialog.findChildren<QAbstractButton*>())
        take(button->text(), *button);
    for (const QLabel* label : dialog.findChildren<QLabel*>())
        take(label->buddy() == nullptr ? QString() : label->text(), *label);
}

// Along the rows or down the columns, never back.
void ExpectTabGoesByWhatIsSeen(const QDialog& dialog) {
    dialog.layout()->activate();
    std::vector<QWidget*> stops = StopsOf(dialog);
    const auto place = [&](const QWidget* stop) {
        return QRect(stop->mapTo(&dialog, QPoint(0, 0)), stop->size());
    };
    // It is a ring: from its uppermost stop on.
    const auto first = std::min_element(stops.begin(), stops.end(), [&](const QWidget* a, const QWidget* b) {
        const QPoint one = place(a).center();
        const QPoint other = place(b).center();
        return one.y() / 8 != other.y() / 8 ? one.y() < other.y() : one.x() < other.x();
    });
    std::rotate(stops.begin(), first, stops.end());
    for (std::size_t i = 1; i < stops.size(); ++i) {
        const QRect from = place(stops[i - 1]);
        const QRect to = place(stops[i]);
        EXPECT_TRUE(to.center().y() >= from.top() || to.left() >= from.right())
            << dialog.objectName().toStdString() << ": " << stops[i - 1]->objectName().toStdString() << " to "
            << stops[i]->objectName().toStdString();
    }
}

void ExpectFramed(const QDialog& dialog) {
    ExpectTabGoesByWhatIsSeen(dialog);
    ExpectStopsHaveNames(dialog);
    ExpectLettersOnce(dialog);
    const std::string name = dialog.objectName().toStdString();
    ExpectTitleBar(dialog);
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
    ExpectFramed(ImportReportDialog({}, nullptr));
    center::OperationLog log;
    ExpectFramed(LogDialog(log));
    center::CodeReplacement replacement("1");
    ExpectFramed(ReplacementDialog(replacement));
    ExpectFramed(ImportPreviewDialog(exchange::ImportPreview()));
    ExpectFramed(AutoVchDialog());
    ExpectFramed(LongWorkBox(nullptr));
}

TEST(DialogFrame, IsThatOfMessagesAndOfTheChoiceOfFilesAsWell) {
    QMessageBox told;
    FillMessageBox(told, "x", system::MessageButtons::Ok, system::MessageIcon::Information, "信息提示");
    ExpectTitleBar(told);
    EXPECT_TRUE(told.windowFlags() & Qt::WindowCloseButtonHint);
    QMessageBox asked;
    FillMessageBox(asked, "x", system::MessageButtons::YesNo, system::MessageIcon::Question, "信息提示");
    ExpectTitleBar(asked);
    EXPECT_FALSE(asked.windowFlags() & Qt::WindowCloseButtonHint) << "only its buttons answer";
    QFileDialog files;
    FillFileDialog(files, {}, false);
    ExpectTitleBar(files);
    EXPECT_TRUE(files.windowFlags() & Qt::WindowCloseButtonHint);
}

std::string TextOf(const std::filesystem::path& file) {
    std::ifstream stream(file);
    std::stringstream text;
    text << stream.rdbuf();
    return text.str();
}

// A dialog that is added later, too.
TEST(DialogFrame, IsAskedForWhereverADialogIsMade) {
    int dialogs = 0;
    for (const char* folder : {"ui", "host/window"}) {
        for (const auto& entry :
             std::filesystem::recursive_directory_iterator(testing_paths::SourceFolder() / folder)) {
            std::filesystem::path source = entry.path();
            if (source.extension() != ".h" && source.extension() != ".cpp") continue;
            const std::string text = TextOf(source);
            bool makes = false;
            for (const char* made : {": public QDialog", " QDialog dialog(", " QMessageBox box(",
                                     " QFileDialog dialog(", " QPrintDialog dialog(", ": public QMessageBox"})
                makes = makes || text.find(made) != std::string::npos;
            if (!makes) continue;
            ++dialogs;
            const std::string whole = TextOf(source.replace_extension(".cpp"));
            EXPECT_TRUE(whole.find("FrameDialog(") != std::string::npos ||
                        whole.find("FrameTitleBar(") != std::string::npos)
                << source;
        }
    }
    EXPECT_GT(dialogs, 12);
}

}  // namespace
}  // namespace vicenter::ui
