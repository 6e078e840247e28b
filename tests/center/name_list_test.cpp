// The typing name lists of columns 2, 5, 9, 13 and 17.

#include "tests/center/center_fixture.h"

namespace vicenter::center::test {
namespace {

class NameLists : public CenterTest {
  protected:
    NameLists() {
        for (const auto& list : {first_, second_}) {
            list->On("GetNameList", [this](Arguments&) {
                ++read_;
                return Variant(Rows({"FID", "FNumber", "FName", "FDetail"}, entries_));
            });
        }
    }
    void SetUp() override {
        lines_["0"] = {Line(1, "收款")};
        Open();
    }
    void TypeAt(int row, int gridColumn, const std::string& text) {
        if (!(Grid().ActiveCell() == CellAddress{row, gridColumn}))
            Window().Cells().MoveActiveCell({row, gridColumn});
        Window().Names().TextTyped(text);
    }
    Texts Shown() const {
        Texts shown;
        for (const NameListState::Entry& entry : view_.nameList.entries)
            shown.push_back(entry.number + " " + entry.name);
        return shown;
    }

    fakes::ScriptedRef first_ = fakes::RegisterScripted("VelaGLNameListLib.GLNameList");
    fakes::ScriptedRef second_ = fakes::RegisterScripted("VelaGLNameListLib2.GLNameList");
    std::vector<std::vector<Variant>> entries_{{1001, "1001", "库存现金", 1},
                                               {1002, "1002", "银行存款", 0},
                                               {1003, "1002.01", "工商银行", 1},
                                               {2001, "2001", "短期借款", 1}};
    int read_ = 0;
};

TEST_F(NameLists, ComeFromTheLibraryOfTheirColumn) {
    set_.Answer("select FUnitGroupID from t_account", Rows({"FUnitGroupID"}, {{3}}));
    for (const int c : {2, 5, 9, 13, 17})
        TypeAt(1, c, "1");
    EXPECT_THAT(first_->Calls(), ElementsAre("GetNameList(2, )", "GetNameList(5, )"));
    EXPECT_THAT(second_->Calls(), ElementsAre("GetNameList(9, )", "GetNameList(13, )", "GetNameList(17, 3)"));
}

TEST_F(NameLists, NarrowWithEveryKeyByCodeNameAndInitials) {
    TypeAt(1, 5, "1");
    EXPECT_TRUE(view_.nameList.open);
    EXPECT_EQ(view_.nameList.row, 1);
    EXPECT_EQ(view_.nameList.column, 5);
    EXPECT_EQ(view_.nameList.selected, -1);
    EXPECT_THAT(Shown(), ElementsAre("1001 库存现金", "1002 银行存款", "1002.01 工商银行", "2001 短期借款"));
    TypeAt(1, 5, "10");
    EXPECT_THAT(Shown(), ElementsAre("1001 库存现金", "1002 银行存款", "1002.01 工商银行"));
    TypeAt(1, 5, "银行");
    EXPECT_THAT(Shown(), ElementsAre("1002 银行存款", "1002.01 工商银行"));
    TypeAt(1, 5, "DQJ");
    EXPECT_THAT(Shown(), ElementsAre("2001 短期借款"));
    EXPECT_EQ(read_, 1);
}

TEST_F(NameLists, CloseWhenNothingFitsAndComeBackWhenSomethingDoes) {
    TypeAt(1, 5, "1002x");
    EXPECT_FALSE(view_.nameList.open);
    TypeAt(1, 5, "1002");
    EXPECT_TRUE(view_.nameList.open);
}

TEST_F(NameLists, ABlankTextShowsNone) {
    TypeAt(1, 5, "1");
    TypeAt(1, 5, " ");
    EXPECT_FALSE(view_.nameList.open);
}

TEST_F(NameLists, OtherColumnsHaveNone) {
    for (const int c : {1, 3, 6, 7, 10, 11, 14, 21})
        TypeAt(1, c, "1");
    EXPECT_FALSE(view_.nameList.open);
    EXPECT_EQ(read_, 0);
}

TEST_F(NameLists, AreReadAnewForAnotherCell) {
    TypeAt(1, 5, "1");
    entries_ = {{9, "1999", "新科目", 1}};
    TypeAt(2, 5, "1");
    EXPECT_THAT(Shown(), ElementsAre("1999 新科目"));
    EXPECT_EQ(read_, 2);
}

// --- kept while the component says that nothing has changed

class KeptNameLists : public NameLists {
  protected:
    KeptNameLists() {
        for (const auto& list : {first_, second_})
            list->On("ListVersion", [this](Arguments&) { return Variant(version_); });
    }
    std::string version_ = "1";
};

TEST_F(KeptNameLists, AreReadOnceAsLongAsNothingHasChanged) {
    TypeAt(1, 5, "1");
    TypeAt(2, 5, "10");
    EXPECT_THAT(Shown(), ElementsAre("1001 库存现金", "1002 银行存款", "1002.01 工商银行"));
    EXPECT_EQ(view_.nameList.row, 2);
    TypeAt(1, 9, "1");
    TypeAt(1, 5, "2001");
    EXPECT_THAT(Shown(), ElementsAre("2001 短期借款"));
    EXPECT_EQ(read_, 2);  // columns 5 and 9
}

TEST_F(KeptNameLists, ShowWhatHasChangedFromTheNextCellOn) {
    TypeAt(1, 5, "1");
    entries_ = {{9, "1999", "新科目", 1}};
    version_ = "2";
    TypeAt(1, 5, "10");
    EXPECT_THAT(Shown(), ElementsAre("1001 库存现金", "1002 银行存款", "1002.01 工商银行"));
    TypeAt(2, 5, "1");
    EXPECT_THAT(Shown(), ElementsAre("1999 新科目"));
    TypeAt(1, 5, "19");
    EXPECT_THAT(Shown(), ElementsAre("1999 新科目"));
    EXPECT_EQ(read_, 2);
}

TEST_F(KeptNameLists, AComponentThatCannotTellIsAskedForEveryCell) {
    version_.clear();
    TypeAt(1, 5, "1");
    TypeAt(2, 5, "1");
    Window().Names().Prepare();
    EXPECT_EQ(read_, 2);
}

TEST_F(KeptNameLists, AListThatFailedIsReadAgain) {
    first_->On("GetNameList", [this](Arguments&) -> Variant {
        if (++read_ == 1) throw automation::Error(5);
        return Variant(Rows({"FID", "FNumber", "FName", "FDetail"}, entries_));
    });
    TypeAt(1, 5, "1");
    EXPECT_FALSE(view_.nameList.open);
    TypeAt(2, 5, "1");
    EXPECT_TRUE(view_.nameList.open);
    EXPECT_EQ(read_, 2);
}

TEST_F(KeptNameLists, UnitsOfAnotherGroupAreAnotherList) {
    int group = 3;
    set_.Respond("select FUnitGroupID from t_account",
                 [&](const std::string&) { return Rows({"FUnitGroupID"}, {{group}}); });
    TypeAt(1, 17, "1");
    group = 4;
    TypeAt(1, 5, "1");
    TypeAt(1, 17, "1");
    EXPECT_THAT(second_->Calls(), testing::IsSupersetOf({"GetNameList(17, 3)", "GetNameList(17, 4)"}));
}

TEST_F(KeptNameLists, AreReadBeforeTheFirstKeyAndAgainOnceSomethingHasChanged) {
    Window().Names().Prepare();
    EXPECT_EQ(read_, 4);  // columns 2, 5, 9 and 13; units hang on the row
    Window().Names().Prepare();
    TypeAt(1, 5, "1");
    TypeAt(1, 13, "1");
    EXPECT_EQ(read_, 4);
    version_ = "2";
    Window().Names().Prepare();
    EXPECT_EQ(read_, 4) << "a list that is being read from stays";
    Window().Names().Close();
    Window().Names().Prepare();
    EXPECT_EQ(read_, 8);
}

TEST_F(KeptNameLists, OneMissingComponentLeavesTheOthersLists) {
    automation::ClassRegistry::Process().Unregister("VelaGLNameListLib.GLNameList");
    Window().Names().Prepare();
    EXPECT_EQ(read_, 2);
    EXPECT_THAT(Messages(), IsEmpty());
}

TEST_F(KeptNameLists, NothingIsReadAheadForWhoeverMayNotType) {
    right_ = false;
    Open();
    Window().Names().Prepare();
    EXPECT_EQ(read_, 0);
}

TEST_F(NameLists, NeverStopTyping) {
    automation::ClassRegistry::Process().Unregister("VelaGLNameListLib.GLNameList");
    second_->On("GetNameList", [](Arguments&) -> Variant { throw automation::Error(5); });
    TypeAt(1, 5, "1");
    TypeAt(1, 9, "1");
    second_->On("GetNameList", [](Arguments&) { return Variant(); });
    TypeAt(1, 13, "1");
    EXPECT_FALSE(view_.nameList.open);
    EXPECT_THAT(Messages(), IsEmpty());
    EXPECT_EQ(Window().Cells().CommitText({1, 13}, "USD"), TextVerdict::Taken);
}

TEST_F(NameLists, AListThatFailsHalfWayIsNone) {
    const auto broken = std::make_shared<fakes::ScriptedObject>("Broken");
    int rows = 0;
    broken->On("EOF", [](Arguments&) { return Variant(false); });
    for (const char* field : {"FID", "FNumber", "FName", "FDetail"})
        broken->Value(field, "1");
    broken->On("MoveNext", [&](Arguments&) -> Variant {
        if (++rows > 2) throw automation::Error(5);
        return {};
    });
    first_->On("GetNameList", [&](Arguments&) { return Variant(broken); });
    TypeAt(1, 5, "1");
    EXPECT_FALSE(view_.nameList.open);
}

TEST_F(NameLists, UnitsAreThoseOfTheAccountsGroup) {
    TypeAt(2, 17, "1");  // no account
    EXPECT_EQ(read_, 0);
    EXPECT_FALSE(view_.nameList.open);
    set_.Answer("select FUnitGroupID from t_account", Rows({"FUnitGroupID"}));
    TypeAt(1, 17, "1");  // no unit group
    EXPECT_EQ(read_, 0);
}

TEST_F(NameLists, AUserWithoutTheRightSeesNone) {
    right_ = false;
    Open();
    TypeAt(1, 5, "1");
    EXPECT_FALSE(view_.nameList.open);
    EXPECT_EQ(read_, 0);
}

// --- choosing

TEST_F(NameLists, ArrowsMoveTheChoiceWithinTheList) {
    TypeAt(1, 5, "100");
    Window().Names().Move(-1);
    EXPECT_EQ(view_.nameList.selected, 0);
    Window().Names().Move(1);
    EXPECT_EQ(view_.nameList.selected, 2) << "past the group between them";
    Window().Names().Move(10);
    EXPECT_EQ(view_.nameList.selected, 2);
    Window().Names().Move(-1);
    EXPECT_EQ(view_.nameList.selected, 0);
    Window().Names().Select(0);
    EXPECT_EQ(view_.nameList.selected, 0);
    Window().Names().Select(7);
    EXPECT_EQ(view_.nameList.selected, 0);
}

TEST_F(NameLists, ArrowsPassOverGroups) {
    entries_ = {{1, "1001", "组", 0},
                {2, "1001.01", "甲", 1},
                {3, "1001.02", "组", 0},
                {4, "1001.02.01", "乙", 1},
                {5, "1001.03", "组", 0}};
    TypeAt(1, 5, "1001");
    ASSERT_EQ(view_.nameList.entries.size(), 5U);
    const auto expect = [this](int steps, const char* number) {
        Window().Names().Move(steps);
        ASSERT_GE(view_.nameList.selected, 0);
        EXPECT_EQ(view_.nameList.entries[static_cast<std::size_t>(view_.nameList.selected)].number, number);
    };
    expect(1, "1001.01");
    expect(1, "1001.02.01");
    expect(1, "1001.02.01");
    expect(-1, "1001.01");
    expect(-1, "1001.01");
    expect(8, "1001.02.01");
    expect(-8, "1001.01");
}

TEST_F(NameLists, WithoutAChoiceNothingIsTakenAndTheListCloses) {
    TypeAt(1, 5, "1002.01");
    EXPECT_FALSE(Window().Names().Take());
    EXPECT_FALSE(view_.nameList.open);
    EXPECT_EQ(Cell(1, 5), "1001");
    EXPECT_FALSE(Window().IsDirty());
}

TEST_F(NameLists, AnAccountIsWrittenAsItsLookUpWouldWriteIt) {
    TypeAt(1, 5, "gs");
    Window().Names().Move(1);
    EXPECT_TRUE(Window().Names().Take());
    EXPECT_EQ(Cell(1, column::kAccountNumber), "1002.01");
    EXPECT_EQ(Cell(1, column::kAccountName), "工商银行");
    EXPECT_EQ(Cell(1, column::kAccountId), "1003");
    EXPECT_TRUE(Window().IsDirty());
    EXPECT_FALSE(view_.nameList.open);
    Window().Cells().Undo();
    EXPECT_EQ(Cell(1, column::kAccountNumber), "1001");
    EXPECT_EQ(Cell(1, column::kAccountId), "1001");
}

TEST_F(NameLists, AnEntryWhoseIdIsNoneIsToldAndNotTaken) {
    entries_ = {{Variant("10.5"), "1002.01", "工商银行", 1}};
    TypeAt(1, 5, "1002");
    Window().Names().Move(1);
    EXPECT_FALSE(Window().Names().Take());
    EXPECT_THAT(Messages(), ElementsAre("所选科目的内码“10.5”不是整数，没有取用！"));
    EXPECT_FALSE(view_.nameList.open);
    EXPECT_EQ(Cell(1, column::kAccountNumber), "1001");
    EXPECT_FALSE(Window().IsDirty());
}

TEST_F(NameLists, AChoiceIsNotResolvedAgainByTheNextCommand) {
    Type(1, column::kAccountNumber, "1002");
    TypeAt(1, column::kAccountNumber, "gs");
    Window().Names().Move(1);
    ASSERT_TRUE(Window().Names().Take());
    set_.Forget();
    Window().ToolClick("mnuShare");
    EXPECT_THAT(set_.Statements(), ElementsAre(testing::StartsWith("select FNumber,FIsBank,")))
        << "what its account wants is nobody's choice";
    Window().ToolClick("mnuShare");
    EXPECT_EQ(set_.Statements().size(), 1U);
}

TEST_F(NameLists, WhatWasTypedIsStillResolvedWhenNothingIsTaken) {
    set_.Answer("select FAccountID,FNumber,FName from t_Account where FNumber = '1002'",
                Rows({"FAccountID", "FNumber", "FName"}, {{1002, "1002", "银行存款"}}));
    Type(1, column::kAccountNumber, "1002");
    TypeAt(1, column::kAccountNumber, "1002");
    ASSERT_FALSE(Window().Names().Take());
    Window().ToolClick("mnuShare");
    EXPECT_EQ(Cell(1, column::kAccountName), "银行存款");
}

TEST_F(NameLists, GroupAccountsAreShownButCannotBeTaken) {
    TypeAt(1, 5, "yhck");
    ASSERT_THAT(Shown(), ElementsAre("1002 银行存款"));
    EXPECT_FALSE(view_.nameList.entries[0].selectable);
    Window().Names().Move(1);
    EXPECT_FALSE(Window().Names().Take());
    EXPECT_FALSE(view_.nameList.open);
    EXPECT_EQ(Cell(1, 5), "1001");
    EXPECT_FALSE(Window().IsDirty());
}

TEST_F(NameLists, AnExplanationBringsItsAccountToARowWithoutOne) {
    set_.Answer("select FName,FNumber from t_Account", Rows({"FName", "FNumber"}, {{"应收", "1122"}}));
    entries_ = {{1122, "001", "收到货款", 1}};
    TypeAt(2, 2, "00");
    Window().Names().Move(1);
    EXPECT_TRUE(Window().Names().Take());
    EXPECT_EQ(Cell(2, column::kExplanation), "收到货款");
    EXPECT_EQ(Cell(2, column::kAccountId), "1122");
    EXPECT_EQ(Cell(2, column::kAccountNumber), "1122");
    TypeAt(1, 2, "00");
    Window().Names().Move(1);
    EXPECT_TRUE(Window().Names().Take());
    EXPECT_EQ(Cell(1, column::kExplanation), "收到货款");
    EXPECT_EQ(Cell(1, column::kAccountNumber), "1001");
}

TEST_F(NameLists, SettlementCurrencyAndUnitWriteNameAndTheIdBesideIt) {
    set_.Answer("select FUnitGroupID from t_account", Rows({"FUnitGroupID"}, {{3}}));
    entries_ = {{6, "JF03", "电汇", 1}};
    for (const int c : {9, 13, 17}) {
        TypeAt(1, c, "dh");
        Window().Names().Move(1);
        EXPECT_TRUE(Window().Names().Take()) << c;
        EXPECT_EQ(Cell(1, c), "电汇");
        EXPECT_EQ(Cell(1, c - 1), "6");
    }
}

TEST_F(NameLists, EscClosesTheListAndTheNextKeyBringsItBack) {
    TypeAt(1, 5, "1");
    Window().Names().Close();
    EXPECT_FALSE(view_.nameList.open);
    EXPECT_FALSE(Window().IsDirty());
    TypeAt(1, 5, "10");
    EXPECT_TRUE(view_.nameList.open);
}

TEST_F(NameLists, CloseWhenTheTextIsCommittedOrTheCellIsLeft) {
    TypeAt(1, 5, "1");
    Window().Cells().CommitText({1, 5}, "1002.01");
    EXPECT_FALSE(view_.nameList.open);
    TypeAt(1, 5, "1");
    ASSERT_TRUE(view_.nameList.open);
    Window().Cells().MoveActiveCell({1, 7});
    EXPECT_FALSE(view_.nameList.open);
    TypeAt(1, 5, "1");
    Window().Cells().OpenLookUp();
    EXPECT_FALSE(view_.nameList.open);
}

TEST_F(NameLists, ShowNoMoreThanTwoHundredEntries) {
    entries_.clear();
    for (int i = 0; i < 500; ++i)
        entries_.push_back({i, "1" + std::to_string(1000 + i), "科目", 1});
    TypeAt(1, 5, "1");
    EXPECT_EQ(view_.nameList.entries.size(), 200U);
}

}  // namespace
}  // namespace vicenter::center::test
