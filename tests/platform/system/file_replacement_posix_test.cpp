// Files that are replaced, where there are links, permissions, devices and processes that can be forked.

#include <sys/stat.h>
#include <unistd.h>

#include "automation/error.h"
#include "platform/system/file_names.h"
#include "tests/platform/system/file_replacement_fixture.h"
#include "tests/tsql/child_process.h"

namespace vicenter::system {
namespace {

class FileReplacementOnPosix : public FileReplacementTest {
  protected:
    std::string Link(const std::string& name, const std::string& to) {
        std::string file = folder_.File(name);
        fs::create_symlink(PathFromUtf8(to), PathFromUtf8(file));
        return file;
    }
};

TEST_F(FileReplacementOnPosix, TheNewFileHasTheOldOnesPermissionsAndCanBeWrittenTo) {
    const std::string file = Write("a.xlsx", "old");
    fs::permissions(PathFromUtf8(file), fs::perms::owner_read | fs::perms::group_read);
    Replace(file, "new");
    EXPECT_EQ(fs::status(PathFromUtf8(file)).permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
}

TEST_F(FileReplacementOnPosix, ALinkStaysOneAndItsFileIsReplaced) {
    const std::string file = Write("a.xlsx", "old");
    const std::string link = Link("link.xlsx", "a.xlsx");
    Replace(link, "new");
    EXPECT_TRUE(fs::is_symlink(PathFromUtf8(link)));
    EXPECT_EQ(Read(file), "new");
    Replace(Link("ahead.xlsx", "later.xlsx"), "new");
    EXPECT_EQ(Read(folder_.File("later.xlsx")), "new");
}

TEST_F(FileReplacementOnPosix, ALinkIsJudgedByWhatItLeadsTo) {
    Write("letter.txt", "dear");
    EXPECT_FALSE(MayBeWritten(Link("letter.xlsx", "letter.txt")));
    Write("books.xlsx", kDatabase);
    EXPECT_FALSE(MayBeWritten(Link("link.xlsx", "books.xlsx")));
    const std::ifstream open(PathFromUtf8(Write("a.xlsx", "old")));
    EXPECT_FALSE(MayBeWritten(Link("open.xlsx", "a.xlsx")));
}

// What is made beside the target must find room there, too: the folder's rights count, not the file's.
TEST_F(FileReplacementOnPosix, AFolderThatTakesNoFilesIsNamed) {
    constexpr uid_t kNobody = 65534;
    const std::string folder = folder_.File("closed");
    fs::create_directory(PathFromUtf8(folder));
    const std::string file = Write("closed/a.xlsx", "old");
    ASSERT_EQ(chmod(file.c_str(), 0666), 0);
    ASSERT_EQ(chmod(folder_.Text().c_str(), 0755), 0);
    ASSERT_EQ(chmod(folder.c_str(), 0555), 0);
    const bool administrator = geteuid() == 0;
    EXPECT_EQ(administrator ? seteuid(kNobody) : 0, 0);
    std::string told;
    try {
        const FileReplacement replacement(file);
    } catch (const automation::Error& error) {
        told = error.Text();
    }
    const std::string asked = WhyNotWritable(file, {});
    EXPECT_EQ(administrator ? seteuid(0) : 0, 0);
    ASSERT_EQ(chmod(folder.c_str(), 0755), 0);
    EXPECT_EQ(told, "没有写入权限：" + folder);
    EXPECT_EQ(asked, "没有写入权限：" + folder);
}

TEST_F(FileReplacementOnPosix, DevicesAndPipesAreNeverWrittenOver) {
    const std::string pipe = folder_.File("pipe.xlsx");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& target :
         {std::string("/dev/null"), std::string("/dev/full"), pipe, Link("device.xlsx", "/dev/null"),
          Link("folder.xlsx", folder_.Text())}) {
        EXPECT_FALSE(MayBeWritten(target)) << target;
        EXPECT_THROW(FileReplacement{target}, automation::Error) << target;
    }
}

TEST_F(FileReplacementOnPosix, ADiskThatIsFullLeavesTheOldContent) {
    const std::string file = Write("a.xlsx", "old");
    const std::string source = Write("source", std::string(100'000, 'x'));
    const int told = testing_support::RunWithFileLimit(50'000, [&] {
        try {
            ReplaceWithCopy(source, file);
        } catch (const automation::Error& error) {
            return error.Text() == "磁盘已满：" + file ? 1 : 2;
        }
        return 0;
    });
    EXPECT_EQ(told, 1);
    EXPECT_EQ(Read(file), "old");
    EXPECT_EQ(Names(), (Lines{"a.xlsx", "source"}));
}

TEST_F(FileReplacementOnPosix, WhatAKilledProcessLeavesIsRemovedAndNothingElse) {
    const std::string file = Write("a.xlsx", "old");
    const std::string temporary = folder_.File("T_0A1B2C3D_0000_4000_8000_0123456789AB.xlsx");
    const pid_t child = fork();
    if (child == 0) {
        const FileReplacement replacement(file);
        for (const char* tail : {"", "-wal", "-shm"})
            std::ofstream(PathFromUtf8(replacement.Path() + tail)) << "half";
        const UnfinishedFile unfinished(temporary);
        std::ofstream(PathFromUtf8(temporary)) << "half";
        raise(SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(Names().size(), 7U);
    // Somebody else's, and one of this process, which is still at work.
    Write("T_notes.xlsx", "mine");
    Write("T_0A1B2C3D_0000_4000_8000_0123456789AC.xlsx", "of another program");
    Write(".vicenter-letter.mark", "");
    Write("letter", "mine");
    const FileReplacement working(folder_.File("b.xlsx"));
    Write(fs::path(working.Path()).filename().string(), "mine");
    RemoveLeftBehind(folder_.Text());
    const Lines names = Names();
    EXPECT_EQ(names.size(), 6U) << testing::PrintToString(names);
    EXPECT_TRUE(fs::exists(PathFromUtf8(working.Path())));
    for (const char* name :
         {"a.xlsx", "letter", "T_notes.xlsx", "T_0A1B2C3D_0000_4000_8000_0123456789AC.xlsx"})
        EXPECT_TRUE(fs::exists(PathFromUtf8(folder_.File(name)))) << name;
    EXPECT_EQ(Read(file), "old");
}

}  // namespace
}  // namespace vicenter::system
