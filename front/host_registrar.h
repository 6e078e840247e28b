#pragma once

// VelaVICenter.Host: what a host that knows objects alone, a script say, needs of the C interface: its
// components under their ProgIDs, and its own connection service. User-interface thread.

#include "automation/member_table.h"

namespace vicenter::front {

class HostRegistrar final : public automation::TableObject<HostRegistrar> {
  public:
    static const automation::MemberTable<HostRegistrar>& Members();
    std::string TypeName() const override { return "Host"; }

    // From then on the ProgID gives this object, the same one each time. Error 5 without a ProgID or an
    // object.
    void Register(const std::string& progId, const automation::Variant& component);
    void Unregister(const std::string& progId);
    // The host's connection service; no object puts back the plain connections.
    void SetFramework(const automation::Variant& framework);
};

void RegisterHostRegistrar();

}  // namespace vicenter::front
