#include "platform/system/icu_memory.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>

#include <unicode/uclean.h>

#include "platform/system/os.h"

namespace vicenter::system {

namespace {

// The collation and a code page need 60 KB, loading pinyin 3 MB.
constexpr std::size_t kReserve = 8U << 20;

std::mutex& ReserveLock() {
    static std::mutex lock;
    return lock;
}

Reserve& IcuReserve() {
    alignas(std::max_align_t) static std::byte room[kReserve];
    static Reserve reserve(room, sizeof room);
    return reserve;
}

void* TakeReserve(std::size_t bytes) {
    const std::lock_guard guard(ReserveLock());
    return IcuReserve().Take(bytes);
}

void* Allocate(const void* /*context*/, std::size_t bytes) {
    void* block = std::malloc(bytes);
    return block != nullptr ? block : TakeReserve(bytes);
}

void Free(const void* /*context*/, void* block) {
    if (!IcuReserve().Holds(block)) {
        std::free(block);
        return;
    }
    const std::lock_guard guard(ReserveLock());
    IcuReserve().GiveBack(block);
}

void* Reallocate(const void* context, void* block, std::size_t bytes) {
    if (block == nullptr) return Allocate(context, bytes);
    const bool isReserve = IcuReserve().Holds(block);
    if (!isReserve) {
        if (void* moved = std::realloc(block, bytes)) return moved;
    }
    const std::size_t before = isReserve ? Reserve::SizeOf(block) : os::BlockSize(block);
    void* moved = TakeReserve(bytes);
    if (moved == nullptr) return nullptr;
    std::memcpy(moved, block, std::min(before, bytes));
    Free(context, block);
    return moved;
}

}  // namespace

void GiveIcuItsReserve() {
    static const bool given = [] {
        IcuReserve();
        // ICU keeps the functions beyond the library that holds them.
        os::StayLoaded();
        UErrorCode status = U_ZERO_ERROR;
        u_setMemoryFunctions(nullptr, Allocate, Reallocate, Free, &status);
        return true;
    }();
    static_cast<void>(given);
}

Reserve::Reserve(std::byte* room, std::size_t size) : room_(room), size_(size / kHead * kHead) {
    new (room_) Head{size_ - kHead, true};
}

void Reserve::Join(std::size_t place) {
    Head* head = At(place);
    for (std::size_t behind = place + kHead + head->size; behind < size_ && At(behind)->isFree;
         behind = place + kHead + head->size)
        head->size += kHead + At(behind)->size;
}

void* Reserve::Take(std::size_t bytes) {
    if (bytes > size_) return nullptr;
    const std::size_t wanted = std::max(kHead, (bytes + kHead - 1) / kHead * kHead);
    // Twice around: a free block may have begun before the place where the search does.
    for (std::size_t seen = 0; seen < 2 * size_;) {
        const std::size_t place = next_;
        Head* head = At(place);
        if (head->isFree) Join(place);
        const std::size_t end = place + kHead + head->size;
        seen += kHead + head->size;
        next_ = end < size_ ? end : 0;
        if (!head->isFree || head->size < wanted) continue;
        if (head->size >= wanted + 2 * kHead) {
            next_ = place + kHead + wanted;
            new (room_ + next_) Head{head->size - wanted - kHead, true};
            head->size = wanted;
        }
        head->isFree = false;
        return room_ + place + kHead;
    }
    return nullptr;
}

void Reserve::GiveBack(void* block) {
    const std::size_t place = static_cast<std::size_t>(static_cast<std::byte*>(block) - room_) - kHead;
    At(place)->isFree = true;
    // The search may stand on a block that is joined into this one: it begins anew where a block begins.
    next_ = place;
    Join(place);
}

bool Reserve::Holds(const void* block) const {
    return block >= room_ && block < room_ + size_;
}

std::size_t Reserve::SizeOf(const void* block) {
    const auto* head = static_cast<const std::byte*>(block) - kHead;
    return reinterpret_cast<const Head*>(head)->size;
}

}  // namespace vicenter::system
