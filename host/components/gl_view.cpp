// VelaEBCGLView.GLView: the look-up dialogs for accounts, settlement types, currencies, units and items.

#include <map>

#include "automation/member_table.h"
#include "host/components/components.h"
#include "host/components/look_up_result.h"

namespace vicenter::host {

using automation::Arguments;
using automation::MemberTable;
using automation::Method;
using automation::ObjectRef;
using automation::Property;
using automation::Variant;

namespace {

constexpr const char* kNumberHeader = "代码";
constexpr const char* kNameHeader = "名称";

std::string TextOf(const ado::RecordsetRef& rows, const char* field) {
    return rows->Value(field).ToTextOrEmpty();
}

class GlView final : public automation::TableObject<GlView> {
  public:
    explicit GlView(HostSessionRef session) : session_(std::move(session)) {}
    static const MemberTable<GlView>& Members();
    std::string TypeName() const override { return "GLView"; }

  private:
    // The text moves the cursor to that account and comes back as the chosen code.
    ObjectRef AccountLookup(automation::Argument& text) const;
    ObjectRef SettTypeLookup() const;
    ObjectRef CurrencyLookup() const;
    ObjectRef UnitLookup(std::int32_t unitGroup, const std::string& text) const;
    ObjectRef ItemLookUp(std::int32_t itemClass, const std::string& text) const;
    // Names of the item classes by combination.
    std::map<std::string, std::string> ItemClassesOfAccounts() const;

    HostSessionRef session_;
    bool shortNumber_ = false;      // BeShortNumber: items come back by the last part of their number
    std::int32_t getDataType_ = 0;  // GetDataType: ReturnValue of an item, 0 its id, 1 its number
    bool refresh_ = false;          // Refresh: nothing is remembered here anyway
    bool search_ = false;           // Search: start at the text that is handed over
};

const MemberTable<GlView>& GlView::Members() {
    static const MemberTable<GlView> table{
        Method<GlView>("AccountLookup", {"text"},
                       [](GlView& self, Arguments& a) { return Variant(self.AccountLookup(a[0])); }),
        Method<GlView>("SettTypeLookup", {},
                       [](GlView& self, Arguments&) { return Variant(self.SettTypeLookup()); }),
        Method<GlView>("CurrencyLookup", {},
                       [](GlView& self, Arguments&) { return Variant(self.CurrencyLookup()); }),
        Method<GlView>("UnitLookup", {"unitGroup", "text"},
                       [](GlView& self, Arguments& a) {
                           return Variant(
                               self.UnitLookup(a[0].Value().ToInt32(), a[1].Value().ToTextOrEmpty()));
                       }),
        Method<GlView>("ItemLookUp", {"itemClass", "text"},
                       [](GlView& self, Arguments& a) {
                           return Variant(
                               self.ItemLookUp(a[0].Value().ToInt32(), a[1].Value().ToTextOrEmpty()));
                       }),
        Property<GlView>(
            "BeShortNumber", [](GlView& self, Arguments&) { return Variant(self.shortNumber_); },
            [](GlView& self, Arguments& a) { self.shortNumber_ = a[0].Value().ToBoolean(); }),
        Property<GlView>(
            "GetDataType", [](GlView& self, Arguments&) { return Variant(self.getDataType_); },
            [](GlView& self, Arguments& a) { self.getDataType_ = a[0].Value().ToInt32(); }),
        Property<GlView>(
            "Refresh", [](GlView& self, Arguments&) { return Variant(self.refresh_); },
            [](GlView& self, Arguments& a) { self.refresh_ = a[0].Value().ToBoolean(); }),
        Property<GlView>(
            "Search", [](GlView& self, Arguments&) { return Variant(self.search_); },
            [](GlView& self, Arguments& a) { self.search_ = a[0].Value().ToBoolean(); }),
    };
    return table;
}

std::map<std::string, std::string> GlView::ItemClassesOfAccounts() const {
    std::map<std::string, std::string> names;
    const ado::RecordsetRef classes = session_->Execute(
        "select a.FDetailID,b.FName from t_ItemDetailV a inner join t_ItemClass b on a.FItemClassID = "
        "b.FItemClassID where a.FItemID = -1 order by a.FDetailID,a.FItemClassID");
    for (; !classes->AtEnd(); classes->MoveNext()) {
        std::string& joined = names[TextOf(classes, "FDetailID")];
        if (!joined.empty()) joined += "、";
        joined += TextOf(classes, "FName");
    }
    return names;
}

ObjectRef GlView::AccountLookup(automation::Argument& text) const {
    const std::map<std::string, std::string> itemClasses = ItemClassesOfAccounts();
    std::vector<LookUpChoice> choices;
    const ado::RecordsetRef accounts = session_->Execute(
        "select FAccountID,FNumber,FName,FLevel,FDetail,FDC,FDetailID from t_Account order by FNumber");
    for (; !accounts->AtEnd(); accounts->MoveNext()) {
        const std::string number = TextOf(accounts, "FNumber");
        const std::string name = TextOf(accounts, "FName");
        const Variant id = accounts->Value("FAccountID");
        const auto classes = itemClasses.find(TextOf(accounts, "FDetailID"));
        const bool debit = accounts->Value("FDC").ToInt32() == 1;
        choices.push_back(
            {{number,
              name,
              {debit ? "借" : "贷", classes == itemClasses.end() ? "" : classes->second},
              accounts->Value("FLevel").ToInt32() - 1,
              accounts->Value("FDetail").ToInt32() == 1},
             id,
             MakeFields({{"Number", number}, {"Name", name}, {"AccountID", id}, {"FAccountID", id}})});
    }
    LookUpRequest request{
        "会计科目", {kNumberHeader, kNameHeader, "余额方向", "核算项目"}, true, {}, std::nullopt};
    ObjectRef result = AskForChoice(std::move(request), choices, text.Value().ToTextOrEmpty());
    if (result->Get("ReturnOK").ToBoolean()) {
        text.Assign(result->Get("ReturnObject").AsObject()->Get("Number"));
    }
    return result;
}

ObjectRef GlView::SettTypeLookup() const {
    std::vector<LookUpChoice> choices;
    const ado::RecordsetRef rows =
        session_->Execute("select FItemID,FNumber,FName from t_Settle order by FNumber");
    for (; !rows->AtEnd(); rows->MoveNext()) {
        const std::string number = TextOf(rows, "FNumber");
        const std::string name = TextOf(rows, "FName");
        const Variant id = rows->Value("FItemID");
        choices.push_back({{number, name, {}, 0, true},
                           id,
                           MakeFields({{"Number", number}, {"Name", name}, {"ItemID", id}})});
    }
    return AskForChoice({"结算方式", {kNumberHeader, kNameHeader}, false, {}, std::nullopt}, choices);
}

ObjectRef GlView::CurrencyLookup() const {
    std::vector<LookUpChoice> choices;
    const ado::RecordsetRef rows = session_->Execute(
        "select FCurrencyID,FNumber,FName,FExchangeRate from t_Currency order by FCurrencyID");
    for (; !rows->AtEnd(); rows->MoveNext()) {
        const std::string number = TextOf(rows, "FNumber");
        const std::string name = TextOf(rows, "FName");
        const Variant id = rows->Value("FCurrencyID");
        choices.push_back({{number, name, {rows->Value("FExchangeRate").ToDecimal().ToShortText()}, 0, true},
                           id,
                           MakeFields({{"Number", number}, {"Name", name}, {"CurrencyID", id}})});
    }
    return AskForChoice({"币别", {kNumberHeader, kNameHeader, "汇率"}, false, {}, std::nullopt}, choices);
}

ObjectRef GlView::UnitLookup(std::int32_t unitGroup, const std::string& text) const {
    std::vector<LookUpChoice> choices;
    const ado::RecordsetRef rows = session_->Execute(
        "select FMeasureUnitID,FUnitGroupID,FNumber,FName,FCoefficient from t_MeasureUnit "
        "where FMeasureUnitID > 0 and FUnitGroupID = " +
        std::to_string(unitGroup) + " order by FNumber");
    for (; !rows->AtEnd(); rows->MoveNext()) {
        const std::string number = TextOf(rows, "FNumber");
        const std::string name = TextOf(rows, "FName");
        const Variant id = rows->Value("FMeasureUnitID");
        choices.push_back({{number, name, {rows->Value("FCoefficient").ToDecimal().ToShortText()}, 0, true},
                           id,
                           MakeFields({{"Number", number}, {"Name", name}, {"MeasureUnitID", id}})});
    }
    return AskForChoice({"计量单位", {kNumberHeader, kNameHeader, "换算率"}, false, {}, std::nullopt},
                        choices, text);
}

ObjectRef GlView::ItemLookUp(std::int32_t itemClass, const std::string& text) const {
    const ado::RecordsetRef known = session_->Execute(
        "select FName,FSQLTableName from t_ItemClass where FItemClassID = " + std::to_string(itemClass));
    if (known->RecordCount() < 1) throw automation::Error(automation::error_number::kInvalidProcedureCall);
    std::vector<LookUpChoice> choices;
    const ado::RecordsetRef rows = session_->Execute("select FItemID,FNumber,FName from " +
                                                     TextOf(known, "FSQLTableName") + " order by FNumber");
    for (; !rows->AtEnd(); rows->MoveNext()) {
        const std::string number = TextOf(rows, "FNumber");
        const std::string name = TextOf(rows, "FName");
        const Variant id = rows->Value("FItemID");
        // A number without a point has no shorter form.
        const std::string given = shortNumber_ ? number.substr(number.rfind('.') + 1) : number;
        choices.push_back({{number, name, {}, 0, true},
                           getDataType_ == 1 ? Variant(given) : id,
                           MakeFields({{"Number", given}, {"Name", name}, {"ItemID", id}})});
    }
    return AskForChoice({TextOf(known, "FName"), {kNumberHeader, kNameHeader}, false, {}, std::nullopt},
                        choices, search_ ? text : std::string());
}

}  // namespace

ObjectRef MakeGlView(const HostSessionRef& session) {
    return std::make_shared<GlView>(session);
}

}  // namespace vicenter::host
