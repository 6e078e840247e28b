#pragma once

// Keeps the library in its process while an object of this is there. COM takes libraries out of a process
// when its last apartment ends, whoever still has windows there.

#ifdef _WIN32
#include "platform/com/com_headers.h"
#endif

namespace vicenter::front {

class KeptLoaded {
  public:
#ifdef _WIN32
    KeptLoaded() {
        static const char inside = 0;
        GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, &inside, &module_);
    }
    // Whoever called the library to have this end holds it as well.
    ~KeptLoaded() {
        if (module_ != nullptr) FreeLibrary(module_);
    }
#else
    KeptLoaded() = default;
#endif
    KeptLoaded(const KeptLoaded&) = delete;
    KeptLoaded& operator=(const KeptLoaded&) = delete;

#ifdef _WIN32
  private:
    HMODULE module_ = nullptr;
#endif
};

}  // namespace vicenter::front
