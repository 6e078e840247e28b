// Runs a fuzz target whose bytes are mere choices over a row of random inputs, the same in every run: what a
// corpus is for the readers of files. The first argument is their number, the second, if any, the seed.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
    constexpr unsigned kSeed = 20261122;
    constexpr std::size_t kLongest = 600;
    const int inputs = argc > 1 ? std::atoi(argv[1]) : 100;
    std::mt19937 random(argc > 2 ? static_cast<unsigned>(std::strtoul(argv[2], nullptr, 10)) : kSeed);
    for (int i = 0; i < inputs; ++i) {
        std::vector<std::uint8_t> bytes(random() % kLongest);
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(random());
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    std::printf("%d inputs\n", inputs);
    return inputs > 0 ? 0 : 1;
}
