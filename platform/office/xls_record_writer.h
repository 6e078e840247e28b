#pragma once

// Builds the records of an ".xls" stream in a buffer that goes to its sink in large pieces.
// Without a sink it only counts, which is how the place of a sheet is known before it is written.

#include <bit>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/office/compound_file.h"
#include "platform/office/utf.h"
#include "platform/office/xls_records.h"

namespace vicenter::office::xls {

class RecordWriter {
  public:
    explicit RecordWriter(CompoundWriter* sink) : sink_(sink) {}

    std::uint64_t Position() const { return flushed_ + buffer_.size(); }

    void Begin(std::uint16_t id, std::size_t payload) {
        if (buffer_.size() >= kPieceBytes) Flush();
        U16(id);
        U16(static_cast<std::uint16_t>(payload));
    }
    // A record whose payload is counted when it is complete.
    void BeginOpen(std::uint16_t id) {
        Begin(id, 0);
        open_ = buffer_.size();
    }
    std::size_t OpenPayload() const { return buffer_.size() - open_; }
    void EndOpen() {
        const std::size_t payload = OpenPayload();
        buffer_[open_ - 2] = static_cast<char>(payload & 0xFF);
        buffer_[open_ - 1] = static_cast<char>(payload >> 8);
    }

    void U8(std::uint8_t value) { buffer_ += static_cast<char>(value); }
    void U16(std::uint16_t value) {
        const char bytes[] = {static_cast<char>(value & 0xFF), static_cast<char>(value >> 8)};
        buffer_.append(bytes, sizeof bytes);
    }
    void U32(std::uint32_t value) {
        U16(static_cast<std::uint16_t>(value & 0xFFFF));
        U16(static_cast<std::uint16_t>(value >> 16));
    }
    void F64(double value) {
        const auto bits = std::bit_cast<std::uint64_t>(value);
        U32(static_cast<std::uint32_t>(bits & 0xFFFFFFFF));
        U32(static_cast<std::uint32_t>(bits >> 32));
    }
    void Unit(char16_t unit, bool wide) {
        if (wide) {
            U16(unit);
        } else {
            U8(static_cast<std::uint8_t>(unit));
        }
    }

    void Flush() {
        if (sink_ != nullptr) sink_->Write(buffer_);
        flushed_ += buffer_.size();
        buffer_.clear();
    }

  private:
    static constexpr std::size_t kPieceBytes = 256u << 10;

    CompoundWriter* sink_;
    std::string buffer_;
    std::size_t open_ = 0;
    std::uint64_t flushed_ = 0;
};

// The code units of a text and whether any needs two bytes.
struct Units {
    std::u16string units;
    bool wide = false;

    void Assign(std::string_view text) {
        units.clear();
        wide = false;
        for (std::size_t at = 0; at < text.size();) {
            const CodePoint next = ReadUtf8(text, at);
            at += next.length;
            if (next.code >= 0x100) wide = true;
            if (next.code >= 0x10000) {
                units += static_cast<char16_t>(0xD7C0 + (next.code >> 10));
                units += static_cast<char16_t>(0xDC00 + (next.code & 0x3FF));
            } else {
                units += static_cast<char16_t>(next.code);
            }
        }
    }
    std::size_t Bytes() const { return units.size() * (wide ? 2 : 1); }
};

}  // namespace vicenter::office::xls
