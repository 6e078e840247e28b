#pragma once

// Every text of a workbook once. A text keeps its index and its place in memory for the life of the pool.
// Owned by one Workbook; not thread-safe.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace vicenter::office {

class TextPool {
  public:
    // The index of that text, added when it is new. Throws automation::Error when the pool is full.
    std::uint32_t Intern(std::string_view text);
    std::string_view At(std::uint32_t index) const { return texts_[index]; }
    std::size_t Count() const { return texts_.size(); }
    // Memory taken, bookkeeping included.
    std::size_t Bytes() const { return bytes_ + texts_.size() * kEntryBytes; }

  private:
    static constexpr std::size_t kChunkBytes = 256u << 10;
    static constexpr std::size_t kEntryBytes = sizeof(std::string_view) + 3 * sizeof(std::uint32_t);

    std::string_view Store(std::string_view text);
    void Grow();

    std::vector<std::string_view> texts_;
    std::vector<std::uint32_t> hashes_;
    std::vector<std::uint32_t> slots_;  // index + 1; 0 is free
    std::vector<std::unique_ptr<char[]>> chunks_;
    std::size_t chunkUsed_ = kChunkBytes;
    std::size_t bytes_ = 0;
};

}  // namespace vicenter::office
