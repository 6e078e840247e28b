#include "store/template_name.h"

#include <string>

#include <gtest/gtest.h>

namespace vicenter::store {
namespace {

TEST(TemplateName, IsNothingOfBlanksOfWhateverWidth) {
    for (const char* name : {"", "  ", "　", " 　 ", "\u00A0", "\u200B", "　\uFEFF "})
        EXPECT_EQ(FaultOfName(name), NameFault::Blank) << "'" << name << "'";
    for (const char* name : {"a", "　月末　", "0"})
        EXPECT_EQ(FaultOfName(name), NameFault::None) << name;
}

TEST(TemplateName, IsOneLine) {
    for (const char* name : {"a\tb", "a\nb", "\x01"})
        EXPECT_EQ(FaultOfName(name), NameFault::ControlCharacter);
}

TEST(TemplateName, IsAsLongAsTheAccountSetTakesIt) {
    std::string name;
    for (int i = 0; i < 255; ++i)
        name += "账";
    EXPECT_EQ(FaultOfName(name), NameFault::None);
    EXPECT_EQ(FaultOfName(name + "账"), NameFault::TooLong);
    // Outside the first plane a character takes two of the units that the column counts.
    EXPECT_EQ(FaultOfName(name.substr(0, std::size_t{253} * 3) + "𠀀"), NameFault::None);
    EXPECT_EQ(FaultOfName(name.substr(0, std::size_t{254} * 3) + "𠀀"), NameFault::TooLong);
}

}  // namespace
}  // namespace vicenter::store
