// Runs a fuzz target over the files given, or over every file of the folders given: the corpus as an ordinary
// test, with any compiler.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

int Replay(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(stream), {}};
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    int files = 0;
    for (int i = 1; i < argc; ++i) {
        if (!std::filesystem::is_directory(argv[i])) {
            files += Replay(argv[i]);
            continue;
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[i])) {
            if (entry.is_regular_file()) files += Replay(entry.path());
        }
    }
    std::printf("%d inputs\n", files);
    return files > 0 ? 0 : 1;
}
