#include "platform/system/unwaited_thread.h"

#include <utility>

#ifdef _WIN32
#include "platform/system/windows_text.h"
#else
#include "platform/system/os.h"
#endif

namespace vicenter::system {

namespace {

void StayLoaded() {
#ifdef _WIN32
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<const wchar_t*>(&StayLoaded), &module);
#else
    os::StayLoaded();
#endif
}

}  // namespace

std::thread StartUnwaited(std::function<void()> work) {
    static const bool stays = (StayLoaded(), true);
    static_cast<void>(stays);
    return std::thread(std::move(work));
}

}  // namespace vicenter::system
