#include "platform/system/file_replacement.h"

#include <algorithm>
#include <fstream>

#include "automation/error.h"
#include "platform/system/file_names.h"
#include "platform/system/path_in.h"
#include "platform/system/whole_path.h"
#include "tests/platform/system/file_replacement_fixture.h"

namespace vicenter::system {
namespace {

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

TEST_F(FileReplacementTest, ADatabaseWhoseLogIsNotHomeIsNotMovedWithoutIt) {
    const std::string file = Write("a.vas", "old");
    for (const char* log : {"-wal", "-journal"}) {
        FileReplacement replacement(file);
        std::ofstream(PathFromUtf8(replacement.Path())) << "half";
        std::ofstream(PathFromUtf8(replacement.Path() + log)) << "the other half";
        try {
            replacement.PutInPlace();
            ADD_FAILURE() << "moved without its " << log;
        } catch (const automation::Error& error) {
            EXPECT_EQ(error.Number(), automation::error_number::kPermissionDenied);
            EXPECT_EQ(error.Text(), "文件未能写完，磁盘可能已满：" + file);
        }
        EXPECT_EQ(Read(file), "old");
    }
    EXPECT_EQ(Names(), Lines{"a.vas"});
    FileReplacement replacement(file);
    std::ofstream(PathFromUtf8(replacement.Path())) << "new";
    std::ofstream(PathFromUtf8(replacement.Path() + "-wal")).flush();
    replacement.PutInPlace();
    EXPECT_EQ(Read(file), "new") << "an empty log says nothing";
}

TEST_F(FileReplacementTest, ADatabaseIsNotMovedToWhereTheLogOfAnotherLies) {
    const std::string file = folder_.File("a.vas");
    for (const char* log : {"-wal", "-journal"}) {
        const std::string left = Write("a.vas" + std::string(log), "saved lines");
        EXPECT_THROW(Replace(file, kDatabase), automation::Error) << log;
        EXPECT_EQ(Names(), Lines{"a.vas" + std::string(log)});
        EXPECT_EQ(Read(left), "saved lines");
        fs::remove(PathFromUtf8(left));
    }
    Write("a.vas-wal", "");
    Replace(file, kDatabase);
    EXPECT_EQ(Read(file), kDatabase) << "an empty log says nothing";
}

TEST_F(FileReplacementTest, NamesOfLogsAreNoNamesOfFiles) {
    for (const char* name : {"a.vas-wal", "a.vas-SHM", "a.vas-journal"}) {
        EXPECT_FALSE(MayBeWritten(folder_.File(name))) << name;
        EXPECT_THROW(FileReplacement{folder_.File(name)}, automation::Error) << name;
    }
    EXPECT_TRUE(MayBeWritten(folder_.File("-wal.xlsx")));
}

TEST_F(FileReplacementTest, ADatabaseWhoseLogsFindNoNameIsNotMovedThere) {
    const auto named = [this](std::size_t length) {
        return PathToUtf8(PathIn(folder_.Path(), std::string(length, 'x') + ".vas"));
    };
    const std::string longest = named(243);
    EXPECT_EQ(WhyNoPlaceForDatabase(longest), "");
    Replace(longest, kDatabase);
    EXPECT_EQ(Read(longest), kDatabase);
    const std::string longer = named(244);
    EXPECT_EQ(WhyNoPlaceForDatabase(longer), "文件名太长，请另选文件名：" + longer);
    EXPECT_THROW(Replace(longer, kDatabase), automation::Error);
    EXPECT_FALSE(fs::exists(PathFromUtf8(longer)));
}

TEST_F(FileReplacementTest, WhereItLiesMayBeAPathOfAnyLength) {
    std::string deep = folder_.Text();
    for (int i = 0; i < 4; ++i)
        deep += "/文件夹 " + std::string(70, 'x');
    fs::create_directories(PathFromUtf8(deep));
    const std::string file = deep + "/书 本.xlsx";
    EXPECT_EQ(WhyNotWritable(file, kWorkbooks), "");
    Replace(file, "new");
    EXPECT_EQ(Read(file), "new");
    std::error_code failed;
    EXPECT_EQ(WholePath(PathFromUtf8(file), failed), PathFromUtf8(file));
    EXPECT_EQ(failed, std::error_code());
}

TEST_F(FileReplacementTest, FoldersAndWhatLiesInNoFolderAreNeverWrittenOver) {
    for (const std::string& target : {folder_.Text(), folder_.File("nowhere/a.xlsx"), folder_.File("")}) {
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
    EXPECT_EQ(WhyNotWritable(Write("letter.txt", "dear"), {"PDF 文件", {"%PDF-"}, {"pdf"}}),
              "目标文件已存在，且不是 PDF 文件，不能覆盖：" + folder_.File("letter.txt"));
}

TEST_F(FileReplacementTest, ADatabaseIsNeverWrittenOverWhateverItsName) {
    const std::string file = Write("books.xlsx", kDatabase);
    EXPECT_EQ(WhyNotWritable(file, kWorkbooks), "目标是账套或其他数据库文件，不能覆盖：" + file);
}

TEST_F(FileReplacementTest, AFileThatThisProcessHasOpenIsNotTouched) {
    const std::string file = Write("a.xlsx", "old");
    const std::ifstream open(PathFromUtf8(file));
    EXPECT_EQ(WhyNotWritable(file, kWorkbooks), "目标文件正在使用，不能覆盖：" + file);
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

TEST_F(FileReplacementTest, TheNamesOfAFolderAreReadWholeAndNoneOfOneThatIsNotThere) {
    Write("日常费用.xlsx", "a");
    Write(".hidden", "b");
    Lines names = NamesIn(folder_.Text());
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
