// VelaEBSBase.SystemProfile: values of the ledger's profile.

#include "automation/member_table.h"
#include "entry/sql_text.h"
#include "host/components/components.h"

namespace vicenter::host {

using automation::Arguments;
using automation::MemberTable;
using automation::Variant;

namespace {

class SystemProfile final : public automation::TableObject<SystemProfile> {
  public:
    explicit SystemProfile(HostSessionRef session) : session_(std::move(session)) {}
    static const MemberTable<SystemProfile>& Members() {
        static const MemberTable<SystemProfile> table{
            automation::Method<SystemProfile>("GetProfile", {"propsString", "category", "key"},
                                              [](SystemProfile& self, Arguments& arguments) {
                                                  return self.GetProfile(arguments[1].Value().ToText(),
                                                                         arguments[2].Value().ToText());
                                              }),
        };
        return table;
    }
    std::string TypeName() const override { return "SystemProfile"; }

  private:
    // Empty for a key that the profile does not hold.
    Variant GetProfile(const std::string& category, const std::string& key) const {
        const ado::RecordsetRef value = session_->Execute(
            "select FValue from t_SystemProfile where FCategory = " + entry::SqlQuote(category) +
            " and FKey = " + entry::SqlQuote(key));
        return value->RecordCount() > 0 ? value->Value("FValue") : Variant();
    }

    HostSessionRef session_;
};

}  // namespace

automation::ObjectRef MakeSystemProfile(const HostSessionRef& session) {
    return std::make_shared<SystemProfile>(session);
}

}  // namespace vicenter::host
