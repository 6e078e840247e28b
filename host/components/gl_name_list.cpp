// VelaGLNameListLib.GLNameList and VelaGLNameListLib2.GLNameList: what the typing name lists offer.

#include "automation/member_table.h"
#include "host/components/components.h"

namespace vicenter::host {

using automation::Arguments;
using automation::MemberTable;
using automation::Variant;

namespace {

class GlNameList final : public automation::TableObject<GlNameList> {
  public:
    explicit GlNameList(HostSessionRef session) : session_(std::move(session)) {}
    static const MemberTable<GlNameList>& Members() {
        static const MemberTable<GlNameList> table{
            automation::Method<GlNameList>("GetNameList", {"column", "text"},
                                           [](GlNameList& self, Arguments& arguments) {
                                               return Variant(self.GetNameList(arguments[0].Value().ToInt32(),
                                                                               arguments[1].Value()));
                                           }),
            automation::Property<GlNameList>(
                "ListVersion",
                [](GlNameList& self, Arguments&) { return Variant(self.session_->DataVersion()); }),
        };
        return table;
    }
    std::string TypeName() const override { return "GLNameList"; }

  private:
    // Records of FID (what the column's look-up returns as the id), FNumber, FName and FDetail (0: shown, but
    // not to be taken) by grid column. The text is the unit group of the row's account in column 17.
    ado::RecordsetRef GetNameList(std::int32_t gridColumn, const Variant& text) const {
        switch (gridColumn) {
            case 2:
                return session_->Execute(
                    "select FAccountID as FID,FNumber,FExplanation as FName,1 as FDetail from t_VoucherExp "
                    "order by FNumber");
            case 5:
                return session_->Execute(
                    "select FAccountID as FID,FNumber,FName,FDetail from t_Account order by FNumber");
            case 9:
                return session_->Execute(
                    "select FItemID as FID,FNumber,FName,1 as FDetail from t_Settle order by FNumber");
            case 13:
                return session_->Execute(
                    "select FCurrencyID as FID,FNumber,FName,1 as FDetail from t_Currency order by "
                    "FCurrencyID");
            case 17:
                return session_->Execute(
                    "select FMeasureUnitID as FID,FNumber,FName,1 as FDetail from t_MeasureUnit where "
                    "FMeasureUnitID > 0 and FUnitGroupID = " +
                    std::to_string(text.ToInt32()) + " order by FNumber");
            default:
                throw automation::Error(automation::error_number::kInvalidProcedureCall, {}, TypeName());
        }
    }

    HostSessionRef session_;
};

}  // namespace

automation::ObjectRef MakeGlNameList(const HostSessionRef& session) {
    return std::make_shared<GlNameList>(session);
}

}  // namespace vicenter::host
