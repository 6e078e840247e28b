// The texts kept from fuzzing, and small damages done to each of them.

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/paths/source_folder.h"
#include "tests/support/json_fuzz_check.h"

namespace vicenter::support {
namespace {

std::vector<std::string> KeptTexts() {
    std::vector<std::string> texts;
    for (const auto& entry :
         std::filesystem::directory_iterator(testing_paths::SourceFolder() / "tests/support/json_corpus")) {
        std::ifstream file(entry.path(), std::ios::binary);
        texts.emplace_back(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    }
    return texts;
}

TEST(JsonFuzzReplay, EveryKeptTextKeepsTheRules) {
    const auto texts = KeptTexts();
    ASSERT_GE(texts.size(), 5U);
    for (const std::string& text : texts)
        EXPECT_TRUE(KeepsTheRules(text)) << text;
}

// Bytes from pairs of hexadecimal digits.
std::string Bytes(const std::string& digits) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
    return bytes;
}

TEST(JsonFuzzReplay, EveryTextThatTheFuzzerFoundKeepsTheRules) {
    std::ifstream file(testing_paths::SourceFolder() / "tests/support/json_fuzz_corpus.txt");
    int count = 0;
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        EXPECT_TRUE(KeepsTheRules(Bytes(line))) << line;
        ++count;
    }
    EXPECT_GE(count, 500);
}

TEST(JsonFuzzReplay, EveryTextCutShortKeepsTheRules) {
    for (const std::string& text : KeptTexts()) {
        for (std::size_t length = 0; length < text.size(); ++length)
            EXPECT_TRUE(KeepsTheRules(std::string_view(text).substr(0, length))) << text.substr(0, length);
    }
}

TEST(JsonFuzzReplay, EveryTextWithOneOtherByteKeepsTheRules) {
    for (std::string text : KeptTexts()) {
        for (char& c : text) {
            const char kept = c;
            for (const char other :
                 {'"', '\\', '{', '}', '[', ']', ',', ':', '0', '-', 'e', 'u', '\n', '\xF0'}) {
                c = other;
                EXPECT_TRUE(KeepsTheRules(text)) << text;
            }
            c = kept;
        }
    }
}

}  // namespace
}  // namespace vicenter::support
