// VelaConnection.AppConnection: statements on the account set for components without a connection of their
// own.

#include "automation/member_table.h"
#include "host/components/components.h"

namespace vicenter::host {

using automation::Arguments;
using automation::MemberTable;
using automation::Variant;

namespace {

class AppConnection final : public automation::TableObject<AppConnection> {
  public:
    explicit AppConnection(HostSessionRef session) : session_(std::move(session)) {}
    static const MemberTable<AppConnection>& Members() {
        static const MemberTable<AppConnection> table{
            automation::Method<AppConnection>("Execute", {"sql"},
                                              [](AppConnection& self, Arguments& arguments) {
                                                  return Variant(
                                                      self.session_->Execute(arguments[0].Value().ToText()));
                                              }),
        };
        return table;
    }
    std::string TypeName() const override { return "AppConnection"; }

  private:
    HostSessionRef session_;
};

}  // namespace

automation::ObjectRef MakeAppConnection(const HostSessionRef& session) {
    return std::make_shared<AppConnection>(session);
}

}  // namespace vicenter::host
