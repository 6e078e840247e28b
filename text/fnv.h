#pragma once

// A number of what it is given, 64-bit FNV-1a: the same in every program, on every machine and of every
// width, so that it may be written down. Nothing for keys that strangers choose.

#include <cstdint>
#include <string_view>

namespace vicenter::text {

class Fnv {
  public:
    constexpr Fnv() = default;
    // Goes on where another one was.
    constexpr explicit Fnv(std::uint64_t value) : state_(value) {}

    // A byte, or a mark above 0xFF that no byte is. Each step maps states one to one: two inputs of equal
    // length that differ in one unit never meet again.
    constexpr void Add(unsigned unit) { state_ = (state_ ^ unit) * 0x100000001B3U; }
    constexpr void Add(std::string_view bytes) {
        for (const char byte : bytes)
            Add(static_cast<unsigned char>(byte));
    }
    constexpr std::uint64_t Value() const { return state_; }

  private:
    std::uint64_t state_ = 0xCBF29CE484222325U;
};

}  // namespace vicenter::text
