// A window on a real account set while the program works on the same set in a process of its own: what one
// deletes, saves or creates never ends up in the other's template.

#include <algorithm>
#include <functional>
#include <set>
#include <sstream>

#include <gmock/gmock.h>

#ifndef _WIN32
#include <csignal>

#include <sys/wait.h>
#include <unistd.h>
#endif

#include "center/history/restore.h"
#include "tests/center/other_process.h"
#include "tests/center/window_on_set.h"

namespace vicenter::center::test {
namespace {

using system::MessageResult;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsSupersetOf;
using Texts = std::vector<std::string>;

constexpr const char* kOneLine =
    R"({"lines":[{"FNo":1,"FExp":"别处","FDC":"借","FAccountNumber":"1001","FAcctountName":"库存现金"}]})";
constexpr const char* kAnotherLine =
    R"({"lines":[{"FNo":1,"FExp":"他处","FDC":"借","FAccountNumber":"1001","FAcctountName":"库存现金"}]})";

class TwoProcesses : public WindowOnSet {
  protected:
    int Elsewhere(std::vector<std::string> arguments, const std::string& input = {}) {
        return RunProgram(folder_, set_, std::move(arguments), input);
    }
    int ElsewhereAs(int user, std::vector<std::string> arguments, const std::string& input = {}) {
        arguments.insert(arguments.begin(), {"--user", std::to_string(user)});
        return Elsewhere(std::move(arguments), input);
    }
    void TypeLine() { WindowOnSet::TypeLine(1, "1", "我的", "借", "1001"); }
};

TEST_F(TwoProcesses, ATemplateDeletedElsewhereLeavesNoLinesForTheNextOne) {
    const std::string id = NewTemplate("共用");
    TypeLine();
    ASSERT_EQ(Elsewhere({"--yes", "delete", "共用"}), 0) << Said(folder_);
    ASSERT_EQ(ElsewhereAs(2, {"new"}), 0) << Said(folder_);
    ASSERT_EQ(Value("select FUserID from t_VchTemplate where FID = " + id), "2");
    Answer(MessageResult::No);
    EXPECT_FALSE(Window().Save());
    EXPECT_EQ(TakeMessages(), Texts{"模板 共用 已在别处被删除，是否将当前分录另存为新模板？"});
    EXPECT_EQ(Value("select count(*) as n from t_VchTemplateEntry where FID = " + id), "0");
    // Neither Delete nor Rename reaches the other user's template, and the node does not open it.
    Answer(MessageResult::No);
    Answer(MessageResult::Yes);
    Window().ToolClick("mnuDel");
    EXPECT_EQ(Value("select FUserID from t_VchTemplate where FID = " + id), "2");
    EXPECT_EQ(Window().SelectedNode(), "detail-0");
    // Kept as a new template of one's own instead.
    EXPECT_EQ(Window().TemplateId(), "0");
}

TEST_F(TwoProcesses, MineBecomesATemplateOfItsOwn) {
    const std::string id = NewTemplate("共用");
    TypeLine();
    ASSERT_EQ(Elsewhere({"--yes", "delete", "共用"}), 0) << Said(folder_);
    ASSERT_EQ(ElsewhereAs(2, {"new"}), 0) << Said(folder_);
    Answer(MessageResult::Yes);
    EXPECT_TRUE(Window().Save());
    const std::string own = Window().TemplateId();
    EXPECT_NE(own, id);
    EXPECT_EQ(Value("select FUserID from t_VchTemplate where FID = " + own), "1");
    EXPECT_EQ(Value("select FExp from t_VchTemplateEntry where FID = " + own), "我的");
    EXPECT_EQ(Value("select FIsCanUsed from t_VchTpControl where FID = " + own), "1");
    EXPECT_FALSE(Window().IsDirty());
    EXPECT_EQ(Window().SelectedNode(), "detail-" + own);
}

TEST_F(TwoProcesses, ATemplateSavedElsewhereIsNotOverwrittenInSilence) {
    Window().Tree().NodeClick("detail-1");
    Type(1, column::kRemark, "我的备注");
    ASSERT_EQ(Elsewhere({"save", "日常费用"}, kOneLine), 0) << Said(folder_);
    Answer(MessageResult::No);
    Answer(MessageResult::No);
    EXPECT_FALSE(Window().Save());
    EXPECT_EQ(Value("select FExp from t_VchTemplateEntry where FID = 1"), "别处");
    EXPECT_EQ(Window().RowCount(), 1);
    Window().Cells().Undo();
    EXPECT_EQ(Window().RowCount(), 11);
    EXPECT_EQ(Window().Grid().Text(1, column::kRemark), "我的备注");
    TakeMessages();
    EXPECT_TRUE(Window().Save());
    EXPECT_EQ(Value("select count(*) as n from t_VchTemplateEntry where FID = 1"), "11");
}

// Between the question and its answer.
TEST_F(TwoProcesses, WhatIsDeletedWhileItIsAskedAboutIsNotWrittenToNorTakenForTheStandardTemplate) {
    const std::string id = NewTemplate("共用");
    TypeLine();
    EXPECT_TRUE(Window().Save());
    const std::string standard = Value("select count(*) as n from t_VchTemplateEntry where FID = 0");
    for (const MessageResult overwrite : {MessageResult::Yes, MessageResult::No}) {
        Type(1, column::kRemark, overwrite == MessageResult::Yes ? "我的备注" : "再改");
        ASSERT_EQ(Elsewhere({"sql"}, "if not exists(select 1 from t_VchTemplate where FID = " + id +
                                         ") insert into t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) "
                                         "values(" +
                                         id + ",'共用',1,'0',getdate())"),
                  0);
        ASSERT_EQ(Elsewhere({"save", "共用"}, overwrite == MessageResult::Yes ? kOneLine : kAnotherLine), 0);
        surroundings_.messageBoxes->meanwhile = {{}, [this] {
                                                     ASSERT_EQ(Elsewhere({"--yes", "delete", "共用"}), 0);
                                                     ASSERT_EQ(ElsewhereAs(2, {"new"}), 0);
                                                 }};
        TakeMessages();
        Answer(MessageResult::No);
        Answer(overwrite);
        Answer(MessageResult::No);
        EXPECT_FALSE(Window().Save());
        EXPECT_EQ(TakeMessages().back(), "模板 共用 已在别处被删除，是否将当前分录另存为新模板？");
        EXPECT_EQ(Value("select FUserID from t_VchTemplate where FID = " + id), "2");
        EXPECT_EQ(Value("select count(*) as n from t_VchTemplateEntry where FID = " + id), "0");
        EXPECT_EQ(Window().TemplateId(), id);
        EXPECT_EQ(Window().RowCount(), 1);
        EXPECT_EQ(Cell(1, column::kExplanation), "我的");
        EXPECT_TRUE(Window().IsDirty());
        ASSERT_EQ(ElsewhereAs(2, {"--yes", "delete", "自定义模板(1)"}), 0) << Said(folder_);
    }
    EXPECT_EQ(Value("select count(*) as n from t_VchTemplateEntry where FID = 0"), standard);
}

TEST_F(TwoProcesses, NothingIsAskedWhenNothingHappened) {
    Window().Tree().NodeClick("detail-3");  // foreign currency, rates and amounts of every kind
    Type(1, column::kRemark, "我的备注");
    EXPECT_TRUE(Window().Save());
    Type(1, column::kRemark, "再改");
    EXPECT_TRUE(Window().Save());
    for (const std::string& text : TakeMessages())
        EXPECT_THAT(text, HasSubstr("保存成功"));
}

TEST_F(TwoProcesses, LinesLeftUnderTheNextIdBelongToNobody) {
    const auto leaveBehind = [this](const std::string& fid) {
        session_->Execute(
            "insert into t_VchTemplateEntry(FID,FEntryID,FNo,FExp) values(" + fid +
            ",1,1,'遗留') insert into t_VchTpControl(FID,FNo,FUseFrequency,FKey,FFileCount) values(" + fid +
            ",1,0,'遗留',0)");
    };
    leaveBehind("10");
    Window().ToolClick("mnuNew");
    EXPECT_EQ(Window().TemplateId(), "10");
    EXPECT_EQ(Window().RowCount(), 0);
    EXPECT_EQ(Value("select count(*) as n from t_VchTpControl where FID = 10"), "0");
    // Where an import or a generation would fail on their keys.
    leaveBehind("11");
    ASSERT_EQ(Elsewhere({"generate", "--name", "一月", "--year", "2026", "--period", "10", "--from", "1",
                         "--to", "2"}),
              0)
        << Said(folder_);
    EXPECT_EQ(Value("select count(*) as n from t_VchTemplateEntry where FExp = '遗留'"), "0");
    leaveBehind("12");
    ASSERT_EQ(Elsewhere({"export", "日常费用", folder_.Path("费用.xlsx")}), 0) << Said(folder_);
    ASSERT_EQ(Elsewhere({"import", folder_.Path("费用.xlsx")}), 0) << Said(folder_);
    EXPECT_EQ(Value("select FID from t_VchTemplate where FName = '费用'"), "12");
    EXPECT_EQ(Value("select count(*) as n from t_VchTemplateEntry where FID = 12"), "11");
}

// --- two users, one name

class OneName : public TwoProcesses {
  protected:
    int Generate(int user, const std::string& name) {
        return ElsewhereAs(user, {"--yes", "generate", "--name", name, "--year", "2026", "--period", "10",
                                  "--from", "1", "--to", "2"});
    }
    std::string OwnerOf(const std::string& id) {
        return Value("select FUserID from t_VchTemplate where FID = " + id);
    }
};

TEST_F(OneName, AnotherUsersTemplateIsNotTakenOver) {
    const std::string lines = Value("select count(*) as n from t_VchTemplateEntry where FID = 1");
    EXPECT_EQ(Generate(2, "日常费用"), 1);
    EXPECT_THAT(Said(folder_), HasSubstr("凭证模板“日常费用”属于其他用户（用户编号 1），不允许覆盖"));
    EXPECT_EQ(OwnerOf("1"), "1");
    EXPECT_EQ(Value("select count(*) as n from t_VchTemplateEntry where FID = 1"), lines);
    ASSERT_EQ(Elsewhere({"export", "日常费用", folder_.Path("日常费用.xlsx")}), 0) << Said(folder_);
    EXPECT_EQ(ElsewhereAs(2, {"--yes", "import", folder_.Path("日常费用.xlsx")}), 1);
    EXPECT_THAT(Said(folder_), HasSubstr("模板[日常费用]属于其他用户（用户编号 1），不允许覆盖，引入失败！"));
    EXPECT_EQ(OwnerOf("1"), "1");
}

TEST_F(OneName, TheUsersOwnComesFirst) {
    // Both have one; the other user's has the lower id.
    session_->Execute("update t_VchTemplate set FName = '同名' where FID in (1, 5)");
    ASSERT_EQ(OwnerOf("5"), "2");
    ASSERT_EQ(Generate(2, "同名"), 0) << Said(folder_);
    EXPECT_EQ(OwnerOf("1"), "1");
    EXPECT_EQ(OwnerOf("5"), "2");
    EXPECT_EQ(Value("select max(FNo) as n from t_VchTemplateEntry where FID = 5"), "2");
    EXPECT_EQ(Value("select count(*) as n from t_VchTemplateEntry where FID = 1"), "11");
}

TEST_F(OneName, TheStandardTemplateKeepsItsOwner) {
    ASSERT_EQ(Generate(2, "标准模板"), 0) << Said(folder_);
    EXPECT_EQ(OwnerOf("0"), "0");
    ASSERT_EQ(Elsewhere({"export", "日常费用", folder_.Path("标准模板.xlsx")}), 0) << Said(folder_);
    ASSERT_EQ(Elsewhere({"--yes", "import", folder_.Path("标准模板.xlsx")}), 0) << Said(folder_);
    EXPECT_EQ(OwnerOf("0"), "0");
}

// --- a save that is refused

TEST_F(TwoProcesses, ASaveThatTheAccountSetRefusesKeepsWhatWasTyped) {
    Window().Tree().NodeClick("detail-1");
    Type(1, column::kRemark, "我的备注");
    Type(2, column::kRemark, "第二行");
    Window().Cells().MoveActiveCell({1, 1});
    // Beyond its column: the batch is refused as a whole.
    ASSERT_TRUE(Window().Grid().SetText(1, column::kExplanation, std::string(256, 'x')));
    Window().Save();
    EXPECT_EQ(Window().Grid().Text(1, column::kRemark), "附发票");
    EXPECT_TRUE(Window().IsDirty());
    Window().Cells().Undo();
    EXPECT_EQ(Window().Grid().Text(1, column::kRemark), "我的备注");
    EXPECT_EQ(Window().Grid().Text(2, column::kRemark), "第二行");
    ASSERT_TRUE(Window().Grid().SetText(1, column::kExplanation, "短"));
    EXPECT_TRUE(Window().Save());
    EXPECT_EQ(Value("select FRemark from t_VchTemplateEntry where FID = 1 and FEntryID = 2"), "第二行");
}

#ifndef _WIN32  // where no process is a copy of another
// --- a window whose process is killed

// Runs work in a process of its own until it says so, and kills it there.
void KillWhenDone(const std::function<void()>& work) {
    int said[2];
    ASSERT_EQ(0, pipe(said));
    const pid_t child = fork();
    if (child == 0) {
        work();
        const ssize_t written = write(said[1], "x", 1);
        pause();
        _exit(written == 1 ? 0 : 1);
    }
    char word = 0;
    EXPECT_EQ(1, read(said[0], &word, 1));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    close(said[0]);
    close(said[1]);
}

TEST(KilledWindow, LeavesADraftThatTheNextOneOffers) {
    const host::test::TestFolder folder;
    const std::string set = host::test::CopySet(folder);
    const automation::ClassRegistry::Restore restore;
    const auto messages = std::make_shared<fakes::RecordingMessageBoxes>();
    system::Surroundings surroundings =
        system::Surroundings::OfSystem();  // processes and windows as they are
    surroundings.messageBoxes = messages;
    const system::SurroundingsScope scope(surroundings);
    FakeVICenterView view;
    KillWhenDone([&] {
        const auto session = host::RegisterHostComponents({host::FileConnectString(set), 1});
        auto* window = new frmVICenter(view, nullptr);  // killed with its process, never closed
        window->Load();
        window->Tree().NodeClick("detail-1");
        window->Cells().MoveActiveCell({1, column::kRemark});
        window->Cells().CommitText({1, column::kRemark}, "未保存");
        // Not yet left.
        window->KeepDraft(TypedText{{12, column::kExplanation}, "还在录入"});
    });
    const auto session = host::RegisterHostComponents({host::FileConnectString(set), 1});
    frmVICenter window(view, nullptr);
    window.Load();
    messages->answers = {MessageResult::Yes};
    window.Shown();
    ASSERT_EQ(messages->Texts().size(), 1U);
    EXPECT_THAT(messages->Texts()[0], HasSubstr("模板 日常费用 有上次未保存的修改"));
    EXPECT_EQ(window.TemplateId(), "1");
    EXPECT_EQ(window.Grid().Text(1, column::kRemark), "未保存");
    EXPECT_EQ(window.Grid().Text(12, column::kExplanation), "还在录入");
    EXPECT_EQ(window.RowCount(), 12);
    EXPECT_TRUE(window.IsDirty());
    window.Cells().MoveActiveCell({12, column::kExplanation});
    window.Cells().CommitText({12, column::kExplanation}, "");
    EXPECT_TRUE(window.Save());
    EXPECT_EQ(session->Execute("select FRemark from t_VchTemplateEntry where FID = 1 and FEntryID = 1")
                  ->Value(std::size_t{0})
                  .ToText(),
              "未保存");
    entry::SetCurrentUserId("");
}
#endif

// What the window counts of all templates, in each of them, and what the program does.
TEST_F(TwoProcesses, TheWindowAndTheProgramCountTheSameFaults) {
    ASSERT_EQ(Elsewhere({"check", "--all"}), 1);
    std::string counted = Said(folder_);
    const std::size_t listed = static_cast<std::size_t>(std::count(counted.begin(), counted.end(), '\n')) - 1;
    counted = counted.substr(counted.find("检查了"));
    counted.erase(counted.find('\n'));
    TakeMessages();
    Window().Tree().NodeClick(std::string(kRootKey));
    for (const TreeMenuItem& item : Window().Tree().MenuItems()) {
        if (item.text.starts_with("检查全部模板")) item.run();
    }
    EXPECT_EQ(TakeMessages(), Texts{counted + "详见异常列表。"});
    std::size_t cells = 0;
    for (const TreeNode& node : Window().Nodes()) {
        if (!node.key.starts_with("detail-")) continue;
        Window().Tree().NodeClick(node.key);
        cells += Window().Faults().Cells().size();
    }
    EXPECT_EQ(cells, listed);
    EXPECT_NE(counted.find("异常 " + std::to_string(cells) + " 处"), std::string::npos) << counted;
}

// Whatever way leads there: what is stored bears no sign of changes, what is not does.
TEST_F(TwoProcesses, AConflictThatWasAnsweredNoLeavesTheSignToWhatDiffers) {
    Window().Tree().NodeClick("detail-1");
    Type(1, column::kExplanation, "我的");
    ASSERT_EQ(Elsewhere({"save", "日常费用"}, kOneLine), 0) << Said(folder_);
    Answer(MessageResult::No);
    Answer(MessageResult::No);
    EXPECT_FALSE(Window().Save());
    EXPECT_FALSE(Window().IsDirty());
    for (int round = 0; round < 2; ++round) {
        Window().Cells().Undo();
        EXPECT_EQ(Cell(1, column::kExplanation), "我的");
        EXPECT_TRUE(Window().IsDirty());
        Window().Cells().Redo();
        EXPECT_EQ(Cell(1, column::kExplanation), "别处");
        EXPECT_FALSE(Window().IsDirty()) << "that is what is stored";
    }
}

// One rule for all: what is reported of templates that are not open, the list of the open one's cells and the
// program, whichever is open, read again or saved.
class OneAnswer : public TwoProcesses {
  protected:
    void SetUp() override {
        TwoProcesses::SetUp();
        session_->Execute("update t_VchTemplateEntry set FAmount = 7 where FID = 1 and FEntryID = 3");
        session_->Execute("update t_VchTemplateEntry set FItemsInfo = '' where FID = 1");
        session_->Execute("update t_VchTemplateEntry set FExp = '' where FID = 2 and FEntryID = 1");
        session_->Execute("update t_VchTemplateEntry set FQty = 2, FPrice = 3.5 where FID = 0");
        session_->Execute("update t_VchTemplateEntry set FSettleName = '', FSettleID = 0");
        Window().Tree().NodeClick("detail-0");
    }
    // "template|row|reason", a hint's behind its mark.
    static std::string Key(const std::string& name, int row, const std::string& reason) {
        return name + "|" + std::to_string(row) + "|" + reason;
    }
    std::multiset<std::string> OfWindow() {
        std::multiset<std::string> keys;
        for (const CellAddress& cell : Window().Faults().Cells()) {
            const Fault fault = Window().Faults().Describe(cell);
            keys.insert(Key(Window().TemplateName(), cell.row, fault.reason));
            const std::string marked = Window().Cells().DescribeHint(cell);
            EXPECT_EQ(Window().Cells().IsHint(cell) ? "提示：" + marked : marked,
                      fault.hint ? fault.reason : "");
        }
        for (const ReportedFault& fault : Window().Faults().Reported())
            keys.insert(Key(fault.source, fault.fault.row, fault.fault.reason));
        return keys;
    }
    std::multiset<std::string> OfProgram() {
        EXPECT_EQ(Elsewhere({"check", "--all"}), 1);
        std::multiset<std::string> keys;
        std::istringstream said(Said(folder_));
        for (std::string line; std::getline(said, line);) {
            std::vector<std::string> fields;
            std::istringstream cut(line);
            for (std::string field; std::getline(cut, field, '\t');)
                fields.push_back(field);
            if (fields.size() < 6) continue;
            keys.insert(Key(fields[0], std::stoi(fields[3].substr(std::string("行").size())),
                            (fields[1] == "提示" ? "提示：" : "") + fields[5]));
        }
        return keys;
    }
    void CheckAll() {
        Window().Tree().NodeClick(std::string(kRootKey));
        for (const TreeMenuItem& item : Window().Tree().MenuItems()) {
            if (item.text.starts_with("检查全部模板")) item.run();
        }
        surroundings_.messageBoxes->shown.clear();
    }
};

TEST_F(OneAnswer, OfListMarksReportsAndProgramIsTheSame) {
    const std::multiset<std::string> program = OfProgram();
    ASSERT_THAT(program,
                IsSupersetOf({"日常费用|3|提示：借贷金额不平", "日常费用|1|提示：科目核算项目，尚未录入",
                              "销售与收款|1|凭证模板 1 号第一行摘要为空，请录入摘要！"}));
    CheckAll();
    EXPECT_EQ(OfWindow(), program);
    for (const TreeNode& node : Window().Nodes()) {
        if (node.key == kRootKey) continue;
        Window().Tree().NodeClick(node.key);
        EXPECT_EQ(OfWindow(), program) << node.text << " is open";
        Window().Tree().NodeClick(node.key);
        EXPECT_EQ(OfWindow(), program) << node.text << " was read again";
    }
    Window().Tree().NodeClick("detail-1");
    Type(1, column::kRemark, "改过");
    ASSERT_TRUE(Window().Save());
    EXPECT_EQ(OfWindow(), program) << "saved";
}

TEST_F(OneAnswer, OfOneTemplateIsWhatIsSaidOfItAmongAll) {
    const std::multiset<std::string> all = OfProgram();
    const auto hints = std::count_if(all.begin(), all.end(),
                                     [](const std::string& key) { return key.starts_with("日常费用|"); });
    EXPECT_EQ(Elsewhere({"check", "日常费用"}), 0);
    EXPECT_THAT(Said(folder_),
                EndsWith("模板 日常费用：异常 0 处，提示 " + std::to_string(hints) + " 处。\n"));
    EXPECT_EQ(Elsewhere({"check", "销售与收款"}), 1);
    EXPECT_THAT(Said(folder_), HasSubstr("：异常 1 处，"));
}

// Whoever chose a version in a list may be too late: another command has let it go meanwhile.
TEST_F(TwoProcesses, AVersionThatIsGoneEmptiesNothing) {
    const std::string id = NewTemplate("版本");
    ASSERT_EQ(Elsewhere({"save", "版本"}, kOneLine), 0);
    ASSERT_EQ(Elsewhere({"save", "版本"}, kAnotherLine), 0);
    const store::History history = store::ReadHistory(id);
    ASSERT_EQ(history.versions.size(), 3U);  // named, saved, saved again
    ASSERT_EQ(Elsewhere({"sql"}, "delete from t_VchTpHistoryEntry delete from t_VchTpHistory"), 0);
    surroundings_.messageBoxes->answers = {MessageResult::Yes};
    const store::TemplateOutcome over = RestoreOver(history.versions.front(), id, "版本");
    EXPECT_EQ(over.state, store::TemplateOutcome::State::Refused);
    EXPECT_EQ(Value("select count(*) from t_VchTemplateEntry where FID = " + id), "1");
    const store::TemplateOutcome added = RestoreAsNew(history.versions.front(), "另一个", "1");
    EXPECT_EQ(added.state, store::TemplateOutcome::State::Refused);
    EXPECT_EQ(Value("select count(*) from t_VchTemplate where FName = '另一个'"), "0");
    const auto& shown = surroundings_.messageBoxes->shown;
    ASSERT_GE(shown.size(), 2U);
    EXPECT_THAT(shown[1].text, HasSubstr("历史版本已不存在，没有恢复！"));
    EXPECT_EQ(shown.back().text, "模板 另一个 恢复失败！");
}

TEST_F(TwoProcesses, ASaveOfWhatIsStoredLeavesNoVersion) {
    const std::string versions = "select count(*) from t_VchTpHistory where FID = 1";
    Window().Tree().NodeClick("detail-1");
    const std::string amount = Cell(1, column::kAmount);
    Type(1, column::kAmount, "1");
    Type(1, column::kAmount, amount + ".00");
    EXPECT_TRUE(Window().Save());
    EXPECT_EQ(Value(versions), "0");
    Type(1, column::kAmount, "1");
    EXPECT_TRUE(Window().Save());
    EXPECT_EQ(Value(versions), "1");
}

// Between the list and the choice another may have deleted the template: lines without a template would be
// born into whoever's is the next of that id.
TEST_F(TwoProcesses, AVersionIsNotRestoredOverATemplateThatIsGone) {
    const std::string id = NewTemplate("版本");
    ASSERT_EQ(Elsewhere({"save", "版本"}, kOneLine), 0);
    ASSERT_EQ(Elsewhere({"save", "版本"}, kOneLine), 0);
    const store::History history = store::ReadHistory(id);
    ASSERT_EQ(Elsewhere({"--yes", "delete", "版本"}), 0);
    surroundings_.messageBoxes->answers = {MessageResult::Yes};
    EXPECT_EQ(RestoreOver(history.versions.front(), id, "版本").state, store::TemplateOutcome::State::Failed);
    EXPECT_EQ(surroundings_.messageBoxes->shown.back().text,
              "模板 版本 已在别处被删除，没有恢复，账套保持原样！");
    EXPECT_EQ(Value("select count(*) from t_VchTemplateEntry where FID = " + id), "0");
    EXPECT_EQ(Value("select count(*) from t_VchTpControl where FID = " + id), "0");
    // Nor is it whoever's template has the id now.
    ASSERT_EQ(ElsewhereAs(2, {"new"}), 0);
    ASSERT_EQ(Value("select FUserID from t_VchTemplate where FID = " + id), "2");
    surroundings_.messageBoxes->answers = {MessageResult::Yes};
    EXPECT_EQ(RestoreOver(history.versions.front(), id, "版本").state, store::TemplateOutcome::State::Failed);
    EXPECT_EQ(Value("select count(*) from t_VchTemplateEntry where FID = " + id), "0");
}

TEST_F(TwoProcesses, BlanksAroundARestoredNameMakeNoSecondTemplateOfIt) {
    const std::string id = NewTemplate("版本");
    ASSERT_EQ(Elsewhere({"save", "版本"}, kOneLine), 0);
    const store::History history = store::ReadHistory(id);
    EXPECT_EQ(RestoreAsNew(history.versions.front(), "  版本 ", "1").state,
              store::TemplateOutcome::State::Failed);
    EXPECT_EQ(surroundings_.messageBoxes->shown.back().text, "模板名称不允许重复，恢复失败！");
    EXPECT_EQ(Value("select count(*) from t_VchTemplate where FName = '版本'"), "1");
}

// A host whose connections know no units.
class WithoutUnits {
  public:
    WithoutUnits() { ado::HostFramework::SetProcess(std::make_shared<Framework>()); }
    WithoutUnits(const WithoutUnits&) = delete;
    WithoutUnits& operator=(const WithoutUnits&) = delete;
    ~WithoutUnits() { ado::HostFramework::SetProcess(nullptr); }

  private:
    class Broker : public ado::Broker {
      public:
        void Bind(const std::string& propsString) override { propsString_ = propsString; }
        automation::ObjectRef Auxiliary() override { return nullptr; }
        void Settle() override {}
        ado::ConnectionRef GiveConnection() override {
            return ado::OpenConnection(ado::ConnectString(propsString_).Value("ConnectString"));
        }

      private:
        std::string propsString_;
    };
    class Framework : public ado::HostFramework {
      public:
        std::shared_ptr<ado::Broker> GiveBroker() override { return std::make_shared<Broker>(); }
        automation::ObjectRef CreateObject(const std::string& progId) override {
            return automation::CreateObject(progId);
        }
    };
};

// A command whose end nobody heard of may have written: then the version is all that is left of the lines.
TEST_F(TwoProcesses, AVersionIsGivenUpOnlyWhereItIsWhatStandsThere) {
    const std::string id = NewTemplate("版本");
    ASSERT_EQ(Elsewhere({"save", "版本"}, kOneLine), 0);
    const std::string kept = "select count(*) from t_VchTpHistory where FCommand = 3 and FID = " + id;
    const WithoutUnits host;
    {
        const store::KeptVersions nothingWritten({store::SeenAs(id, "1", "版本")},
                                                 store::HistoryCommand::Generate);
    }
    EXPECT_EQ(Value(kept), "0");
    {
        const store::KeptVersions written({store::SeenAs(id, "1", "版本")}, store::HistoryCommand::Generate);
        session_->Execute("update t_VchTemplateEntry set FAmount = 5 where FID = " + id);
    }
    EXPECT_EQ(Value(kept), "1");
    {
        const store::KeptVersions deleted({store::SeenAs(id, "1", "版本")}, store::HistoryCommand::Generate);
        session_->Execute("delete t_VchTemplate where FID = " + id);
    }
    EXPECT_EQ(Value(kept), "2");
}

}  // namespace
}  // namespace vicenter::center::test
