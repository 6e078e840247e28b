// The host's look-up dialogs behind the cells: what is called, what is written back, what a failure leaves.

#include "tests/center/center_fixture.h"

namespace vicenter::center::test {
namespace {

using fakes::ScriptedObject;
using fakes::ScriptedRef;

class LookUps : public CenterTest {
  protected:
    void SetUp() override {
        record_ = std::make_shared<ScriptedObject>("Record");
        result_ = std::make_shared<ScriptedObject>("Result");
        result_->Value("ReturnOK", true).Value("ReturnValue", "").Value("ReturnObject", Variant(record_));
        ledger_ = fakes::RegisterScripted("VelaEBCGLView.GLView");
        explanations_ = fakes::RegisterScripted("VelaVchExp.ExpView");
        const auto answer = [this](Arguments&) { return Variant(result_); };
        for (const char* member : {"AccountLookup", "SettTypeLookup", "CurrencyLookup", "UnitLookup"})
            ledger_->On(member, answer);
        explanations_->On("LoadVchExpNewTp", answer);
        lines_["0"] = {Line(1, "收款")};
        Open();
        Forget();
    }
    void OpenAt(int row, int gridColumn) {
        Window().Cells().MoveActiveCell({row, gridColumn});
        set_.Forget();
        Window().Cells().OpenLookUp();
    }
    // All texts of a row, to see that nothing moved.
    Texts Row(int row) {
        Texts texts;
        for (int c = 1; c <= kColumnCount; ++c)
            texts.push_back(Cell(row, c));
        return texts;
    }
    void Cancel() { result_->Value("ReturnOK", false); }

    ScriptedRef record_;
    ScriptedRef result_;
    ScriptedRef ledger_;
    ScriptedRef explanations_;
};

// --- account

TEST_F(LookUps, TheAccountLookUpGetsTheCellsTextByReference) {
    bool byReference = false;
    ledger_->On("AccountLookup", [&](Arguments& arguments) {
        byReference = arguments[0].IsByReference();
        arguments[0].Assign(Variant("changed by the host"));
        return Variant(result_);
    });
    Cancel();
    OpenAt(1, column::kAccountNumber);
    EXPECT_TRUE(byReference);
    EXPECT_THAT(ledger_->Calls(), ElementsAre("AccountLookup(1001)"));
    EXPECT_EQ(Cell(1, column::kAccountNumber), "1001");
}

TEST_F(LookUps, AChosenAccountFillsCodeNameAndId) {
    record_->Value("Number", "1002.01").Value("Name", "工行").Value("AccountID", 1002);
    OpenAt(1, column::kAccountNumber);
    EXPECT_EQ(Cell(1, column::kAccountId), "1002");
    EXPECT_EQ(Cell(1, column::kAccountNumber), "1002.01");
    EXPECT_EQ(Cell(1, column::kAccountName), "工行");
    EXPECT_EQ(Cell(1, column::kExplanation), "收款");
    EXPECT_TRUE(Window().IsDirty());
}

TEST_F(LookUps, AnAccountForARedCellTakesTheRedAway) {
    set_.Answer("select * from t_Account where FNumber = '9999'", Rows({"FAccountID"}));
    Type(1, column::kAccountNumber, "9999");
    Window().Cells().MoveActiveCell({1, 2});
    ASSERT_EQ(Grid().Look(1, column::kAccountNumber).foreColor, color::kRed);
    record_->Value("Number", "1002.01").Value("Name", "工行").Value("AccountID", 1002);
    OpenAt(1, column::kAccountNumber);
    EXPECT_EQ(Grid().Look(1, column::kAccountNumber).foreColor, color::kBlack);
    EXPECT_EQ(Grid().Look(1, column::kAccountName).foreColor, color::kBlack);
}

TEST_F(LookUps, AChosenRecordMayHaveFieldsInsteadOfMembers) {
    result_->Value("ReturnObject",
                   Variant(Rows({"Number", "Name", "AccountID"}, {{"1002.01", "工行", 1002}})));
    OpenAt(1, column::kAccountNumber);
    EXPECT_EQ(Cell(1, column::kAccountId), "1002");
    EXPECT_EQ(Cell(1, column::kAccountName), "工行");
}

TEST_F(LookUps, AChoiceIsOneStepOfUndo) {
    record_->Value("Number", "1002.01").Value("Name", "工行").Value("AccountID", 1002);
    const Texts before = Row(1);
    OpenAt(1, column::kAccountNumber);
    Window().Cells().Undo();
    EXPECT_EQ(Row(1), before);
    EXPECT_FALSE(Window().Cells().CanUndo());
}

TEST_F(LookUps, AChoiceOnTheFirstBlankRowPutsItInUse) {
    record_->Value("Number", "1002.01").Value("Name", "工行").Value("AccountID", 1002);
    OpenAt(2, column::kAccountNumber);
    EXPECT_EQ(Window().RowCount(), 2);
    EXPECT_EQ(Cell(2, column::kAccountNumber), "1002.01");
}

// --- settlement and currency

TEST_F(LookUps, TheSettlementLookUpWritesNameAndItemId) {
    record_->Value("Name", "电汇").Value("ItemID", 6);
    result_->Value("ReturnValue", "not this one");
    OpenAt(1, column::kSettleName);
    EXPECT_THAT(ledger_->Calls(), ElementsAre("SettTypeLookup()"));
    EXPECT_EQ(Cell(1, column::kSettleName), "电汇");
    EXPECT_EQ(Cell(1, column::kSettleId), "6");
}

TEST_F(LookUps, TheCurrencyLookUpWritesNameAndReturnValue) {
    record_->Value("Name", "美元");
    result_->Value("ReturnValue", 2);
    OpenAt(1, column::kCurrencyName);
    EXPECT_THAT(ledger_->Calls(), ElementsAre("CurrencyLookup()"));
    EXPECT_EQ(Cell(1, column::kCurrencyName), "美元");
    EXPECT_EQ(Cell(1, column::kCurrencyId), "2");
}

// --- unit

TEST_F(LookUps, TheUnitLookUpGetsTheAccountsUnitGroupAndAnEmptyText) {
    set_.Answer("select FUnitGroupID from t_account", Rows({"FUnitGroupID"}, {{3}}));
    record_->Value("Name", "千克");
    result_->Value("ReturnValue", 31);
    OpenAt(1, column::kUnitName);
    EXPECT_EQ(set_.Statements()[0],
              "select FUnitGroupID from t_account where FAccountID = 1001 and FUnitGroupID <> 0");
    EXPECT_THAT(ledger_->Calls(), ElementsAre("UnitLookup(3, )"));
    EXPECT_EQ(Cell(1, column::kUnitName), "千克");
    EXPECT_EQ(Cell(1, column::kUnitId), "31");
    EXPECT_TRUE(Window().IsDirty());
}

TEST_F(LookUps, AUnitOfARowWithoutAnAccountDoesNothingAtAll) {
    OpenAt(2, column::kUnitName);
    EXPECT_THAT(ledger_->Calls(), IsEmpty());
    EXPECT_THAT(set_.Statements(), IsEmpty());
    EXPECT_FALSE(Window().IsDirty());
}

TEST_F(LookUps, AnAccountWithoutAUnitGroupOpensNothingButMarksTheTemplateAsChanged) {
    set_.Answer("select FUnitGroupID from t_account", Rows({"FUnitGroupID"}));
    OpenAt(1, column::kUnitName);
    EXPECT_THAT(ledger_->Calls(), IsEmpty());
    EXPECT_TRUE(Window().IsDirty());
}

// --- explanation

TEST_F(LookUps, AnExplanationBoundToNoAccountChangesOnlyItself) {
    for (const Variant& none : {Variant(0), Variant("0"), Variant(""), Variant::Null()}) {
        result_->Value("ReturnValue", "提现");
        record_->Value("FAccountID", none);
        OpenAt(2, column::kExplanation);
        EXPECT_EQ(Cell(2, column::kExplanation), "提现");
        EXPECT_EQ(Cell(2, column::kAccountNumber), "");
        EXPECT_THAT(Sent("select FName,FNumber"), IsEmpty());
    }
    EXPECT_EQ(explanations_->Calls()[0], "LoadVchExpNewTp()");
}

TEST_F(LookUps, AnExplanationBringsItsAccountToARowWithoutOne) {
    set_.Answer("select FName,FNumber from t_Account", Rows({"FName", "FNumber"}, {{"应收账款", "1122.01"}}));
    result_->Value("ReturnValue", "收到货款");
    record_->Value("FAccountID", 1122);
    OpenAt(2, column::kExplanation);
    EXPECT_EQ(set_.Statements()[0], "select FName,FNumber from t_Account where FAccountID = 1122");
    EXPECT_EQ(Cell(2, column::kExplanation), "收到货款");
    EXPECT_EQ(Cell(2, column::kAccountId), "1122");
    EXPECT_EQ(Cell(2, column::kAccountNumber), "1122.01");
    EXPECT_EQ(Cell(2, column::kAccountName), "应收账款");
}

TEST_F(LookUps, AnExplanationFindsItsAccountAmongTheRecordsFields) {
    set_.Answer("select FName,FNumber from t_Account", Rows({"FName", "FNumber"}, {{"应收", "1122"}}));
    result_->Value("ReturnValue", "收到货款").Value("ReturnObject", Variant(Rows({"FAccountID"}, {{1122}})));
    OpenAt(2, column::kExplanation);
    EXPECT_EQ(Cell(2, column::kAccountNumber), "1122");
}

TEST_F(LookUps, AnAccountOnTheRowIsNeverReplacedByTheExplanations) {
    result_->Value("ReturnValue", "收到货款");
    record_->Value("FAccountID", 1122);
    OpenAt(1, column::kExplanation);
    EXPECT_EQ(Cell(1, column::kExplanation), "收到货款");
    EXPECT_EQ(Cell(1, column::kAccountNumber), "1001");
    EXPECT_EQ(Cell(1, column::kAccountId), "1001");
    EXPECT_THAT(Sent("select FName,FNumber"), IsEmpty());
}

TEST_F(LookUps, ABlankAccountCodeCountsAsNone) {
    set_.Answer("select FName,FNumber from t_Account", Rows({"FName", "FNumber"}, {{"应收", "1122"}}));
    Grid().SetText(1, column::kAccountNumber, "  ");
    result_->Value("ReturnValue", "收到货款");
    record_->Value("FAccountID", 1122);
    OpenAt(1, column::kExplanation);
    EXPECT_EQ(Cell(1, column::kAccountNumber), "1122");
}

TEST_F(LookUps, AnExplanationsAccountThatIsGoneWritesNoAccount) {
    set_.Answer("select FName,FNumber from t_Account", Rows({"FName", "FNumber"}));
    result_->Value("ReturnValue", "收到货款");
    record_->Value("FAccountID", 1122);
    OpenAt(2, column::kExplanation);
    EXPECT_EQ(Cell(2, column::kExplanation), "收到货款");
    EXPECT_EQ(Cell(2, column::kAccountId), "");
}

// --- ids of whatever type

struct OddId {
    Variant answered;
    const char* taken;  // nullptr: refused
    const char* named = "";
};

class OddIds : public LookUps, public testing::WithParamInterface<OddId> {};

TEST_P(OddIds, AreTakenWholeOrTheChoiceIsRefusedWhole) {
    struct Way {
        int column;
        const char* kind;
    };
    for (const Way way : {Way{column::kAccountNumber, "科目"},
                          {column::kSettleName, "结算方式"},
                          {column::kCurrencyName, "币别"}}) {
        Answer(system::MessageResult::No);
        Window().Tree().NodeClick("detail-0");
        surroundings_.messageBoxes->answers.clear();
        Grid().SetText(1, way.column - 1, "77");
        Forget();
        record_->Value("Number", "1002.02").Value("Name", "新").Value("AccountID", GetParam().answered);
        record_->Value("ItemID", GetParam().answered);
        result_->Value("ReturnValue", GetParam().answered);
        const std::string before = Cell(1, way.column);
        OpenAt(1, way.column);
        if (GetParam().taken != nullptr) {
            EXPECT_EQ(Cell(1, way.column - 1), GetParam().taken) << way.kind;
            EXPECT_NE(Cell(1, way.column), before);
            EXPECT_THAT(Messages(), IsEmpty());
        } else {
            EXPECT_EQ(Cell(1, way.column - 1), "77") << way.kind;
            EXPECT_EQ(Cell(1, way.column), before) << way.kind;
            EXPECT_THAT(Messages(), ElementsAre("所选" + std::string(way.kind) + "的内码“" +
                                                GetParam().named + "”不是整数，没有取用！"));
        }
    }
}

TEST_P(OddIds, OfAnExplanationsAccountToo) {
    set_.Answer("select FName,FNumber from t_Account where FAccountID = 1003",
                Rows({"FName", "FNumber"}, {{"工行", "1002.02"}}));
    result_->Value("ReturnValue", "付款");
    record_->Value("FAccountID", GetParam().answered);
    OpenAt(2, column::kExplanation);
    if (GetParam().taken != nullptr) {
        EXPECT_EQ(Cell(2, column::kExplanation), "付款");
        EXPECT_EQ(Cell(2, column::kAccountId), GetParam().taken);
    } else {
        EXPECT_EQ(Cell(2, column::kExplanation), "");
        EXPECT_EQ(Messages().size(), 1U);
        EXPECT_THAT(Sent("where FAccountID = "), IsEmpty()) << "no odd text goes into a statement";
    }
}

INSTANTIATE_TEST_SUITE_P(Types, OddIds,
                         testing::Values(OddId{Variant("1003  "), "1003"}, OddId{Variant("　1003"), "1003"},
                                         OddId{Variant(1003.0), "1003"}, OddId{Variant("1003.00"), "1003"},
                                         OddId{Variant(std::int16_t{1003}), "1003"},
                                         OddId{Variant(1003.5), nullptr, "1003.5"},
                                         OddId{Variant(true), nullptr, "True"},
                                         OddId{Variant(std::int64_t{12345678901}), nullptr, "12345678901"},
                                         OddId{Variant("abc"), nullptr, "abc"},
                                         OddId{Variant("1 or 1=1"), nullptr, "1 or 1=1"}));

TEST_F(LookUps, TheUnitsIdIsReadByTheSameRule) {
    set_.Answer("select FUnitGroupID from t_account", Rows({"FUnitGroupID"}, {{7}}));
    record_->Value("Name", "千克");
    result_->Value("ReturnValue", "71 ");
    OpenAt(1, column::kUnitName);
    EXPECT_EQ(Cell(1, column::kUnitId), "71");
    result_->Value("ReturnValue", 71.5);
    record_->Value("Name", "吨");
    OpenAt(1, column::kUnitName);
    EXPECT_EQ(Cell(1, column::kUnitName), "千克");
    EXPECT_THAT(Messages(), ElementsAre("所选计量单位的内码“71.5”不是整数，没有取用！"));
}

// --- the dirty flag and other columns

TEST_F(LookUps, ACancelledLookUpLeavesTheRowButMarksTheTemplateAsChanged) {
    Cancel();
    for (const int c : {2, 5, 9, 13}) {
        Window().Tree().NodeClick("detail-0");
        const Texts before = Row(1);
        ASSERT_FALSE(Window().IsDirty());
        OpenAt(1, c);
        EXPECT_EQ(Row(1), before) << c;
        EXPECT_TRUE(Window().IsDirty()) << c;
        Answer(system::MessageResult::No);
    }
}

TEST_F(LookUps, AColumnWithoutALookUpOpensNothingButMarksTheTemplateAsChanged) {
    for (const int c : {1, 3, 4, 6, 7, 8, 10, 11, 12, 14, 15, 16, 18, 19, 20, 21}) {
        Answer(system::MessageResult::No);
        Window().Tree().NodeClick("detail-0");
        surroundings_.messageBoxes->answers.clear();
        ASSERT_FALSE(Window().IsDirty());
        OpenAt(1, c);
        EXPECT_TRUE(Window().IsDirty()) << c;
    }
    EXPECT_THAT(ledger_->Calls(), IsEmpty());
    EXPECT_THAT(explanations_->Calls(), IsEmpty());
}

// --- what had been typed before

class TypedBefore : public LookUps {
  protected:
    void SetUp() override {
        LookUps::SetUp();
        set_.Answer("select FCurrencyID,FName from t_Currency where FNumber = 'USD'",
                    Rows({"FCurrencyID", "FName"}, {{2, "美元"}}));
        // A name that is another currency's code: asked about again, it would become that one.
        set_.Answer("select FCurrencyID,FName from t_Currency where FNumber = '港币'",
                    Rows({"FCurrencyID", "FName"}, {{9, "另一种"}}));
        set_.Answer("select FCurrencyID from t_Currency where FName", Rows({"FCurrencyID"}, {{2}}));
        set_.Answer("select FCurrencyID from t_Account", Rows({"FCurrencyID"}, {{0}}));
        record_->Value("Name", "港币");
        result_->Value("ReturnValue", 3);
        Type(1, column::kCurrencyName, "USD");
    }
};

TEST_F(TypedBefore, AChoiceTakesItsPlaceAndIsNotResolvedAgainByTheNextCommand) {
    Window().Cells().OpenLookUp();
    set_.Forget();
    Window().ToolClick("mnuShare");
    EXPECT_THAT(set_.Statements(), IsEmpty());
    EXPECT_EQ(Cell(1, column::kCurrencyName), "港币");
    EXPECT_EQ(Cell(1, column::kCurrencyId), "3");
}

TEST_F(TypedBefore, AfterACancelledLookUpItIsStillResolvedByTheNextCommand) {
    Cancel();
    Window().Cells().OpenLookUp();
    Window().ToolClick("mnuShare");
    EXPECT_EQ(Cell(1, column::kCurrencyName), "美元");
    EXPECT_EQ(Cell(1, column::kCurrencyId), "2");
}

TEST_F(TypedBefore, AfterAFailedLookUpItIsStillResolvedByTheNextCommand) {
    ledger_->On("CurrencyLookup", [](Arguments&) -> Variant { throw automation::Error(5, "组件出错"); });
    Window().Cells().OpenLookUp();
    Window().ToolClick("mnuShare");
    EXPECT_EQ(Cell(1, column::kCurrencyName), "美元");
}

TEST_F(LookUps, ACellWithoutALookUpIsStillResolvedByTheNextCommand) {
    Type(1, column::kItems, ",,");
    Window().Cells().OpenLookUp();
    Window().ToolClick("mnuShare");
    EXPECT_EQ(Cell(1, column::kItems), "");
}

TEST_F(LookUps, InsertAndF7OpenThem) {
    Cancel();
    Window().Cells().MoveActiveCell({1, column::kSettleName});
    EXPECT_TRUE(Window().Cells().KeyDown(45, ""));
    EXPECT_TRUE(Window().Cells().KeyDown(118, ""));
    EXPECT_THAT(ledger_->Calls(), ElementsAre("SettTypeLookup()", "SettTypeLookup()"));
    EXPECT_FALSE(Window().Cells().KeyDown(37, ""));
    EXPECT_FALSE(Window().Cells().KeyDown(39, ""));
    EXPECT_EQ(ledger_->Calls().size(), 2U);
}

TEST_F(LookUps, AUserWithoutTheRightOpensNone) {
    right_ = false;
    Open();
    OpenAt(1, column::kSettleName);
    EXPECT_THAT(ledger_->Calls(), IsEmpty());
    EXPECT_FALSE(Window().IsDirty());
}

TEST_F(LookUps, ComponentsAreCreatedForEachUse) {
    int made = 0;
    automation::ClassRegistry::Process().Register("VelaEBCGLView.GLView", [&] {
        ++made;
        return ledger_;
    });
    Cancel();
    OpenAt(1, column::kSettleName);
    OpenAt(1, column::kSettleName);
    EXPECT_EQ(made, 2);
}

// --- failures of the host

class FailingHost : public LookUps, public testing::WithParamInterface<int> {};

TEST_P(FailingHost, AnErrorEndsTheLookUpAndLeavesRowAndWindowAsTheyWere) {
    set_.Answer("select FUnitGroupID from t_account", Rows({"FUnitGroupID"}, {{3}}));
    const Texts before = Row(1);
    const auto fail = [](Arguments&) -> Variant { throw automation::Error(5, "组件出错"); };
    for (const char* member : {"AccountLookup", "SettTypeLookup", "CurrencyLookup", "UnitLookup"})
        ledger_->On(member, fail);
    explanations_->On("LoadVchExpNewTp", fail);
    OpenAt(1, GetParam());
    EXPECT_EQ(Row(1), before);
    EXPECT_FALSE(Window().IsDirty());
    EXPECT_FALSE(Window().Cells().CanUndo());
    EXPECT_THAT(Messages(), ElementsAre("组件出错"));
}

TEST_P(FailingHost, ARecordThatLacksAFieldLeavesTheRowWhole) {
    set_.Answer("select FUnitGroupID from t_account", Rows({"FUnitGroupID"}, {{3}}));
    const Texts before = Row(1);
    OpenAt(1, GetParam());
    EXPECT_EQ(Row(1), before);
    EXPECT_FALSE(Window().IsDirty());
    EXPECT_EQ(Messages().size(), 1U);
}

TEST_P(FailingHost, AMissingComponentIsToldAndNothingElseHappens) {
    set_.Answer("select FUnitGroupID from t_account", Rows({"FUnitGroupID"}, {{3}}));
    automation::ClassRegistry::Process().Unregister("VelaEBCGLView.GLView");
    automation::ClassRegistry::Process().Unregister("VelaVchExp.ExpView");
    OpenAt(1, GetParam());
    EXPECT_FALSE(Window().IsDirty());
    EXPECT_EQ(Messages().size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(EveryLookUpColumn, FailingHost, testing::Values(2, 5, 9, 13, 17));

}  // namespace
}  // namespace vicenter::center::test
