#include "ui/panels/progress_frame.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

namespace vicenter::ui {
namespace {

class ProgressFrameTest : public ::testing::Test {
  protected:
    ProgressFrameTest() {
        parent.resize(1000, 600);
        parent.show();
        frame.SetPlace({600, 250, 320, 67});
    }
    // Everything that it shows lies within it, as large as it has to be.
    void ExpectNothingCutOff() {
        for (const QWidget* child : frame.findChildren<QWidget*>()) {
            if (!child->isVisible()) continue;
            EXPECT_TRUE(frame.rect().contains(child->geometry())) << child->objectName().toStdString();
            EXPECT_GE(child->height(), child->heightForWidth(child->width()))
                << child->objectName().toStdString();
        }
        EXPECT_TRUE(parent.rect().contains(frame.geometry()));
    }

    QWidget parent;
    ProgressFrame frame{&parent};
};

TEST_F(ProgressFrameTest, StandsAtItsPlaceInItsSizeWhileThatIsEnough) {
    frame.SetState({true, "引入完毕...", 0, 0});
    EXPECT_EQ(frame.geometry().topLeft(), QPoint(600, 250));
    EXPECT_EQ(frame.width(), 320);
    ExpectNothingCutOff();
}

TEST_F(ProgressFrameTest, GrowsWithItsTextTheCountAndTheButton) {
    frame.SetState({true, "正在执行凭证模板引入，请稍后...\r\n第二行\r\n第三行", 12345, 67890});
    ExpectNothingCutOff();
    EXPECT_TRUE(frame.findChild<QPushButton*>("cmdCancelProgress")->isVisible());
    std::string name;
    for (int i = 0; i < 200; ++i)
        name += "很长";
    frame.SetState({true, name, 1, 2});
    ExpectNothingCutOff();
}

TEST_F(ProgressFrameTest, StaysInAWindowThatHasBecomeSmaller) {
    parent.resize(700, 280);
    frame.SetState({true, "正在执行凭证模板引入，请稍后...", 1, 2});
    ExpectNothingCutOff();
}

TEST_F(ProgressFrameTest, TheKeyboardStaysWhereItWasAndEscCancels) {
    QLineEdit first(&parent);
    QLineEdit field(&parent);
    first.show();
    field.show();
    parent.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&parent));
    field.setFocus();
    ASSERT_TRUE(field.hasFocus());
    frame.SetState({true, "正在执行凭证模板引出，请稍后...", 1, 2});
    EXPECT_FALSE(frame.PollCancelled());
    EXPECT_TRUE(field.hasFocus());
    for (const int key : {Qt::Key_Return, Qt::Key_Space, Qt::Key_Escape}) {
        QApplication::postEvent(&parent,
                                new QKeyEvent(QEvent::KeyPress, key, Qt::NoModifier, QStringLiteral("x")));
        EXPECT_EQ(frame.PollCancelled(), key == Qt::Key_Escape);
    }
    frame.SetState({});
    EXPECT_TRUE(field.hasFocus());
    EXPECT_EQ(field.text(), "");
}

}  // namespace
}  // namespace vicenter::ui
