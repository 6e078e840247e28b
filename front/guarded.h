#pragma once

// The edge of the C interface: enters the session, and turns whatever is thrown into the last error.

#include <cstring>
#include <exception>
#include <new>
#include <string>

#include "automation/error.h"
#include "front/last_error.h"
#include "front/library_session.h"

namespace vicenter::front {

// For work that needs no session.
template <class Work>
vic_status Caught(const Work& work) noexcept {
    try {
        try {
            work();
            return 0;
        } catch (const automation::Error& error) {
            return SetLastError(error);
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception& error) {
            return SetLastError(automation::Error(VIC_ERROR_INTERNAL, error.what(), "VelaVICenter"));
        }
    } catch (const std::bad_alloc&) {
        // Short enough to need no memory.
        return SetLastError(automation::Error(VIC_ERROR_OUT_OF_MEMORY, "Out of memory", "VelaVICenter"));
    } catch (...) {
        return SetLastError(automation::Error(VIC_ERROR_INTERNAL, "Internal error", "VelaVICenter"));
    }
}

template <class Work>
vic_status Guarded(const Work& work) noexcept {
    return Caught([&] {
        LibrarySession& session = LibrarySession::Enter();
        const LibrarySession::CallScope scope(session);
        work(session);
    });
}

// Arguments that must be there.
template <class... Pointers>
void Need(const Pointers*... pointers) {
    const bool missing = ((pointers == nullptr) || ...);
    if (missing)
        throw automation::Error(VIC_ERROR_INVALID_ARGUMENT, "A pointer that must be given is null",
                                "VelaVICenter");
}

}  // namespace vicenter::front
