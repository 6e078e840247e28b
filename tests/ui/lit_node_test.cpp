// The lit node of the tree and the open template: one and the same, whatever buttons and keys come.

#include <QMenu>
#include <QTimer>

#include "tests/ui/window_fixture.h"

namespace vicenter::ui {
namespace {

class LitNodeTest : public WindowTest {
  protected:
    void MakeDirty() {
        ClickCell(1, 2);
        Type("x");
        Key(Qt::Key_Return);
        ASSERT_TRUE(window->Presenter().IsDirty());
    }
    void ExpectOpenAndLit(const std::string& id) {
        EXPECT_EQ(window->Presenter().TemplateId(), id);
        EXPECT_EQ(window->Tree().SelectedKey(), "detail-" + id);
        EXPECT_EQ(window->Presenter().SelectedNode(), "detail-" + id);
    }
};

TEST_F(LitNodeTest, NoButtonAndNoHalfAClickPartsThem) {
    Open();
    ClickNode("detail-5");
    QWidget* port = window->Tree().viewport();
    QTest::mouseClick(port, Qt::RightButton, {}, NodeAt("detail-6"));
    QTest::mouseClick(port, Qt::MiddleButton, {}, NodeAt("detail-6"));
    ExpectOpenAndLit("5");
    QTest::mousePress(port, Qt::LeftButton, {}, NodeAt("detail-6"));
    DragOverNode("detail-0");
    QTest::mouseRelease(port, Qt::LeftButton, {}, NodeAt("detail-0"));
    ExpectOpenAndLit("5");
}

TEST_F(LitNodeTest, F2AfterAPressThatWasReleasedElsewhereRenamesTheLitNode) {
    Open();
    ClickNode("detail-5");
    QWidget* port = window->Tree().viewport();
    QTest::mousePress(port, Qt::LeftButton, {}, NodeAt("detail-6"));
    QTest::mouseRelease(port, Qt::LeftButton, {}, NodeAt("detail-0"));
    Key(Qt::Key_F2);
    RenameTo("Rent", "5");
    EXPECT_EQ(window->Tree().FindNode("detail-6")->text(0), "工资计提");
}

TEST_F(LitNodeTest, TheStandardTemplateIsNotRelabelledByAPressOnAnother) {
    Open();
    QWidget* port = window->Tree().viewport();
    window->Tree().setFocus();
    QTest::mousePress(port, Qt::LeftButton, {}, NodeAt("detail-6"));
    QTest::mouseRelease(port, Qt::LeftButton, {}, QPoint(5, port->height() - 5));
    Key(Qt::Key_F2);
    EXPECT_FALSE(window->Tree().IsEditingLabel());
    ExpectOpenAndLit("0");
}

TEST_F(LitNodeTest, AfterEscapeAClickOnTheLitNodeRenamesNothing) {
    Open();
    DoubleClickNode("detail-5");
    ASSERT_TRUE(window->Tree().IsEditingLabel());
    Key(Qt::Key_Escape);
    ASSERT_FALSE(window->Tree().IsEditingLabel());
    ClickNode("detail-5");
    ClickCell(1, 2);
    Type("zz");
    bool over = false;
    QTimer::singleShot(QApplication::doubleClickInterval() + 50, window, [&over] { over = true; });
    ASSERT_TRUE(QTest::qWaitFor([&over] { return over; }));
    EXPECT_FALSE(window->Tree().IsEditingLabel());
    Key(Qt::Key_Return);
    EXPECT_EQ(Text(1, 2), "zz");
    EXPECT_TRUE(window->Presenter().IsDirty());
    EXPECT_EQ(ledger->Sent("update t_VchTemplate set"), "");
}

TEST_F(LitNodeTest, ALabelThatWasGivenUpLeavesNoClickBehindThatEdits) {
    Open();
    const auto clickTwiceAndWait = [this] {
        ClickNode("detail-5");
        ClickNode("detail-5");
        bool over = false;
        QTimer::singleShot(QApplication::doubleClickInterval() + 50, window, [&over] { over = true; });
        ASSERT_TRUE(QTest::qWaitFor([&over] { return over; }));
        EXPECT_FALSE(window->Tree().IsEditingLabel());
    };
    DoubleClickNode("detail-5");
    ASSERT_TRUE(window->Tree().IsEditingLabel());
    Key(Qt::Key_Escape);
    clickTwiceAndWait();
    DoubleClickNode("detail-5");
    ASSERT_TRUE(window->Tree().IsEditingLabel());
    ClickCell(1, 2);  // leaves it untouched
    ASSERT_FALSE(window->Tree().IsEditingLabel());
    clickTwiceAndWait();
    DoubleClickNode("detail-0");  // may not be renamed
    clickTwiceAndWait();
    EXPECT_EQ(ledger->Sent("update t_VchTemplate set"), "");
}

TEST_F(LitNodeTest, DeletingAsksForTheLitOne) {
    Open();
    ClickNode("detail-5");
    QWidget* port = window->Tree().viewport();
    QTest::mousePress(port, Qt::LeftButton, {}, NodeAt("detail-6"));
    QTest::mouseRelease(port, Qt::LeftButton, {}, QPoint(5, port->height() - 5));
    Key(Qt::Key_Delete);
    EXPECT_THAT(Messages(), ElementsAre("模板删除将无法还原，是否删除？\r\n\r\n凭证模板：自定义模板(1)"));
}

TEST_F(LitNodeTest, ADragOverAChangedTemplateAsksNothing) {
    Open();
    MakeDirty();
    window->Tree().setFocus();
    QWidget* port = window->Tree().viewport();
    QTest::mousePress(port, Qt::LeftButton, {}, NodeAt("detail-5"));
    DragOverNode("detail-5");
    DragOverNode("detail-6");
    EXPECT_THAT(Messages(), IsEmpty());
    QTest::mouseRelease(port, Qt::LeftButton, {}, NodeAt("detail-6"));
    EXPECT_THAT(Messages(), IsEmpty());
    ExpectOpenAndLit("0");
    ClickNode("detail-5");
    EXPECT_EQ(Messages().size(), 1U);
    ExpectOpenAndLit("5");
}

TEST_F(LitNodeTest, AfterYesAndARefusedSaveTypingGoesToTheGrid) {
    Open();
    ClickCell(1, 2);
    Key(Qt::Key_Delete);
    ledger->surroundings.messageBoxes->answers = {MessageResult::Yes};
    ClickNode("detail-5");
    ASSERT_EQ(Messages().size(), 2U);
    EXPECT_THAT(Messages()[1], HasSubstr("请录入摘要"));
    EXPECT_EQ(Focused(), &Grid());
    EXPECT_EQ(Grid().Model().AddressOf(Grid().currentIndex()), (center::CellAddress{1, 2}));
    Type("n");
    EXPECT_EQ(Messages().size(), 2U) << "typing answers no question";
    EXPECT_TRUE(Grid().IsEditing());
    EXPECT_EQ(window->Presenter().TemplateId(), "0");
}

TEST_F(LitNodeTest, NewFromTheRootTurnsSaveAndDeleteOnAndAClickOnItsNodeExport) {
    Open();
    ClickNode("ROOT");
    EXPECT_FALSE(Enabled("mnuSave"));
    ClickTool("mnuNew");
    EXPECT_TRUE(Enabled("mnuSave"));
    EXPECT_TRUE(Enabled("mnuDel"));
    EXPECT_FALSE(Enabled("mnuExp"));
    ClickNode(window->Presenter().SelectedNode().c_str());
    EXPECT_TRUE(Enabled("mnuExp"));
}

}  // namespace
}  // namespace vicenter::ui
