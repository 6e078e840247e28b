#include "platform/system/thread_value.h"
#include "platform/system/windows_text.h"

namespace vicenter::system {

namespace {

struct Kept {
    ThreadSlot::End end;
    void* value;
};

void NTAPI EndKept(void* slot) {
    const auto* kept = static_cast<Kept*>(slot);
    if (kept == nullptr) return;
    kept->end(kept->value);
    delete kept;
}

}  // namespace

ThreadSlot::ThreadSlot(End end) : end_(end), place_(FlsAlloc(EndKept)) {}

// Ends what is left, of whatever thread.
ThreadSlot::~ThreadSlot() {
    FlsFree(place_);
}

void* ThreadSlot::Value() const {
    const auto* kept = static_cast<const Kept*>(FlsGetValue(place_));
    return kept == nullptr ? nullptr : kept->value;
}

bool ThreadSlot::Keep(void* value) const {
    auto* kept = new (std::nothrow) Kept{end_, value};
    if (kept != nullptr && FlsSetValue(place_, kept) != 0) return true;
    delete kept;
    return false;
}

}  // namespace vicenter::system
