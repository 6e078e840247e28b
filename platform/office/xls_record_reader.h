#pragma once

// The records of an ".xls" stream one after another, and the texts that run on over "continue" records.
// Every read is checked against the record's end; what is missing is an automation::Error.

#include <bit>
#include <cstdint>
#include <string>
#include <vector>

#include "platform/office/compound_file.h"
#include "platform/office/xls_records.h"

namespace vicenter::office::xls {

class RecordReader {
  public:
    explicit RecordReader(CompoundReader& source) : source_(source), buffer_(kWindowBytes) {}

    // The next record; false at the end of the stream.
    bool Next();
    void SeekTo(std::uint64_t position);

    std::uint16_t Id() const { return id_; }
    // Bytes of the record not yet read.
    std::size_t Left() const { return last_ - at_; }

    // Values at the reading place, which they move.
    std::uint8_t U8() { return Take(1)[0]; }
    std::uint16_t U16() {
        const unsigned char* bytes = Take(2);
        return static_cast<std::uint16_t>(bytes[0] | bytes[1] << 8);
    }
    std::uint32_t U32() {
        const std::uint32_t low = U16();
        return low | static_cast<std::uint32_t>(U16()) << 16;
    }
    double F64() {
        const std::uint64_t low = U32();
        return std::bit_cast<double>(low | static_cast<std::uint64_t>(U32()) << 32);
    }
    void Skip(std::size_t count) { Take(count); }

    // A text with a count of one or two bytes, its flags, its formatting and phonetic parts left out. Runs on
    // over continue records.
    void ReadText(std::string& text, bool shortCount = false);

  private:
    static constexpr std::size_t kWindowBytes = 128u << 10;

    const unsigned char* Take(std::size_t count);
    // Makes at least `count` bytes available at begin_; false when the stream ends before.
    bool Fill(std::size_t count);
    // Goes on to a continue record when the present one is used up.
    void ContinueIfEmpty();
    void SkipContinued(std::uint64_t count);

    CompoundReader& source_;
    std::vector<unsigned char> buffer_;
    std::size_t begin_ = 0;  // start of the next record
    std::size_t end_ = 0;
    std::uint16_t id_ = 0;
    std::size_t at_ = 0;
    std::size_t last_ = 0;
    std::u16string units_;
    std::uint64_t total_ = 0;
};

}  // namespace vicenter::office::xls
