// VelaEBSBase.SecurityInfo: what a user may do.

#include "automation/member_table.h"
#include "host/components/components.h"

namespace vicenter::host {

using automation::Arguments;
using automation::MemberTable;
using automation::Variant;

namespace {

class SecurityInfo final : public automation::TableObject<SecurityInfo> {
  public:
    explicit SecurityInfo(HostSessionRef session) : session_(std::move(session)) {}
    static const MemberTable<SecurityInfo>& Members() {
        static const MemberTable<SecurityInfo> table{
            automation::Method<SecurityInfo>(
                "AccessCheck", {"propsString", "groupType", "groupId", "access"},
                [](SecurityInfo& self, Arguments& arguments) {
                    return Variant(
                        self.AccessCheck(arguments[0].Value().ToText(), arguments[1].Value().ToInt16(),
                                         arguments[2].Value().ToInt16(), arguments[3].Value().ToInt32()));
                }),
        };
        return table;
    }
    std::string TypeName() const override { return "SecurityInfo"; }

  private:
    // True when the user holds every bit of the access asked for.
    bool AccessCheck(const std::string& propsString, std::int16_t groupType, std::int16_t groupId,
                     std::int32_t access) const {
        const ado::RecordsetRef rights = session_->Execute(
            "select FAccess from t_UserRight where FUserID = " + std::to_string(PropsUser(propsString)) +
            " and FGroupType = " + std::to_string(groupType) + " and FGroupID = " + std::to_string(groupId));
        return rights->RecordCount() > 0 && (rights->Value("FAccess").ToInt32() & access) == access;
    }

    HostSessionRef session_;
};

}  // namespace

automation::ObjectRef MakeSecurityInfo(const HostSessionRef& session) {
    return std::make_shared<SecurityInfo>(session);
}

}  // namespace vicenter::host
