// The account set compares plain texts without the collation; both ways must agree.

#include <iterator>
#include <random>
#include <string>

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

// Longer than what is compared at once, with a head in common but for its letters' case, and at times with a
// character of another kind somewhere.
TEST(TextOrder, Of_long_texts_with_a_common_head_is_the_collations) {
    std::mt19937 random(20261122);
    const auto text = [&random](std::size_t length) {
        static constexpr std::string_view kCharacters = " .-_/'()%@[`{~aAbBzZ019$";
        std::string result;
        for (; length > 0; --length)
            result += kCharacters[random() % kCharacters.size()];
        return result;
    };
    const auto otherCase = [&random](std::string mixed) {
        for (char& c : mixed) {
            const bool isLetter = (c | 0x20) >= 'a' && (c | 0x20) <= 'z';
            if (isLetter && random() % 2 == 0) c = static_cast<char>(c ^ 0x20);
        }
        return mixed;
    };
    const char* const kOthers[] = {"人", "Ａ", "é", "a\xCC\x81", "\t", "\x7F", "\x01"};
    for (int i = 0; i < 20000; ++i) {
        const std::string head = text(random() % 26);
        std::string a = head + text(random() % 12);
        std::string b =
            otherCase(head) + (random() % 4 == 0 ? otherCase(a.substr(head.size())) : text(random() % 12));
        for (std::string* changed : {&a, &b}) {
            if (random() % 8 == 0)
                changed->insert(random() % (changed->size() + 1), kOthers[random() % std::size(kOthers)]);
        }
        while (!a.empty() && a.back() == ' ')
            a.pop_back();
        while (!b.empty() && b.back() == ' ')
            b.pop_back();
        ExpectAgreement(a, b);
    }
}

TEST(TextOrder, Of_texts_with_other_characters_is_the_collations) {
    for (const char* text : {"1002.01", "1002．01", "1002.01人", "a\xCC\x81", "1002.0\t1", "１００２.01"}) {
        for (const char* other : {"1002.01", "1002.02", "a", "b", "1002.01e", ""})
            ExpectAgreement(text, other);
    }
}

}  // namespace
}  // namespace vicenter::ado
