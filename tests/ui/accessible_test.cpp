// What a screen reader finds: names and values of grid, tree and command bar, by Qt's accessibility
// interface.

#include <QAccessible>
#include <QLabel>
#include <QLineEdit>

#include "tests/ui/window_fixture.h"
#include "ui/panels/item_panel.h"

namespace vicenter::ui {
namespace {

class AccessibleTest : public WindowTest {
  protected:
    static QAccessibleInterface* Of(QObject* object) { return QAccessible::queryAccessibleInterface(object); }
    static std::string Name(QAccessibleInterface* of) {
        return of ? of->text(QAccessible::Name).toStdString() : "nothing";
    }
    QAccessibleInterface* CellAt(int row, int gridColumn) {
        QAccessibleTableInterface* table = Of(&Grid())->tableInterface();
        return table ? table->cellAt(row - 1, gridColumn - 1) : nullptr;
    }
};

TEST_F(AccessibleTest, TheGridIsATableWithAName) {
    Open();
    QAccessibleInterface* grid = Of(&Grid());
    ASSERT_NE(grid, nullptr);
    EXPECT_EQ(Name(grid), "凭证模板分录");
    EXPECT_EQ(grid->role(), QAccessible::Table);
    ASSERT_NE(grid->tableInterface(), nullptr);
    EXPECT_EQ(grid->tableInterface()->columnCount(), center::kColumnCount);
}

TEST_F(AccessibleTest, ACellSaysItsColumnItsTextItsRowAndWhyItIsRed) {
    Open();
    ClickCell(1, 2);
    Type("tea");
    Key(Qt::Key_Return);
    QAccessibleInterface* cell = CellAt(1, 2);
    ASSERT_NE(cell, nullptr);
    EXPECT_EQ(Name(cell), "摘要：tea");
    EXPECT_THAT(cell->text(QAccessible::Description).toStdString(), HasSubstr("第 1 行"));
    EXPECT_EQ(Name(CellAt(90, 5)), "科目代码：空");
    // A number that the column refuses stays there and says why.
    ClickCell(1, 7);
    window->Presenter().Cells().CommitText({1, 7}, "abc");
    EXPECT_THAT(CellAt(1, 7)->text(QAccessible::Description).toStdString(), HasSubstr("异常："));
}

TEST_F(AccessibleTest, AmountsAreSpokenAsTheyAreShown) {
    Open();
    window->Presenter().Grid().SetText(1, center::column::kAmount, "1234567.5");
    EXPECT_EQ(Name(CellAt(1, center::column::kAmount)), "金额：1,234,567.50");
}

TEST_F(AccessibleTest, TheTreeHasANameAndItsNodesSayWhatTheEyeSees) {
    Open();
    QAccessibleInterface* tree = Of(&window->Tree());
    ASSERT_NE(tree, nullptr);
    EXPECT_EQ(Name(tree), "凭证模板列表");
    const auto spoken = [this](const char* key) {
        const QTreeWidgetItem* node = window->Tree().FindNode(key);
        const QVariant own = node->data(0, Qt::AccessibleTextRole);
        return (own.isValid() ? own.toString() : node->text(0)).toStdString();
    };
    EXPECT_EQ(spoken("detail-0"), "标准模板");
    window->Tree().SetUnusable({"detail-0"});
    EXPECT_EQ(spoken("detail-0"), "标准模板（有不能使用的编号）");
    window->Tree().SetModified("detail-0", true);
    EXPECT_EQ(spoken("detail-0"), "标准模板（已修改）（有不能使用的编号）");
    window->Tree().SetUnusable({});
    window->Tree().SetModified({}, false);
    EXPECT_EQ(spoken("detail-0"), "标准模板");
}

TEST_F(AccessibleTest, EveryToolSaysItsCaption) {
    Open();
    EXPECT_EQ(Name(Of(window->findChild<QWidget*>(QString::fromUtf8(center::kBandName.data())))), "工具栏");
    for (const center::ToolSpec& spec : center::Tools()) {
        auto* button = window->findChild<QToolButton*>(QString::fromUtf8(spec.key.data()) + "Button");
        ASSERT_NE(button, nullptr);
        EXPECT_EQ(Name(Of(button)), std::string(spec.caption));
        EXPECT_EQ(Of(button)->state().disabled, !button->isEnabled());
    }
}

TEST_F(AccessibleTest, FieldsOfTheItemPanelSayTheirClasses) {
    QWidget parent;
    ItemPanel panel(&parent);
    center::ItemPanelState state;
    state.visible = true;
    state.expanded = true;
    state.rows = {{1, "客户", "C01", false}, {2, "部门", "D02", true}};
    panel.SetState(state);
    const auto name = [&](const char* of) { return Name(Of(parent.findChild<QWidget*>(of))); };
    EXPECT_EQ(name("txtItem"), "核算项目");
    EXPECT_EQ(name("cmdItem"), "打开或关闭核算项目面板");
    EXPECT_EQ(name("txtItemNumber1"), "客户");
    EXPECT_EQ(name("txtItemNumber2"), "部门");
    EXPECT_EQ(name("cmdItemLookUp2"), "查看资料：部门");
}

TEST_F(AccessibleTest, TheNameFieldSaysWhatItIs) {
    Open();
    auto* name = window->findChild<QLineEdit*>(QStringLiteral("itName"));
    EXPECT_EQ(Name(Of(name)), "模板名称");
    EXPECT_EQ(Of(name)->text(QAccessible::Value).toStdString(), "标准模板");
}

}  // namespace
}  // namespace vicenter::ui
