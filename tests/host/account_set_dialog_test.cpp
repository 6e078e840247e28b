// The dialog that opens another account set, by real events.

#include "host/window/account_set_dialog.h"

#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/system/files.h"
#include "tests/fakes/fake_surroundings.h"
#include "tests/host/demo_set.h"

namespace vicenter::host {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;

class AccountSetDialogTest : public ::testing::Test {
  protected:
    template <class Widget>
    static Widget& Child(QDialog& dialog, const char* name) {
        return *dialog.findChild<Widget*>(QString::fromLatin1(name));
    }

    fakes::FakeSurroundings surroundings;
    test::TestFolder folder;
    std::string file = test::CopySet(folder);
};

TEST_F(AccountSetDialogTest, ShowsTheLastSetWithItsUsersAndOpensItForTheChosenOne) {
    AccountSetChoice::Remember(folder.Path(), file);
    AccountSetChoice choice(folder.Path());
    AccountSetDialog dialog(choice);
    dialog.show();
    auto& users = Child<QListWidget>(dialog, "lstUsers");
    ASSERT_EQ(users.count(), 3);
    EXPECT_EQ(users.item(1)->text().toStdString(), "2　陈静宜（会计）");
    users.setFocus();
    QTest::keyClick(&users, Qt::Key_Down);
    QTest::mouseClick(&Child<QPushButton>(dialog, "cmdOK"), Qt::LeftButton);
    EXPECT_EQ(dialog.result(), QDialog::Accepted);
    EXPECT_THAT(surroundings.processes->started, ElementsAre(EndsWith(file + "\" --user 2 window")));
}

TEST_F(AccountSetDialogTest, AFilesNameCannotTurnTheDirectionOfText) {
    const std::string turned = folder.Path("茶\u202Esav.vas");
    std::filesystem::copy_file(system::PathFromUtf8(file), system::PathFromUtf8(turned));
    AccountSetChoice::Remember(folder.Path(), turned);
    AccountSetChoice choice(folder.Path());
    AccountSetDialog dialog(choice);
    EXPECT_TRUE(
        Child<QListWidget>(dialog, "lstFiles").item(0)->text().endsWith(QStringLiteral("茶□sav.vas")));
    EXPECT_EQ(Child<QListWidget>(dialog, "lstUsers").count(), 3);
}

TEST_F(AccountSetDialogTest, AFileFromElsewhereIsBrowsedForAndOneThatIsNoneSaysWhy) {
    AccountSetChoice choice(folder.Path());
    AccountSetDialog dialog(choice);
    dialog.show();
    auto& open = Child<QPushButton>(dialog, "cmdOK");
    EXPECT_FALSE(open.isEnabled());
    surroundings.fileDialogs->choices.push_back(file);
    QTest::mouseClick(&Child<QPushButton>(dialog, "cmdBrowse"), Qt::LeftButton);
    EXPECT_TRUE(open.isEnabled());
    const std::string other = folder.Path("no.vas");
    std::ofstream(other) << "x";
    surroundings.fileDialogs->choices.push_back(other);
    QTest::mouseClick(&Child<QPushButton>(dialog, "cmdBrowse"), Qt::LeftButton);
    EXPECT_FALSE(open.isEnabled());
    EXPECT_FALSE(Child<QLabel>(dialog, "lblNote").text().isEmpty());
}

TEST_F(AccountSetDialogTest, AWindowThatCannotBeOpenedLeavesTheDialogWithTheReason) {
    AccountSetChoice::Remember(folder.Path(), file);
    AccountSetChoice choice(folder.Path());
    AccountSetDialog dialog(choice);
    dialog.show();
    surroundings.processes->startError = 53;
    QTest::mouseClick(&Child<QPushButton>(dialog, "cmdOK"), Qt::LeftButton);
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_TRUE(Child<QLabel>(dialog, "lblNote").text().startsWith(QStringLiteral("窗口不能打开：")));
}

}  // namespace
}  // namespace vicenter::host
