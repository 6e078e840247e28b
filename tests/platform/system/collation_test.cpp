#include "platform/system/collation.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace vicenter::system {
namespace {

const Collator& C() {
    return Collator::Chinese();
}

TEST(Collation, IgnoresCaseWidthAndTrailingBlanks) {
    EXPECT_EQ(C().Compare("abc", "ABC"), 0);
    EXPECT_EQ(C().Compare("abc", "abc   "), 0);
    EXPECT_EQ(C().Compare("ＡＢ１", "ab1"), 0);
    EXPECT_NE(C().Compare("abc", " abc"), 0);
    EXPECT_NE(C().Compare("e", "é"), 0);
    EXPECT_EQ(C().Compare("", "  "), 0);
}

TEST(Collation, OrdersChineseByPinyin) {
    std::vector<std::string> names{"中国银行", "安徽", "现金", "北京", "1001", "abc"};
    std::sort(names.begin(), names.end(), [](const auto& a, const auto& b) { return C().Compare(a, b) < 0; });
    EXPECT_EQ(names, (std::vector<std::string>{"1001", "abc", "安徽", "北京", "现金", "中国银行"}));
}

// The table for ASCII texts must agree with the collation itself: a Chinese character behind both texts sends
// the same comparison the long way.
TEST(Collation, TheQuickWayAgreesWithTheLongWay) {
    const std::vector<std::string> texts{"1001", "1001.01", "1001-1", "100", "a",   "A b",  "a_b", "a-b",
                                         "ab",   "abc",     "Abd",    "#x",  "(1)", "z",    "Z9",  "9",
                                         "09",   "a'b",     "a\"b",   "1 2", "12",  "~tmp", "{a}", "a.b.c"};
    const auto sign = [](int value) { return (value > 0) - (value < 0); };
    for (const std::string& a : texts) {
        for (const std::string& b : texts) {
            EXPECT_EQ(sign(C().Compare(a, b)), sign(C().Compare("中" + a, "中" + b))) << a << " | " << b;
        }
    }
}

TEST(Collation, IsAnOrder) {
    const std::vector<std::string> texts{"",     "a", "B",    "凭证",  "凭证模板", "銀行",
                                         "银行", "é", "\x01", "a\x01", "😀"};
    for (const std::string& a : texts) {
        EXPECT_EQ(C().Compare(a, a), 0);
        for (const std::string& b : texts) {
            EXPECT_EQ(C().Compare(a, b) < 0, C().Compare(b, a) > 0) << a << " | " << b;
        }
    }
}

TEST(Collation, FoldMakesCaseAndWidthAlike) {
    EXPECT_EQ(C().Fold("AbC"), "abc");
    EXPECT_EQ(C().Fold("ＡＢ１（凭证）"), "ab1(凭证)");
    EXPECT_EQ(C().Fold("Ä"), "ä");
}

TEST(Collation, PinyinInitialsReadLedgerWordsRightly) {
    EXPECT_EQ(C().PinyinInitials("库存现金"), "kcxj");
    EXPECT_EQ(C().PinyinInitials("银行存款"), "yhck");
    EXPECT_EQ(C().PinyinInitials("工行存款-USD 01"), "gxckusd01");
    EXPECT_EQ(C().PinyinInitials("长期股权投资"), "cqgqtz");
    EXPECT_EQ(C().PinyinInitials("会计"), "kj");
    EXPECT_EQ(C().PinyinInitials(""), "");
}

TEST(Collation, PinyinIsLoadedOnAThreadOfItsOwn) {
    {
        const PinyinLoading first;
        const PinyinLoading second;  // of another window: nothing is loaded twice, both may be waited for
    }
    EXPECT_TRUE(PinyinLoading::IsOver());
    EXPECT_EQ(C().PinyinInitials("应收账款"), "yszk");
}

}  // namespace
}  // namespace vicenter::system
