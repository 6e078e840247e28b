// What is not saved shows in the title and in the tree, until it is saved, given up or undone.

#include "tests/ui/window_fixture.h"

namespace vicenter::ui {
namespace {

class ModifiedSignTest : public WindowTest {
  protected:
    void TypeRemark() {
        ClickCell(1, 2);
        Type("x");
        Key(Qt::Key_Return);
    }
    void ExpectModified(const char* key, bool modified) {
        EXPECT_EQ(window->windowTitle(), modified ? "凭证模板 * - 用户 16394" : "凭证模板 - 用户 16394");
        for (const char* node : {"ROOT", "detail-0", "detail-5", "detail-6"})
            EXPECT_EQ(window->Tree().ShowsModified(node), modified && std::string(node) == key) << node;
    }
};

TEST_F(ModifiedSignTest, ComesWithTheFirstChangeAndGoesWhenItIsUndone) {
    Open();
    ExpectModified("detail-0", false);
    TypeRemark();
    ExpectModified("detail-0", true);
    Key(Qt::Key_Z, Qt::ControlModifier);
    ExpectModified("detail-0", false);
    EXPECT_FALSE(window->Presenter().IsDirty());
    Key(Qt::Key_Y, Qt::ControlModifier);
    ExpectModified("detail-0", true);
    Key(Qt::Key_Z, Qt::ControlModifier);
    ClickNode("detail-5");
    EXPECT_THAT(Messages(), IsEmpty()) << "nothing is left to be saved";
    ExpectModified("detail-5", false);
}

TEST_F(ModifiedSignTest, GoesWithASaveAndWithChangesThatAreGivenUp) {
    Open();
    TypeRemark();
    ClickTool("mnuSave");
    ExpectModified("detail-0", false);
    TypeRemark();
    ledger->surroundings.messageBoxes->answers = {MessageResult::No};
    ClickNode("detail-5");
    ExpectModified("detail-5", false);
}

TEST_F(ModifiedSignTest, IsNoPartOfTheName) {
    Open();
    ClickNode("detail-5");
    TypeRemark();
    ExpectModified("detail-5", true);
    EXPECT_EQ(window->Tree().FindNode("detail-5")->text(0), "自定义模板(1)");
    EXPECT_EQ(window->findChild<QLineEdit*>("itName")->text(), "自定义模板(1)");
}

TEST_F(ModifiedSignTest, IsPaintedBehindTheName) {
    Open();
    QTreeWidget& tree = window->Tree();
    const auto picture = [&] {
        const QRect row = tree.visualItemRect(window->Tree().FindNode("detail-0"));
        return tree.viewport()->grab(row).toImage();
    };
    Grid().setFocus();
    const QImage before = picture();
    TypeRemark();
    EXPECT_NE(picture(), before);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(picture(), before);
}

}  // namespace
}  // namespace vicenter::ui
