#include "platform/system/growing_block.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>

#include "platform/system/os.h"

namespace vicenter::system {

namespace {

// From here on a block leaves the allocator: copying it once more costs less than it will save.
constexpr std::size_t kMapFrom = std::size_t{256} * 1024;
// Address space for a block of a size. Only what is written to becomes memory.
constexpr std::size_t kSpareFactor = 16;
// Blocks are moved and cut in pieces of this: a multiple of every page size.
constexpr std::size_t kGranule = std::size_t{64} * 1024;

std::size_t RoundedUp(std::size_t size) {
    if (size > std::numeric_limits<std::size_t>::max() - kGranule) throw std::bad_alloc();
    return (size + kGranule - 1) / kGranule * kGranule;
}

// Address space with room to grow, or just enough where the system grants no more.
void* MapWithSpare(std::size_t size, std::size_t& mapped) {
    const std::size_t least = RoundedUp(size);
    if (least <= std::numeric_limits<std::size_t>::max() / 4 / kSpareFactor) {
        mapped = least * kSpareFactor;
        if (void* data = os::MapMemory(mapped)) return data;
    }
    mapped = least;
    return os::MapMemory(mapped);
}

}  // namespace

void GrowingBlock::Resize(std::size_t size) {
    if (mapped_ != 0) {
        if (!ResizeMapped(size)) throw std::bad_alloc();
        return;
    }
    if (size == 0) {
        Release();
        return;
    }
    if (size >= kMapFrom) {
        std::size_t mapped = 0;
        if (void* data = MapWithSpare(size, mapped)) {
            if (size_ != 0) std::memcpy(data, data_, std::min(size, size_));
            std::free(data_);
            data_ = data;
            size_ = size;
            mapped_ = mapped;
            return;
        }
    }
    void* data = std::realloc(data_, size);
    if (data == nullptr) throw std::bad_alloc();
    data_ = data;
    size_ = size;
}

bool GrowingBlock::ResizeMapped(std::size_t size) {
    if (size > mapped_) {
        const std::size_t least = RoundedUp(size);
        std::size_t wanted = least;
        void* data = nullptr;
        if (least <= std::numeric_limits<std::size_t>::max() / 4 / kSpareFactor) {
            wanted = least * kSpareFactor;
            data = os::RemapMemory(data_, mapped_, wanted);
        }
        if (data == nullptr) {
            wanted = least;
            data = os::RemapMemory(data_, mapped_, wanted);
        }
        if (data == nullptr) return false;
        data_ = data;
        mapped_ = wanted;
    } else if (size < size_) {
        // Hands the memory behind the new end back; the address space stays for a later growth.
        const std::size_t keep = RoundedUp(size);
        if (keep < mapped_) os::DiscardMemory(static_cast<char*>(data_) + keep, mapped_ - keep);
    }
    size_ = size;
    return true;
}

void GrowingBlock::Release() {
    if (mapped_ != 0) {
        os::UnmapMemory(data_, mapped_);
    } else {
        std::free(data_);
    }
    data_ = nullptr;
    size_ = 0;
    mapped_ = 0;
}

}  // namespace vicenter::system
