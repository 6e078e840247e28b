#pragma once

// A fuzzer's bytes as a row of choices; when they are used up, every choice is the first.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vicenter::fuzz {

class Choices {
  public:
    Choices(const std::uint8_t* data, std::size_t size) : data_(data), left_(size) {}

    bool Any() const { return left_ > 0; }
    std::uint8_t Byte() {
        if (left_ == 0) return 0;
        --left_;
        return *data_++;
    }
    std::size_t Below(std::size_t bound) {
        const std::size_t value = bound > 256 ? Byte() * std::size_t{256} + Byte() : Byte();
        return value % bound;
    }
    bool Coin() { return (Byte() & 1) != 0; }
    template <class Text, std::size_t N>
    const Text& Of(const Text (&list)[N]) {
        return list[Below(N)];
    }
    // Some of the bytes as they are.
    std::string Bytes(std::size_t most) {
        std::string text;
        for (std::size_t count = Below(most + 1); count > 0 && Any(); --count)
            text += static_cast<char>(Byte());
        return text;
    }

  private:
    const std::uint8_t* data_;
    std::size_t left_;
};

}  // namespace vicenter::fuzz
