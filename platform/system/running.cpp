#include "platform/system/running.h"

#include "platform/system/os.h"

namespace vicenter::system {

std::string ProcessMark(std::int32_t processId) {
    return os::ProcessMark(processId);
}

}  // namespace vicenter::system
