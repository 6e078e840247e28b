// A system without classes of its own.

#include "platform/com/installed_classes.h"

namespace vicenter::com {

InstalledClasses::InstalledClasses() = default;
InstalledClasses::~InstalledClasses() = default;

void InstalledClasses::BeginHere() {}

bool InstalledClasses::Has(std::string_view /*progId*/) {
    return false;
}

}  // namespace vicenter::com
