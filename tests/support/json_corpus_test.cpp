// The classes of texts by which JSON readers are commonly told apart: those that every reader takes (y),
// those that none takes (n) and those left to the reader (i). Where this codec differs it does so on purpose,
// and the difference stands in a list of its own.

#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/json_testing.h"

namespace vicenter::support {
namespace {

using namespace std::string_literals;

struct Text {
    const char* name;
    std::string text;
};

// --- y: taken, and what comes out is what went in

struct Accepted {
    const char* name;
    std::string text;
    std::string encodedAgain;
};

TEST(JsonCorpus, TakesWhatEveryReaderTakes) {
    const std::vector<Accepted> texts = {
        {"array of arrays with spaces", "[[] ]", "[[]]"},
        {"array with an empty string", "[\"\"]", "[\"\"]"},
        {"empty array", "[]", "[]"},
        {"array ending with a line feed", "[\"a\"]\n", "[\"a\"]"},
        {"false", "[false]", "[false]"},
        {"values of every type", "[null, 1, \"1\", {}]", "[null,1,\"1\",{}]"},
        {"one and a line feed", "[1\n]", "[1]"},
        {"leading space", " [1]", "[1]"},
        {"several nulls", "[1,null,null,null,2]", "[1,null,null,null,2]"},
        {"trailing space", "[2] ", "[2]"},
        {"number 0e+1", "[0e+1]", "[0]"},
        {"number 0e1", "[0e1]", "[0]"},
        {"number after a space", "[ 4]", "[4]"},
        {"close to zero",
         "[-0.000000000000000000000000000000000000000000000000000000000000000000000000000001]", "[-1e-78]"},
        {"integer with exponent", "[20e1]", "[200]"},
        {"minus zero", "[-0]", "[0]"},
        {"negative integer", "[-123]", "[-123]"},
        {"minus one", "[-1]", "[-1]"},
        {"capital E", "[1E22]", "[1e+22]"},
        {"capital E, minus", "[1E-2]", "[0.01]"},
        {"capital E, plus", "[1E+2]", "[100]"},
        {"fraction and exponent", "[123.456e78]", "[1.23456e+80]"},
        {"simple real", "[123.456789]", "[123.456789]"},
        {"basic object", "{\"asd\":\"sdf\"}", "{\"asd\":\"sdf\"}"},
        {"empty name", "{\"\":0}", "{\"\":0}"},
        {"escaped zero in a name", "{\"foo\\u0000bar\": 42}", "{\"foo\\u0000bar\":42}"},
        {"extreme numbers", "{ \"min\": -1.0e+28, \"max\": 1.0e+28 }", "{\"min\":-1e+28,\"max\":1e+28}"},
        {"object with line feeds", "{\n\"a\": \"b\"\n}", "{\"a\":\"b\"}"},
        {"accepted surrogate pair", "[\"\\uD801\\udc37\"]", "[\"\xF0\x90\x90\xB7\"]"},
        {"two pairs", "[\"\\ud83d\\ude39\\ud83d\\udc8d\"]", "[\"\xF0\x9F\x98\xB9\xF0\x9F\x92\x8D\"]"},
        {"allowed escapes", R"(["\"\\\/\b\f\n\r\t"])", R"(["\"\\/\b\f\n\r\t"])"},
        {"backslash and u escaped", R"(["\\u0000"])", R"(["\\u0000"])"},
        {"escaped quote", R"(["\""])", R"(["\""])"},
        {"comments within a string", "[\"a/*b*/c/*d//e\"]", "[\"a/*b*/c/*d//e\"]"},
        {"escaped non-character", "[\"\\uFFFF\"]", "[\"\xEF\xBF\xBF\"]"},
        {"line separators unescaped", "[\"\xE2\x80\xA8\xE2\x80\xA9\"]", "[\"\xE2\x80\xA8\xE2\x80\xA9\"]"},
        {"delete character", "[\"\x7F\"]", "[\"\x7F\"]"},
        {"UTF-8 of every length", "[\"é€𝄞\"]", "[\"é€𝄞\"]"},
        {"lone values", "42", "42"},
        {"lone string", "\"asd\"", "\"asd\""},
        {"lone null", "null", "null"},
        {"lone true", "true", "true"},
        {"whitespace of every kind", " \t\r\n[ \t\r\n] \t\r\n", "[]"},
    };
    for (const Accepted& text : texts)
        EXPECT_EQ(EncodedAgain(text.text), text.encodedAgain) << text.name;
}

// --- n: refused

TEST(JsonCorpus, RefusesWhatNoReaderTakes) {
    const std::vector<Text> texts = {
        {"number and comma missing", "[1 true]"},
        {"array with a colon", "[\"\": 1]"},
        {"comma before a number", "[,1]"},
        {"double comma", "[1,,2]"},
        {"extra comma", "[\"\",]"},
        {"unclosed array", "[\"x\""},
        {"inner array without comma", "[3[4]]"},
        {"only a comma", "[,]"},
        {"only a minus", "[-]"},
        {"star inside", "[*]"},
        {"unclosed after a line feed", "[\"a\",\n4\n,1,"},
        {"misspelt false", "[fals]"},
        {"misspelt null", "[nul]"},
        {"misspelt true", "[tru]"},
        {"leading zeros", "[-012]"},
        {"two signs", "[++1234]"},
        {"two points", "[1.2.3]"},
        {"exponent without digits", "[0.3e+]"},
        {"hexadecimal", "[0x42]"},
        {"infinity", "[Infinity]"},
        {"not a number", "[NaN]"},
        {"minus with a space", "[- 1]"},
        {"letters behind a number", "[1a]"},
        {"name without quotes", "{a: \"b\"}"},
        {"name is a number", "{1:1}"},
        {"single quotes", "{'a':0}"},
        {"bracket for a name", "{[: \"x\"}"},
        {"comma for a colon", "{\"x\", null}"},
        {"double colon", "{\"x\"::\"b\"}"},
        {"missing value", "{\"a\":"},
        {"missing colon", "{\"a\" b}"},
        {"trailing comma in an object", "{\"id\":0,}"},
        {"two commas in an object", "{\"a\":\"b\",,\"c\":\"d\"}"},
        {"unterminated value", "{\"a\":\"a"},
        {"unclosed object", "{\"a\":1"},
        {"single space", " "},
        {"nothing", ""},
        {"escape x", "[\"\\x00\"]"},
        {"escaped tab", "[\"\\\t\"]"},
        {"escaped emoji", "[\"\\\xF0\x9F\x8C\x80\"]"},
        {"incomplete escape", "[\"\\\"]"},
        {"incomplete unicode escape", "[\"\\u00A\"]"},
        {"incomplete second half", "[\"\\uD834\\uDd\"]"},
        {"letters in a unicode escape", "[\"\\uqqqq\"]"},
        {"control character", "[\"a\x01z\"]"},
        {"zero byte in a string", "[\"a\0b\"]"s},
        {"line feed in a string", "[\"new\nline\"]"},
        {"tab in a string", "[\"\t\"]"},
        {"unclosed string", "\"asd"},
        {"byte order mark alone", "\xEF\xBB\xBF"},
        {"angle bracket", "<"},
        {"lone close", "]"},
        {"capital true", "[True]"},
        {"unclosed brackets in depth", std::string(100'000, '[')},
        {"open objects in depth", "[{\"\":[{\"\":[{\"\":[{\"\":["},
        {"null cut off", "[\"asd"},
        {"whitespace form feed", "[\f]"},
        {"word joiner", "[\xE2\x81\xA0]"},
        {"no value after a comma in an object", "{\"a\":\"b\","},
    };
    for (const Text& text : texts)
        EXPECT_EQ(NumberOfError(text.text), json_error::kNumber) << text.name;
}

// --- i: left to the reader

TEST(JsonCorpus, AnswersWhatIsLeftToTheReader) {
    const std::vector<Accepted> accepted = {
        {"exponent far below", "[1e-99999]", "[0]"},
        {"integer beyond 64 bits", "[100000000000000000000]", "[1e+20]"},
        {"first half alone", "[\"\\uDADA\"]", "[\"\xEF\xBF\xBD\"]"},
        {"second half alone", "[\"\\uDFAA\"]", "[\"\xEF\xBF\xBD\"]"},
        {"halves in the wrong order", "[\"\\uDd1e\\uD834\"]", "[\"\xEF\xBF\xBD\xEF\xBF\xBD\"]"},
        {"first half, then an escape", "[\"\\uD800\\n\"]", "[\"\xEF\xBF\xBD\\n\"]"},
        {"bytes that are no UTF-8", "[\"\xFF\"]", "[\"\xFF\"]"},
        {"overlong UTF-8", "[\"\xC0\xAF\"]", "[\"\xC0\xAF\"]"},
        {"encoded surrogate", "[\"\xED\xA0\x80\"]", "[\"\xED\xA0\x80\"]"},
        {"500 arrays within each other", std::string(500, '[') + std::string(500, ']'),
         std::string(500, '[') + std::string(500, ']')},
    };
    for (const Accepted& text : accepted)
        EXPECT_EQ(EncodedAgain(text.text), text.encodedAgain) << text.name;
    EXPECT_EQ(NumberOfError("[1e9999]"), 6) << "exponent far above";
    EXPECT_EQ(NumberOfError("[-123123e100000]"), 6) << "negative, far above";
    EXPECT_EQ(NumberOfError("\xFF\xFE[\0\"\0"s), json_error::kNumber) << "UTF-16 with its mark";
    EXPECT_EQ(NumberOfError("\xEF\xBB\xBF{}"), json_error::kNumber) << "byte order mark before a value";
}

// --- differences on purpose

// Refused although every reader takes it: a dictionary holds a key once.
TEST(JsonCorpus, DiffersInRefusingANameThatComesTwice) {
    EXPECT_EQ(NumberOfError(R"({"a":"b","a":"c"})"), 457);
    EXPECT_EQ(NumberOfError(R"({"a":"b","a":"b"})"), 457);
}

// Taken although no reader takes it: one value is read and the rest is left to the caller.
TEST(JsonCorpus, DiffersInLeavingTheRest) {
    const std::vector<Accepted> texts = {
        {"extra close", "[1]]", "[1]"},
        {"value behind an array", "[1]x", "[1]"},
        {"two arrays", "[][]", "[]"},
        {"object and a comment", "{\"a\":\"b\"}/**/", "{\"a\":\"b\"}"},
        {"object and a hash", "{\"a\":\"b\"}#", "{\"a\":\"b\"}"},
        {"string and a letter", "\"\"x", "\"\""},
        {"zero byte behind", "123\0"s, "123"},
        {"leading zero at the top", "012", "0"},
        {"fraction without digits at the top", "1.", "1"},
    };
    for (const Accepted& text : texts)
        EXPECT_EQ(EncodedAgain(text.text), text.encodedAgain) << text.name;
}

// Taken although no reader takes it: the number is searched for, and the place moves by the match's length.
TEST(JsonCorpus, DiffersInSearchingForTheNumber) {
    const std::vector<Accepted> texts = {
        {"plus sign at the top", "+1", "1"},
        {"point first at the top", ".2e-3", "0.002"},
        {"minus apart at the top", "- 1", "1"},
        {"capital true before a number", "TRUE 1", "1"},
        {"byte order mark before a number", "\xEF\xBB\xBF[1]", "1"},
        {"letter as long as the number that follows", "[x,5]", "[5,5]"},
        {"star as long as the number that follows", "[*,7]", "[7,7]"},
    };
    for (const Accepted& text : texts) {
        const std::int32_t error = NumberOfError(text.text);
        ASSERT_EQ(error, 0) << text.name;
        EXPECT_EQ(EncodedAgain(text.text), text.encodedAgain) << text.name;
    }
}

}  // namespace
}  // namespace vicenter::support
