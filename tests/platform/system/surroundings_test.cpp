#include "platform/system/surroundings.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include <gtest/gtest.h>

#ifndef _WIN32
#include <pwd.h>
#include <unistd.h>
#endif

#include "automation/error.h"
#include "platform/system/files.h"
#include "tests/fakes/fake_surroundings.h"

namespace vicenter::system {
namespace {

TEST(Surroundings, NobodyAnswersUnattendedQuestions) {
    const Surroundings s = Surroundings::OfSystem();
    EXPECT_EQ(s.messageBoxes->Show("x", MessageButtons::Ok, MessageIcon::None, ""), MessageResult::Ok);
    EXPECT_EQ(s.messageBoxes->Show("x", MessageButtons::OkCancel, MessageIcon::None, ""),
              MessageResult::Cancel);
    EXPECT_EQ(s.messageBoxes->Show("x", MessageButtons::YesNo, MessageIcon::None, ""), MessageResult::No);
    EXPECT_FALSE(s.fileDialogs->ChooseFileToOpen({}).has_value());
    EXPECT_FALSE(s.fileDialogs->ChooseFileToSave({}).has_value());
}

TEST(Surroundings, TheClockIsLocalTime) {
    const Surroundings s = Surroundings::OfSystem();
    const auto a = s.clock->Now();
    EXPECT_GE(a.Parts().year, 2024);
    EXPECT_LE(a, s.clock->Now());
}

TEST(Surroundings, EveryGuidIsNew) {
    const Surroundings s = Surroundings::OfSystem();
    EXPECT_NE(s.guids->New().value(), s.guids->New().value());
}

TEST(Surroundings, AnUnknownProgramIsNotFound) {
    const Surroundings s = Surroundings::OfSystem();
    try {
#ifdef _WIN32  // which has an hh.exe
        s.processes->Start("no-such-hh.exe C:\\Vela\\VelaV12.chm::/凭证模板.htm");
        FAIL();
#else
        s.processes->Start("hh.exe C:\\Vela\\VelaV12.chm::/凭证模板.htm");
        GTEST_SKIP() << "this machine has an hh.exe";
#endif
    } catch (const automation::Error& error) {
        EXPECT_EQ(error.Number(), 53);
    }
    EXPECT_THROW(s.processes->Start(""), automation::Error);
    EXPECT_THROW(s.processes->OpenDocument("/no/such/document.htm"), automation::Error);
}

TEST(Surroundings, AStartedProgramRunsOnItsOwn) {
    const fakes::TemporaryFolder folder;
    const std::string file = folder.File("a b.txt");
#ifdef _WIN32
    const std::string command = "cmd.exe /c mkdir \"" + file + "\"";
#else
    const std::string command = "touch \"" + file + "\"";
#endif
    Surroundings::OfSystem().processes->Start(command);
    // The program is not waited for by design, so that the test looks until the file is there.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!std::filesystem::exists(file) && std::chrono::steady_clock::now() < deadline)
        std::this_thread::yield();
    EXPECT_TRUE(std::filesystem::exists(file));
}

TEST(Surroundings, FoldersHaveNoFinalSeparator) {
    const Surroundings s = Surroundings::OfSystem();
    for (const std::string& folder :
         {s.folders->Temporary(), s.folders->UserData(), s.folders->Component()}) {
        ASSERT_FALSE(folder.empty());
        EXPECT_NE(folder.back(), '/');
    }
    EXPECT_TRUE(std::filesystem::exists(PathFromUtf8(s.folders->Component())));
}

#ifndef _WIN32
// A timer's job has no HOME; a path of a variable that begins in the current folder names none.
TEST(Surroundings, WithoutAnEnvironmentTheDataLieInTheUsersHome) {
    const auto without = [](const char* name) {
        const char* value = std::getenv(name);
        const std::string kept = value == nullptr ? "" : value;
        unsetenv(name);
        return kept;
    };
    const std::string home = without("HOME");
    const std::string data = without("XDG_DATA_HOME");
    setenv("XDG_DATA_HOME", "relative", 1);
    const std::string folder = Surroundings::OfSystem().folders->UserData();
    unsetenv("XDG_DATA_HOME");
    if (!home.empty()) setenv("HOME", home.c_str(), 1);
    if (!data.empty()) setenv("XDG_DATA_HOME", data.c_str(), 1);
    const passwd* self = getpwuid(geteuid());
    ASSERT_NE(self, nullptr);
    EXPECT_EQ(folder, std::string(self->pw_dir) + "/.local/share/vicenter");
}
#endif

TEST(Surroundings, AScopePutsTheOldOnesBack) {
    const auto before = Surroundings::Current().clock;
    {
        fakes::FakeSurroundings fake;
        EXPECT_EQ(Surroundings::Current().processes->CurrentProcessId(), 4711);
    }
    EXPECT_EQ(Surroundings::Current().clock, before);
}

}  // namespace
}  // namespace vicenter::system
