#pragma once

// The class that hosts create, as VelaVICenter.aplication, to open the template center. The name is spelled
// so on purpose: hosts create it by that name. Stateless; user-interface thread.

#include "automation/member_table.h"

namespace vicenter::entry {

// The component's library name, before the point of its ProgIDs and as the source of its errors.
inline constexpr const char* kLibraryName = "VelaVICenter";

class aplication : public automation::TableObject<aplication> {
  public:
    static const automation::MemberTable<aplication>& Members();
    std::string TypeName() const override { return "aplication"; }

    // Opens a new, independent template center window, modeless and without an owner, and returns at once. A
    // window that cannot be created or shown is an error of the source VelaVICenter.
    void ShowVICenter();
};

}  // namespace vicenter::entry
