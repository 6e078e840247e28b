// The order of texts is kept in the indexes of account sets, and those travel between systems: it is one
// table, character for character.

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "platform/system/collation.h"
#include "tests/paths/source_folder.h"
#include "text/fnv.h"
#include "text/utf8.h"

namespace vicenter::system {
namespace {

// recorded: by ICU 72 on Linux. Another version may order otherwise, and then account sets have to be made
// anew.
constexpr std::uint64_t kOrderOfCharacters = 12068927348528229309U;
constexpr std::uint64_t kOrderOfWords = 15259914892629437220U;
constexpr std::uint64_t kFolded = 7580872588450065342U;
constexpr std::uint64_t kInitials = 4274538478633816544U;

class Hash {
  public:
    void Add(const std::string& text) {
        hash_.Add(text);
        Add(0xFF);  // no byte of UTF-8
    }
    void Add(unsigned byte) { hash_.Add(byte); }
    std::uint64_t Value() const { return hash_.Value(); }

  private:
    text::Fnv hash_;
};

// Each character of the first plane but halves of pairs, and of the next two those that fonts have.
std::vector<std::string> Characters() {
    std::vector<std::string> result;
    const auto add = [&result](char32_t from, char32_t to) {
        for (char32_t code = from; code <= to; ++code)
            text::AppendUtf8(result.emplace_back(), code);
    };
    add(0x1, 0xD7FF);
    add(0xE000, 0xFFFF);
    add(0x1F300, 0x1F64F);
    add(0x20000, 0x2A6DF);
    return result;
}

// The words of the demo ledger, alone and as users vary them.
std::vector<std::string> Words() {
    std::vector<std::string> result;
    for (const char* name : {"accounts", "explanations", "items", "templates", "units", "settles"}) {
        std::ifstream in(testing_paths::SourceFolder() / "host" / "demo" / (std::string(name) + ".tsv"));
        EXPECT_TRUE(in) << name;
        for (std::string line; std::getline(in, line);) {
            for (std::size_t at = 0; at <= line.size();) {
                const std::size_t end = std::min(line.find('\t', at), line.size());
                if (end > at) result.push_back(line.substr(at, end - at));
                at = end + 1;
            }
        }
    }
    const std::size_t count = result.size();
    for (std::size_t i = 0; i < count; ++i) {
        for (const char* tail : {"1", "２", "a", "Ａ", "-", " ", "（", "e\u0301", "\u3000甲", ".01"})
            result.push_back(result[i] + tail);
    }
    return result;
}

// By the order; equals among themselves by their bytes, told by a mark.
std::uint64_t HashOfOrder(std::vector<std::string> texts) {
    const Collator& collator = Collator::Chinese();
    std::sort(texts.begin(), texts.end(), [&](const std::string& a, const std::string& b) {
        const int order = collator.Compare(a, b);
        return order != 0 ? order < 0 : a < b;
    });
    Hash hash;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        hash.Add(i > 0 && collator.Compare(texts[i - 1], texts[i]) == 0 ? 1U : 0U);
        hash.Add(texts[i]);
    }
    return hash.Value();
}

TEST(CollationOrder, OfEveryCharacterIsTheSameOnEverySystem) {
    EXPECT_EQ(HashOfOrder(Characters()), kOrderOfCharacters);
}

TEST(CollationOrder, OfWordsIsTheSameOnEverySystem) {
    EXPECT_EQ(HashOfOrder(Words()), kOrderOfWords);
}

TEST(CollationOrder, FoldingIsTheSameOnEverySystem) {
    Hash hash;
    for (const std::string& character : Characters())
        hash.Add(Collator::Chinese().Fold(character));
    EXPECT_EQ(hash.Value(), kFolded);
}

TEST(CollationOrder, KanaFoldAlikeWhereTheyCompareAlike) {
    const Collator& collator = Collator::Chinese();
    const std::vector<std::string> texts = {"カナ", "かな", "ｶﾅ",   "ガ",   "が", "ｶﾞ", "カ",
                                            "パン", "ﾊﾟﾝ",  "ぱん", "バン", "ヴ", "ｳﾞ", "ウ"};
    for (const std::string& a : texts) {
        for (const std::string& b : texts)
            EXPECT_EQ(collator.Compare(a, b) == 0, collator.Fold(a) == collator.Fold(b)) << a << " " << b;
    }
}

TEST(CollationOrder, InitialsAreTheSameOnEverySystem) {
    Hash hash;
    for (char32_t code = 0x3000; code <= 0x9FFF; ++code) {
        std::string character;
        text::AppendUtf8(character, code);
        hash.Add(Collator::Chinese().PinyinInitials(character));
    }
    for (const std::string& word : Words())
        hash.Add(Collator::Chinese().PinyinInitials(word));
    EXPECT_EQ(hash.Value(), kInitials);
}

}  // namespace
}  // namespace vicenter::system
