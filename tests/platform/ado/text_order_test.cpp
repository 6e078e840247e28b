// The account set compares plain texts without the collation; both ways must agree.

#include <random>

#include <gtest/gtest.h>

#include "platform/system/collation.h"
#include "tsql/types/collation.h"

namespace vicenter::ado {
namespace {

class SystemCollation final : public tsql::engine::TextCollation {
  public:
    int Compare(std::string_view a, std::string_view b) const override {
        return system::Collator::Chinese().Compare(a, b);
    }
    std::string Fold(std::string_view text) const override { return system::Collator::Chinese().Fold(text); }
};

int Sign(int number) {
    return (number > 0) - (number < 0);
}

void ExpectAgreement(const std::string& a, const std::string& b) {
    const SystemCollation collation;
    ASSERT_EQ(Sign(tsql::engine::CompareTexts(collation, a, b)), Sign(collation.Compare(a, b)))
        << "'" << a << "' beside '" << b << "'";
}

TEST(TextOrder, Of_every_pair_of_plain_characters_is_the_collations) {
    for (char left = ' '; left <= '~'; ++left) {
        for (char right = ' '; right <= '~'; ++right) {
            ExpectAgreement(std::string(1, left), std::string(1, right));
            ExpectAgreement(std::string("1") + left + "2", std::string("1") + right + "1");
        }
    }
}

TEST(TextOrder, Of_codes_and_names_is_the_collations) {
    std::mt19937 random(20260131);
    const auto text = [&random] {
        static constexpr std::string_view kCharacters = " .-_/'()%aAbB0129zZ$~";
        std::string result;
        for (std::size_t left = random() % 9; left > 0; --left)
            result += kCharacters[random() % kCharacters.size()];
        return result;
    };
    for (int i = 0; i < 20000; ++i)
        ExpectAgreement(text(), text());
}

TEST(TextOrder, Of_texts_with_other_characters_is_the_collations) {
    for (const char* text : {"1002.01", "1002．01", "1002.01人", "a\xCC\x81", "1002.0\t1", "１００２.01"}) {
        for (const char* other : {"1002.01", "1002.02", "a", "b", "1002.01e", ""})
            ExpectAgreement(text, other);
    }
}

}  // namespace
}  // namespace vicenter::ado
