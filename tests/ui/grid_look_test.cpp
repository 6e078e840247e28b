// What the grid looks like: bands and rules between template numbers, credit lines, sums, the width filled.

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QImage>
#include <QMenu>
#include <QMouseEvent>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <memory>
#include <set>
#include <utility>

#include <gtest/gtest.h>

#include "tests/ui/fakes.h"
#include "ui/grid/cell_delegate.h"
#include "ui/grid/figures.h"
#include "ui/grid/grid_view.h"
#include "ui/look/center_style.h"
#include "ui/look/twips.h"

namespace vicenter::ui {
namespace {

namespace column = center::column;
using testing::PlainActions;

// Rules that sum up what is in the grid.
class SummingActions : public PlainActions {
  public:
    using PlainActions::PlainActions;
    bool ShowsTotals() const override { return shows; }
    void SetShowsTotals(bool wanted) override { shows = wanted; }
    std::optional<center::NumberTotals> TotalsEndingAt(int row) override {
        if (!shows || row != endRow) return std::nullopt;
        return totals;
    }
    std::string ProposedText(const center::CellAddress& cell) override {
        return cell == proposed ? "8" : std::string();
    }
    center::CellAddress proposed{0, 0};
    bool shows = false;
    int endRow = 3;
    center::NumberTotals totals{"1,000.00", "1,000.00", ""};
};

class GridLookTest : public ::testing::Test {
  protected:
    GridLookTest() {
        grid->SetRowTotal(20);
        for (int c = 1; c <= center::kColumnCount; ++c)
            grid->SetColumnHidden(c, shown.count(c) == 0);
        model = std::make_unique<GridModel>(grid, actions);
        view = std::make_unique<GridView>(*model, actions, actions);
        for (const int c : shown)
            grid->SetColumnWidth(c, 1500);
        view->resize(900, 400);
        view->show();
        view->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(view.get()));
        // Out of the way of what is looked at.
        view->setCurrentIndex(model->IndexOf({15, column::kNo}));
    }

    void Line(int row, const char* number, const char* side, const char* name) {
        grid->SetText(row, column::kNo, number);
        grid->SetText(row, column::kDirection, side);
        grid->SetText(row, column::kAccountName, name);
    }
    QRect Cell(int row, int gridColumn) { return view->visualRect(model->IndexOf({row, gridColumn})); }
    QImage Picture() {
        QApplication::processEvents();
        return view->viewport()->grab().toImage();
    }
    // Of a place in the cell where there is no text.
    QColor Paper(int row) { return Picture().pixelColor(Cell(row, column::kExplanation).center()); }
    // The first column of points in the cell that is not of its paper.
    int InkFrom(const QRect& cell) {
        const QImage picture = Picture();
        const QColor paper = picture.pixelColor(cell.topLeft() + QPoint(1, cell.height() / 2));
        for (int x = cell.left() + 1; x < cell.right(); ++x) {
            for (int y = cell.top() + 2; y < cell.bottom(); ++y) {
                if (picture.pixelColor(x, y) != paper) return x - cell.left();
            }
        }
        return -1;
    }
    // The darkest point of the cell.
    int Darkest(const QRect& cell) {
        const QImage picture = Picture();
        int darkest = 255;
        for (int x = cell.left() + 1; x < cell.right(); ++x) {
            for (int y = cell.top() + 2; y < cell.bottom(); ++y)
                darkest = std::min(darkest, qGray(picture.pixel(x, y)));
        }
        return darkest;
    }
    int WidthOf(int gridColumn) { return view->columnWidth(gridColumn - 1); }
    int Filled() {
        int width = 0;
        for (const int c : shown)
            width += WidthOf(c);
        return width;
    }

    const std::set<int> shown{column::kNo, column::kExplanation, column::kDirection, column::kAccountName,
                              column::kRemark};
    std::shared_ptr<center::EntryGrid> grid = std::make_shared<center::EntryGrid>();
    SummingActions actions{grid};
    std::unique_ptr<GridModel> model;
    std::unique_ptr<GridView> view;
};

TEST_F(GridLookTest, TheRowsOfANumberHaveOnePaperAndTheNextNumberHasAnother) {
    for (const auto& [row, number] : {std::pair(1, "1"), {2, "1"}, {3, "1"}, {4, "2"}, {5, "2"}})
        Line(row, number, "借", "库存现金");
    EXPECT_EQ(Paper(1), colors::kPaper);
    EXPECT_EQ(Paper(2), Paper(1));
    EXPECT_EQ(Paper(3), Paper(1));
    EXPECT_EQ(Paper(4), colors::kPaperAlternate);
    EXPECT_EQ(Paper(5), Paper(4));
    EXPECT_EQ(Paper(6), colors::kPaper);
    EXPECT_EQ(Paper(7), colors::kPaper);
}

TEST_F(GridLookTest, ANumberTypedAnewChangesTheBandsBelowAtOnce) {
    for (const auto& [row, number] : {std::pair(1, "1"), {2, "1"}, {3, "2"}})
        Line(row, number, "借", "库存现金");
    ASSERT_EQ(Paper(3), colors::kPaperAlternate);
    grid->SetText(2, column::kNo, "7");
    EXPECT_EQ(Paper(2), colors::kPaperAlternate);
    EXPECT_EQ(Paper(3), colors::kPaper);
}

TEST_F(GridLookTest, ARuleStandsBetweenNumbersAlone) {
    for (const auto& [row, number] : {std::pair(1, "1"), {2, "1"}, {3, "2"}})
        Line(row, number, "借", "库存现金");
    const QImage picture = Picture();
    const auto topOf = [&](int row) {
        const QRect cell = Cell(row, column::kExplanation);
        return picture.pixelColor(cell.center().x(), cell.top());
    };
    EXPECT_NE(topOf(1), colors::kNumberRule);
    EXPECT_NE(topOf(2), colors::kNumberRule);
    EXPECT_EQ(topOf(3), colors::kNumberRule);
    EXPECT_EQ(topOf(4), colors::kNumberRule);
    EXPECT_NE(topOf(5), colors::kNumberRule);
}

TEST_F(GridLookTest, ARepeatedNumberStepsBackAndAFaultyOneStaysRed) {
    for (const int row : {1, 2, 3})
        Line(row, "8", "借", "库存现金");
    const int first = Darkest(Cell(1, column::kNo));
    EXPECT_GT(Darkest(Cell(2, column::kNo)), first + 40);
    EXPECT_EQ(grid->Look(2, column::kNo).foreColor, center::color::kBlack);
    grid->SetForeColor({3, column::kNo, 3, column::kNo}, center::color::kRed);
    EXPECT_EQ(model->IndexOf({3, column::kNo}).data(Qt::ForegroundRole).value<QColor>(), QColor(255, 0, 0));
}

// Both are grey: who sees no colours, too, is to know a proposal.
TEST_F(GridLookTest, AProposalLooksOtherThanARepeatedNumber) {
    for (const int row : {1, 2})
        Line(row, "8", "借", "库存现金");
    actions.proposed = {3, column::kNo};
    const QImage picture = Picture();
    const auto lettersOf = [&](int row) {
        return picture.copy(Cell(row, column::kNo).adjusted(2, 2, -2, -2))
            .convertToFormat(QImage::Format_Mono);
    };
    EXPECT_EQ(picture.copy(Cell(3, column::kNo)).size(), picture.copy(Cell(2, column::kNo)).size());
    EXPECT_NE(lettersOf(2), lettersOf(3));
    EXPECT_NE(lettersOf(3), lettersOf(5)) << "it is there";
}

TEST_F(GridLookTest, LettersOfAFaultyCellAreLighterWhereThePaperIsDark) {
    Line(1, "8", "借", "库存现金");
    grid->SetForeColor({1, column::kAccountName, 1, column::kAccountName}, center::color::kRed);
    for (const bool dark : {false, true}) {
        Theme::Process().SetDark(dark);
        const QImage picture = Picture();
        // Left of the mark in the corner.
        const QRect cell = Cell(1, column::kAccountName).adjusted(2, 2, -20, -2);
        bool found = false;
        for (int y = cell.top(); y <= cell.bottom(); ++y) {
            for (int x = cell.left(); x <= cell.right(); ++x)
                found = found || picture.pixelColor(x, y) == colors::kFaulty();
        }
        EXPECT_TRUE(found) << dark;
    }
    Theme::Process().SetDark(false);
}

TEST_F(GridLookTest, TheNamesOfCreditLinesStandOneStepIn) {
    Line(1, "1", "借", "库存现金");
    Line(2, "1", "贷", "库存现金");
    const int debit = InkFrom(Cell(1, column::kAccountName));
    ASSERT_GT(debit, 0);
    EXPECT_EQ(InkFrom(Cell(2, column::kAccountName)),
              debit + CellDelegate::CreditIndent(view->fontMetrics()));
    grid->SetText(2, column::kDirection, "借");
    EXPECT_EQ(InkFrom(Cell(2, column::kAccountName)), debit);
}

TEST_F(GridLookTest, TheSumsOfANumberStandAtItsLastRowWhenAskedFor) {
    for (const int row : {1, 2, 3})
        Line(row, "1", "借", "库存现金");
    ASSERT_EQ(InkFrom(Cell(3, column::kRemark)), -1);
    view->setFocus();
    QTest::keyClick(view.get(), Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_TRUE(actions.shows);
    EXPECT_EQ(InkFrom(Cell(2, column::kRemark)), -1);
    EXPECT_GT(InkFrom(Cell(3, column::kRemark)), 0);
    // Aside to the right, so that the remark keeps its place.
    grid->SetText(3, column::kRemark, "月");
    EXPECT_LT(InkFrom(Cell(3, column::kRemark)), 12);
    QTest::keyClick(view.get(), Qt::Key_T, Qt::ControlModifier | Qt::ShiftModifier);
    grid->SetText(3, column::kRemark, "");
    EXPECT_EQ(InkFrom(Cell(3, column::kRemark)), -1);
}

TEST_F(GridLookTest, TheMenuOffersTheSumsAndShowsWhetherTheyAreThere) {
    actions.shows = true;
    bool checked = false;
    QTimer::singleShot(0, view.get(), [&] {
        auto* menu = view->findChild<QMenu*>(QStringLiteral("gridMenu"));
        ASSERT_NE(menu, nullptr);
        auto* totals = menu->findChild<QAction*>(QStringLiteral("mnuTotals"));
        ASSERT_NE(totals, nullptr);
        checked = totals->isChecked();
        totals->trigger();
        menu->close();
    });
    const QPoint at = Cell(1, 1).center();
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, view->viewport()->mapToGlobal(at));
    QApplication::sendEvent(view->viewport(), &event);
    EXPECT_TRUE(checked);
    EXPECT_FALSE(actions.shows);
}

TEST_F(GridLookTest, TheLastShownColumnFillsTheWidthAndItsOwnWidthIsKept) {
    EXPECT_EQ(Filled(), view->viewport()->width());
    EXPECT_EQ(grid->Layout(column::kRemark).width, 1500);
    view->resize(1100, 400);
    QApplication::processEvents();
    EXPECT_EQ(Filled(), view->viewport()->width());
    grid->SetColumnHidden(column::kRemark, true);
    EXPECT_EQ(Filled() - WidthOf(column::kRemark), view->viewport()->width());
    EXPECT_EQ(grid->Layout(column::kAccountName).width, 1500);
    grid->SetColumnHidden(column::kRemark, false);
    EXPECT_EQ(WidthOf(column::kAccountName), TwipsToPixels(1500, *view));
    EXPECT_EQ(Filled(), view->viewport()->width());
}

TEST_F(GridLookTest, AColumnDraggedWiderTakesItsRoomFromTheLastOne) {
    QHeaderView* header = view->horizontalHeader();
    const int edge =
        header->sectionViewportPosition(column::kExplanation - 1) + WidthOf(column::kExplanation);
    const QPoint from(edge - 2, header->height() / 2);
    QTest::mousePress(header->viewport(), Qt::LeftButton, {}, from);
    QMouseEvent move(QEvent::MouseMove, from + QPoint(40, 0),
                     header->viewport()->mapToGlobal(from + QPoint(40, 0)), Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(header->viewport(), &move);
    QTest::mouseRelease(header->viewport(), Qt::LeftButton, {}, from + QPoint(40, 0));
    EXPECT_EQ(WidthOf(column::kExplanation), TwipsToPixels(1500, *view) + 40);
    EXPECT_EQ(grid->Layout(column::kExplanation).width,
              PixelsToTwips(TwipsToPixels(1500, *view) + 40, *view));
    EXPECT_EQ(Filled(), view->viewport()->width());
    EXPECT_EQ(grid->Layout(column::kRemark).width, 1500);
}

TEST_F(GridLookTest, ColumnsThatNeedMoreThanTheWindowKeepTheirWidths) {
    for (const int c : shown)
        grid->SetColumnWidth(c, 6000);
    for (const int c : shown)
        EXPECT_EQ(WidthOf(c), TwipsToPixels(6000, *view));
}

TEST(Figures, EveryDigitTakesTheRoomOfTheWidest) {
    for (const QString& family : {QStringLiteral("Noto Sans CJK SC"), QStringLiteral("DejaVu Sans")}) {
        const QFont font(family, 11);
        const QFontMetrics metrics(font);
        EXPECT_EQ(FiguresWidth(metrics, QStringLiteral("1,111.11")),
                  FiguresWidth(metrics, QStringLiteral("8,888.88")));
    }
}

}  // namespace
}  // namespace vicenter::ui
