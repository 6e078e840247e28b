#pragma once

// StringBuilder: collects long texts without copying them again on every append, created by hosts as
// VelaVICenter.StringBuilder.
//
// A character is a UTF-16 code unit, two bytes; lengths and indexes count those, and a character outside the
// basic plane counts as two. The buffer grows by whole chunks, never by doubling, and where the system can
// extend memory in place nothing is copied. Indexes of Insert and Remove count from 0, positions of Find from
// 1, as the platform's search function counts them.
//
// Owns its buffer. User-interface thread.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "automation/member_table.h"
#include "support/growing_block.h"

namespace vicenter::support {

class StringBuilder : public automation::TableObject<StringBuilder> {
  public:
    static constexpr std::size_t kDefaultChunkBytes = 16384;

    static const automation::MemberTable<StringBuilder>& Members();
    std::string TypeName() const override { return "StringBuilder"; }

    // In characters; error 5 unless above 0. Counts for the next growth.
    void SetChunkSize(std::int64_t characters);
    std::size_t ChunkSize() const { return chunkBytes_ / sizeof(char16_t); }

    void Append(std::u16string_view text);  // not a piece of Text() itself
    void Append(std::string_view text);     // UTF-8; bytes that are none become U+FFFD
    // The text and CR LF.
    void AppendLine(std::string_view text);
    // Error 9 when the index is not within the used part (its end included).
    void Insert(std::int64_t index, std::string_view text);
    // Error 9 when the range is not within the used part.
    void Remove(std::int64_t index, std::int64_t count);
    // The position of the text within the used part from a start position on, 0 when it is not there. An
    // empty text is found at the start. compare 0 compares characters, 1 ignores case; error 5 for a start
    // below 1 or another comparison.
    std::int64_t Find(std::string_view text, std::int64_t start = 1, std::int32_t compare = 0) const;
    // The used part. A half surrogate pair reads as U+FFFD.
    std::string ToString() const;
    std::u16string_view Text() const { return {Characters(), usedBytes_ / sizeof(char16_t)}; }
    // Forgets the text and keeps the buffer.
    void Clear() { usedBytes_ = 0; }
    // Cuts the buffer down to the used part.
    void TrimToSize();

    // In characters.
    std::size_t Length() const { return usedBytes_ / sizeof(char16_t); }
    std::size_t Capacity() const { return block_.Size() / sizeof(char16_t); }

  private:
    const char16_t* Characters() const { return static_cast<const char16_t*>(block_.Data()); }
    char16_t* Characters() { return static_cast<char16_t*>(block_.Data()); }
    // Makes room for so many more bytes, chunk by chunk.
    void Grow(std::size_t bytes);

    GrowingBlock block_;
    std::size_t chunkBytes_ = kDefaultChunkBytes;
    std::size_t usedBytes_ = 0;
};

}  // namespace vicenter::support
