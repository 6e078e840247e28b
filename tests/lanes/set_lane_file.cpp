// The file itself.

#include "host/account_set.h"
#include "tests/lanes/set_lane.h"

namespace vicenter::lanes {

std::string ConnectTextOf(const std::string& file) {
    return host::FileConnectString(file);
}

bool RefusesInOwnWords() {
    return false;
}

}  // namespace vicenter::lanes
