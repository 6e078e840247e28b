#include "platform/system/file_replacement.h"

#include <algorithm>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "automation/error.h"
#include "platform/system/file_names.h"
#include "tests/fakes/fake_surroundings.h"
#include "tests/tsql/child_process.h"

namespace vicenter::system {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

const Replaceable kWorkbooks{"工作簿", {"PK\x03\x04"}, {"xlsx"}};
const std::string kDatabase("SQLite format 3\0 and more", 25);

class FileReplacementTest : public testing::Test {
  protected:
    std::string Write(const std::string& name, const std::string& content) {
        std::string file = folder_.File(name);
        std::ofstream(PathFromUtf8(file), std::ios::binary) << content;
        return file;
    }
    static std::string Read(const std::string& file) {
        std::ifstream in(PathFromUtf8(file), std::ios::binary);
        std::ostringstream content;
        content << in.rdbuf();
        return content.str();
    }
    std::string Link(const std::string& name, const std::string& to) {
        std::string file = folder_.File(name);
        fs::create_symlink(PathFromUtf8(to), PathFromUtf8(file));
        return file;
    }
    // Hidden ones, too.
    Lines Names() const {
        Lines names;
        for (const auto& entry : fs::directory_iterator(folder_.Path()))
            names.push_back(PathToUtf8(entry.path().filename()));
        std::sort(names.begin(), names.end());
        return names;
    }
    static void Replace(const std::string& file, const std::string& content) {
        FileReplacement replacement(file);
        std::ofstream(PathFromUtf8(replacement.Path()), std::ios::binary) << content;
        replacement.PutInPlace();
    }
    static bool MayBeWritten(const std::string& file) { return WhyNotWritable(file, kWorkbooks).empty(); }

    fakes::TemporaryFolder folder_;
};

TEST_F(FileReplacementTest, TheNewContentTakesTheNameAndNothingElseIsLeft) {
    const std::string file = Write("a.xlsx", "old");
    Replace(file, "new");
    EXPECT_EQ(Read(file), "new");
    Replace(folder_.File("b.xlsx"), "first");
    EXPECT_EQ(Names(), (Lines{"a.xlsx", "b.xlsx"}));
}

TEST_F(FileReplacementTest, WhatIsNotFinishedLeavesTheOldContent) {
    const std::string file = Write("a.xlsx", "old");
    {
        FileReplacement replacement(file);
        std::ofstream(PathFromUtf8(replacement.Path())) << "half";
        EXPECT_EQ(Read(file), "old");
    }
    EXPECT_EQ(Read(file), "old");
    EXPECT_EQ(Names(), Lines{"a.xlsx"});
}

TEST_F(FileReplacementTest, TheNewFileHasTheOldOnesPermissionsAndCanBeWrittenTo) {
    const std::string file = Write("a.xlsx", "old");
    fs::permissions(PathFromUtf8(file), fs::perms::owner_read | fs::perms::group_read);
    Replace(file, "new");
    EXPECT_EQ(fs::status(PathFromUtf8(file)).permissions(),
              fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
}

TEST_F(FileReplacementTest, ALinkStaysOneAndItsFileIsReplaced) {
    const std::string file = Write("a.xlsx", "old");
    const std::string link = Link("link.xlsx", "a.xlsx");
    Replace(link, "new");
    EXPECT_TRUE(fs::is_symlink(PathFromUtf8(link)));
    EXPECT_EQ(Read(file), "new");
    Replace(Link("ahead.xlsx", "later.xlsx"), "new");
    EXPECT_EQ(Read(folder_.File("later.xlsx")), "new");
}

TEST_F(FileReplacementTest, FoldersDevicesAndPipesAreNeverWrittenOver) {
    const std::string pipe = folder_.File("pipe.xlsx");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& target :
         {folder_.Text(), std::string("/dev/null"), std::string("/dev/full"), pipe,
          Link("device.xlsx", "/dev/null"), Link("folder.xlsx", folder_.Text()),
          folder_.File("nowhere/a.xlsx"), folder_.File("")}) {
        EXPECT_FALSE(MayBeWritten(target)) << target;
        EXPECT_THROW(FileReplacement{target}, automation::Error) << target;
    }
}

TEST_F(FileReplacementTest, WhatTurnsIntoAFolderMeanwhileIsNotMovedOver) {
    const std::string file = folder_.File("a.xlsx");
    FileReplacement replacement(file);
    std::ofstream(PathFromUtf8(replacement.Path())) << "new";
    fs::create_directory(PathFromUtf8(file));
    EXPECT_THROW(replacement.PutInPlace(), automation::Error);
}

TEST_F(FileReplacementTest, OnlyFilesOfTheKindOrOfItsNameMayBeWrittenOver) {
    EXPECT_TRUE(MayBeWritten(folder_.File("none")));
    EXPECT_TRUE(MayBeWritten(Write("table.XLSX", "a,b")));
    EXPECT_TRUE(MayBeWritten(Write("book", "PK\x03\x04 and more")));
    EXPECT_EQ(WhyNotWritable(Write("letter.txt", "dear"), kWorkbooks),
              "目标文件已存在，且不是工作簿，不能覆盖：" + folder_.File("letter.txt"));
    EXPECT_FALSE(MayBeWritten(Write("empty", "")));
    EXPECT_FALSE(MayBeWritten(Link("letter.xlsx", "letter.txt")));
}

TEST_F(FileReplacementTest, ADatabaseIsNeverWrittenOverWhateverItsName) {
    const std::string file = Write("books.xlsx", kDatabase);
    EXPECT_EQ(WhyNotWritable(file, kWorkbooks), "目标是账套或其他数据库文件，不能覆盖：" + file);
    EXPECT_FALSE(MayBeWritten(Link("link.xlsx", "books.xlsx")));
}

TEST_F(FileReplacementTest, AFileThatThisProcessHasOpenIsNotTouched) {
    const std::string file = Write("a.xlsx", "old");
    const std::ifstream open(PathFromUtf8(file));
    EXPECT_EQ(WhyNotWritable(file, kWorkbooks), "目标文件正在使用，不能覆盖：" + file);
    EXPECT_FALSE(MayBeWritten(Link("link.xlsx", "a.xlsx")));
}

TEST_F(FileReplacementTest, AsNewItNeverReplaces) {
    const std::string file = folder_.File("a.vas");
    FileReplacement replacement(file);
    std::ofstream(PathFromUtf8(replacement.Path())) << "mine";
    Write("a.vas", "theirs");
    try {
        replacement.PutInPlaceAsNew();
        FAIL();
    } catch (const automation::Error& error) {
        EXPECT_EQ(error.Number(), automation::error_number::kFileAlreadyExists);
    }
    EXPECT_EQ(Read(file), "theirs");
}

TEST_F(FileReplacementTest, ADiskThatIsFullLeavesTheOldContent) {
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

TEST_F(FileReplacementTest, WhatAKilledProcessLeavesIsRemovedAndNothingElse) {
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

TEST_F(FileReplacementTest, TheNamesOfAFolderAreReadWholeAndNoneOfOneThatIsNotThere) {
    Write("日常费用.xlsx", "a");
    Write(".hidden", "b");
    Lines names = NamesIn(folder_.Path());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, (Lines{".hidden", "日常费用.xlsx"}));
    EXPECT_EQ(NamesIn(folder_.File("nowhere")), Lines{});
}

TEST(SafeFileName, TakesWhatNoFileSystemTakesOut) {
    EXPECT_EQ(SafeFileName("日常费用"), "日常费用");
    EXPECT_EQ(SafeFileName("应收/应付"), "应收_应付");
    EXPECT_EQ(SafeFileName("a\\b:c*d?e\"f<g>h|i\tj"), "a_b_c_d_e_f_g_h_i_j");
    EXPECT_EQ(SafeFileName(".."), "_");
    EXPECT_EQ(SafeFileName(""), "_");
    EXPECT_EQ(SafeFileName("a. "), "a");
    EXPECT_EQ(SafeFileName("Nul"), "Nul_");
    EXPECT_EQ(SafeFileName("nul.1"), "nul.1_");
    std::string name;
    for (int i = 0; i < 100; ++i)
        name += "账";
    EXPECT_EQ(SafeFileName(name), name.substr(0, 198));
}

}  // namespace
}  // namespace vicenter::system
