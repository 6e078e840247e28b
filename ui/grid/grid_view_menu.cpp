// The context menu of the entry grid. The rest of GridView is in grid_view.cpp.

#include <QContextMenuEvent>
#include <QMenu>

#include "ui/grid/grid_view.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {

// A help that is on or off, as the user likes.
void GridView::AddAid(QMenu& menu, const QString& text, center::EntryAid aid) {
    QAction* action = menu.addAction(text);
    action->setCheckable(true);
    action->setChecked(GuardedOr(false, [&] { return actions_.IsOn(aid); }));
    connect(action, &QAction::toggled, this, [this, aid](bool on) {
        Guarded([&] { actions_.SetOn(aid, on); });
        PaintProposals();
        ShowFrozen();
    });
}

void GridView::AddAids(QMenu& menu) {
    AddAid(menu, QStringLiteral("建议下一行的内容"), center::EntryAid::Proposals);
    AddAid(menu, QStringLiteral("跳过科目用不到的单元格"), center::EntryAid::PassingBy);
}

// All lines of the cursor's template number.
void GridView::AddPatterns(QMenu& menu) {
    using center::PatternCommand;
    QMenu* patterns = menu.addMenu(QStringLiteral("整个编号"));
    patterns->setObjectName(QStringLiteral("patternMenu"));
    patterns->setEnabled(IsInteractive());
    const auto add = [&](const QString& text, PatternCommand command) {
        connect(patterns->addAction(text), &QAction::triggered, this,
                [this, command] { EditPatterns(command); });
    };
    add(QStringLiteral("复制为新编号\tCtrl+Shift+C"), PatternCommand::Copy);
    add(QStringLiteral("上移\tAlt+↑"), PatternCommand::MoveUp);
    add(QStringLiteral("下移\tAlt+↓"), PatternCommand::MoveDown);
    patterns->addSeparator();
    add(QStringLiteral("全部重新编号\tCtrl+Shift+R"), PatternCommand::Renumber);
    add(QStringLiteral("分录按编号排序\tCtrl+Shift+O"), PatternCommand::Sort);
}

// Of the cursor's column, and of those that are selected.
void GridView::AddColumns(QMenu& columns) {
    const auto add = [&](const QString& text, auto&& run) {
        connect(columns.addAction(text), &QAction::triggered, this, run);
    };
    add(QStringLiteral("列宽适合内容(&W)\tCtrl+Shift+W"), [this] { FitColumns(); });
    add(QStringLiteral("左移(&L)\tAlt+←"), [this] { MoveColumn(-1); });
    add(QStringLiteral("右移(&R)\tAlt+→"), [this] { MoveColumn(1); });
    columns.addSeparator();
    constexpr int kUsualPlaces = 6;
    const int frozen = FrozenPlaces();
    const int here = currentIndex().isValid() ? PlaceOf(currentIndex().column()) + 1 : kUsualPlaces;
    add(QStringLiteral("滚动时固定到此列(&F)"), [this, here] { Freeze(here); });
    add(QStringLiteral("滚动时固定前六列(&S)"), [this] { Freeze(kUsualPlaces); });
    if (frozen > 0) add(QStringLiteral("取消固定(&U)"), [this] { Freeze(0); });
    columns.addSeparator();
    add(QStringLiteral("恢复各列的顺序(&O)"), [this] { ResetOrder(); });
    add(QStringLiteral("恢复各列的宽度(&D)"), [this] { ResetWidths(); });
}

void GridView::ShowColumnMenu(const QPoint& globalAt) {
    if (!currentIndex().isValid()) return;
    CommitOpenEditor();
    QMenu menu(this);
    menu.setObjectName(QStringLiteral("columnMenu"));
    AddColumns(menu);
    Guarded([&] { menu.exec(globalAt); });
}

void GridView::contextMenuEvent(QContextMenuEvent* event) {
    ShowGridMenu(event->globalPos());
}

void GridView::ShowGridMenu(const QPoint& globalAt) {
    const center::CellSelection selection = Selected();
    if (selection.IsEmpty()) return;
    CommitOpenEditor();
    QMenu menu(this);
    menu.setObjectName(QStringLiteral("gridMenu"));
    const bool interactive = IsInteractive();
    const auto add = [&menu, interactive](const QString& text, bool changes, auto&& run) {
        QAction* action = menu.addAction(text);
        action->setEnabled(interactive || !changes);
        connect(action, &QAction::triggered, &menu, run);
    };
    int count = 0;
    for (const center::RowRun& run : center::RowRuns(selection, model_.Grid()))
        count += run.Count();
    add(QStringLiteral("剪切\tCtrl+X"), true, [this] { CutSelection(); });
    add(QStringLiteral("复制\tCtrl+C"), false, [this] { CopySelection(); });
    add(QStringLiteral("粘贴\tCtrl+V"), true, [this] { Paste(); });
    add(QStringLiteral("清除内容\tDelete"), true, [this] { ClearSelection(); });
    menu.addSeparator();
    add(QStringLiteral("向下填充\tCtrl+D"), true, [this] { FillDown(); });
    add(QStringLiteral("复制分录\tCtrl+Shift+D"), true, [this] { DuplicateRows(); });
    add((count > 1 ? QStringLiteral("添加 %1 行分录").arg(count) : QStringLiteral("添加分录")) +
            QStringLiteral("\tCtrl++"),
        true, [this] { InsertRows(); });
    add((count > 1 ? QStringLiteral("删除 %1 行分录").arg(count) : QStringLiteral("删除分录")) +
            QStringLiteral("\tCtrl+-"),
        true, [this] { DeleteRows(); });
    menu.addSeparator();
    add(QStringLiteral("查看资料\tF7"), true, [this] { OpenLookUp(); });
    add(QStringLiteral("显示生成的凭证\tF9"), false, [this] { ShowVoucher(); });
    menu.addSeparator();
    QAction* totals = menu.addAction(QStringLiteral("显示各编号合计\tCtrl+Shift+T"));
    totals->setObjectName(QStringLiteral("mnuTotals"));
    totals->setCheckable(true);
    totals->setChecked(GuardedOr(false, [&] { return actions_.ShowsTotals(); }));
    connect(totals, &QAction::triggered, &menu, [this] { ToggleTotals(); });
    menu.addSeparator();
    AddPatterns(menu);
    QMenu* columns = menu.addMenu(QStringLiteral("列(&C)"));
    columns->setObjectName(QStringLiteral("columnMenu"));
    AddColumns(*columns);
    menu.addSeparator();
    AddAids(menu);
    Guarded([&] { menu.exec(globalAt); });
}

}  // namespace vicenter::ui
