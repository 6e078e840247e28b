// An account set that cannot be read for a while, under a window in which somebody types codes: what was
// typed stays, no code is called unknown, and nothing is saved whose id nobody has read.

#include <chrono>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "automation/class_registry.h"
#include "center/frame/frm_vi_center.h"
#include "entry/host_context.h"
#include "host/components/components.h"
#include "tests/center/fake_view.h"
#include "tests/fakes/fake_surroundings.h"
#include "tests/host/demo_set.h"

namespace vicenter::center::test {
namespace {

using testing::HasSubstr;
using Texts = std::vector<std::string>;

constexpr const char* kUnread = "基础资料无法读取";

class UnreadMaster : public testing::Test {
  protected:
    void SetUp() override {
        session_ = host::RegisterHostComponents({host::FileConnectString(set_), 1});
        window_ = std::make_unique<frmVICenter>(view_, nullptr);
        window_->Load();
        window_->ToolClick("mnuNew");
        ASSERT_TRUE(window_->Tree().AfterLabelEdit("断开"));
    }
    void TearDown() override {
        window_.reset();
        entry::SetCurrentUserId("");
    }
    // A drive that is unplugged, a share that is gone.
    void TakeSetAway() {
        std::filesystem::rename(set_, set_ + ".away");
        // A look at the file is good for a millisecond: the session that is open now is told first.
        const auto begin = std::chrono::steady_clock::now();
        try {
            while (std::chrono::steady_clock::now() - begin < std::chrono::seconds(60))
                Value("select count(*) as n from t_Account");
            ADD_FAILURE() << "the set can still be read";
        } catch (const automation::Error&) {
            // Gone.
        }
    }
    void BringSetBack() { std::filesystem::rename(set_ + ".away", set_); }

    std::string Cell(int row, int gridColumn) { return std::string(window_->Grid().Text(row, gridColumn)); }
    std::string Fault(int row, int gridColumn) { return window_->Cells().DescribeFault({row, gridColumn}); }
    bool IsRed(int row, int gridColumn) {
        return window_->Grid().Look(row, gridColumn).foreColor == color::kRed;
    }
    void Type(int row, int gridColumn, const std::string& text) {
        window_->Cells().MoveActiveCell({row, gridColumn});
        ASSERT_EQ(window_->Cells().CommitText({row, gridColumn}, text), TextVerdict::Taken);
    }
    void Leave() { window_->Cells().MoveActiveCell({1, column::kRemark}); }
    void TypeLine(const std::string& account) {
        Type(1, column::kNo, "1");
        Type(1, column::kExplanation, "手工");
        Type(1, column::kDirection, "借");
        Type(1, column::kAccountNumber, account);
        Leave();
    }
    std::string Value(const std::string& sql) {
        const ado::RecordsetRef rows = session_->Execute(sql);
        return rows->RecordCount() < 1 ? "none" : rows->Value(std::size_t{0}).ToTextOrEmpty();
    }
    Texts TakeMessages() {
        Texts texts = surroundings_.messageBoxes->Texts();
        surroundings_.messageBoxes->shown.clear();
        return texts;
    }

    host::test::TestFolder folder_;
    automation::ClassRegistry::Restore restore_;
    fakes::FakeSurroundings surroundings_;
    std::string set_ = host::test::CopySet(folder_);
    host::HostSessionRef session_;
    FakeVICenterView view_;
    std::unique_ptr<frmVICenter> window_;
};

TEST_F(UnreadMaster, ACodeTypedMeanwhileStaysAndIsReadBeforeItIsSaved) {
    TypeLine("1001");
    ASSERT_EQ(Cell(1, column::kAccountName), "库存现金");
    TakeSetAway();
    Type(1, column::kAccountNumber, "1002.01");
    Leave();
    EXPECT_EQ(Cell(1, column::kAccountNumber), "1002.01");
    EXPECT_TRUE(IsRed(1, column::kAccountNumber));
    EXPECT_THAT(Fault(1, column::kAccountNumber), HasSubstr(kUnread));
    EXPECT_THAT(view_.status.hint, HasSubstr("基础资料无法读取：1002.01（"));
    EXPECT_THAT(TakeMessages(), testing::IsEmpty());

    // The id and the name are still those of the account before.
    window_->ToolClick("mnuSave");
    const Texts said = TakeMessages();
    ASSERT_EQ(said.size(), 1U);
    EXPECT_THAT(said[0], HasSubstr("行1 科目代码(*) 基础资料无法读取：1002.01（"));
    EXPECT_THAT(said[0], HasSubstr("）"));
    EXPECT_TRUE(window_->IsDirty());

    BringSetBack();
    window_->ToolClick("mnuSave");
    EXPECT_THAT(TakeMessages().back(), HasSubstr("保存成功"));
    EXPECT_FALSE(IsRed(1, column::kAccountNumber));
    EXPECT_EQ(Value("select e.FAccountNumber + '/' + a.FNumber + '/' + e.FAcctountName from "
                    "t_VchTemplateEntry e inner join t_Account a on a.FAccountID = e.FAccountID where "
                    "e.FID = " +
                    window_->TemplateId()),
              "1002.01/1002.01/" + Cell(1, column::kAccountName));
    EXPECT_NE(Cell(1, column::kAccountName), "库存现金");
}

TEST_F(UnreadMaster, ComingBackToTheCellReadsItsCode) {
    TypeLine("1001");
    TakeSetAway();
    Type(1, column::kCurrencyName, "USD");
    Leave();
    EXPECT_EQ(Cell(1, column::kCurrencyName), "USD");
    EXPECT_EQ(Cell(1, column::kCurrencyId), "");
    BringSetBack();
    window_->Cells().MoveActiveCell({1, column::kCurrencyName});
    Leave();
    EXPECT_EQ(Cell(1, column::kCurrencyName), "美元");
    EXPECT_EQ(Cell(1, column::kCurrencyId), "2");
    EXPECT_EQ(Fault(1, column::kCurrencyName), "科目不核算该币别，可用：人民币");
}

TEST_F(UnreadMaster, MovingThroughSoundCellsChangesNothingAndCallsNothingUnknown) {
    TypeLine("1001");
    window_->ToolClick("mnuSave");
    TakeMessages();
    ASSERT_FALSE(window_->IsDirty());
    TakeSetAway();
    window_->Cells().MoveActiveCell({1, column::kAccountNumber});
    Leave();
    EXPECT_FALSE(window_->IsDirty());
    EXPECT_EQ(Cell(1, column::kAccountName), "库存现金");
    EXPECT_THAT(Fault(1, column::kAccountNumber), HasSubstr(kUnread));
    BringSetBack();
    EXPECT_THAT(Fault(1, column::kAccountNumber), HasSubstr("现在检查已通过"));
    window_->Cells().MoveActiveCell({1, column::kAccountNumber});
    Leave();
    EXPECT_FALSE(IsRed(1, column::kAccountNumber));
    EXPECT_EQ(Fault(1, column::kAccountNumber), "");
}

TEST_F(UnreadMaster, PastedCodesAreToldAndReadLater) {
    TypeLine("1001");
    TakeSetAway();
    const PasteResult pasted =
        window_->Cells().PasteBlock({1, column::kAccountNumber}, CopiedBlock("1002.01\n9999"));
    ASSERT_EQ(pasted.refused.size(), 2U);
    EXPECT_THAT(pasted.refused[0].reason, HasSubstr("基础资料无法读取：1002.01"));
    EXPECT_EQ(Cell(2, column::kAccountNumber), "9999");
    EXPECT_THAT(Fault(2, column::kAccountNumber), HasSubstr(kUnread));
    BringSetBack();
    for (const int row : {1, 2}) {
        window_->Cells().MoveActiveCell({row, column::kAccountNumber});
        Leave();
    }
    EXPECT_NE(Cell(1, column::kAccountName), "库存现金");
    EXPECT_EQ(Fault(1, column::kAccountNumber), "");
    EXPECT_EQ(Fault(2, column::kAccountNumber), "科目代码不存在");
}

TEST_F(UnreadMaster, AnExplanationIsSavedAsItStands) {
    TypeLine("1001");
    TakeSetAway();
    Type(1, column::kExplanation, "自由摘要");
    Leave();
    EXPECT_THAT(Fault(1, column::kExplanation), HasSubstr(kUnread));
    BringSetBack();
    window_->ToolClick("mnuSave");
    EXPECT_THAT(TakeMessages().back(), HasSubstr("保存成功"));
    EXPECT_EQ(Cell(1, column::kExplanation), "自由摘要");
    EXPECT_FALSE(IsRed(1, column::kExplanation));
}

TEST_F(UnreadMaster, TheUnitLookUpTellsInsteadOfOpeningNothing) {
    TypeLine("1001");
    window_->Cells().MoveActiveCell({1, column::kUnitName});
    TakeSetAway();
    window_->Cells().OpenLookUp();
    const Texts said = TakeMessages();
    ASSERT_EQ(said.size(), 1U);
    EXPECT_THAT(said[0], HasSubstr("基础资料无法读取：计量单位组（"));
}

}  // namespace
}  // namespace vicenter::center::test
