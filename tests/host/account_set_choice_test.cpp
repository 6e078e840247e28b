// Which account set to open next, and as whom.

#include "host/account_set_choice.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/fakes/fake_surroundings.h"
#ifndef _WIN32
#include "tests/tsql/child_process.h"
#endif
#include "tests/host/demo_set.h"

namespace vicenter::host {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class AccountSetChoiceTest : public ::testing::Test {
  protected:
    std::string MakeFile(const std::string& name) {
        std::string path = folder.Path(name);
        std::ofstream(path) << "x";
        return path;
    }

    fakes::FakeSurroundings surroundings;
    test::TestFolder folder;
};

TEST_F(AccountSetChoiceTest, TheFilesOpenedLastStandFirstEachOnce) {
    const std::string a = MakeFile("a.vas");
    const std::string b = MakeFile("b.vas");
    for (const std::string& file : {a, b, a})
        AccountSetChoice::Remember(folder.Path(), file);
    EXPECT_THAT(AccountSetChoice(folder.Path()).Recent(), ElementsAre(a, b));
}

TEST_F(AccountSetChoiceTest, FilesThatAreGoneAreLeftOutAndTheListHasAnEnd) {
    const std::string gone = MakeFile("gone.vas");
    AccountSetChoice::Remember(folder.Path(), gone);
    std::filesystem::remove(gone);
    EXPECT_THAT(AccountSetChoice(folder.Path()).Recent(), IsEmpty());
    for (int i = 0; i < 30; ++i)
        AccountSetChoice::Remember(folder.Path(), MakeFile(std::to_string(i) + ".vas"));
    EXPECT_THAT(AccountSetChoice(folder.Path()).Recent(), SizeIs(12));
    EXPECT_EQ(AccountSetChoice(folder.Path()).Recent().front(), folder.Path("29.vas"));
}

TEST_F(AccountSetChoiceTest, TheListNeedsNoFolderBeforeIt) {
    const std::string a = MakeFile("a.vas");
    const std::string data = folder.Path("data of a new user/vicenter");
    AccountSetChoice::Remember(data, a);
    EXPECT_THAT(AccountSetChoice(data).Recent(), ElementsAre(a));
}

TEST_F(AccountSetChoiceTest, AFolderThatTakesNoListIsNoError) {
    const std::string a = MakeFile("a.vas");
    const std::string nowhere = folder.Path("a.vas/nowhere");
    AccountSetChoice::Remember(nowhere, a);
    EXPECT_THAT(AccountSetChoice(nowhere).Recent(), IsEmpty());
}

#ifndef _WIN32
TEST_F(AccountSetChoiceTest, AFullDiskLeavesTheListThatWasThere) {
    const std::string a = MakeFile("a.vas");
    const std::string b = MakeFile("b.vas");
    AccountSetChoice::Remember(folder.Path(), a);
    EXPECT_EQ(testing_support::RunWithFileLimit(8,
                                                [&] {
                                                    AccountSetChoice::Remember(folder.Path(), b);
                                                    return 0;
                                                }),
              0);
    EXPECT_THAT(AccountSetChoice(folder.Path()).Recent(), ElementsAre(a));
}
#endif

TEST_F(AccountSetChoiceTest, TheUsersAreThoseOfTheChosenSet) {
    AccountSetChoice choice(folder.Path());
    choice.Choose(test::CopySet(folder));
    ASSERT_THAT(choice.Users(), SizeIs(3));
    EXPECT_EQ(choice.Users()[2].id, 3);
    EXPECT_EQ(choice.Users()[2].name, "周敏");
    EXPECT_EQ(choice.Users()[2].duty, "出纳");
    EXPECT_EQ(choice.Note(), "");
    choice.Choose(MakeFile("no.vas"));
    EXPECT_THAT(choice.Users(), IsEmpty());
    EXPECT_THAT(choice.Note(), HasSubstr("账套不能打开"));
    EXPECT_FALSE(choice.Open(0));
}

TEST_F(AccountSetChoiceTest, ASetThatWasLookedAtCanBeMovedAndDeleted) {
    const std::string file = test::CopySet(folder);
    AccountSetChoice choice(folder.Path());
    choice.Choose(file);
    std::error_code failed;
    std::filesystem::rename(system::PathFromUtf8(file), system::PathFromUtf8(folder.Path("moved.vas")),
                            failed);
    EXPECT_FALSE(failed) << failed.message();
    EXPECT_TRUE(std::filesystem::remove(system::PathFromUtf8(folder.Path("moved.vas")), failed));
}

TEST_F(AccountSetChoiceTest, OpensAWindowInAProcessOfItsOwn) {
    const std::string file = test::CopySet(folder);
    AccountSetChoice choice(folder.Path());
    choice.Choose(file);
    EXPECT_TRUE(choice.Open(1));
    ASSERT_THAT(surroundings.processes->started, SizeIs(1));
    EXPECT_THAT(surroundings.processes->started[0],
                HasSubstr("vicenter\" --account-set \"" + file + "\" --user 2 window"));
}

}  // namespace
}  // namespace vicenter::host
