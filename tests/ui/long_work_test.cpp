#include "ui/run/long_work.h"

#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

#include "automation/error.h"
#include "platform/ado/account_set/account_set_provider.h"
#include "tests/fakes/fake_surroundings.h"

namespace vicenter::ui {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds kLong{1500};

LongWorkBox* ShownBox() {
    for (QWidget* window : QApplication::topLevelWidgets()) {
        auto* box = qobject_cast<LongWorkBox*>(window);
        if (box != nullptr && box->isVisible()) return box;
    }
    return nullptr;
}

class PaintedWindow : public QWidget {
  public:
    int painted = 0;

  protected:
    void paintEvent(QPaintEvent*) override { ++painted; }
};

class LongWorkTest : public testing::Test {
  protected:
    void SetUp() override {
        window_.resize(300, 200);
        window_.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window_));
    }

    PaintedWindow window_;
    QtLongWork work_;
};

TEST_F(LongWorkTest, ShowsNothingWithinTheFirstSecond) {
    EXPECT_TRUE(work_.GoOn(milliseconds(900)));
    EXPECT_EQ(ShownBox(), nullptr);
    work_.Done();
}

TEST_F(LongWorkTest, ShowsNothingWhereNobodyLooks) {
    window_.hide();
    EXPECT_TRUE(work_.GoOn(kLong));
    EXPECT_EQ(ShownBox(), nullptr);
    work_.Done();
}

TEST_F(LongWorkTest, CancelIsTakenAndTheBoxGoesWithTheWork) {
    EXPECT_TRUE(work_.GoOn(kLong));
    LongWorkBox* box = ShownBox();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->windowTitle(), "信息提示");
    EXPECT_TRUE(box->isModal());
    EXPECT_TRUE(work_.GoOn(kLong));
    auto* cancel = box->findChild<QPushButton*>("cmdCancelLongWork");
    ASSERT_NE(cancel, nullptr);
    QTest::mouseClick(cancel, Qt::LeftButton);
    EXPECT_FALSE(work_.GoOn(kLong));
    work_.Done();
    EXPECT_EQ(ShownBox(), nullptr);
    // The next work begins afresh.
    EXPECT_TRUE(work_.GoOn(kLong));
    work_.Done();
}

TEST_F(LongWorkTest, WhatIsPressedAheadForAMessageCancelsNothing) {
    EXPECT_TRUE(work_.GoOn(kLong));
    LongWorkBox* box = ShownBox();
    ASSERT_NE(box, nullptr);
    ASSERT_TRUE(QTest::qWaitForWindowActive(box));
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space, Qt::Key_Tab, Qt::Key_Return}) {
        QWidget* focused = QApplication::focusWidget();
        QTest::keyClick(focused != nullptr ? focused : box, key);
        EXPECT_TRUE(work_.GoOn(kLong)) << key;
    }
    EXPECT_TRUE(box->isVisible());
    work_.Done();
}

TEST_F(LongWorkTest, EscapeCancelsToo) {
    EXPECT_TRUE(work_.GoOn(kLong));
    ASSERT_NE(ShownBox(), nullptr);
    QTest::keyClick(ShownBox(), Qt::Key_Escape);
    EXPECT_FALSE(work_.GoOn(kLong));
    work_.Done();
}

TEST_F(LongWorkTest, WindowsArePaintedWhileTheirTimersWait) {
    int fired = 0;
    QTimer once;
    once.setSingleShot(true);
    QObject::connect(&once, &QTimer::timeout, &window_, [&] { ++fired; });
    once.start(0);
    QTimer repeated;
    repeated.setInterval(0);
    QObject::connect(&repeated, &QTimer::timeout, &window_, [&] { ++fired; });
    repeated.start();
    const int before = window_.painted;
    window_.update();
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(work_.GoOn(kLong));
    EXPECT_GT(window_.painted, before);
    EXPECT_EQ(fired, 0);
    work_.Done();
    QCoreApplication::processEvents();
    EXPECT_GE(fired, 2);
}

TEST_F(LongWorkTest, WorkWithinWorkPollsNothing) {
    // Whatever a repainted window asks for is done at once.
    class Asking : public QWidget {
      public:
        explicit Asking(QtLongWork& work) : work_(work) {}
        int asked = 0;

      protected:
        void paintEvent(QPaintEvent*) override {
            ++asked;
            EXPECT_TRUE(work_.GoOn(kLong));
            work_.Done();
        }

      private:
        QtLongWork& work_;
    };
    Asking asking(work_);
    asking.show();
    for (int i = 0; i < 5; ++i)
        EXPECT_TRUE(work_.GoOn(kLong));
    EXPECT_GT(asking.asked, 0);
    EXPECT_NE(ShownBox(), nullptr);
    work_.Done();
}

// Presses Cancel as soon as the box is shown.
class Impatient : public QObject {
  public:
    Impatient() { qApp->installEventFilter(this); }
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Show && watched->objectName() == "longWork") {
            QMetaObject::invokeMethod(watched->findChild<QPushButton*>("cmdCancelLongWork"), "click",
                                      Qt::QueuedConnection);
        }
        return false;
    }
};

TEST_F(LongWorkTest, AnEndlessStatementIsCancelledFromItsBox) {
    ado::RegisterAccountSetProvider();
    const fakes::TemporaryFolder folder;
    system::Surroundings watched = system::Surroundings::Current();
    watched.longWork = std::make_shared<QtLongWork>();
    const system::SurroundingsScope scope(watched);
    const ado::ConnectionRef connection =
        ado::OpenConnection("Provider=VelaAccountSet;Create=yes;Pooling=no;Command Timeout=0;Data Source=" +
                            folder.File("long_work.vas"));
    const Impatient user;
    try {
        connection->Execute("create table t (a int) declare @i int set @i = 0 while 1 = 1 set @i = 1 - @i");
        FAIL() << "it has no end";
    } catch (const automation::Error& error) {
        EXPECT_EQ(error.Number(), ado::error_number::kOperationCancelled);
        EXPECT_EQ(error.Text(), "The query has been canceled by the user.");
    }
    EXPECT_EQ(ShownBox(), nullptr);
    EXPECT_NO_THROW(connection->Execute("create table t (a int)"));
    connection->Close();
}

}  // namespace
}  // namespace vicenter::ui
