// Reading JSON texts: every kind of value, every error text, and what the number search does.

#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include "platform/scripting/dictionary.h"
#include "support/vbs_json.h"
#include "tests/support/json_testing.h"

namespace vicenter::support {
namespace {

using automation::Variant;
using automation::VariantArray;
using automation::VariantType;

TEST(VbsJsonDecode, ReadsEveryKindOfValue) {
    EXPECT_TRUE(Decoded("null").IsNull());
    EXPECT_EQ(Decoded("true"), Variant(true));
    EXPECT_EQ(Decoded("false"), Variant(false));
    EXPECT_EQ(Decoded("12.5"), Variant(12.5));
    EXPECT_EQ(Decoded("\"凭证\""), Variant("凭证"));
    EXPECT_EQ(Decoded("[1,\"a\",null]"), Variant(VariantArray{1.0, "a", Variant::Null()}));
    EXPECT_EQ(Decoded("{}").TypeName(), "Dictionary");
}

TEST(VbsJsonDecode, EmptyBracketsGiveAnEmptyArrayAndEmptyBracesAnEmptyDictionary) {
    EXPECT_EQ(Decoded("[]"), Variant(VariantArray{}));
    EXPECT_EQ(Decoded("[ \t\r\n]"), Variant(VariantArray{}));
    EXPECT_EQ(DecodedObject("{}")->Count(), 0U);
    EXPECT_EQ(DecodedObject("{ \t\r\n}")->Count(), 0U);
}

TEST(VbsJsonDecode, KeepsTheOrderOfTheNames) {
    const auto dictionary = DecodedObject(R"({"b":1,"a":2,"":3,"B":4})");
    EXPECT_EQ(Variant(dictionary->Keys()), Variant(VariantArray{"b", "a", "", "B"}));
    EXPECT_EQ(Variant(dictionary->Items()), Variant(VariantArray{1.0, 2.0, 3.0, 4.0}));
}

TEST(VbsJsonDecode, ReadsManyNamesOfOneObject) {
    std::string text = "{";
    for (int i = 0; i < 500; ++i)
        text += (i == 0 ? "\"name" : ",\"name") + std::to_string(i) + "\":" + std::to_string(i);
    const auto dictionary = DecodedObject(text + "}");
    ASSERT_EQ(dictionary->Count(), 500U);
    for (int i = 0; i < 500; ++i) {
        const Variant* item = dictionary->Item("name" + std::to_string(i));
        ASSERT_NE(item, nullptr) << i;
        EXPECT_EQ(*item, Variant(static_cast<double>(i)));
    }
}

TEST(VbsJsonDecode, SkipsBlanksTabsAndLineEndsBetweenTokens) {
    EXPECT_EQ(EncodedAgain(" \t\r\n{ \"a\" : [ 1 , 2 ] , \"b\" : { } } "), R"({"a":[1,2],"b":{}})");
}

TEST(VbsJsonDecode, OtherWhitespaceIsNone) {
    EXPECT_EQ(ErrorOf("\f\"a\""), json_error::kNoValue);
    EXPECT_EQ(ErrorOf("\xC2\xA0[]"), json_error::kNoValue);
    EXPECT_EQ(ErrorOf("{\"a\"\v:1}"), json_error::kColon);
}

TEST(VbsJsonDecode, IgnoresWhatFollowsTheValue) {
    EXPECT_EQ(Decoded("[] x"), Variant(VariantArray{}));
    EXPECT_EQ(Decoded("1 2"), Variant(1.0));
    EXPECT_EQ(Decoded("nullnull").Type(), VariantType::Null);
    EXPECT_EQ(Decoded("\"a\"\"b\""), Variant("a"));
}

TEST(VbsJsonDecode, LiteralsAreMatchedExactly) {
    for (const char* text :
         {"TRUE", "True", "NULL", "False", "nul", "tru", "fals", "n", "t", "f", "undefined"})
        EXPECT_EQ(ErrorOf(text), json_error::kNoValue) << text;
}

TEST(VbsJsonDecode, NumbersFollowThePattern) {
    EXPECT_EQ(Decoded("0"), Variant(0.0));
    EXPECT_EQ(Decoded("-12"), Variant(-12.0));
    EXPECT_EQ(Decoded("1.25e2"), Variant(125.0));
    EXPECT_EQ(Decoded("1E-2"), Variant(0.01));
    EXPECT_EQ(Decoded("1e+2"), Variant(100.0));
    EXPECT_EQ(Decoded("123456789012345678"), Variant(123456789012345678.0));
    EXPECT_EQ(Decoded("0.1"), Variant(0.1));
    EXPECT_EQ(Decoded("2.2250738585072014e-308"), Variant(2.2250738585072014e-308));
    EXPECT_EQ(Decoded("1.7976931348623157e308"), Variant(1.7976931348623157e308));
    EXPECT_EQ(Decoded("9007199254740993"), Variant(9007199254740992.0));
    EXPECT_EQ(Decoded("0.1000000000000000055511151231257827021181583404541015625"), Variant(0.1));
    EXPECT_EQ(Decoded("12345678901234567890123e-20"), Variant(123.45678901234567890123));
    EXPECT_TRUE(std::signbit(Decoded("-0").ToDouble()));
}

TEST(VbsJsonDecode, TheRestOfANumberThatGoesOnIsLeft) {
    EXPECT_EQ(Decoded("01"), Variant(0.0));
    EXPECT_EQ(Decoded("-01"), Variant(0.0));
    EXPECT_EQ(Decoded("1."), Variant(1.0));
    EXPECT_EQ(Decoded("1.5.5"), Variant(1.5));
    EXPECT_EQ(Decoded("2e"), Variant(2.0));
    EXPECT_EQ(Decoded("2e+"), Variant(2.0));
    EXPECT_EQ(Decoded("0x10"), Variant(0.0));
    EXPECT_EQ(ErrorOf("[01]"), json_error::kComma);
    EXPECT_EQ(ErrorOf("[1.]"), json_error::kComma);
}

TEST(VbsJsonDecode, SearchesForANumberInTheRestOfTheText) {
    EXPECT_EQ(Decoded("abc-12xyz"), Variant(-12.0));
    EXPECT_EQ(Decoded("+7"), Variant(7.0));
    EXPECT_EQ(Decoded(".5"), Variant(5.0));
    EXPECT_EQ(Decoded("- 5"), Variant(5.0));
    EXPECT_EQ(Decoded("TRUE 1"), Variant(1.0));
}

TEST(VbsJsonDecode, MovesOnByTheMatchsLengthFromWhereTheSearchBegan) {
    // "x" is passed over by the length of "5"; the next value is the "5" itself.
    EXPECT_EQ(Decoded("[x,5]"), Variant(VariantArray{5.0, 5.0}));
    EXPECT_EQ(Decoded("[xy,55]"), Variant(VariantArray{55.0, 55.0}));
    EXPECT_EQ(ErrorOf("[xy,5]"), json_error::kComma);
    EXPECT_EQ(ErrorOf("[abc12]"), json_error::kComma);
    EXPECT_EQ(Decoded("[x,x,x,7]"), Variant(VariantArray{7.0, 7.0, 7.0, 7.0}));
    EXPECT_EQ(ErrorOf("[1,x]"), json_error::kNoValue);
}

TEST(VbsJsonDecode, CountsTheMatchsLengthInUtf16CodeUnits) {
    EXPECT_EQ(Decoded("[凭,5]"), Variant(VariantArray{5.0, 5.0}));
    EXPECT_EQ(Decoded("[凭证,55]"), Variant(VariantArray{55.0, 55.0}));
    EXPECT_EQ(Decoded("[é,5]"), Variant(VariantArray{5.0, 5.0}));
    EXPECT_EQ(Decoded("[😀,55]"), Variant(VariantArray{55.0, 55.0}));
    EXPECT_EQ(ErrorOf("[😀,5]"), json_error::kComma);  // half of the pair is left
    EXPECT_EQ(ErrorOf("[😀x,55]"), json_error::kComma);
}

TEST(VbsJsonDecode, ManyPlacesWithoutAValueAreSearchedOnce) {
    std::string text = "[";
    for (int i = 0; i < 1'000'000; ++i)
        text += "x,";
    EXPECT_EQ(Decoded(text + "3]").AsArray().size(), 1'000'001U);
}

TEST(VbsJsonDecode, NumbersBeyondTheDoublesOverflowAndTinyOnesAreZero) {
    EXPECT_EQ(NumberOfError("1e309"), 6);
    EXPECT_EQ(NumberOfError("-1e999999999999999999999"), 6);
    EXPECT_EQ(NumberOfError(std::string(400, '9')), 6);
    EXPECT_EQ(Decoded("1e-400"), Variant(0.0));
    EXPECT_EQ(Decoded("0." + std::string(400, '0') + "1"), Variant(0.0));
    EXPECT_EQ(Decoded("0e999999999999999999999"), Variant(0.0));
    EXPECT_EQ(Decoded("0." + std::string(400, '0') + "1e401"), Variant(1.0));
}

TEST(VbsJsonDecode, ReadsEveryEscape) {
    EXPECT_EQ(Decoded(R"("\"\\\/\b\f\n\r\t\u0041")"), Variant("\"\\/\b\f\n\r\tA"));
    EXPECT_EQ(Decoded(R"("a\u51edb\u8BC1c")"), Variant("a凭b证c"));
    EXPECT_EQ(Decoded(R"("\u0000")"), Variant(std::string(1, '\0')));
    EXPECT_EQ(Decoded(R"("\u00e9\uFFFF")"), Variant("é\xEF\xBF\xBF"));
}

TEST(VbsJsonDecode, SurrogatePairsComeBackWhole) {
    EXPECT_EQ(Decoded(R"("\ud83d\ude00")"), Variant("😀"));
    EXPECT_EQ(Decoded(R"("\uD83D\uDE00!")"), Variant("😀!"));
    EXPECT_EQ(Decoded("\"😀\""), Variant("😀"));
    EXPECT_EQ(Decoded(R"("\uDBFF\uDFFF")"), Variant("\xF4\x8F\xBF\xBF"));
}

TEST(VbsJsonDecode, AHalfPairBecomesTheReplacementCharacter) {
    EXPECT_EQ(Decoded(R"("\ud83d")"), Variant("\xEF\xBF\xBD"));
    EXPECT_EQ(Decoded(R"("\ude00x")"), Variant("\xEF\xBF\xBDx"));
    EXPECT_EQ(Decoded(R"("\ud83d\u0041")"), Variant("\xEF\xBF\xBD"
                                                    "A"));
    EXPECT_EQ(Decoded(R"("\ud83d\ud83d\ude00")"), Variant("\xEF\xBF\xBD😀"));
    EXPECT_EQ(Decoded(R"("\ud83d\n")"), Variant("\xEF\xBF\xBD\n"));
}

TEST(VbsJsonDecode, OtherEscapesAreRefused) {
    for (const char* text : {R"("\x")", R"("\a")", R"("\U0041")", R"("\u12")", R"("\u12G4")", R"("\u 123")",
                             R"("\ud83d\u12")", "\"\\", "\"\\u123", "\"\\\n\""})
        EXPECT_EQ(ErrorOf(text), json_error::kEscape) << text;
}

TEST(VbsJsonDecode, AStringEndsWithAQuoteOrNotAtAll) {
    for (const char* text : {"\"", "\"abc", "\"abc\\n", "[\"a]", "{\"a", "\"0123456789abcdef"})
        EXPECT_EQ(ErrorOf(text), json_error::kUnterminatedString) << text;
}

TEST(VbsJsonDecode, RawControlCharactersAreRefused) {
    for (int c = 0; c < 0x20; ++c) {
        const std::string text = std::string("\"0123456789") + static_cast<char>(c) + "\"";
        EXPECT_EQ(ErrorOf(text), json_error::kControlCharacter) << c;
    }
    EXPECT_EQ(Decoded("\"\x7F\""), Variant("\x7F"));
}

TEST(VbsJsonDecode, FindsTheEndOfAStringOfAnyLength) {
    for (std::size_t length = 0; length < 40; ++length) {
        const std::string plain(length, 'x');
        EXPECT_EQ(Decoded("\"" + plain + "\""), Variant(plain));
        EXPECT_EQ(Decoded("\"" + plain + "\\t\xE5\x87\xAD\""), Variant(plain + "\t凭"));
        EXPECT_EQ(ErrorOf("\"" + plain + "\x1F"), json_error::kControlCharacter);
    }
}

TEST(VbsJsonDecode, BytesThatAreNoUtf8PassAsTheyAre) {
    EXPECT_EQ(Decoded("\"a\xFF\x80z\""), Variant("a\xFF\x80z"));
}

TEST(VbsJsonDecode, ObjectsSayWhatTheyExpect) {
    for (const char* text : {"{", "{1:2}", "{a:1}", "{\"a\":1,", "{\"a\":1,}", "{\"a\":1,b", "{,", "{'a':1}"})
        EXPECT_EQ(ErrorOf(text), json_error::kPropertyName) << text;
    for (const char* text : {"{\"a\"", "{\"a\" 1}", "{\"a\",1}", "{\"a\"}", "{\"a\"=1}"})
        EXPECT_EQ(ErrorOf(text), json_error::kColon) << text;
    for (const char* text : {"{\"a\":1", "{\"a\":1 \"b\":2}", "{\"a\":1]", "{\"a\":1;"})
        EXPECT_EQ(ErrorOf(text), json_error::kComma) << text;
    for (const char* text : {"{\"a\":", "{\"a\":}", "{\"a\"::}"})
        EXPECT_EQ(ErrorOf(text), json_error::kNoValue) << text;
}

TEST(VbsJsonDecode, ArraysSayWhatTheyExpect) {
    for (const char* text : {"[1", "[1 2]", "[1}", "[\"a\" \"b\"]", "[[]", "[1;2]"})
        EXPECT_EQ(ErrorOf(text), json_error::kComma) << text;
    for (const char* text : {"[", "[1,", "[1,]", "[,]", "[,", "[}"})
        EXPECT_EQ(ErrorOf(text), json_error::kNoValue) << text;
}

TEST(VbsJsonDecode, NoTextIsNoValue) {
    EXPECT_EQ(ErrorOf(""), json_error::kNoValue);
    EXPECT_EQ(ErrorOf(" \t\r\n"), json_error::kNoValue);
    EXPECT_EQ(ErrorOf(std::string(1, '\0')), json_error::kNoValue);
}

TEST(VbsJsonDecode, ANameThatComesTwiceIsRefusedAsTheDictionaryRefusesIt) {
    EXPECT_EQ(NumberOfError(R"({"a":1,"a":2})"), 457);
    EXPECT_EQ(NumberOfError(R"({"a":1,"\u0061":2})"), 457);
    EXPECT_EQ(DecodedObject(R"({"a":1,"A":2})")->Count(), 2U);
    // The value is read before the name is added.
    EXPECT_EQ(ErrorOf(R"({"a":1,"a":x})"), json_error::kNoValue);
}

TEST(VbsJsonDecode, NestingIsBounded) {
    const auto nested = [](int depth) {
        return std::string(static_cast<std::size_t>(depth), '[') +
               std::string(static_cast<std::size_t>(depth), ']');
    };
    EXPECT_TRUE(Decoded(nested(VbsJson::kMaxDepth)).IsArray());
    EXPECT_EQ(ErrorOf(nested(VbsJson::kMaxDepth + 1)), json_error::kTooDeep);
    EXPECT_EQ(ErrorOf(std::string(10'000'000, '[')), json_error::kTooDeep);
    std::string objects;
    for (int i = 0; i < 100'000; ++i)
        objects += "{\"a\":";
    EXPECT_EQ(ErrorOf(objects), json_error::kTooDeep);
}

TEST(VbsJsonDecode, ErrorsNameTheirSource) {
    try {
        VbsJson().Decode("{");
        FAIL();
    } catch (const automation::Error& error) {
        EXPECT_EQ(error.Number(), 8732);
        EXPECT_EQ(error.Source(), "VbsJson");
    }
}

}  // namespace
}  // namespace vicenter::support
