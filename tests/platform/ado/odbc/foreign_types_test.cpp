// Types that the embedded account set does not have, as a real server may give them.

#include "both_back_ends.h"

namespace vicenter::ado_test {
namespace {

using tds_server::FixedAnswer;
using tds_server::Put16;
using tds_server::Put32;
using tds_server::Put64;
using tds_server::PutByte;
using tds_server::Utf16Bytes;

std::string Bytes(std::initializer_list<unsigned> values) {
    std::string bytes;
    for (const unsigned value : values)
        PutByte(bytes, value);
    return bytes;
}

class ForeignTypesTest : public testing::Test {
  protected:
    ado::RecordsetRef Read(const std::string& type, const std::string& value) {
        books_.Server().Answer("select x", FixedAnswer{{{"x", type}}, {{value}}});
        return books_.Open()->Execute("select x");
    }
    ServedBooks books_;
};

TEST_F(ForeignTypesTest, XmlIsItsText) {
    std::string value;
    const std::string text = Utf16Bytes("<凭证 n=\"1\"/>");
    Put64(value, text.size());
    Put32(value, static_cast<std::uint32_t>(text.size()));
    value += text;
    Put32(value, 0);
    const ado::RecordsetRef rows = Read(Bytes({0xF1, 0}), value);
    EXPECT_EQ(rows->Value("x").ToText(), "<凭证 n=\"1\"/>");
    EXPECT_EQ(rows->Columns()[0].type, ado::DataType::kLongVarWChar);
}

TEST_F(ForeignTypesTest, AVariantIsReadAsWhatItHolds) {
    std::string value;
    Put32(value, 6);
    value += Bytes({0x38, 0});
    Put32(value, 4711);
    std::string type = Bytes({0x62});
    Put32(type, 8009);
    EXPECT_EQ(Read(type, value)->Value("x").ToText(), "4711");
    std::string null;
    Put32(null, 0);
    EXPECT_TRUE(Read(type, null)->Value("x").IsNull());
}

TEST_F(ForeignTypesTest, ATimeWithItsZoneIsAText) {
    // 2024-05-06 07:08:09.1230000 +08:00, kept in universal time.
    std::string value = Bytes({10});
    const std::uint64_t time = (23ULL * 3600 + 8 * 60 + 9) * 10'000'000 + 1'230'000;
    for (int i = 0; i < 5; ++i)
        PutByte(value, static_cast<unsigned>(time >> (8 * i)) & 0xFFU);
    const unsigned day = 739010;  // 2024-05-05
    for (int i = 0; i < 3; ++i)
        PutByte(value, day >> (8 * i) & 0xFFU);
    Put16(value, 480);
    const std::string text = Read(Bytes({0x2B, 7}), value)->Value("x").ToText();
    EXPECT_NE(text.find("2024-05-06 07:08:09.123"), std::string::npos) << text;
    EXPECT_NE(text.find("+08:00"), std::string::npos) << text;
}

TEST_F(ForeignTypesTest, AnImageIsItsBytes) {
    std::string type = Bytes({0x22});
    Put32(type, 0x7FFFFFFF);
    PutByte(type, 0);
    std::string value = Bytes({16});
    value.append(24, 'p');
    Put32(value, 3);
    value += Bytes({0, 0xAB, 0xFF});
    EXPECT_EQ(Read(type, value)->Value("x").ToText(), "0x00ABFF");
}

}  // namespace
}  // namespace vicenter::ado_test
