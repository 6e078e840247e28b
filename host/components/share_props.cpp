// VelaPropsMgr.ShareProps: what the host's processes share, by process id and name.

#include "automation/member_table.h"
#include "host/components/components.h"
#include "platform/system/surroundings.h"

namespace vicenter::host {

using automation::Arguments;
using automation::MemberTable;
using automation::Variant;

namespace {

class ShareProps final : public automation::TableObject<ShareProps> {
  public:
    explicit ShareProps(HostSessionRef session) : session_(std::move(session)) {}
    static const MemberTable<ShareProps>& Members() {
        static const MemberTable<ShareProps> table{
            automation::Method<ShareProps>("GetProperty", {"processId", "name"},
                                           [](ShareProps& self, Arguments& arguments) {
                                               return self.GetProperty(arguments[0].Value().ToInt32(),
                                                                       arguments[1].Value().ToText());
                                           }),
        };
        return table;
    }
    std::string TypeName() const override { return "ShareProps"; }

  private:
    // Nothing for another process: each has its own session.
    Variant GetProperty(std::int32_t processId, const std::string& name) const {
        if (processId != system::Surroundings::Current().processes->CurrentProcessId()) return {};
        if (!automation::SameName(name, "PropsString")) return {};
        return session_->PropsString();
    }

    HostSessionRef session_;
};

}  // namespace

automation::ObjectRef MakeShareProps(const HostSessionRef& session) {
    return std::make_shared<ShareProps>(session);
}

}  // namespace vicenter::host
