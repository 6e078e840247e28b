#pragma once

// One block of memory that grows without copying what it holds, as far as the system allows.
//
// Small blocks come from the allocator. Large ones get address space beyond their size, so that growing
// within it costs nothing, and are moved by their page tables when even that is used up. Where the system
// has no such service the allocator extends the block. The size is always the one asked for; memory that was
// never written to is not taken from the machine.
//
// Owns its memory. Any thread, one at a time.

#include <cstddef>

namespace vicenter::system {

class GrowingBlock {
  public:
    GrowingBlock() = default;
    GrowingBlock(const GrowingBlock&) = delete;
    GrowingBlock& operator=(const GrowingBlock&) = delete;
    ~GrowingBlock() { Release(); }

    void* Data() { return data_; }
    const void* Data() const { return data_; }
    std::size_t Size() const { return size_; }
    // Keeps the content up to the smaller size; what is new has no defined content. Throws std::bad_alloc
    // and then changes nothing.
    void Resize(std::size_t size);

  private:
    void Release();
    bool ResizeMapped(std::size_t size);

    void* data_ = nullptr;
    std::size_t size_ = 0;
    std::size_t mapped_ = 0;  // bytes of address space; 0 while the block is the allocator's
};

}  // namespace vicenter::system
