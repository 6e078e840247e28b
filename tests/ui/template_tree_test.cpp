#include "ui/panels/template_tree.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include "ui/panels/tree_filter.h"

namespace vicenter::ui {
namespace {

class RecordedTreeActions : public center::TreeActions {
  public:
    void GotFocus() override {}
    void LostFocus() override {}
    std::vector<center::TreeMenuItem> MenuItems() override { return menu; }
    void NodeClick(const std::string& key) override { clicks.push_back(key); }
    void DoubleClick() override {
        ++doubleClicks;
        if (tree && mayRename) tree->StartLabelEdit();
    }
    bool BeforeLabelEdit() override { return mayEdit; }
    bool AfterLabelEdit(const std::string& newText) override {
        labels.push_back(newText);
        return accepts;
    }
    void LabelEditGivenUp() override { ++givenUp; }
    bool EditsLabels() override { return automatic; }
    void DeleteSelected() override { ++deletes; }
    void SaveAs() override {}
    void DropRows(const std::string& key, const center::CopiedBlock& rows) override {
        dropped = key + " " + rows.rows;
    }
    bool OffersFilter() override { return offersFilter; }
    std::vector<std::string> Fitting(const std::string& filter) override {
        filters.push_back(filter);
        return fitting;
    }

    TemplateTree* tree = nullptr;
    std::vector<center::TreeMenuItem> menu;
    std::vector<std::string> clicks;
    std::vector<std::string> labels;
    std::string dropped;
    std::vector<std::string> filters;
    std::vector<std::string> fitting;
    bool offersFilter = false;
    int doubleClicks = 0;
    int deletes = 0;
    int givenUp = 0;
    bool mayRename = true;
    bool mayEdit = true;
    bool accepts = true;
    bool automatic = false;
};

class TemplateTreeTest : public ::testing::Test {
  protected:
    TemplateTreeTest() {
        actions.tree = &tree;
        tree.SetNodes({{"ROOT", "凭证模板", 7},
                       {"detail-0", "标准模板", 2},
                       {"detail-5", "自定义模板(1)", 2},
                       {"detail-6", "自定义模板(2)", 2}});
        tree.resize(220, 300);
        tree.show();
        tree.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&tree));
        tree.setFocus();
        tree.SelectNode("detail-0");
    }

    QPoint At(const char* key) { return tree.visualItemRect(tree.FindNode(key)).center(); }
    void Click(const char* key) { QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, At(key)); }
    void DoubleClick(const char* key) {
        Click(key);
        QTest::mouseDClick(tree.viewport(), Qt::LeftButton, {}, At(key));
    }
    void DragOver(const char* key) {
        const QPoint at = At(key);
        QMouseEvent move(QEvent::MouseMove, at, tree.viewport()->mapToGlobal(at), Qt::NoButton,
                         Qt::LeftButton, {});
        QApplication::sendEvent(tree.viewport(), &move);
    }
    // The editor hands its text over once the key has been dealt with.
    void Key(Qt::Key key) {
        QTest::keyClick(Editor(), key);
        QApplication::processEvents();
    }
    // Until a click can be no half of a double-click any more.
    void LetTheClickStand() {
        bool over = false;
        QTimer::singleShot(QApplication::doubleClickInterval() + 50, &tree, [&over] { over = true; });
        ASSERT_TRUE(QTest::qWaitFor([&over] { return over; }));
    }
    QLineEdit* Editor() { return tree.findChild<QLineEdit*>("labelEditor"); }

    RecordedTreeActions actions;
    TemplateTree tree{actions};
};

TEST_F(TemplateTreeTest, ShowsTheRootExpandedWithTheTemplatesBelow) {
    ASSERT_EQ(tree.topLevelItemCount(), 1);
    const QTreeWidgetItem* root = tree.topLevelItem(0);
    EXPECT_EQ(root->text(0), "凭证模板");
    EXPECT_TRUE(root->isExpanded());
    ASSERT_EQ(root->childCount(), 3);
    EXPECT_EQ(root->child(1)->text(0), "自定义模板(1)");
    EXPECT_FALSE(root->icon(0).isNull());
    EXPECT_FALSE(root->child(0)->icon(0).isNull());
}

TEST_F(TemplateTreeTest, SelectingByTheProgramIsNoClick) {
    tree.SelectNode("detail-6");
    EXPECT_EQ(tree.SelectedKey(), "detail-6");
    EXPECT_TRUE(actions.clicks.empty());
}

TEST_F(TemplateTreeTest, AClickIsRaisedOnceAndAlsoOnTheSelectedNode) {
    Click("detail-5");
    EXPECT_EQ(actions.clicks, std::vector<std::string>{"detail-5"});
    EXPECT_EQ(tree.SelectedKey(), "detail-5");
    Click("detail-5");
    EXPECT_EQ(actions.clicks.size(), 2U);
}

TEST_F(TemplateTreeTest, APressThatIsReleasedElsewhereLightsAndOpensNothing) {
    QTest::mousePress(tree.viewport(), Qt::LeftButton, {}, At("detail-5"));
    EXPECT_EQ(tree.SelectedKey(), "detail-0") << "while the button is held";
    QTest::mouseRelease(tree.viewport(), Qt::LeftButton, {}, At("detail-6"));
    EXPECT_EQ(tree.SelectedKey(), "detail-0");
    EXPECT_TRUE(actions.clicks.empty());
    QTest::mousePress(tree.viewport(), Qt::LeftButton, {}, At("detail-5"));
    QTest::mouseRelease(tree.viewport(), Qt::LeftButton, {}, QPoint(200, 290));
    EXPECT_EQ(tree.SelectedKey(), "detail-0");
    EXPECT_EQ(tree.selectedItems(), QList<QTreeWidgetItem*>{tree.FindNode("detail-0")});
}

TEST_F(TemplateTreeTest, ADragAsksNothingAndTheNextClickCounts) {
    QTest::mousePress(tree.viewport(), Qt::LeftButton, {}, At("detail-5"));
    DragOver("detail-5");
    DragOver("detail-6");
    EXPECT_TRUE(actions.clicks.empty()) << "in the middle of a press";
    EXPECT_EQ(tree.SelectedKey(), "detail-0");
    QTest::mouseRelease(tree.viewport(), Qt::LeftButton, {}, At("detail-6"));
    EXPECT_TRUE(actions.clicks.empty());
    Click("detail-6");
    EXPECT_EQ(actions.clicks, std::vector<std::string>{"detail-6"});
    EXPECT_EQ(tree.SelectedKey(), "detail-6");
}

TEST_F(TemplateTreeTest, OtherButtonsLightAndOpenNothing) {
    for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton, Qt::BackButton}) {
        QTest::mouseClick(tree.viewport(), button, {}, At("detail-5"));
        QTest::mouseDClick(tree.viewport(), button, {}, At("detail-5"));
    }
    EXPECT_EQ(tree.SelectedKey(), "detail-0");
    EXPECT_EQ(tree.selectedItems(), QList<QTreeWidgetItem*>{tree.FindNode("detail-0")});
    EXPECT_TRUE(actions.clicks.empty());
    EXPECT_EQ(actions.doubleClicks, 0);
}

TEST_F(TemplateTreeTest, AButtonThatJoinsAnotherEndsNoClickOfIts) {
    QTest::mousePress(tree.viewport(), Qt::LeftButton, {}, At("detail-5"));
    QTest::mousePress(tree.viewport(), Qt::RightButton, {}, At("detail-5"));
    QTest::mouseRelease(tree.viewport(), Qt::RightButton, {}, At("detail-5"));
    EXPECT_TRUE(actions.clicks.empty());
    QTest::mouseRelease(tree.viewport(), Qt::LeftButton, {}, At("detail-5"));
    EXPECT_EQ(actions.clicks, std::vector<std::string>{"detail-5"});
}

TEST_F(TemplateTreeTest, ArrowKeysClickTheNodeTheyReach) {
    QTest::keyClick(&tree, Qt::Key_Down);
    QTest::keyClick(&tree, Qt::Key_Up);
    QTest::keyClick(&tree, Qt::Key_Up);
    EXPECT_EQ(actions.clicks, (std::vector<std::string>{"detail-5", "detail-0", "ROOT"}));
}

TEST_F(TemplateTreeTest, ADoubleClickEditsTheLabelAndEnterHandsItOver) {
    DoubleClick("detail-5");
    EXPECT_EQ(actions.doubleClicks, 1);
    ASSERT_NE(Editor(), nullptr);
    Editor()->setText("");
    QTest::keyClicks(Editor(), "Sales");
    Key(Qt::Key_Return);
    EXPECT_EQ(actions.labels, std::vector<std::string>{"Sales"});
    EXPECT_EQ(tree.FindNode("detail-5")->text(0), "Sales");
    EXPECT_EQ(actions.clicks.size(), 1U) << "the second press of a double-click is no click";
}

TEST_F(TemplateTreeTest, ARefusedLabelGoesBackToTheOldText) {
    actions.accepts = false;
    DoubleClick("detail-5");
    Editor()->selectAll();
    QTest::keyClicks(Editor(), "dup");
    Key(Qt::Key_Return);
    EXPECT_EQ(actions.labels, std::vector<std::string>{"dup"});
    EXPECT_EQ(tree.FindNode("detail-5")->text(0), "自定义模板(1)");
}

TEST_F(TemplateTreeTest, AnUntouchedLabelIsHandedOverOnEnterButNotOnEscapeOrOnLeaving) {
    DoubleClick("detail-5");
    Key(Qt::Key_Escape);
    EXPECT_TRUE(actions.labels.empty());
    DoubleClick("detail-5");
    ASSERT_NE(Editor(), nullptr);
    tree.EndLabelEdit();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(actions.labels.empty());
    DoubleClick("detail-5");
    ASSERT_NE(Editor(), nullptr);
    Key(Qt::Key_Return);
    EXPECT_EQ(actions.labels, std::vector<std::string>{"自定义模板(1)"});
}

TEST_F(TemplateTreeTest, EveryEndOfALabelIsToldOnceAsATextOrAsGivenUp) {
    const auto edit = [this] {
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);  // the editor before
        actions.givenUp = 0;
        actions.labels.clear();
        DoubleClick("detail-5");
        ASSERT_NE(Editor(), nullptr);
    };
    edit();
    QTest::keyClicks(Editor(), "x");
    Key(Qt::Key_Escape);
    EXPECT_EQ(actions.givenUp, 1);
    EXPECT_TRUE(actions.labels.empty());
    edit();
    QTest::keyClicks(Editor(), "x");
    Key(Qt::Key_Return);
    EXPECT_EQ(actions.givenUp, 0);
    EXPECT_EQ(actions.labels.size(), 1U);
    edit();
    Click("detail-6");  // untouched
    EXPECT_EQ(actions.givenUp, 1);
    EXPECT_TRUE(actions.labels.empty());
    edit();
    tree.RemoveNode("detail-5");
    EXPECT_EQ(actions.givenUp, 1);
    EXPECT_FALSE(tree.IsEditingLabel());
    tree.AddNode({"detail-5", "自定义模板(1)", 2});
    edit();
    tree.SetNodes({{"ROOT", "凭证模板", 7}, {"detail-5", "自定义模板(1)", 2}});
    EXPECT_EQ(actions.givenUp, 1);
    EXPECT_FALSE(tree.IsEditingLabel());
}

TEST_F(TemplateTreeTest, ALabelThatMayNotBeEditedIsNot) {
    actions.mayEdit = false;
    DoubleClick("detail-0");
    EXPECT_EQ(Editor(), nullptr);
    EXPECT_FALSE(tree.IsEditingLabel());
}

TEST_F(TemplateTreeTest, WhileEditingIsAutomaticAClickOnTheSelectedNodeEditsIt) {
    actions.automatic = true;
    Click("detail-5");
    EXPECT_FALSE(tree.IsEditingLabel());
    Click("detail-5");
    EXPECT_TRUE(QTest::qWaitFor([&] { return tree.IsEditingLabel(); }, 3000));
}

TEST_F(TemplateTreeTest, NoLabelOpensLateOverWhatTheUserDoesByThen) {
    actions.automatic = true;
    Click("detail-5");
    Click("detail-5");
    tree.clearFocus();
    LetTheClickStand();
    EXPECT_FALSE(tree.IsEditingLabel()) << "the keyboard is elsewhere";
    tree.setFocus();
    Click("detail-5");
    tree.SelectNode("detail-6");
    LetTheClickStand();
    EXPECT_FALSE(tree.IsEditingLabel()) << "another node is lit";
    Click("detail-6");
    actions.automatic = false;
    LetTheClickStand();
    EXPECT_FALSE(tree.IsEditingLabel()) << "labels are edited no more";
}

TEST_F(TemplateTreeTest, F2RenamesAndDeleteAsksForDeletion) {
    tree.SelectNode("detail-6");
    QTest::keyClick(&tree, Qt::Key_Delete);
    EXPECT_EQ(actions.deletes, 1);
    QTest::keyClick(&tree, Qt::Key_F2);
    EXPECT_EQ(actions.doubleClicks, 1);
    EXPECT_TRUE(tree.IsEditingLabel());
}

TEST_F(TemplateTreeTest, ALitNodeWithUnusableNumbersIsRedAsWell) {
    const auto redPixels = [this] {
        const QImage picture =
            tree.viewport()->grab(tree.visualItemRect(tree.FindNode("detail-0"))).toImage();
        int red = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                const QColor pixel = picture.pixelColor(x, y);
                if (pixel.red() > pixel.green() + 60 && pixel.red() > pixel.blue() + 60) ++red;
            }
        }
        return red;
    };
    constexpr int kSeen = 100;
    ASSERT_EQ(tree.SelectedKey(), "detail-0");
    EXPECT_LT(redPixels(), kSeen);
    tree.SetUnusable({"detail-0"});
    EXPECT_GT(redPixels(), kSeen) << "while the tree has the focus";
    tree.clearFocus();
    EXPECT_GT(redPixels(), kSeen);
    tree.SetUnusable({});
    EXPECT_LT(redPixels(), kSeen);
}

TEST_F(TemplateTreeTest, NodesComeGoAndChangeByKey) {
    tree.AddNode({"detail-9", "新", 2});
    ASSERT_NE(tree.FindNode("detail-9"), nullptr);
    tree.SetNodeText("detail-9", "改");
    EXPECT_EQ(tree.FindNode("detail-9")->text(0), "改");
    tree.SelectNode("detail-9");
    tree.RemoveNode("detail-9");
    EXPECT_EQ(tree.FindNode("detail-9"), nullptr);
    EXPECT_TRUE(actions.clicks.empty());
}

TEST_F(TemplateTreeTest, TheMenuSelectsItsNodeFirstAndRunsWhatIsChosen) {
    int run = 0;
    actions.menu = {{"first", "甲", [] {}}, {"second", "乙", [&] { ++run; }}};
    QStringList texts;
    std::string litBelowTheMenu;
    QTimer::singleShot(0, &tree, [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr);
        EXPECT_EQ(menu->objectName(), "treeMenu");
        litBelowTheMenu = tree.SelectedKey();
        for (const QAction* action : menu->actions())
            texts << action->text();
        menu->setActiveAction(menu->actions().at(1));
        QTest::keyClick(menu, Qt::Key_Return);
    });
    QTest::mouseClick(tree.viewport(), Qt::RightButton, {}, At("detail-6"));
    QContextMenuEvent event(QContextMenuEvent::Mouse, At("detail-6"),
                            tree.viewport()->mapToGlobal(At("detail-6")));
    QApplication::sendEvent(tree.viewport(), &event);
    EXPECT_EQ(texts, (QStringList{"甲", "乙"}));
    EXPECT_EQ(run, 1);
    EXPECT_EQ(litBelowTheMenu, "detail-6");
    EXPECT_EQ(actions.clicks, std::vector<std::string>{"detail-6"});
}

TEST_F(TemplateTreeTest, TheMenuOfTheLitNodeIsNoClick) {
    actions.menu = {{"first", "甲", [] {}}};
    for (const auto reason : {QContextMenuEvent::Mouse, QContextMenuEvent::Keyboard}) {
        bool shown = false;
        QTimer::singleShot(0, &tree, [&] {
            QWidget* menu = QApplication::activePopupWidget();
            ASSERT_NE(menu, nullptr);
            shown = true;
            menu->close();
        });
        // Asked for by the keyboard it is the lit node's, wherever the mouse is.
        const QPoint at = At(reason == QContextMenuEvent::Mouse ? "detail-0" : "detail-6");
        QContextMenuEvent event(reason, at, tree.viewport()->mapToGlobal(at));
        QApplication::sendEvent(tree.viewport(), &event);
        EXPECT_TRUE(shown);
    }
    EXPECT_TRUE(actions.clicks.empty());
    EXPECT_EQ(tree.SelectedKey(), "detail-0");
}

TEST_F(TemplateTreeTest, NamesArePlainTextInTooltips) {
    tree.AddNode({"detail-9", "<b>甲</b>", 2});
    EXPECT_EQ(tree.FindNode("detail-9")->toolTip(0), "<p>&lt;b&gt;甲&lt;/b&gt;</p>");
    tree.SetNodeText("detail-9", "<img src=x>");
    EXPECT_EQ(tree.FindNode("detail-9")->toolTip(0), "<p>&lt;img src=x&gt;</p>");
    tree.SetNodeText("detail-9", "a < b");
    EXPECT_EQ(tree.FindNode("detail-9")->toolTip(0), "a < b");
}

TEST_F(TemplateTreeTest, WithoutItemsThereIsNoMenu) {
    QContextMenuEvent event(QContextMenuEvent::Mouse, At("detail-6"),
                            tree.viewport()->mapToGlobal(At("detail-6")));
    QApplication::sendEvent(tree.viewport(), &event);
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
}

TEST_F(TemplateTreeTest, EnterInTheFilterOpensTheFirstThatFitsAndEscapeEndsItInTheTreeToo) {
    actions.offersFilter = true;
    actions.fitting = {"ROOT", "detail-0", "detail-6"};
    TreeFilter filter(actions, tree, &tree);
    filter.NodesChanged();
    ASSERT_TRUE(filter.TakeKeyboard());
    QTest::keyClicks(&filter, "2");
    ASSERT_TRUE(tree.FindNode("detail-5")->isHidden());
    QTest::keyClick(&filter, Qt::Key_Return);
    EXPECT_EQ(tree.SelectedKey(), "detail-6");
    EXPECT_EQ(actions.clicks, std::vector<std::string>{"detail-6"});
    EXPECT_TRUE(tree.hasFocus());
    // The open template is one of those that are meant.
    filter.TakeKeyboard();
    QTest::keyClick(&filter, Qt::Key_Return);
    EXPECT_EQ(actions.clicks.size(), 1U);
    QTest::keyClick(&tree, Qt::Key_Escape);
    EXPECT_EQ(filter.text(), "");
    EXPECT_FALSE(tree.FindNode("detail-5")->isHidden());
}

TEST(TemplateTreeOpening, ShowsTheRootAboveTheLitNode) {
    RecordedTreeActions actions;
    TemplateTree tree(actions);
    std::vector<center::TreeNode> nodes = {{"ROOT", "凭证模板", 7}};
    for (int i = 0; i < 40; ++i)
        nodes.push_back({"detail-" + std::to_string(i), "模板" + std::to_string(i), 2});
    tree.resize(100, 20);
    tree.SetNodes(nodes);
    tree.SelectNode("detail-0");
    tree.resize(220, 300);
    tree.show();
    EXPECT_EQ(tree.itemAt(20, 5), tree.FindNode("ROOT"));
    tree.hide();
    tree.SelectNode("detail-30");
    tree.show();
    EXPECT_TRUE(tree.viewport()->rect().contains(tree.visualItemRect(tree.FindNode("detail-30")).center()));
}

}  // namespace
}  // namespace vicenter::ui
