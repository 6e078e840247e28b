// VelaVchExp.ExpView: the look-up dialog for explanations.

#include "automation/member_table.h"
#include "host/components/components.h"
#include "host/components/look_up_result.h"

namespace vicenter::host {

using automation::Arguments;
using automation::MemberTable;
using automation::ObjectRef;
using automation::Variant;

namespace {

class ExpView final : public automation::TableObject<ExpView> {
  public:
    explicit ExpView(HostSessionRef session) : session_(std::move(session)) {}
    static const MemberTable<ExpView>& Members() {
        static const MemberTable<ExpView> table{
            automation::Method<ExpView>(
                "LoadVchExpNewTp", {},
                [](ExpView& self, Arguments&) { return Variant(self.LoadVchExpNewTp()); }),
        };
        return table;
    }
    std::string TypeName() const override { return "ExpView"; }

  private:
    ObjectRef LoadVchExpNewTp() const {
        std::vector<LookUpChoice> choices;
        const ado::RecordsetRef rows = session_->Execute(
            "select a.FNumber,a.FGroupName,a.FExplanation,a.FAccountID,isnull(b.FNumber,'') as "
            "FAccountNumber "
            "from t_VoucherExp a left join t_Account b on a.FAccountID = b.FAccountID order by a.FNumber");
        for (; !rows->AtEnd(); rows->MoveNext()) {
            const auto text = [&](const char* field) { return rows->Value(field).ToTextOrEmpty(); };
            choices.push_back({{text("FNumber"),
                                text("FExplanation"),
                                {text("FGroupName"), text("FAccountNumber")},
                                0,
                                true},
                               text("FExplanation"),
                               MakeFields({{"FNumber", text("FNumber")},
                                           {"FExplanation", text("FExplanation")},
                                           {"FAccountID", rows->Value("FAccountID").ToTextOrEmpty()}})});
        }
        return AskForChoice({"摘要", {"代码", "摘要", "类别", "科目"}, false, {}, std::nullopt}, choices);
    }

    HostSessionRef session_;
};

}  // namespace

ObjectRef MakeExpView(const HostSessionRef& session) {
    return std::make_shared<ExpView>(session);
}

}  // namespace vicenter::host
