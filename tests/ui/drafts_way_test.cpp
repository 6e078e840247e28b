// The window, real keys and a real account set: what was typed and not saved is there again after the
// window's frame was closed, and what a save could not store is one key away.

#include <QCloseEvent>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <filesystem>
#include <fstream>

#include "platform/system/files.h"
#include "tests/ui/demo_set_fixture.h"
#include "tests/ui/rest.h"

namespace vicenter::ui {
namespace {

namespace fs = std::filesystem;
using system::MessageResult;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class DraftsWay : public DemoSetTest {
  protected:
    std::vector<std::string> Drafts() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(system::PathFromUtf8(file).parent_path())) {
            const std::string name = system::PathToUtf8(entry.path().filename());
            if (name.ends_with(".draft")) names.push_back(name);
        }
        return names;
    }
    void OpenAndTell() {
        Open();
        QApplication::processEvents();
    }
    void TypeRemark(const char* text) {
        ClickCell(1, column::kExplanation);
        Type(text);
        Key(Qt::Key_Return);
    }
    // As the window's manager asks for it.
    void CloseTheFrame() {
        QCloseEvent asked;
        QSpontaneKeyEvent::setSpontaneous(&asked);
        qApp->notify(window, &asked);
    }
    QString Hint() { return window->findChild<QLabel*>(QStringLiteral("lblHint"))->text(); }
};

TEST_F(DraftsWay, WhatIsTypedIsKeptBesideTheAccountSetWhileTheUserRests) {
    OpenAndTell();
    ClickNode("detail-1");
    TypeRemark("mine");
    EXPECT_THAT(Drafts(), IsEmpty());
    Rest(*window, "draftTimer");
    ASSERT_EQ(Drafts().size(), 1U);
    EXPECT_THAT(Drafts()[0], HasSubstr("set.vas-1-1-"));
    ClickTool("mnuSave");
    EXPECT_THAT(Drafts(), IsEmpty());
    EXPECT_EQ(Number("select count(*) as n from t_VchTemplateEntry where FID = 1 and FExp = 'mine'"), 1);
}

TEST_F(DraftsWay, WhatStandsInAnEditorIsKeptAndGoesWhenItIsGivenUpThere) {
    OpenAndTell();
    ClickNode("detail-1");
    ClickCell(2, column::kExplanation);
    Type("half");
    const auto draft = [this] {
        std::ifstream in(system::PathFromUtf8(file).parent_path() / Drafts().at(0), std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    Rest(*window, "draftTimer");
    ASSERT_EQ(Drafts().size(), 1U);
    EXPECT_THAT(draft(), HasSubstr("half"));
    EXPECT_TRUE(window->Grid().IsEditing());
    EXPECT_FALSE(window->Presenter().IsDirty());
    Key(Qt::Key_Escape);
    Rest(*window, "draftTimer");
    EXPECT_THAT(Drafts(), IsEmpty());
    // Taken, it is one of the cells.
    Type("whole");
    Key(Qt::Key_Return);
    Rest(*window, "draftTimer");
    ASSERT_EQ(Drafts().size(), 1U);
    EXPECT_THAT(draft(), HasSubstr("whole"));
    EXPECT_THAT(draft(), Not(HasSubstr("half")));
}

TEST_F(DraftsWay, AWindowClosedByItsFrameLeavesADraftThatTheNextOneOffers) {
    OpenAndTell();
    ClickNode("detail-1");
    TypeRemark("mine");
    // Still in its editor when the frame is closed.
    ClickCell(2, column::kExplanation);
    Type("second");
    TakeMessages();
    Close();
    EXPECT_THAT(TakeMessages(), IsEmpty());
    ASSERT_EQ(Drafts().size(), 1U);
    surroundings.messageBoxes->answers = {MessageResult::Yes};
    OpenAndTell();
    const std::vector<std::string> messages = TakeMessages();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_THAT(messages[0], HasSubstr("模板 日常费用 有上次未保存的修改"));
    EXPECT_EQ(window->Presenter().TemplateId(), "1");
    EXPECT_EQ(Text(1, column::kExplanation), "mine");
    EXPECT_EQ(Text(2, column::kExplanation), "second");
    EXPECT_EQ(window->Presenter().RowCount(), 11);
    ClickTool("mnuSave");
    EXPECT_THAT(TakeMessages(), ElementsAre(HasSubstr("模板 日常费用 保存成功")));
    EXPECT_EQ(Number("select count(*) as n from t_VchTemplateEntry where FID = 1 and FExp = 'second'"), 1);
    EXPECT_THAT(Drafts(), IsEmpty());
}

#ifndef _WIN32  // where links take rights of their own and a folder stays that has an open file
TEST_F(DraftsWay, ADraftIsThatOfTheFileByWhateverLinkItIsOpened) {
    const std::string itself = file;
    file = folder.Path("link.vas");
    fs::create_symlink(system::PathFromUtf8(itself), system::PathFromUtf8(file));
    Enter(1);
    OpenAndTell();
    TypeRemark("mine");
    Close();
    ASSERT_EQ(Drafts().size(), 1U);
    file = itself;
    Enter(1);
    TakeMessages();
    surroundings.messageBoxes->answers = {MessageResult::Yes};
    OpenAndTell();
    EXPECT_THAT(TakeMessages(), ElementsAre(HasSubstr("有上次未保存的修改")));
    EXPECT_EQ(Text(1, column::kExplanation), "mine");
}

TEST_F(DraftsWay, TheFrameStaysWhenWhatWasTypedCanBeKeptNowhere) {
    for (const bool rested : {false, true}) {
        SCOPED_TRACE(rested);
        OpenAndTell();
        ClickNode("detail-1");
        TypeRemark("mine");
        if (rested) Rest(*window, "draftTimer");
        // Files stand where the account set's folder and the user's were.
        const fs::path place = system::PathFromUtf8(file).parent_path();
        const fs::path aside = place.string() + ".aside";
        fs::rename(place, aside);
        std::ofstream(place) << "no folder";
        surroundings.folders->data = system::PathToUtf8(place);
        TakeMessages();
        surroundings.messageBoxes->answers = {MessageResult::No};
        CloseTheFrame();
        ASSERT_TRUE(window && window->isVisible());
        EXPECT_THAT(TakeMessages(), ElementsAre(HasSubstr("未能保留为草稿")));
        fs::remove(place);
        fs::rename(aside, place);
        CloseTheFrame();
        ASSERT_EQ(Drafts().size(), 1U);
        Close();
        fs::remove(place / Drafts()[0]);
    }
}

// By somebody who tidies up files that he does not know.
TEST_F(DraftsWay, ADraftThatIsDeletedWhileItsWindowIsOpenIsLeftAgainByTheFrame) {
    OpenAndTell();
    ClickNode("detail-1");
    TypeRemark("mine");
    Rest(*window, "draftTimer");
    ASSERT_EQ(Drafts().size(), 1U);
    fs::remove(system::PathFromUtf8(file).parent_path() / Drafts()[0]);
    CloseTheFrame();
    Close();
    ASSERT_EQ(Drafts().size(), 1U);
    surroundings.messageBoxes->answers = {MessageResult::Yes};
    OpenAndTell();
    EXPECT_EQ(Text(1, column::kExplanation), "mine");
}
#endif

TEST_F(DraftsWay, ADraftOfATemplateThatWasRenamedElsewhereIsRestoredIntoIt) {
    OpenAndTell();
    ClickNode("detail-1");
    TypeRemark("mine");
    Close();
    ASSERT_EQ(Drafts().size(), 1U);
    ado::OpenConnection(host::FileConnectString(file))
        ->Execute("update t_VchTemplate set FName = '办公费用' where FID = 1");
    const std::int64_t before = Number("select count(*) as n from t_VchTemplate");
    surroundings.messageBoxes->answers = {MessageResult::Yes};
    OpenAndTell();
    const std::vector<std::string> messages = TakeMessages();
    ASSERT_EQ(messages.size(), 1U);
    EXPECT_THAT(messages[0], HasSubstr("该模板已改名为 办公费用，是否恢复到改名后的模板？"));
    EXPECT_EQ(window->Presenter().TemplateId(), "1");
    ClickTool("mnuSave");
    EXPECT_THAT(TakeMessages(), ElementsAre(HasSubstr("模板 办公费用 保存成功")));
    EXPECT_EQ(Number("select count(*) as n from t_VchTemplateEntry where FID = 1 and FExp = 'mine'"), 1);
    EXPECT_EQ(Number("select count(*) as n from t_VchTemplate"), before);
}

TEST_F(DraftsWay, TheNodeThatIsClickedIsLitAndOpenAlthoughTheSaveBecameANewTemplate) {
    OpenAndTell();
    ClickNode("detail-1");
    TypeRemark("mine");
    ado::OpenConnection(host::FileConnectString(file))
        ->Execute("update t_VchTemplateEntry set FRemark = 'theirs' where FID = 1 and FEntryID = 2");
    surroundings.messageBoxes->answers = {MessageResult::Yes, MessageResult::Yes};
    ClickNode("detail-2");
    EXPECT_EQ(window->Presenter().TemplateId(), "2");
    EXPECT_EQ(window->Tree().currentItem(), window->Tree().FindNode("detail-2"));
    EXPECT_EQ(window->Presenter().TemplateName(), "销售与收款");
    TakeMessages();
    surroundings.messageBoxes->answers = {MessageResult::No};
    window->Tree().setFocus();
    ClickTool("mnuDel");
    EXPECT_THAT(TakeMessages(), ElementsAre(HasSubstr("凭证模板：销售与收款")));
    EXPECT_EQ(Number("select count(*) as n from t_VchTemplateEntry where FExp = 'mine'"), 1);
}

TEST_F(DraftsWay, ASaveThatIsRefusedIsTakenBackByOneKey) {
    OpenAndTell();
    ClickNode("detail-1");
    TypeRemark("mine");
    // Longer than its column, as a look-up may bring it.
    window->Presenter().Grid().SetText(2, column::kExplanation, std::string(256, 'x'));
    TakeMessages();
    ClickTool("mnuSave");
    const std::vector<std::string> messages = TakeMessages();
    ASSERT_EQ(messages.size(), 2U);
    EXPECT_THAT(messages[0], HasSubstr("truncated"));
    EXPECT_EQ(Text(1, column::kExplanation), "报销办公费");
    EXPECT_EQ(Hint(), QStringLiteral("保存被拒绝，按 Ctrl+Z 找回保存前的分录"));
    EXPECT_EQ(Drafts().size(), 1U);
    window->Grid().setFocus();
    QTest::keyClick(&window->Grid(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Text(1, column::kExplanation), "mine");
    EXPECT_EQ(Hint(), QString());
    EXPECT_TRUE(window->Presenter().IsDirty());
}

// The grid shows what is stored then; what goes under the other name is what was typed.
TEST_F(DraftsWay, SavingUnderAnotherNameAfterARefusalTakesWhatWasTyped) {
    OpenAndTell();
    ClickNode("detail-1");
    TypeRemark("mine");
    window->Presenter().Grid().SetText(2, column::kExplanation, std::string(256, 'x'));
    ClickTool("mnuSave");
    ASSERT_EQ(Text(1, column::kExplanation), "报销办公费");
    const auto saveAs = [this] {
        TakeMessages();
        QTimer::singleShot(0, window, [] {
            QWidget* dialog = QApplication::activeModalWidget();
            ASSERT_NE(dialog, nullptr);
            auto* name = dialog->findChild<QLineEdit*>(QStringLiteral("name"));
            name->selectAll();
            QTest::keyClicks(name, QStringLiteral("typed"));
            QTest::mouseClick(dialog->findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
        });
        window->Grid().setFocus();
        QTest::keyClick(&window->Grid(), Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
    };
    saveAs();
    EXPECT_EQ(TakeMessages().back(), "模板 typed 保存失败！");
    EXPECT_EQ(Number("select count(*) as n from t_VchTemplate where FName = 'typed'"), 0);
    EXPECT_EQ(Text(1, column::kExplanation), "mine");
    window->Presenter().Grid().SetText(2, column::kExplanation, "short");
    saveAs();
    EXPECT_THAT(TakeMessages().back(), HasSubstr("模板 typed 保存成功"));
    EXPECT_EQ(Number("select count(*) as n from t_VchTemplateEntry where FExp = 'mine' and FID > 1"), 1);
    EXPECT_EQ(Number("select count(*) as n from t_VchTemplateEntry where FExp = 'mine' and FID = 1"), 0);
}

TEST_F(DraftsWay, ATemplateDeletedBesideAnOpenWindowIsToldAndLeavesTheTree) {
    OpenAndTell();
    session->Execute("delete t_VchTemplate where FID = 2");
    session->Execute("delete t_VchTemplateEntry where FID = 2");
    TakeMessages();
    ClickNode("detail-2");
    EXPECT_THAT(TakeMessages(), ElementsAre("模板 销售与收款 已在别处被删除！"));
    EXPECT_EQ(window->Tree().FindNode("detail-2"), nullptr);
    EXPECT_EQ(window->Presenter().TemplateId(), "0");
}

TEST_F(DraftsWay, TwoWindowsOfTwoUsersMakeTemplatesOfTheirOwn) {
    OpenAndTell();
    const QPointer<VICenterWindow> first = window;
    Enter(2);
    OpenAndTell();
    const QPointer<VICenterWindow> second = window;
    for (const QPointer<VICenterWindow>& each : {first, second}) {
        window = each;
        window->activateWindow();
        window->Tree().setFocus();
        ClickTool("mnuNew");
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    }
    EXPECT_EQ(Number("select FUserID from t_VchTemplate where FID = 10"), 1);
    EXPECT_EQ(Number("select FUserID from t_VchTemplate where FID = 11"), 2);
    first->close();
}

}  // namespace
}  // namespace vicenter::ui
