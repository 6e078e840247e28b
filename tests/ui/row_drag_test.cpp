// Whole rows pulled out of the grid by their headers, by real mouse events.

#include <QHeaderView>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <memory>

#include <gtest/gtest.h>

#include "tests/ui/fakes.h"
#include "ui/grid/grid_view.h"
#include "ui/grid/rows_format.h"

namespace vicenter::ui {
namespace {

class RowDragTest : public ::testing::Test {
  protected:
    RowDragTest() {
        grid->SetRowTotal(20);
        view.resize(600, 400);
        view.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
    }
    QPoint At(int row) const {
        const QHeaderView* header = view.verticalHeader();
        return {header->width() / 2, header->sectionViewportPosition(row - 1) + 4};
    }
    QWidget* Port() const { return view.verticalHeader()->viewport(); }
    void Press(int row, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mousePress(Port(), Qt::LeftButton, modifiers, At(row));
    }
    void Release(const QPoint& at, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseRelease(Port(), Qt::LeftButton, modifiers, at);
    }
    void Move(const QPoint& at) {
        QMouseEvent move(QEvent::MouseMove, at, Port()->mapToGlobal(at), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(Port(), &move);
    }
    center::CellRange Rows() const { return view.SelectedBlock(); }

    std::shared_ptr<center::EntryGrid> grid = std::make_shared<center::EntryGrid>();
    testing::PlainActions actions{grid};
    GridModel model{grid, actions};
    GridView view{model, actions, actions};
    QSignalSpy pulled{&view, &GridView::rowsPulledOut};
};

TEST_F(RowDragTest, SelectedRowsGoOutOfTheHeaderTogether) {
    Press(3);
    Move(At(4));
    Release(At(4));
    ASSERT_EQ(Rows(), (center::CellRange{3, 1, 4, 21}));
    Press(4);
    Move(At(4) - QPoint(QApplication::startDragDistance(), 0));
    EXPECT_EQ(pulled.count(), 1);
    EXPECT_EQ(Rows(), (center::CellRange{3, 1, 4, 21}));
    const std::unique_ptr<QMimeData> mime(view.CopiedSelection());
    EXPECT_EQ(mime->data(RowsFormat()), "rows");
}

TEST_F(RowDragTest, APressThatGoesNowhereSelectsItsRowAlone) {
    Press(3);
    Move(At(5));
    Release(At(5));
    Press(4);
    Release(At(4));
    EXPECT_EQ(Rows(), (center::CellRange{4, 1, 4, 21}));
    EXPECT_EQ(pulled.count(), 0);
}

TEST_F(RowDragTest, ARowThatIsPulledAlongTheHeaderBuildsASelection) {
    Press(3);
    Release(At(3));
    Press(3);
    Move(At(4));
    Move(At(6));
    Release(At(6));
    EXPECT_EQ(Rows(), (center::CellRange{3, 1, 6, 21}));
    EXPECT_EQ(pulled.count(), 0);
}

TEST_F(RowDragTest, RowsThatAreNotSelectedStayAndKeysMeanWhatTheyMeant) {
    Press(3);
    Move(At(3) - QPoint(QApplication::startDragDistance() + 5, 0));
    Release(At(3));
    EXPECT_EQ(pulled.count(), 0);
    Press(5, Qt::ControlModifier);
    Release(At(5), Qt::ControlModifier);
    Press(3, Qt::ControlModifier);
    Release(At(3), Qt::ControlModifier);
    EXPECT_EQ(Rows(), (center::CellRange{5, 1, 5, 21}));
}

}  // namespace
}  // namespace vicenter::ui
