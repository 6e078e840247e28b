#include "automation/deep_release.h"

#include <new>
#include <utility>
#include <vector>

#include "automation/object.h"

namespace vicenter::automation {

namespace {

// Owners within owners that are given back by plain calls.
constexpr int kPlainLevels = 64;

// What one outermost call still has to give back.
struct Pending {
    int level = 0;
    Variant next;  // a chain needs no more room than this, not even when memory is short
    std::vector<Variant> others;

    bool Keep(Variant& value) noexcept {
        if (next.IsEmpty()) {
            next = std::move(value);
            return true;
        }
        try {
            others.push_back(std::move(value));
            return true;
        } catch (const std::bad_alloc&) {
            return false;
        }
    }

    Variant Take() noexcept {
        if (!next.IsEmpty()) return std::exchange(next, Variant());
        if (others.empty()) return {};
        Variant value = std::move(others.back());
        others.pop_back();
        return value;
    }
};

thread_local Pending* pending = nullptr;

}  // namespace

void Release(Variant& value) noexcept {
    if (!value.IsArray() && !value.IsObject()) return;
    if (pending == nullptr) {
        Pending own;
        pending = &own;
        for (Variant dying = std::exchange(value, Variant()); !dying.IsEmpty(); dying = own.Take()) {
            own.level = 0;
            dying = Variant();
        }
        pending = nullptr;
        return;
    }
    if (pending->level >= kPlainLevels && pending->Keep(value)) {
        value = Variant();
        return;
    }
    ++pending->level;
    value = Variant();
    --pending->level;
}

}  // namespace vicenter::automation
