#pragma once

// VelaVICenter.Host: what a host that knows objects alone, a script say, needs of the C interface: its
// components under their ProgIDs, its own connection service, and the windows' events where it has no loop
// for them. User-interface thread.

#include <memory>

#include "automation/member_table.h"
#include "front/window_loop.h"

namespace vicenter::front {

class HostRegistrar final : public automation::TableObject<HostRegistrar> {
  public:
    // The windows are those of the session; an object that outlives it finds none.
    explicit HostRegistrar(std::weak_ptr<WindowLoop> windows) : windows_(std::move(windows)) {}

    static const automation::MemberTable<HostRegistrar>& Members();
    std::string TypeName() const override { return "Host"; }

    // From then on the ProgID gives this object, the same one each time. Error 5 without a ProgID or an
    // object.
    void Register(const std::string& progId, const automation::Variant& component);
    void Unregister(const std::string& progId);
    // The host's connection service; no object puts back the plain connections.
    void SetFramework(const automation::Variant& framework);

    // Error 429 when the session has ended.
    std::shared_ptr<WindowLoop> Windows() const;

  private:
    std::weak_ptr<WindowLoop> windows_;
};

void RegisterHostRegistrar(const std::shared_ptr<WindowLoop>& windows);

}  // namespace vicenter::front
