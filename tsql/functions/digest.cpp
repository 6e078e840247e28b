#include "tsql/functions/digest.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>

namespace vicenter::tsql::engine {

namespace {

constexpr std::size_t kBlock = 64;
constexpr std::size_t kWords = 16;

enum class Order { kLowFirst, kHighFirst };

template <class Number>
void Append(std::string& bytes, Number number, Order order) {
    constexpr int kBytes = sizeof(Number);
    for (int i = 0; i < kBytes; ++i) {
        const int shift = (order == Order::kLowFirst ? i : kBytes - 1 - i) * 8;
        bytes += static_cast<char>(number >> shift & 0xFF);
    }
}

// With a bit behind it, filled up to whole blocks, the number of bits at the end.
std::string Padded(std::string_view bytes, Order order) {
    std::string padded(bytes);
    padded += '\x80';
    while (padded.size() % kBlock != kBlock - sizeof(std::uint64_t))
        padded += '\0';
    Append(padded, static_cast<std::uint64_t>(bytes.size()) * 8, order);
    return padded;
}

std::array<std::uint32_t, kWords> WordsOf(const std::string& padded, std::size_t block, Order order) {
    std::array<std::uint32_t, kWords> words{};
    for (std::size_t i = 0; i < kBlock; ++i) {
        const auto byte = static_cast<std::uint32_t>(static_cast<unsigned char>(padded[block + i]));
        const std::size_t place = order == Order::kLowFirst ? i % 4 : 3 - i % 4;
        words[i / 4] |= byte << place * 8;
    }
    return words;
}

template <std::size_t N>
std::string Bytes(const std::array<std::uint32_t, N>& state, Order order) {
    std::string bytes;
    for (const std::uint32_t word : state)
        Append(bytes, word, order);
    return bytes;
}

// The first primes; SHA-256 takes the fractions of their roots for its constants.
std::array<unsigned, 64> Primes() {
    std::array<unsigned, 64> primes{};
    std::size_t count = 0;
    for (unsigned number = 2; count < primes.size(); ++number) {
        bool prime = true;
        for (std::size_t i = 0; i < count; ++i)
            prime = prime && number % primes[i] != 0;
        if (prime) primes[count++] = number;
    }
    return primes;
}

std::uint32_t Fraction(long double number) {
    return static_cast<std::uint32_t>((number - std::floor(number)) * 4294967296.0L);
}

}  // namespace

std::string Md5(std::string_view bytes) {
    constexpr std::array<int, 16> kTurns = {7, 12, 17, 22, 5, 9, 14, 20, 4, 11, 16, 23, 6, 10, 15, 21};
    std::array<std::uint32_t, 4> state = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476};
    const std::string padded = Padded(bytes, Order::kLowFirst);
    for (std::size_t block = 0; block < padded.size(); block += kBlock) {
        const auto words = WordsOf(padded, block, Order::kLowFirst);
        auto [a, b, c, d] = state;
        for (std::size_t i = 0; i < kBlock; ++i) {
            std::uint32_t mix = 0;
            std::size_t word = 0;
            switch (i / 16) {
                case 0:
                    mix = (b & c) | (~b & d);
                    word = i;
                    break;
                case 1:
                    mix = (d & b) | (~d & c);
                    word = (5 * i + 1) % kWords;
                    break;
                case 2:
                    mix = b ^ c ^ d;
                    word = (3 * i + 5) % kWords;
                    break;
                default:
                    mix = c ^ (b | ~d);
                    word = 7 * i % kWords;
                    break;
            }
            const auto constant = static_cast<std::uint32_t>(
                std::floor(std::fabs(std::sin(static_cast<double>(i + 1))) * 4294967296.0));
            const std::uint32_t sum = a + mix + constant + words[word];
            a = d;
            d = c;
            c = b;
            b += std::rotl(sum, kTurns[i / 16 * 4 + i % 4]);
        }
        state = {state[0] + a, state[1] + b, state[2] + c, state[3] + d};
    }
    return Bytes(state, Order::kLowFirst);
}

std::string Sha1(std::string_view bytes) {
    std::array<std::uint32_t, 5> state = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
    const std::string padded = Padded(bytes, Order::kHighFirst);
    for (std::size_t block = 0; block < padded.size(); block += kBlock) {
        std::array<std::uint32_t, 80> words{};
        const auto first = WordsOf(padded, block, Order::kHighFirst);
        for (std::size_t i = 0; i < words.size(); ++i) {
            words[i] = i < kWords ? first[i]
                                  : std::rotl(words[i - 3] ^ words[i - 8] ^ words[i - 14] ^ words[i - 16], 1);
        }
        auto [a, b, c, d, e] = state;
        for (std::size_t i = 0; i < words.size(); ++i) {
            const std::uint32_t mix = i < 20   ? (b & c) | (~b & d)
                                      : i < 40 ? b ^ c ^ d
                                      : i < 60 ? (b & c) | (b & d) | (c & d)
                                               : b ^ c ^ d;
            const std::uint32_t constant = i < 20   ? 0x5A827999
                                           : i < 40 ? 0x6ED9EBA1
                                           : i < 60 ? 0x8F1BBCDC
                                                    : 0xCA62C1D6;
            const std::uint32_t sum = std::rotl(a, 5) + mix + e + constant + words[i];
            e = d;
            d = c;
            c = std::rotl(b, 30);
            b = a;
            a = sum;
        }
        state = {state[0] + a, state[1] + b, state[2] + c, state[3] + d, state[4] + e};
    }
    return Bytes(state, Order::kHighFirst);
}

std::string Sha256(std::string_view bytes) {
    const std::array<unsigned, 64> primes = Primes();
    std::array<std::uint32_t, 8> state{};
    for (std::size_t i = 0; i < state.size(); ++i)
        state[i] = Fraction(std::sqrt(static_cast<long double>(primes[i])));
    const std::string padded = Padded(bytes, Order::kHighFirst);
    for (std::size_t block = 0; block < padded.size(); block += kBlock) {
        std::array<std::uint32_t, 64> words{};
        const auto first = WordsOf(padded, block, Order::kHighFirst);
        for (std::size_t i = 0; i < words.size(); ++i) {
            if (i < kWords) {
                words[i] = first[i];
                continue;
            }
            const std::uint32_t low = words[i - 15];
            const std::uint32_t high = words[i - 2];
            words[i] = words[i - 16] + (std::rotr(low, 7) ^ std::rotr(low, 18) ^ low >> 3) + words[i - 7] +
                       (std::rotr(high, 17) ^ std::rotr(high, 19) ^ high >> 10);
        }
        auto [a, b, c, d, e, f, g, h] = state;
        for (std::size_t i = 0; i < words.size(); ++i) {
            const std::uint32_t constant = Fraction(std::cbrt(static_cast<long double>(primes[i])));
            const std::uint32_t one = h + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) +
                                      ((e & f) ^ (~e & g)) + constant + words[i];
            const std::uint32_t two =
                (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
            h = g;
            g = f;
            f = e;
            e = d + one;
            d = c;
            c = b;
            b = a;
            a = one + two;
        }
        state = {state[0] + a, state[1] + b, state[2] + c, state[3] + d,
                 state[4] + e, state[5] + f, state[6] + g, state[7] + h};
    }
    return Bytes(state, Order::kHighFirst);
}

}  // namespace vicenter::tsql::engine
