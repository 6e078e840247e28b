#include "front/handles.h"

#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "automation/error.h"

namespace vicenter::front {

namespace {

// The lower bits of a handle are its place, from 1 on, the upper ones the use of that place.
constexpr int kPlaceBits = sizeof(std::uintptr_t) >= 8 ? 32 : 20;
constexpr std::uintptr_t kMostPlaces = (std::uintptr_t{1} << kPlaceBits) - 1;
constexpr std::uintptr_t kLastUse = std::numeric_limits<std::uintptr_t>::max() >> kPlaceBits;
constexpr std::uintptr_t kNone = 0;

struct Entry {
    automation::ObjectRef object;  // none while the place is free
    std::size_t shares = 0;
    std::uintptr_t use = 0;
    std::uintptr_t nextFree = kNone;
};

struct Table {
    std::vector<Entry> entries;
    std::uintptr_t firstFree = kNone;  // a place, from 1 on
};

// Never destroyed: a host may give back its last handle when every static object is gone.
Table& Handles() {
    static auto* table = new Table;
    return *table;
}

vic_object* HandleOf(std::uintptr_t place, std::uintptr_t use) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): what hosts hold is a number in a pointer's clothes
    return reinterpret_cast<vic_object*>((use << kPlaceBits) | place);
}

// The entry of a handle that holds an object, else none.
Entry* Find(const vic_object* handle) {
    const auto number = reinterpret_cast<std::uintptr_t>(handle);
    const std::uintptr_t place = number & kMostPlaces;
    Table& table = Handles();
    if (place == kNone || place > table.entries.size()) return nullptr;
    Entry& entry = table.entries[place - 1];
    return entry.object && entry.use == number >> kPlaceBits ? &entry : nullptr;
}

Entry& Need(const vic_object* handle) {
    Entry* entry = Find(handle);
    if (entry == nullptr)
        throw automation::Error(VIC_ERROR_RELEASED, "The object has been released", "VelaVICenter");
    return *entry;
}

}  // namespace

std::size_t& LiveObjects() {
    static std::size_t count = 0;
    return count;
}

vic_object* NewHandle(automation::ObjectRef object) {
    if (!object) return nullptr;
    Table& table = Handles();
    if (table.firstFree == kNone) {
        if (table.entries.size() >= kMostPlaces)
            throw automation::Error(VIC_ERROR_OUT_OF_MEMORY, "Too many objects are held", "VelaVICenter");
        table.entries.emplace_back();
        table.firstFree = table.entries.size();
    }
    const std::uintptr_t place = table.firstFree;
    Entry& entry = table.entries[place - 1];
    table.firstFree = std::exchange(entry.nextFree, kNone);
    entry.object = std::move(object);
    entry.shares = 1;
    ++LiveObjects();
    return HandleOf(place, entry.use);
}

const automation::ObjectRef& ObjectOf(const vic_object* handle) {
    return Need(handle).object;
}

void Retain(vic_object* handle) {
    ++Need(handle).shares;
}

bool Release(vic_object* handle) noexcept {
    if (handle == nullptr) return true;
    Entry* entry = Find(handle);
    if (entry == nullptr) return false;
    if (--entry->shares != 0) return true;
    --LiveObjects();
    const automation::ObjectRef last = std::move(entry->object);
    entry->object = nullptr;
    // A place whose uses are all counted rests for good.
    if (entry->use == kLastUse) return true;
    ++entry->use;
    Table& table = Handles();
    entry->nextFree =
        std::exchange(table.firstFree, static_cast<std::uintptr_t>(entry - table.entries.data()) + 1);
    return true;
}

}  // namespace vicenter::front
