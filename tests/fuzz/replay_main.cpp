// Runs a fuzz target over a corpus as an ordinary test, with any compiler. The arguments:
//   FILE or FOLDER    every file is an input
//   FILE.hex          every line is one, in hexadecimal digits; "#" begins a comment
//   NUMBER [SEED]     so many random inputs, the same in every run: for targets to which the bytes are
//   choices

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

int ReplayFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    return 1;
}

int ReplayLines(const std::filesystem::path& file) {
    std::ifstream stream(file);
    int inputs = 0;
    for (std::string line; std::getline(stream, line);) {
        if (line.empty() || line.front() == '#') continue;
        std::vector<std::uint8_t> bytes;
        for (std::size_t i = 0; i + 1 < line.size(); i += 2)
            bytes.push_back(static_cast<std::uint8_t>(std::stoi(line.substr(i, 2), nullptr, 16)));
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
        ++inputs;
    }
    return inputs;
}

int ReplayRandom(int inputs, unsigned seed) {
    constexpr std::size_t kLongest = 600;
    std::mt19937 random(seed);
    for (int i = 0; i < inputs; ++i) {
        std::vector<std::uint8_t> bytes(random() % kLongest);
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(random());
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    return inputs;
}

int ReplayFolder(const std::filesystem::path& folder) {
    int inputs = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file()) inputs += ReplayFile(entry.path());
    }
    return inputs;
}

bool IsNumber(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string::npos;
}

}  // namespace

int main(int argc, char** argv) {
    constexpr unsigned kSeed = 20261122;
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    int inputs = 0;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::filesystem::path path = arguments[i];
        if (IsNumber(arguments[i])) {
            const bool hasSeed = i + 1 < arguments.size() && IsNumber(arguments[i + 1]);
            const int count = std::atoi(arguments[i].c_str());
            const unsigned seed =
                hasSeed ? static_cast<unsigned>(std::strtoul(arguments[++i].c_str(), nullptr, 10)) : kSeed;
            inputs += ReplayRandom(count, seed);
        } else if (path.extension() == ".hex") {
            inputs += ReplayLines(path);
        } else {
            inputs += std::filesystem::is_directory(path) ? ReplayFolder(path) : ReplayFile(path);
        }
        if (inputs == 0) {
            std::fprintf(stderr, "%s holds no input\n", arguments[i].c_str());
            return 1;
        }
    }
    std::printf("%d inputs\n", inputs);
    return inputs > 0 ? 0 : 1;
}
