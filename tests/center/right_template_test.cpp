// Others delete, rename and save the same templates: what the window finds out before it writes, what it
// asks, and what of the user's lines stays.

#include "tests/center/center_fixture.h"

namespace vicenter::center::test {
namespace {

using system::MessageResult;

constexpr const char* kAskNew = "模板 自定义模板(1) 打开之后已在别处被修改，是否将当前分录另存为新模板？";
constexpr const char* kAskOverwrite =
    "模板 自定义模板(1) 打开之后已在别处被修改，是否用当前分录覆盖？\r\n\r\n选择“否”将显示修改后的模板。";
constexpr const char* kAskGone = "模板 自定义模板(1) 已在别处被删除，是否将当前分录另存为新模板？";
constexpr const char* kGone = "模板 自定义模板(1) 已在别处被删除！";

class RightTemplate : public OpenTemplateTest {
  protected:
    void SaveElsewhere() { lines_["5"] = {Line(1, "别人的"), Line(2, "也是")}; }
    void ExpectNothingWritten() {
        EXPECT_THAT(Sent("delete t_VchTemplate"), IsEmpty());
        EXPECT_THAT(Sent("update t_VchTemplate"), IsEmpty());
    }
    Texts Keys() const {
        Texts keys;
        for (const TreeNode& node : view_.tree)
            keys.push_back(node.key);
        return keys;
    }
};

// --- save

TEST_F(RightTemplate, SavedElsewhereAndSavedHereIsAskedAbout) {
    TypeMine();
    SaveElsewhere();
    Answer(MessageResult::No);
    Answer(MessageResult::Yes);
    EXPECT_TRUE(Window().Save());
    EXPECT_THAT(Messages(), ElementsAre(kAskNew, kAskOverwrite, "模板 自定义模板(1) 保存成功！"));
    EXPECT_EQ(surroundings_.messageBoxes->shown[0].buttons, system::MessageButtons::YesNo);
    EXPECT_EQ(surroundings_.messageBoxes->shown[0].title, "信息提示");
    EXPECT_THAT(Sent("exec pro_VchTpCanUsed 5"), testing::SizeIs(1));
}

TEST_F(RightTemplate, LookingAtTheirsShowsThemAndKeepsMineOneStepOfUndoAway) {
    TypeMine();
    SaveElsewhere();
    Answer(MessageResult::No);
    Answer(MessageResult::No);
    EXPECT_FALSE(Window().Save());
    ExpectNothingWritten();
    EXPECT_EQ(Cell(1, column::kExplanation), "别人的");
    EXPECT_EQ(Window().RowCount(), 2);
    EXPECT_FALSE(Window().IsDirty());
    EXPECT_EQ(view_.status.hint, "按 Ctrl+Z 找回您修改的分录");
    Window().Cells().Undo();
    EXPECT_EQ(Cell(1, column::kExplanation), "我的");
    EXPECT_EQ(Window().RowCount(), 1);
    EXPECT_TRUE(Window().IsDirty());
    EXPECT_EQ(view_.status.hint, "");
    // What is saved now has been seen to be theirs.
    Forget();
    EXPECT_TRUE(Window().Save());
    EXPECT_THAT(Messages(), ElementsAre("模板 自定义模板(1) 保存成功！"));
}

TEST_F(RightTemplate, OverwritingIsAskedAboutAgainWhenItIsNotWhatWasAskedAbout) {
    TypeMine();
    SaveElsewhere();
    // Saved once more while the second question stands, then deleted.
    surroundings_.messageBoxes->meanwhile = {
        {}, [this] { lines_["5"] = {Line(1, "再改")}; }, {}, [this] { gone_ = {"5"}; }};
    for (const MessageResult answer :
         {MessageResult::No, MessageResult::Yes, MessageResult::No, MessageResult::Yes, MessageResult::No})
        Answer(answer);
    EXPECT_FALSE(Window().Save());
    EXPECT_THAT(Messages(), ElementsAre(kAskNew, kAskOverwrite, kAskNew, kAskOverwrite, kAskGone));
    EXPECT_THAT(Sent("exec pro_VchTpCanUsed"), IsEmpty());
    EXPECT_EQ(Cell(1, column::kExplanation), "我的");
    EXPECT_TRUE(Window().IsDirty());
}

TEST_F(RightTemplate, TheirsThatAreGoneByThenLeaveMineWhereTheyAre) {
    TypeMine();
    SaveElsewhere();
    surroundings_.messageBoxes->meanwhile = {{}, [this] {
                                                 gone_ = {"5"};
                                                 templates_ = {{0, "标准模板"}, {8, "自定义模板(2)"}};
                                             }};
    EXPECT_FALSE(Window().Save());
    EXPECT_THAT(Messages(), ElementsAre(kAskNew, kAskOverwrite, kAskGone));
    EXPECT_EQ(Window().TemplateId(), "5");
    EXPECT_EQ(Cell(1, column::kExplanation), "我的");
    EXPECT_TRUE(Window().IsDirty());
    ExpectNothingWritten();
}

TEST_F(RightTemplate, TheirsThatCannotBeReadLeaveTreeLinesAndDraft) {
    TypeMine();
    SaveElsewhere();
    const Texts keys = Keys();
    for (const char* unread : {"select a.* from (select FID,FName", "select * from t_VchTemplateEntry"}) {
        Forget();
        set_.Fail(unread, "Lock request time out period exceeded.");
        EXPECT_FALSE(Window().Save());
        EXPECT_EQ(Messages().back(), "模板 自定义模板(1) 无法读取，窗口中的分录保持不变，请稍后再试！");
        EXPECT_EQ(Keys(), keys);
        EXPECT_EQ(Window().SelectedNode(), "detail-5");
        EXPECT_EQ(Window().TemplateId(), "5");
        EXPECT_EQ(Cell(1, column::kExplanation), "我的");
        EXPECT_EQ(Window().RowCount(), 1);
        EXPECT_TRUE(Window().IsDirty());
        set_.Respond("select a.* from (select FID,FName", [](const std::string&) {
            return Rows({"FID", "FName"}, {{0, "标准模板"}, {5, "自定义模板(1)"}, {8, "自定义模板(2)"}});
        });
    }
}

TEST_F(RightTemplate, ATreeThatCannotBeReadStaysAsItIs) {
    const Texts keys = Keys();
    Window().Tree().NodeClick("detail-8");
    gone_ = {"5"};
    set_.Fail("select a.* from (select FID,FName", "Lock request time out period exceeded.");
    Forget();
    Window().Tree().NodeClick("detail-5");
    EXPECT_THAT(Messages(),
                ElementsAre(kGone, testing::StartsWith("凭证模板无法读取，模板树保持原样，请稍后再试！"
                                                       "\r\n\r\n账套正被其他用户锁定")));
    EXPECT_EQ(Keys(), keys);
    EXPECT_EQ(Window().SelectedNode(), "detail-8");
    EXPECT_EQ(Window().TemplateId(), "8");
}

TEST_F(RightTemplate, MineAsANewTemplateLeavesTheirsAlone) {
    TypeMine();
    SaveElsewhere();
    bool made = false;
    set_.Answer("as FNamed", Rows({"FNamed"}, {{0}}));
    set_.Respond("select FID from t_VchTemplate where FName = '自定义模板(3)'",
                 [&](const std::string&) { return made ? Rows({"FID"}, {{9}}) : Rows({"FID"}); });
    set_.Respond("exec pro_VchTpCanUsed @MaxFID", [&](const std::string&) {
        made = true;
        lines_["9"] = {Line(1, "我的")};
        templates_.push_back({9, "自定义模板(3)"});
        return Rows({});
    });
    set_.Answer("REPLACE(REPLACE(fname", Rows({"FNum"}, {{"2"}}));
    Answer(MessageResult::Yes);
    EXPECT_TRUE(Window().Save());
    EXPECT_THAT(Messages(), ElementsAre(kAskNew, "模板 自定义模板(3) 保存成功！"));
    EXPECT_THAT(Sent("where FID = 5 \r\n"), IsEmpty());
    // The template and its lines in one batch.
    ASSERT_EQ(Sent("exec pro_VchTpCanUsed @MaxFID").size(), 1U);
    EXPECT_THAT(Sent("exec pro_VchTpCanUsed @MaxFID")[0], HasSubstr("'我的'"));
    EXPECT_THAT(Sent("exec pro_VchTpCanUsed @MaxFID")[0],
                HasSubstr("insert into t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) "
                          "values(@MaxFID,'自定义模板(3)'"));
    EXPECT_EQ(Window().TemplateId(), "9");
    EXPECT_EQ(Window().SelectedNode(), "detail-9");
    EXPECT_EQ(Cell(1, column::kExplanation), "我的");
    EXPECT_FALSE(Window().IsDirty());
}

TEST_F(RightTemplate, DeletedElsewhereIsNeverSavedUnderItsOldId) {
    TypeMine();
    gone_ = {"5"};
    Answer(MessageResult::No);
    EXPECT_FALSE(Window().Save());
    EXPECT_THAT(Messages(), ElementsAre(kAskGone));
    EXPECT_THAT(Sent("insert into t_VchTemplateEntry"), IsEmpty());
    EXPECT_TRUE(Window().IsDirty());
    EXPECT_EQ(Cell(1, column::kExplanation), "我的");
}

TEST_F(RightTemplate, AnIdThatIsAnotherUsersNowCountsAsDeleted) {
    TypeMine();
    owners_["5"] = 8;
    Answer(MessageResult::No);
    EXPECT_FALSE(Window().Save());
    EXPECT_THAT(Messages(), ElementsAre(kAskGone));
    EXPECT_THAT(Sent("insert into t_VchTemplateEntry"), IsEmpty());
}

TEST_F(RightTemplate, AnIdThatIsAnotherTemplateOfTheUsersCountsAsChanged) {
    TypeMine();
    names_["5"] = "自定义模板(7)";
    Answer(MessageResult::No);
    Answer(MessageResult::No);
    EXPECT_FALSE(Window().Save());
    // Whoever overwrites it is told what it is.
    const std::string changed =
        "模板 自定义模板(1) 打开之后已在别处被删除或改名，原处现在是模板 自定义模板(7)，";
    EXPECT_THAT(Messages(),
                ElementsAre(changed + "是否将当前分录另存为新模板？",
                            changed + "是否用当前分录覆盖？\r\n\r\n选择“否”将显示修改后的模板。"));
}

TEST_F(RightTemplate, TheStandardTemplateIsNotOverwritten) {
    Window().Tree().NodeClick("detail-0");
    FillLine(1, "1", "我的");
    lines_["0"] = {Line(1, "别人的")};
    Forget();
    Answer(MessageResult::No);
    EXPECT_FALSE(Window().Save());
    EXPECT_EQ(Messages().size(), 1U);
    EXPECT_EQ(Cell(1, column::kExplanation), "别人的");
}

TEST_F(RightTemplate, AQuestionThatIsNotAnsweredFailsTheSave) {
    TypeMine();
    set_.Fail("as FTemplateName", "gone");
    EXPECT_FALSE(Window().Save());
    EXPECT_THAT(Messages(), ElementsAre("模板 自定义模板(1) 保存失败！"));
    ExpectNothingWritten();
    EXPECT_TRUE(Window().IsDirty());
}

TEST_F(RightTemplate, AGateWhoseSaveEndsWithTheirsStopsTheCaller) {
    TypeMine();
    SaveElsewhere();
    Answer(MessageResult::Yes);
    Answer(MessageResult::No);
    Answer(MessageResult::No);
    Window().Tree().NodeClick("detail-8");
    EXPECT_EQ(Window().TemplateId(), "5");
    EXPECT_EQ(Cell(1, column::kExplanation), "别人的");
}

// --- nodes

TEST_F(RightTemplate, AStaleNodeIsToldAndTheTreeReadAgain) {
    Window().Tree().NodeClick("detail-8");
    gone_ = {"5"};
    templates_ = {{0, "标准模板"}, {8, "自定义模板(2)"}};
    Forget();
    Window().Tree().NodeClick("detail-5");
    EXPECT_THAT(Messages(), ElementsAre(kGone));
    EXPECT_THAT(Keys(), ElementsAre("ROOT", "detail-0", "detail-8"));
    EXPECT_EQ(Window().SelectedNode(), "detail-0");
    EXPECT_EQ(Window().TemplateId(), "0");
}

TEST_F(RightTemplate, ANodeWhoseIdIsAnotherUsersTemplateNowIsNotOpened) {
    Window().Tree().NodeClick("detail-8");
    owners_["5"] = 8;
    templates_ = {{0, "标准模板"}, {8, "自定义模板(2)"}};
    Forget();
    Window().Tree().NodeClick("detail-5");
    EXPECT_THAT(Messages(), ElementsAre(kGone));
    EXPECT_THAT(Sent("from t_VchTemplateEntry where FID = 5"), IsEmpty());
}

TEST_F(RightTemplate, ANodeThatWasRenamedElsewhereOpensUnderItsNewName) {
    Window().Tree().NodeClick("detail-8");
    names_["5"] = "月末结转";
    Window().Tree().NodeClick("detail-5");
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_EQ(view_.name, "月末结转");
    EXPECT_EQ(view_.tree[2].text, "月末结转");
}

TEST_F(RightTemplate, RenamingWhatIsGoneWritesNothing) {
    gone_ = {"5"};
    Window().Tree().DoubleClick();
    EXPECT_FALSE(Window().Tree().AfterLabelEdit("新名称"));
    EXPECT_THAT(Messages(), ElementsAre(kGone));
    ExpectNothingWritten();
}

TEST_F(RightTemplate, RenamingWhatWasRenamedElsewhereIsAskedAbout) {
    names_["5"] = "月末结转";
    EXPECT_FALSE(Window().Tree().AfterLabelEdit("新名称"));
    EXPECT_THAT(Messages(), ElementsAre("模板 自定义模板(1) 已在别处改名为 月末结转，是否仍要修改名称？"));
    ExpectNothingWritten();
    Answer(MessageResult::Yes);
    EXPECT_TRUE(Window().Tree().AfterLabelEdit("新名称"));
    EXPECT_EQ(Sent("update t_VchTemplate").size(), 1U);
}

// --- delete

class RightDelete : public RightTemplate {
  protected:
    static constexpr const char* kQuestion = "模板删除将无法还原，是否删除？\r\n\r\n凭证模板：自定义模板(1)";
};

TEST_F(RightDelete, WhatWasSavedElsewhereIsAskedAboutOnceMore) {
    SaveElsewhere();
    Answer(MessageResult::Yes);
    Answer(MessageResult::No);
    Window().ToolClick("mnuDel");
    EXPECT_THAT(Messages(),
                ElementsAre(kQuestion,
                            "模板 自定义模板(1) 打开之后已在别处被修改，是否仍要删除？\r\n\r\n选择“否”"
                            "将显示修改后的模板。"));
    ExpectNothingWritten();
    EXPECT_EQ(Cell(1, column::kExplanation), "别人的");
    EXPECT_THAT(Log(), ElementsAre("log 1 凭证模板-删除模板", "log 4 凭证模板-删除模板 自定义模板(1) 失败"));
    Answer(MessageResult::Yes);
    Window().ToolClick("mnuDel");
    EXPECT_EQ(Sent(" delete t_VchTemplate where FID = 5").size(), 1U);
}

TEST_F(RightDelete, AnotherTemplateUnderThatIdIsNamed) {
    names_["5"] = "月末结转";
    Answer(MessageResult::Yes);
    Window().ToolClick("mnuDel");
    EXPECT_THAT(Messages(),
                ElementsAre(kQuestion,
                            "模板 自定义模板(1) 已在别处被删除或改名，原处现在是模板 月末结转，是否删除它？"
                            "\r\n\r\n选择“否”将显示修改后的模板。"));
    ExpectNothingWritten();
}

TEST_F(RightDelete, AnotherUsersTemplateUnderThatIdStays) {
    owners_["5"] = 8;
    templates_ = {{0, "标准模板"}, {8, "自定义模板(2)"}};
    Answer(MessageResult::Yes);
    Window().ToolClick("mnuDel");
    EXPECT_THAT(Messages(), ElementsAre(kQuestion, kGone));
    ExpectNothingWritten();
    EXPECT_THAT(Keys(), ElementsAre("ROOT", "detail-0", "detail-8"));
}

TEST_F(RightDelete, WithoutAnAnswerNothingIsDeleted) {
    set_.Fail("as FTemplateName", "gone");
    Answer(MessageResult::Yes);
    Window().ToolClick("mnuDel");
    EXPECT_THAT(Messages(), ElementsAre(kQuestion, "删除失败！"));
    ExpectNothingWritten();
}

// --- new

TEST_F(RightTemplate, ANewTemplateThatCannotBeToldFromAnothersIsNotWrittenTo) {
    set_.Answer("select Max(FID)", Rows({"FID"}, {{9}}));
    owners_["9"] = 8;
    set_.Respond("declare @MaxFID", [this](const std::string&) {
        templates_.push_back({8, "自定义模板(1)"});
        return Rows({});
    });
    Window().ToolClick("mnuNew");
    EXPECT_THAT(
        Messages(),
        ElementsAre("新增的模板未能确认（其他用户可能同时新增了模板），请在重新读取的模板树中选择！"));
    EXPECT_EQ(view_.Count("tree"), 1);
    EXPECT_EQ(view_.Count("edit label"), 0);
    EXPECT_NE(Window().TemplateId(), "9");
    EXPECT_THAT(Log(), ElementsAre("log 1 凭证模板-新增模板"));
}

TEST_F(RightTemplate, ANewTemplateIsNotBornWithTheLinesOfAnEarlierOne) {
    set_.Answer("select Max(FID)", Rows({"FID"}, {{9}}));
    lines_["9"] = {Line(1, "left behind")};
    set_.Respond("delete t_VchTemplateEntry where FID = 9", [this](const std::string&) {
        lines_.erase("9");
        return Rows({});
    });
    Window().ToolClick("mnuNew");
    EXPECT_EQ(Window().TemplateId(), "9");
    EXPECT_EQ(Window().RowCount(), 0);
    EXPECT_EQ(Sent("delete t_VchTpControl where FID = 9").size(), 1U);
}

TEST_F(RightTemplate, ANewTemplateWithNothingLeftBehindCostsOneQuestion) {
    set_.Answer("select Max(FID)", Rows({"FID"}, {{9}}));
    Window().ToolClick("mnuNew");
    EXPECT_EQ(Sent("as FTemplateName").size(), 1U);
    EXPECT_THAT(Sent("delete t_"), IsEmpty());
}

// --- a save that the database refuses

class RefusedSave : public RightTemplate {
  protected:
    void SetUp() override {
        RightTemplate::SetUp();
        set_.Respond("exec pro_VchTpCanUsed", [this](const std::string& sql) {
            if (refuse_)
                throw automation::Error(ado::error_number::kProviderError, "database is locked", "test");
            lines_["5"] = {Line(1, sql.find("'我的'") != std::string::npos ? "我的" : "原来的")};
            return Rows({});
        });
    }
    bool refuse_ = true;
};

TEST_F(RefusedSave, TheTypedLinesAreOneKeyAwayAndTheTemplateIsStillModified) {
    TypeMine();
    FillLine(2, "1", "第二行");
    Window().Save();
    EXPECT_THAT(Messages(), ElementsAre("database is locked", "模板 自定义模板(1) 保存成功！"));
    EXPECT_EQ(Cell(1, column::kExplanation), "原来的");
    EXPECT_EQ(Window().RowCount(), 1);
    EXPECT_TRUE(Window().IsDirty());
    EXPECT_EQ(view_.status.hint, "保存被拒绝，按 Ctrl+Z 找回保存前的分录");
    ASSERT_TRUE(Window().Cells().CanUndo());
    Window().Cells().Undo();
    EXPECT_EQ(Cell(1, column::kExplanation), "我的");
    EXPECT_EQ(Cell(2, column::kExplanation), "第二行");
    EXPECT_EQ(Window().RowCount(), 2);
    EXPECT_TRUE(Window().IsDirty());
    Window().Cells().Redo();
    EXPECT_EQ(Window().RowCount(), 1);
}

TEST_F(RefusedSave, SavingAgainSavesWhatWasTyped) {
    TypeMine();
    Window().Save();
    refuse_ = false;
    Forget();
    EXPECT_TRUE(Window().Save());
    ASSERT_EQ(Sent("exec pro_VchTpCanUsed").size(), 1U);
    EXPECT_THAT(Sent("exec pro_VchTpCanUsed")[0], HasSubstr("'我的'"));
    EXPECT_EQ(Cell(1, column::kExplanation), "我的");
    EXPECT_FALSE(Window().IsDirty());
}

TEST_F(RefusedSave, SavingUnderAnotherNameSavesWhatWasTyped) {
    TypeMine();
    Window().Save();
    Forget();
    set_.Answer("select FID from t_VchTemplate where FName = '副本' and", Rows({"FID"}));
    set_.Answer("select FID from t_VchTemplate where FName = '副本'", Rows({"FID"}, {{9}}));
    set_.Answer("and FUserID = 7", Rows({"FID"}));
    set_.Answer("as FNamed", Rows({"FNamed"}, {{0}}));
    view_.onAskName = [](const std::string&, const std::string&) {
        return std::optional<std::string>("副本");
    };
    refuse_ = false;
    Window().Tree().SaveAs();
    ASSERT_EQ(Sent("insert into t_VchTemplateEntry").size(), 1U);
    EXPECT_THAT(Sent("insert into t_VchTemplateEntry")[0], HasSubstr("'我的'"));
}

TEST_F(RefusedSave, WhatIsTypedOverTheReloadedLinesIsWhatIsSaved) {
    TypeMine();
    Window().Save();
    refuse_ = false;
    Type(1, column::kRemark, "x");
    EXPECT_EQ(view_.status.hint, "");
    Forget();
    EXPECT_TRUE(Window().Save());
    EXPECT_THAT(Sent("exec pro_VchTpCanUsed")[0], HasSubstr("'原来的'"));
}

TEST_F(RefusedSave, LinesThatCannotBeReadAgainLeaveTheTypedOnesInTheGrid) {
    TypeMine();
    set_.Fail("select * from t_VchTemplateEntry", "gone");
    Window().Save();
    EXPECT_EQ(Cell(1, column::kExplanation), "我的");
    EXPECT_TRUE(Window().IsDirty());
    set_.Respond("select * from t_VchTemplateEntry",
                 [this](const std::string&) { return Rows(LineFields(), lines_["5"]); });
    refuse_ = false;
    Forget();
    EXPECT_TRUE(Window().Save());
    EXPECT_THAT(Messages(), ElementsAre("模板 自定义模板(1) 保存成功！"));
}

// --- what was never read

TEST_F(RightTemplate, LinesThatCannotBeReadAreTold) {
    set_.Fail("select * from t_VchTemplateEntry", "gone");
    Window().Tree().NodeClick("detail-8");
    EXPECT_THAT(
        Messages(),
        ElementsAre("模板 自定义模板(2) 的分录未能读取，请检查账套连接后重新打开该模板！\r\n\r\ngone"));
}

TEST_F(RightTemplate, LinesThatCannotBeReadAtLoadAreToldOnceTheWindowIsThere) {
    set_.Fail("select * from t_VchTemplateEntry", "gone");
    Open();
    EXPECT_THAT(Messages(), IsEmpty());
    Window().Shown();
    EXPECT_THAT(Messages(),
                ElementsAre("模板 标准模板 的分录未能读取，请检查账套连接后重新打开该模板！\r\n\r\ngone"));
}

TEST_F(RightTemplate, LinesThatFailHalfWayAreUnknown) {
    // The second line's remark is no text that a cell could hold.
    set_.Respond("select * from t_VchTemplateEntry", [](const std::string&) {
        auto rows = Rows(LineFields(), {Line(1, "one")});
        std::vector<Variant> broken = Line(1, "two");
        broken.back() = Variant(automation::VariantArray{});
        rows->AppendRow(broken);
        return rows;
    });
    Window().Tree().NodeClick("detail-8");
    EXPECT_EQ(Window().RowCount(), 0);
    EXPECT_TRUE(Grid().IsBlankRow(1));
    EXPECT_EQ(Messages().size(), 1U);
    FillLine(1, "1", "x");
    Forget();
    EXPECT_FALSE(Window().Save());
    EXPECT_THAT(Messages(), ElementsAre("模板 自定义模板(2) 保存失败！"));
    ExpectNothingWritten();
}

TEST_F(RightTemplate, ASaveWhoseReloadFailsIsASaveAndSaysSo) {
    TypeMine();
    set_.Fail("select * from t_VchTemplateEntry", "gone");
    EXPECT_TRUE(Window().Save());
    EXPECT_THAT(Messages(), ElementsAre("模板 自定义模板(1) 保存成功！",
                                        "模板 自定义模板(1) 已保存，但未能重新读取，请重新打开该模板！"));
    EXPECT_FALSE(Window().IsDirty());
}

TEST_F(RightTemplate, AProfileThatCouldNotBeReadIsNotOverwritten) {
    set_.Fail("t_VchTpProfile", "gone");
    Open();
    Window().ToolClick("mnuShowCol");
    EXPECT_THAT(Messages(), ElementsAre("列设置未能读取，本次的调整不会保存！"));
    Window().Unload();
    EXPECT_THAT(Sent("update t_VchTpProfile"), IsEmpty());
}

TEST_F(RightTemplate, AnEmptyProfileIsOneThatWasRead) {
    set_.Answer("select FValue from t_VchTpProfile", Rows({"FValue"}, {{""}}));
    Open();
    Window().Unload();
    EXPECT_EQ(Sent("update t_VchTpProfile").size(), 1U);
}

// --- two windows of two users

TEST_F(RightTemplate, ANewTemplateIsTheUsersWhoseWindowAsks) {
    set_.Answer("select Max(FID)", Rows({"FID"}, {{9}}));
    entry::PresetPropsString("UserID=8;ConnectString={Provider=Test;};");
    FakeVICenterView secondView;
    frmVICenter second(secondView, &commands_);
    second.Load();
    ASSERT_EQ(entry::CurrentUserId(), "8");
    Forget();
    Window().ToolClick("mnuNew");
    ASSERT_EQ(Sent("declare @MaxFID").size(), 1U);
    EXPECT_THAT(Sent("declare @MaxFID")[0], HasSubstr(",7,'0',"));
    EXPECT_EQ(entry::CurrentUserId(), "8");
}

class AskingCommands : public RecordingCommands {
  public:
    void Import(CommandTarget&) override { users.push_back(entry::CurrentUserId()); }
    void ImportFiles(CommandTarget&, const Texts&) override { users.push_back(entry::CurrentUserId()); }
    void GenerateFromVouchers(CommandTarget&) override { users.push_back(entry::CurrentUserId()); }
    Texts users;
};

TEST_F(RightTemplate, ImportAndGenerationRunAsTheUserOfTheirWindow) {
    AskingCommands commands;
    frmVICenter first(view_, &commands);
    first.Load();
    entry::PresetPropsString("UserID=8;ConnectString={Provider=Test;};");
    frmVICenter second(view_, &commands);
    second.Load();
    for (frmVICenter* window : {&first, &second}) {
        window->ToolClick("mnuImp");
        window->FilesDropped({"a.xls"});
        window->ToolClick("mnuAutoVch");
    }
    EXPECT_THAT(commands.users, ElementsAre("7", "7", "7", "8", "8", "8"));
}

}  // namespace
}  // namespace vicenter::center::test
