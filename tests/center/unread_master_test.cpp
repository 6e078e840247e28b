// An account set that cannot be read for a while, under a window in which somebody types codes: what was
// typed stays, no code is called unknown, and nothing is saved whose id nobody has read.

#include <chrono>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/center/window_on_set.h"

namespace vicenter::center::test {
namespace {

using testing::HasSubstr;
using Texts = std::vector<std::string>;

constexpr const char* kUnread = "基础资料无法读取";

class UnreadMaster : public WindowOnSet {
  protected:
    void SetUp() override {
        WindowOnSet::SetUp();
        NewTemplate("断开");
    }
#ifdef _WIN32
    // Nobody takes away there what is open: somebody renames the tables beneath the window.
    void TakeSetAway() {
        for (const std::string& table : kMasters)
            session_->Execute("exec sp_rename '" + table + "', '" + table + "_away'");
    }
    void BringSetBack() {
        for (const std::string& table : kMasters)
            session_->Execute("exec sp_rename '" + table + "_away', '" + table + "'");
    }
    const Texts kMasters = {"t_Account", "t_Currency", "t_MeasureUnit", "t_UnitGroup", "t_VoucherExp"};
#else
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
    void BringSetBack() {
        std::filesystem::rename(set_ + ".away", set_);
    }
#endif

    std::string Fault(int row, int gridColumn) {
        return window_->Cells().DescribeFault({row, gridColumn});
    }
    void Leave() {
        window_->Cells().MoveActiveCell({1, column::kRemark});
    }
    void TypeLine(const std::string& account) {
        WindowOnSet::TypeLine(1, "1", "手工", "借", account);
        Leave();
    }
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
