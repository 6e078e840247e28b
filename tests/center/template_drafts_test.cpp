// Drafts: what is written while the user rests, what is offered after a window is gone, and what goes when.

#include <filesystem>
#include <fstream>

#include "center/template/draft/draft_store.h"
#include "platform/system/files.h"
#include "tests/center/center_fixture.h"

namespace vicenter::center::test {
namespace {

namespace fs = std::filesystem;
using system::MessageResult;

TEST(DraftText, ReadsBackWhatWasWritten) {
    Draft draft;
    draft.userId = "7";
    draft.templateId = "5";
    draft.templateName = "月末\"结转\\";
    draft.written = "2026-01-31 08:00:00";
    draft.process = "12";
    draft.mark = "99";
    draft.window = "w";
    draft.loaded = {11, 0xFFFFFFFFFFFFFFFFU};
    KeptLine line;
    line.texts[0] = "1";
    line.texts[1] = "it's\r\n😀\t\x01";
    line.texts[19] = "十元";
    line.texts[20] = "999999999.0000";
    line.refusals[19] = TextVerdict::NotANumber;
    line.refusals[20] = TextVerdict::TooLong;
    draft.lines = {line, KeptLine{}};
    const std::optional<Draft> read = DecodeDraft(EncodeDraft(draft));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->userId, "7");
    EXPECT_EQ(read->templateName, draft.templateName);
    EXPECT_EQ(read->mark, "99");
    EXPECT_EQ(read->loaded, draft.loaded);
    EXPECT_EQ(read->lines, draft.lines);
}

TEST(DraftText, APieceOfADraftIsNone) {
    Draft draft;
    draft.userId = "7";
    draft.lines = {KeptLine{}, KeptLine{}};
    const std::string text = EncodeDraft(draft);
    ASSERT_TRUE(DecodeDraft(text));
    for (std::size_t length = 0; length < text.size(); ++length)
        EXPECT_FALSE(DecodeDraft(text.substr(0, length))) << length;
    EXPECT_FALSE(DecodeDraft("[]"));
    EXPECT_FALSE(DecodeDraft("{\"lines\":[]}"));
}

class Drafts : public OpenTemplateTest {
  protected:
    Texts Files() const {
        Texts names;
        const fs::path drafts = system::PathFromUtf8(surroundings_.folders->data) / "drafts";
        if (!fs::exists(drafts)) return names;
        for (const auto& entry : fs::directory_iterator(drafts))
            names.push_back(system::PathToUtf8(entry.path()));
        return names;
    }
    // The window's frame is closed and a new one opened.
    void CloseByFrame() { Window().Unload(); }
    void OpenAgain() {
        Open();
        Forget();
        Window().Shown();
    }
    std::string Question(const std::string& tail = "是否恢复？") const {
        return "模板 自定义模板(1) 有上次未保存的修改（2026-01-31 08:00:00，1 条分录），" + tail +
               "\r\n\r\n选择“否”将丢弃这些修改。";
    }
};

TEST_F(Drafts, AreWrittenWhenTheUserRestsAndOnlyWhenSomethingIsUnsaved) {
    Window().KeepDraft();
    EXPECT_THAT(Files(), IsEmpty());
    TypeMine();
    EXPECT_THAT(Files(), IsEmpty());
    Window().KeepDraft();
    ASSERT_EQ(Files().size(), 1U);
    const auto written = fs::last_write_time(system::PathFromUtf8(Files()[0]));
    fs::last_write_time(system::PathFromUtf8(Files()[0]), written - std::chrono::hours(1));
    Window().KeepDraft();  // nothing new to write
    EXPECT_EQ(fs::last_write_time(system::PathFromUtf8(Files()[0])), written - std::chrono::hours(1));
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_THAT(set_.Statements(), IsEmpty());
}

TEST_F(Drafts, OfAServersAccountSetBearOneNumberInEveryHost) {
    TypeMine();
    Window().KeepDraft();
    ASSERT_EQ(Files().size(), 1U);
    EXPECT_THAT(Files()[0], HasSubstr("15692531132975266388-7-5-"))
        << "a host of 32 bit looks for that of one of 64";
}

TEST_F(Drafts, GoWithASave) {
    TypeMine();
    Window().KeepDraft();
    EXPECT_TRUE(Window().Save());
    EXPECT_THAT(Files(), IsEmpty());
    Window().KeepDraft();
    CloseByFrame();
    EXPECT_THAT(Files(), IsEmpty());
}

TEST_F(Drafts, StayWhenTheWindowIsClosedByItsFrameAndAreOfferedByTheNext) {
    surroundings_.clock->now = *automation::DateTime::Parse("2026-01-31 08:00:00.250");
    TypeMine();
    CloseByFrame();
    ASSERT_EQ(Files().size(), 1U);
    Answer(MessageResult::Yes);
    OpenAgain();
    EXPECT_THAT(Messages(), ElementsAre(Question()));
    EXPECT_EQ(surroundings_.messageBoxes->shown[0].buttons, system::MessageButtons::YesNo);
    EXPECT_EQ(surroundings_.messageBoxes->shown[0].title, "信息提示");
    EXPECT_EQ(Window().TemplateId(), "5");
    EXPECT_EQ(Window().SelectedNode(), "detail-5");
    EXPECT_EQ(Cell(1, column::kExplanation), "我的");
    EXPECT_TRUE(Window().IsDirty());
    EXPECT_EQ(Files().size(), 1U);
    Window().Cells().Undo();
    EXPECT_EQ(Cell(1, column::kExplanation), "原来的");
    EXPECT_FALSE(Window().IsDirty()) << "as the account set holds it";
    EXPECT_THAT(Files(), IsEmpty());
    Window().Cells().Redo();
    EXPECT_TRUE(Window().IsDirty());
    Window().KeepDraft();
    EXPECT_EQ(Files().size(), 1U);
}

TEST_F(Drafts, ARestoredDraftIsSaved) {
    TypeMine();
    FillLine(2, "1", "第二行");
    CloseByFrame();
    Answer(MessageResult::Yes);
    OpenAgain();
    EXPECT_EQ(Window().RowCount(), 2);
    Forget();
    EXPECT_TRUE(Window().Save());
    EXPECT_THAT(Messages(), ElementsAre("模板 自定义模板(1) 保存成功！"));
    ASSERT_EQ(Sent("exec pro_VchTpCanUsed").size(), 1U);
    EXPECT_THAT(Sent("exec pro_VchTpCanUsed")[0], HasSubstr("'我的'"));
    EXPECT_THAT(Sent("exec pro_VchTpCanUsed")[0], HasSubstr("'第二行'"));
    EXPECT_THAT(Files(), IsEmpty());
}

TEST_F(Drafts, ATextThatItsColumnRefusedComesBackRefused) {
    TypeMine();
    Window().Cells().MoveActiveCell({1, column::kAmount});
    ASSERT_EQ(Window().Cells().CommitText({1, column::kAmount}, "十元"), TextVerdict::NotANumber);
    CloseByFrame();
    Answer(MessageResult::Yes);
    OpenAgain();
    EXPECT_EQ(Cell(1, column::kAmount), "十元");
    EXPECT_EQ(Grid().Refusal(1, column::kAmount), TextVerdict::NotANumber);
    EXPECT_FALSE(Window().Save());
}

TEST_F(Drafts, WhatIsDeclinedIsGone) {
    TypeMine();
    CloseByFrame();
    Answer(MessageResult::No);
    OpenAgain();
    EXPECT_THAT(Files(), IsEmpty());
    EXPECT_EQ(Window().TemplateId(), "0");
    Window().Tree().NodeClick("detail-5");
    EXPECT_EQ(Messages().size(), 1U);
    EXPECT_EQ(Cell(1, column::kExplanation), "原来的");
}

TEST_F(Drafts, OfATemplateThatChangedMeanwhileAreAskedAboutWhenSaved) {
    TypeMine();
    CloseByFrame();
    lines_["5"] = {Line(1, "别人的")};
    Answer(MessageResult::Yes);
    OpenAgain();
    Forget();
    EXPECT_FALSE(Window().Save());
    ASSERT_FALSE(Messages().empty());
    EXPECT_EQ(Messages()[0], "模板 自定义模板(1) 打开之后已在别处被修改，是否将当前分录另存为新模板？");
}

TEST_F(Drafts, OfATemplateThatIsGoneBecomeANewOne) {
    TypeMine();
    CloseByFrame();
    gone_ = {"5"};
    templates_ = {{0, "标准模板"}, {8, "自定义模板(2)"}};
    set_.Answer("select Max(FID)", Rows({"FID"}, {{9}}));
    set_.Answer("REPLACE(REPLACE(fname", Rows({"FNum"}, {{"2"}}));
    set_.Respond("declare @MaxFID", [this](const std::string&) {
        templates_.push_back({9, "自定义模板(3)"});
        return Rows({});
    });
    Answer(MessageResult::Yes);
    OpenAgain();
    EXPECT_THAT(Messages(), ElementsAre(Question("但该模板已不存在，是否恢复为新模板？")));
    EXPECT_EQ(Window().TemplateId(), "9");
    EXPECT_EQ(Cell(1, column::kExplanation), "我的");
    Forget();
    EXPECT_TRUE(Window().Save());
    EXPECT_THAT(Messages(), ElementsAre("模板 自定义模板(3) 保存成功！"));
}

TEST_F(Drafts, OfATemplateThatWasRenamedComeBackIntoIt) {
    TypeMine();
    CloseByFrame();
    templates_[1].name = "改过的名";
    Answer(MessageResult::Yes);
    OpenAgain();
    EXPECT_THAT(Messages(), ElementsAre(Question("该模板已改名为 改过的名，是否恢复到改名后的模板？")));
    EXPECT_EQ(Window().TemplateId(), "5");
    EXPECT_EQ(Window().TemplateName(), "改过的名");
    EXPECT_EQ(Cell(1, column::kExplanation), "我的");
    Forget();
    EXPECT_TRUE(Window().Save());
    EXPECT_THAT(Messages(), ElementsAre("模板 改过的名 保存成功！"));
    EXPECT_THAT(Sent("declare @MaxFID"), IsEmpty());
    EXPECT_THAT(Files(), IsEmpty());
}

// Its id and nothing else: whose lines they are nobody can tell.
TEST_F(Drafts, OfATemplateOfAnotherNameAndOtherLinesBecomeANewOne) {
    TypeMine();
    CloseByFrame();
    templates_[1].name = "另一个";
    lines_["5"] = {Line(1, "别人的")};
    Answer(MessageResult::No);
    OpenAgain();
    EXPECT_THAT(Messages(), ElementsAre(Question("但该模板已不存在，或已改名并修改，是否恢复为新模板？")));
}

// The tree then lights the standard template, which is everybody's.
TEST_F(Drafts, AreRestoredIntoNoOtherTemplateWhenTheirNewOneIsGone) {
    TypeMine();
    CloseByFrame();
    gone_ = {"5"};
    templates_ = {{0, "标准模板"}, {8, "自定义模板(2)"}};
    set_.Answer("select Max(FID)", Rows({"FID"}, {{9}}));
    Answer(MessageResult::Yes);
    OpenAgain();
    EXPECT_EQ(Window().TemplateId(), "0");
    EXPECT_EQ(Window().RowCount(), 0);
    EXPECT_FALSE(Window().IsDirty());
    EXPECT_EQ(Files().size(), 1U);
}

TEST_F(Drafts, StayWhenWhatWasSavedElsewhereCannotBeShown) {
    TypeMine();
    Window().KeepDraft();
    lines_["5"] = {Line(1, "别人的")};
    set_.Fail("select a.* from (select FID,FName", "Lock request time out period exceeded.");
    EXPECT_FALSE(Window().Save());
    EXPECT_EQ(Messages().back(), "模板 自定义模板(1) 无法读取，窗口中的分录保持不变，请稍后再试！");
    EXPECT_EQ(Files().size(), 1U);
    CloseByFrame();
    EXPECT_EQ(Files().size(), 1U);
}

TEST_F(Drafts, AreOfferedWhenTheirTemplateIsOpened) {
    TypeMine();
    CloseByFrame();
    // Another one, written later, is the newest.
    surroundings_.clock->now = *automation::DateTime::Parse("2026-02-01 08:00:00");
    Open();
    Window().Tree().NodeClick("detail-8");
    FillLine(1, "1", "二");
    CloseByFrame();
    Answer(MessageResult::No);
    OpenAgain();
    ASSERT_EQ(Messages().size(), 1U);
    EXPECT_THAT(Messages()[0], HasSubstr("模板 自定义模板(2) 有上次未保存的修改"));
    Answer(MessageResult::Yes);
    Window().Tree().NodeClick("detail-5");
    EXPECT_EQ(Messages().back(), Question());
    EXPECT_EQ(Cell(1, column::kExplanation), "我的");
}

TEST_F(Drafts, OfAnotherUserAreNeverRead) {
    TypeMine();
    CloseByFrame();
    entry::PresetPropsString("UserID=8;ConnectString={Provider=Test;};");
    owners_["5"] = 8;
    OpenAgain();
    Window().Tree().NodeClick("detail-5");
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_EQ(Files().size(), 1U);
    // Not even under a name that says otherwise.
    std::string other = Files()[0];
    other.replace(other.find("-7-5-"), 5, "-8-5-");
    fs::rename(system::PathFromUtf8(Files()[0]), system::PathFromUtf8(other));
    OpenAgain();
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(Drafts, OfAWindowThatIsStillThereAreNotOffered) {
    TypeMine();
    Window().KeepDraft();
    FakeVICenterView secondView;
    frmVICenter second(secondView, &commands_);
    second.Load();
    second.Shown();
    second.Tree().NodeClick("detail-5");
    EXPECT_THAT(Messages(), IsEmpty());
    // Each has its own.
    second.Cells().CommitText({1, column::kRemark}, "二");
    second.KeepDraft();
    EXPECT_EQ(Files().size(), 2U);
    EXPECT_TRUE(second.Save());
    EXPECT_EQ(Files().size(), 1U);
}

TEST_F(Drafts, AWindowThatNobodySeesOffersNothing) {
    TypeMine();
    CloseByFrame();
    Open();
    Forget();
    Window().Tree().NodeClick("detail-5");
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(Drafts, AUserWithoutTheRightIsOfferedNothing) {
    TypeMine();
    CloseByFrame();
    right_ = false;
    OpenAgain();
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_EQ(Files().size(), 1U);
}

TEST_F(Drafts, QuitWithoutSavingLeavesNone) {
    TypeMine();
    Window().KeepDraft();
    view_.onClose = [this] { Window().Unload(); };
    Answer(MessageResult::No);
    Window().ToolClick("mnuQuit");
    EXPECT_THAT(Files(), IsEmpty());
}

TEST_F(Drafts, ADeclinedQuestionOfACommandThatLeavesTheGridKeepsTheDraft) {
    TypeMine();
    Answer(MessageResult::No);
    Window().ToolClick("mnuPrcFind");
    CloseByFrame();
    EXPECT_EQ(Files().size(), 1U);
}

// The question stands before other ways to leave the grid, too: each of these stays where it is.
TEST_F(Drafts, ADeclinedQuestionOfWhateverLeavesTheEditsInTheGridKeepsTheDraft) {
    struct Way {
        const char* name;
        void (*go)(frmVICenter& window);
    };
    const Way kWays[] = {
        {"a workbook that is dropped and not imported", [](frmVICenter& w) { w.FilesDropped({"a.xlsx"}); }},
        {"the root of the tree", [](frmVICenter& w) { w.Tree().NodeClick(std::string(kRootKey)); }},
        {"a name to be changed", [](frmVICenter& w) { w.Tree().DoubleClick(); }},
    };
    for (const Way& way : kWays) {
        SCOPED_TRACE(way.name);
        Open();
        Window().Tree().NodeClick("detail-5");
        TypeMine();
        Forget();
        Answer(MessageResult::No);
        way.go(Window());
        ASSERT_EQ(Messages().size(), 1U);
        ASSERT_TRUE(Window().IsDirty());
        CloseByFrame();
        ASSERT_EQ(Files().size(), 1U);
        fs::remove(system::PathFromUtf8(Files()[0]));
    }
}

TEST_F(Drafts, OpeningAnotherTemplateWithoutSavingLeavesNone) {
    TypeMine();
    Window().KeepDraft();
    Answer(MessageResult::No);
    Window().Tree().NodeClick("detail-8");
    EXPECT_THAT(Files(), IsEmpty());
}

TEST_F(Drafts, WhatARefusedSaveLeftIsInTheDraftWhateverIsOpenedNext) {
    set_.Fail("exec pro_VchTpCanUsed", "database is locked");
    Window().Shown();
    TypeMine();
    Answer(MessageResult::Yes);
    Window().Tree().NodeClick("detail-8");
    EXPECT_EQ(Window().TemplateId(), "8");
    EXPECT_EQ(Files().size(), 1U);
    Answer(MessageResult::Ok);
    Forget();
    surroundings_.messageBoxes->answers = {MessageResult::Yes};
    Window().Tree().NodeClick("detail-5");
    EXPECT_THAT(Messages(), ElementsAre(Question()));
    EXPECT_EQ(Cell(1, column::kExplanation), "我的");
}

TEST_F(Drafts, WhatARefusedSaveLeftNowhereButInTheWindowStopsWhateverWouldReplaceIt) {
    // No file can be made where the drafts would lie.
    std::ofstream(system::PathFromUtf8(surroundings_.folders->data)) << "a file";
    set_.Fail("exec pro_VchTpCanUsed", "disk full");
    TypeMine();
    surroundings_.messageBoxes->answers = {MessageResult::Yes};
    Window().Tree().NodeClick("detail-8");
    EXPECT_EQ(Window().TemplateId(), "5");
    Window().Cells().Undo();
    EXPECT_EQ(Cell(1, column::kExplanation), "我的");
}

TEST_F(Drafts, AFrameIsNotClosedOverWhatCouldNotBeKeptUnlessTheUserSaysSo) {
    const std::string drafts = surroundings_.folders->data;
    fs::remove_all(system::PathFromUtf8(drafts));
    std::ofstream(system::PathFromUtf8(drafts)) << "a file";
    EXPECT_FALSE(Window().StaysOpen()) << "nothing has been typed";
    TypeMine();
    Forget();
    surroundings_.messageBoxes->answers = {MessageResult::No, MessageResult::Yes};
    EXPECT_TRUE(Window().StaysOpen());
    EXPECT_FALSE(Window().StaysOpen());
    const std::string question =
        "当前凭证模板修改后未保存，也未能保留为草稿（磁盘可能已满），关闭后这些修改将丢失。请确认是否关闭？";
    EXPECT_THAT(Messages(), ElementsAre(question, question));
    fs::remove(system::PathFromUtf8(drafts));
    EXPECT_FALSE(Window().StaysOpen());
    EXPECT_EQ(Files().size(), 1U);
}

TEST_F(Drafts, ADraftOfAnotherAccountSetWhoseNameBeginsAlikeIsNotThisOnes) {
    TypeMine();
    CloseByFrame();
    const fs::path own = system::PathFromUtf8(Files()[0]);
    // As one of a set whose name is this one's, "-" and the user.
    const std::string name = own.filename().string();
    const std::size_t user = name.find('-');
    fs::rename(own, own.parent_path() / (name.substr(0, user) + "-7" + name.substr(user)));
    OpenAgain();
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(Drafts, ADamagedDraftIsNotOffered) {
    TypeMine();
    CloseByFrame();
    fs::resize_file(system::PathFromUtf8(Files()[0]), 100);
    OpenAgain();
    EXPECT_THAT(Messages(), IsEmpty());
}

}  // namespace
}  // namespace vicenter::center::test
