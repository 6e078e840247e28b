// VelaBillDataAccess.SysInfo: a user's cloud account.

#include "automation/member_table.h"
#include "host/components/components.h"

namespace vicenter::host {

using automation::Arguments;
using automation::MemberTable;
using automation::Variant;

namespace {

class SysInfo final : public automation::TableObject<SysInfo> {
  public:
    explicit SysInfo(HostSessionRef session) : session_(std::move(session)) {}
    static const MemberTable<SysInfo>& Members() {
        static const MemberTable<SysInfo> table{
            automation::Method<SysInfo>("GetUserCloudInfo", {"propsString", "userId"},
                                        [](SysInfo& self, Arguments& arguments) {
                                            return Variant(
                                                self.GetUserCloudInfo(arguments[1].Value().ToInt32()));
                                        }),
        };
        return table;
    }
    std::string TypeName() const override { return "SysInfo"; }

  private:
    // An empty recordset for a user without a cloud account.
    ado::RecordsetRef GetUserCloudInfo(std::int32_t userId) const {
        return session_->Execute(
            "select FCloudUserID,FCloudUserName,FCloudURL from t_UserCloud where FUserID = " +
            std::to_string(userId));
    }

    HostSessionRef session_;
};

}  // namespace

automation::ObjectRef MakeSysInfo(const HostSessionRef& session) {
    return std::make_shared<SysInfo>(session);
}

}  // namespace vicenter::host
