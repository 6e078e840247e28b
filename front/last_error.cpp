#include "front/last_error.h"

#include <optional>

#include "platform/system/thread_value.h"

namespace vicenter::front {

namespace {

struct Last {
    std::optional<automation::Error> error;
};

std::optional<automation::Error>& LastError() {
    return system::ValueOfThisThread<Last>().error;
}

}  // namespace

vic_status SetLastError(const automation::Error& error) noexcept {
    try {
        LastError() = error;
        // An error numbered 0 must not pass for success.
        if (error.Number() == 0) LastError().emplace(VIC_ERROR_INTERNAL, error.Text(), error.Source());
    } catch (...) {
        // Short enough to need no memory.
        LastError().emplace(VIC_ERROR_OUT_OF_MEMORY, "Out of memory", "VelaVICenter");
    }
    return LastError()->Number();
}

void ForgetLastError() {
    LastError().reset();
}

vic_int32 LastErrorNumber() {
    return LastError() ? LastError()->Number() : 0;
}

const char* LastErrorDescription() {
    return LastError() ? LastError()->Text().c_str() : "";
}

const char* LastErrorSource() {
    return LastError() ? LastError()->Source().c_str() : "";
}

automation::Error ErrorOfStatus(vic_status status) {
    if (LastError() && LastError()->Number() == status) return *LastError();
    return automation::Error(status);
}

}  // namespace vicenter::front
