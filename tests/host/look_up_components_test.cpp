// The look-up components and name lists on a demo set, with a dialog that chooses by number.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "automation/class_registry.h"
#include "host/components/components.h"
#include "host/components/look_up_dialog.h"
#include "tests/host/demo_set.h"
#include "tests/lanes/set_lane.h"

namespace vicenter::host {
namespace {

using automation::Argument;
using automation::CreateObject;
using automation::ObjectRef;
using automation::Variant;
using testing::ElementsAre;

class ChoosingDialog : public LookUpDialog {
  public:
    std::optional<std::size_t> Choose(const LookUpRequest& asked) override {
        request = asked;
        for (std::size_t i = 0; i < asked.records.size(); ++i) {
            if (asked.records[i].number == choose) return i;
        }
        return std::nullopt;
    }
    const LookUpRecord* Record(const std::string& number) const {
        for (const LookUpRecord& record : request.records) {
            if (record.number == number) return &record;
        }
        return nullptr;
    }
    std::string choose;
    LookUpRequest request;
};

class LookUpComponents : public testing::Test {
  protected:
    void SetUp() override {
        session_ = RegisterHostComponents({lanes::ConnectTextOf(test::CopySet(folder_)), 1});
        LookUpDialog::SetProcess(dialog_);
    }
    void TearDown() override { LookUpDialog::SetProcess(nullptr); }
    ObjectRef LedgerView() { return CreateObject("VelaEBCGLView.GLView"); }
    static std::string Field(const ObjectRef& result, const char* name) {
        return result->Get("ReturnObject").AsObject()->Get(name).ToText();
    }
    std::string Value(const std::string& sql) { return session_->Execute(sql)->Value(0).ToText(); }

    test::TestFolder folder_;
    automation::ClassRegistry::Restore restore_;
    HostSessionRef session_;
    std::shared_ptr<ChoosingDialog> dialog_ = std::make_shared<ChoosingDialog>();
};

TEST_F(LookUpComponents, AccountsAreATreeByCodeWithDirectionAndItemClasses) {
    LedgerView()->Call("AccountLookup", {Argument("")});
    const LookUpRequest& shown = dialog_->request;
    EXPECT_TRUE(shown.tree);
    EXPECT_EQ(shown.title, "会计科目");
    EXPECT_THAT(shown.headers, ElementsAre("代码", "名称", "余额方向", "核算项目"));
    EXPECT_EQ(std::to_string(shown.records.size()), Value("select count(*) as n from t_Account"));
    ASSERT_NE(dialog_->Record("1002"), nullptr);
    EXPECT_FALSE(dialog_->Record("1002")->selectable);
    EXPECT_EQ(dialog_->Record("1002")->level, 0);
    EXPECT_EQ(dialog_->Record("1002")->details[0], "借");
    EXPECT_TRUE(dialog_->Record("1002.01")->selectable);
    EXPECT_EQ(dialog_->Record("1002.01")->level, 1);
    const ado::RecordsetRef item = session_->Execute(
        "select top 1 a.FNumber,c.FName from t_Account a inner join t_ItemDetailV v on a.FDetailID = "
        "v.FDetailID inner join t_ItemClass c on v.FItemClassID = c.FItemClassID where v.FItemID = -1 order "
        "by a.FNumber,c.FItemClassID");
    const std::string number = item->Value("FNumber").ToText();
    EXPECT_THAT(dialog_->Record(number)->details[1], testing::StartsWith(item->Value("FName").ToText()));
}

TEST_F(LookUpComponents, AChosenAccountComesBackByFieldNameAndInTheArgument) {
    dialog_->choose = "1002.01";
    Variant text("10");
    const ObjectRef result = LedgerView()->Call("AccountLookup", {Argument::ByReference(text)}).AsObject();
    EXPECT_TRUE(result->Get("ReturnOK").ToBoolean());
    EXPECT_EQ(Field(result, "Number"), "1002.01");
    EXPECT_EQ(Field(result, "Name"), "工商银行基本户");
    EXPECT_EQ(Field(result, "AccountID"),
              Value("select FAccountID from t_Account where FNumber = '1002.01'"));
    EXPECT_EQ(result->Get("ReturnValue").ToText(), Field(result, "AccountID"));
    EXPECT_EQ(text.ToText(), "1002.01");
    EXPECT_EQ(result->Get("ReturnObject").AsObject()->Get("", {Argument("number")}).ToText(), "1002.01");
}

TEST_F(LookUpComponents, TheCursorStartsAtTheTextsAccount) {
    const auto startsAt = [&](const char* text) {
        LedgerView()->Call("AccountLookup", {Argument(text)});
        const auto& selected = dialog_->request.selected;
        return selected ? dialog_->request.records[*selected].number : "none";
    };
    EXPECT_EQ(startsAt("1002.02"), "1002.02");
    EXPECT_EQ(startsAt("1002.0"), "1002.01");
    EXPECT_EQ(startsAt("xyz"), "none");
    EXPECT_EQ(startsAt(""), "none");
}

TEST_F(LookUpComponents, AGroupAccountIsNotTakenEvenIfADialogHandsItBack) {
    dialog_->choose = "1002";
    EXPECT_FALSE(LedgerView()->Call("AccountLookup", {Argument("")}).AsObject()->Get("ReturnOK").ToBoolean());
}

TEST_F(LookUpComponents, CancellingGivesNoRecordAndLeavesTheArgument) {
    Variant text("1001");
    const ObjectRef result = LedgerView()->Call("AccountLookup", {Argument::ByReference(text)}).AsObject();
    EXPECT_FALSE(result->Get("ReturnOK").ToBoolean());
    EXPECT_TRUE(result->Get("ReturnValue").IsEmpty());
    EXPECT_TRUE(result->Get("ReturnObject").IsEmpty());
    EXPECT_EQ(text.ToText(), "1001");
}

TEST_F(LookUpComponents, WithoutAWindowSystemEveryLookUpCountsAsCancelled) {
    LookUpDialog::SetProcess(nullptr);
    EXPECT_FALSE(LedgerView()->Call("SettTypeLookup").AsObject()->Get("ReturnOK").ToBoolean());
    EXPECT_FALSE(
        CreateObject("VelaVchExp.ExpView")->Call("LoadVchExpNewTp").AsObject()->Get("ReturnOK").ToBoolean());
}

TEST_F(LookUpComponents, SettlementAndCurrencyComeBackWithTheirIds) {
    dialog_->choose = "JF03";
    ObjectRef result = LedgerView()->Call("SettTypeLookup").AsObject();
    EXPECT_EQ(Field(result, "Name"), "电汇");
    EXPECT_EQ(Field(result, "ItemID"), Value("select FItemID from t_Settle where FNumber = 'JF03'"));
    dialog_->choose = "USD";
    result = LedgerView()->Call("CurrencyLookup").AsObject();
    EXPECT_EQ(Field(result, "Name"), "美元");
    EXPECT_EQ(result->Get("ReturnValue").ToText(), "2");
    EXPECT_EQ(dialog_->Record("USD")->details[0], "7.1865");
}

TEST_F(LookUpComponents, UnitsAreThoseOfTheGroup) {
    dialog_->choose = "G";
    const ObjectRef result = LedgerView()->Call("UnitLookup", {Argument(1), Argument("")}).AsObject();
    EXPECT_EQ(Field(result, "Name"), "克");
    EXPECT_EQ(result->Get("ReturnValue").ToText(),
              Value("select FMeasureUnitID from t_MeasureUnit where FNumber = 'G'"));
    EXPECT_EQ(dialog_->request.records.size(), 3U);
    EXPECT_EQ(dialog_->Record("PCS"), nullptr);
    LedgerView()->Call("UnitLookup", {Argument(999), Argument("")});
    EXPECT_TRUE(dialog_->request.records.empty());
}

TEST_F(LookUpComponents, ItemsComeFromTheClasssOwnTable) {
    dialog_->choose = "C002";
    const ObjectRef view = LedgerView();
    view->Put("BeShortNumber", false);
    view->Put("GetDataType", 1);
    view->Put("Refresh", true);
    view->Put("Search", true);
    const ObjectRef result = view->Call("ItemLookUp", {Argument(1), Argument("C001")}).AsObject();
    EXPECT_EQ(dialog_->request.title, "客户");
    ASSERT_TRUE(dialog_->request.selected);
    EXPECT_EQ(dialog_->request.records[*dialog_->request.selected].number, "C001");
    EXPECT_EQ(Field(result, "Number"), "C002");
    EXPECT_EQ(result->Get("ReturnValue").ToText(), "C002");
    EXPECT_EQ(Field(result, "ItemID"), Value("select FItemID from t_Customer where FNumber = 'C002'"));
    EXPECT_THROW(view->Call("ItemLookUp", {Argument(77), Argument("")}), automation::Error);
}

TEST_F(LookUpComponents, AnExplanationComesBackWithItsTextAndItsAccount) {
    const ObjectRef view = CreateObject("VelaVchExp.ExpView");
    dialog_->choose = "001";
    ObjectRef result = view->Call("LoadVchExpNewTp").AsObject();
    EXPECT_EQ(result->Get("ReturnValue").ToText(), "收到货款");
    EXPECT_EQ(result->Get("ReturnObject").AsObject()->Get("", {Argument("FAccountID")}).ToText(),
              Value("select FAccountID from t_Account where FNumber = '1122.01'"));
    EXPECT_EQ(dialog_->Record("001")->details[1], "1122.01");
    dialog_->choose = "004";
    result = view->Call("LoadVchExpNewTp").AsObject();
    EXPECT_EQ(Field(result, "FAccountID"), "0");
}

TEST_F(LookUpComponents, NameListsOfferWhatTheColumnsTake) {
    const auto rows = [](const char* library, int gridColumn, const char* text) {
        return std::static_pointer_cast<ado::Recordset>(
            CreateObject(library)->Call("GetNameList", {Argument(gridColumn), Argument(text)}).AsObject());
    };
    const char* first = "VelaGLNameListLib.GLNameList";
    const char* second = "VelaGLNameListLib2.GLNameList";
    EXPECT_EQ(rows(first, 2, "")->Value("FName").ToText(), "收到货款");
    const ado::RecordsetRef accounts = rows(first, 5, "");
    for (; accounts->Value("FNumber").ToText() != "1002"; accounts->MoveNext()) {
    }
    EXPECT_EQ(accounts->Value("FDetail").ToInt32(), 0);
    EXPECT_EQ(rows(second, 9, "")->Value("FName").ToText(), "现金支票");
    EXPECT_EQ(rows(second, 13, "")->Value("FID").ToText(), "1");
    EXPECT_EQ(rows(second, 17, "1")->RecordCount(), 3);
    EXPECT_THROW(rows(second, 3, ""), automation::Error);
}

}  // namespace
}  // namespace vicenter::host
