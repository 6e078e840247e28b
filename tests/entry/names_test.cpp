#include "entry/names.h"

#include <fstream>
#include <regex>

#include <gtest/gtest.h>

#include "automation/class_registry.h"
#include "platform/scripting/file_system_object.h"
#include "tests/fakes/fake_surroundings.h"

namespace vicenter::entry {
namespace {

class NamesTest : public testing::Test {
  protected:
    void SetUp() override { scripting::RegisterScripting(); }

    automation::ClassRegistry::Restore restore_;
    fakes::FakeSurroundings surroundings_;
    fakes::TemporaryFolder folder_;
};

TEST_F(NamesTest, AGuidHasItsRegistryForm) {
    const std::string guid = system::Surroundings::OfSystem().guids->New().value();
    EXPECT_TRUE(std::regex_match(guid, std::regex(R"(\{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\})")))
        << guid;
}

TEST_F(NamesTest, NoGuidIsTheEmptyText) {
    surroundings_.guids->exhausted = true;
    EXPECT_EQ(NewGuidText(), "");
}

TEST_F(NamesTest, ATemporaryNameIsMadeOfAGuid) {
    EXPECT_EQ(MakeTempName(false), "T_00000000_0000_4000_8000_000000000001");
    EXPECT_EQ(MakeTempName(false, "xls"), "T_00000000_0000_4000_8000_000000000002.xls");
}

TEST_F(NamesTest, WithAFolderTheWholePathIsGiven) {
    EXPECT_EQ(MakeTempName(true, "xlsx", folder_.Text()),
              folder_.File("T_00000000_0000_4000_8000_000000000001.xlsx"));
}

TEST_F(NamesTest, AnEmptyFolderIsTheSystemsTemporaryOne) {
    surroundings_.folders->temporary = folder_.Text();
    EXPECT_EQ(MakeTempName(true), folder_.File("T_00000000_0000_4000_8000_000000000001"));
}

TEST_F(NamesTest, ANameThatIsTakenIsPassedOver) {
    std::ofstream(folder_.Path() / "T_00000000_0000_4000_8000_000000000001.xls") << "taken";
    EXPECT_EQ(MakeTempName(true, "xls", folder_.Text()),
              folder_.File("T_00000000_0000_4000_8000_000000000002.xls"));
}

TEST_F(NamesTest, WithoutGuidsATakenNameEndsInsteadOfTurningForever) {
    surroundings_.guids->exhausted = true;
    std::ofstream(folder_.Path() / "T_.xls") << "taken";
    EXPECT_THROW(MakeTempName(true, "xls", folder_.Text()), automation::Error);
}

}  // namespace
}  // namespace vicenter::entry
