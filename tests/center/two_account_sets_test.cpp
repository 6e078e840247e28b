// A host that goes to another account set, or to another user, while windows of it stand open: each window
// goes on where it was opened.

#include <filesystem>

#include <gmock/gmock.h>

#include "platform/system/file_names.h"
#include "tests/center/window_on_set.h"

namespace vicenter::center::test {
namespace {

using testing::EndsWith;
using testing::StartsWith;

// Two account sets of one firm, as two years of it are: ids, names and lines of the templates are the same.
class TwoAccountSets : public WindowOnSet {
  protected:
    void SetUp() override {
        std::filesystem::copy_file(system::PathFromUtf8(set_), system::PathFromUtf8(other_));
        WindowOnSet::SetUp();
    }
    void TearDown() override {
        otherWindow_.reset();
        WindowOnSet::TearDown();
    }
    void GoToTheOther() { session_ = host::RegisterHostComponents({host::FileConnectString(other_), 1}); }
    void OpenTheOther() {
        GoToTheOther();
        otherWindow_ = std::make_unique<frmVICenter>(otherView_, nullptr);
        otherWindow_->Load();
    }
    static std::string ValueIn(const std::string& set, const std::string& sql) {
        const ado::RecordsetRef rows = ado::OpenConnection(host::FileConnectString(set))->Execute(sql);
        return rows->AtEnd() ? "none" : rows->Value(std::size_t{0}).ToTextOrEmpty();
    }
    static std::string FirstExplanation(const std::string& set) {
        return ValueIn(set, "select top 1 FExp from t_VchTemplateEntry where FID = 0 order by FNo,FEntryID");
    }
    static void TypeIn(frmVICenter& window, const std::string& text) {
        window.Cells().MoveActiveCell({1, column::kExplanation});
        ASSERT_EQ(window.Cells().CommitText({1, column::kExplanation}, text), TextVerdict::Taken);
    }
    Texts DraftsIn() const {
        Texts names;
        for (const std::string& name : system::NamesIn(folder_.Path())) {
            if (name.ends_with(".draft")) names.push_back(name);
        }
        return names;
    }

    std::string other_ = folder_.Path("other.vas");
    FakeVICenterView otherView_;
    std::unique_ptr<frmVICenter> otherWindow_;
};

TEST_F(TwoAccountSets, AWindowSavesWhereItWasOpened) {
    const std::string before = FirstExplanation(other_);
    GoToTheOther();
    TypeIn(Window(), "这个账套的");
    Window().ToolClick("mnuSave");
    EXPECT_EQ(TakeMessages(), Texts{"模板 标准模板 保存成功！"});
    EXPECT_EQ(FirstExplanation(set_), "这个账套的");
    EXPECT_EQ(FirstExplanation(other_), before);
    EXPECT_EQ(Cell(1, column::kExplanation), "这个账套的");
}

TEST_F(TwoAccountSets, EachOfTwoWindowsMakesTemplatesInItsOwn) {
    OpenTheOther();
    const std::string count = "select count(*) from t_VchTemplate";
    const std::string before = ValueIn(set_, count);
    Window().ToolClick("mnuNew");
    EXPECT_EQ(ValueIn(other_, count), before);
    EXPECT_NE(ValueIn(set_, count), before);
    TypeIn(*otherWindow_, "另一个账套的");
    TypeIn(Window(), "这个账套的");
    otherWindow_->ToolClick("mnuSave");
    EXPECT_EQ(FirstExplanation(other_), "另一个账套的");
    EXPECT_NE(FirstExplanation(set_), "另一个账套的");
}

TEST_F(TwoAccountSets, ADraftLiesBesideTheSetThatItWasTypedFor) {
    GoToTheOther();
    TypeIn(Window(), "这个账套的");
    Window().KeepDraft();
    const Texts drafts = DraftsIn();
    ASSERT_EQ(drafts.size(), 1U);
    EXPECT_THAT(drafts.front(), StartsWith("set.vas-"));
}

// --- rows that go from one to the other

// The other set counts its accounts and settlement types by other ids, as every set that was begun anew does.
class RowsBetweenAccountSets : public TwoAccountSets {
  protected:
    void SetUp() override {
        TwoAccountSets::SetUp();
        ado::OpenConnection(host::FileConnectString(other_))
            ->Execute(
                "update t_Account set FAccountID = FAccountID + 5000 "
                "update t_Settle set FItemID = FItemID + 700");
        OpenTheOther();
        copied_ = Window().Cells().CopyBlock(CellSelection::Rows({{1, 2}})).value_or(CopiedBlock());
    }
    std::string OtherCell(int row, int gridColumn) {
        return std::string(otherWindow_->Grid().Text(row, gridColumn));
    }
    std::string OtherId(const std::string& account) {
        return ValueIn(other_, "select FAccountID from t_Account where FNumber = '" + account + "'");
    }

    CopiedBlock copied_;
};

TEST_F(RowsBetweenAccountSets, ArePastedByTheirCodes) {
    const int row = otherWindow_->RowCount() + 1;
    otherWindow_->Cells().PasteBlock(CellSelection::Rows({{row, row}}), copied_);
    for (int i = 0; i < 2; ++i) {
        for (const int c : {column::kExplanation, column::kAccountNumber, column::kAmount})
            EXPECT_EQ(OtherCell(row + i, c), Cell(1 + i, c));
        EXPECT_EQ(OtherCell(row + i, column::kAccountId), OtherId(Cell(1 + i, column::kAccountNumber)));
    }
    EXPECT_EQ(
        OtherCell(row + 1, column::kSettleId),
        ValueIn(other_, "select FItemID from t_Settle where FName = '" + Cell(2, column::kSettleName) + "'"));
}

TEST_F(RowsBetweenAccountSets, StayAsTheyAreInAnotherWindowOnTheSameSet) {
    FakeVICenterView view;
    session_ = host::RegisterHostComponents({host::FileConnectString(set_), 1});
    frmVICenter second(view, nullptr);
    second.Load();
    const int row = second.RowCount() + 1;
    second.Cells().PasteBlock(CellSelection::Rows({{row, row}}), copied_);
    for (int c = 1; c <= kColumnCount; ++c)
        EXPECT_EQ(second.Grid().Text(row, c), Cell(1, c)) << c;
}

TEST_F(RowsBetweenAccountSets, AreNotDroppedOnATemplate) {
    const std::string lines = "select count(*) from t_VchTemplateEntry";
    const std::string before = ValueIn(other_, lines);
    Answer(system::MessageResult::Yes);
    otherWindow_->Tree().DropRows("detail-1", copied_);
    EXPECT_EQ(TakeMessages(), Texts{"所选的行来自另一个账套，没有复制！\r\n\r\n请复制这些行，打开模板 "
                                    "日常费用 后粘贴，各代码按这个账套的基础资料对应。"});
    EXPECT_EQ(ValueIn(other_, lines), before);
}

// ---

TEST_F(TwoAccountSets, WhatAHostRenewsInItsConnectStringCounts) {
    // The same set, by other words: whoever may open it now does.
    session_ = host::RegisterHostComponents({host::FileConnectString(set_) + ";Access=read", 1});
    TypeIn(Window(), "这个账套的");
    Window().ToolClick("mnuSave");
    EXPECT_NE(FirstExplanation(set_), "这个账套的");
}

}  // namespace
}  // namespace vicenter::center::test
