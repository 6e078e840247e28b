#include "platform/ado/account_set/account_set_copies.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include <gtest/gtest.h>
#ifndef _WIN32
#include <csignal>

#include <sys/wait.h>
#include <unistd.h>
#endif

#include "automation/error.h"
#include "platform/ado/account_set/account_set_provider.h"
#include "platform/ado/connection.h"
#include "platform/ado/recordset.h"
#include "platform/system/file_replacement.h"
#include "platform/system/files.h"
#include "tests/fakes/fake_surroundings.h"
#include "tests/fakes/file_kinds.h"

namespace vicenter::ado {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

class CopiesTest : public testing::Test {
  protected:
    void SetUp() override {
        RegisterAccountSetProvider();
        set_ = Make("set.vas");
        Run(set_,
            "create table t(FID int not null primary key, FName nvarchar(20), FAmount decimal(18,4), FDate "
            "datetime)\n"
            "create index IX_t on t(FName)\n"
            "insert into t values(1,N'现金',12.5,'20260131')\n"
            "insert into t values(2,N'银行',-3,null)");
    }
    void TearDown() override { CloseIdleAccountSets(); }

    static std::string Connect(const std::string& file) {
        return "Provider=VelaAccountSet;Pooling=no;Data Source=\"" + file + "\"";
    }
    std::string Make(const std::string& name) {
        std::string file = folder_.File(name);
        OpenConnection(Connect(file) + ";Create=yes")->Execute("select 1 as a");
        return file;
    }
    static void Run(const std::string& file, const std::string& batch) {
        OpenConnection(Connect(file))->Execute(batch);
    }
    // All values, or the error.
    static std::string Content(const std::string& file) {
        try {
            return Content(*OpenConnection(Connect(file)));
        } catch (const automation::Error& error) {
            return error.Text();
        }
    }
    static std::string Content(Connection& connection) {
        std::string text;
        const RecordsetRef rows = connection.Execute("select * from t order by FID");
        for (; !rows->AtEnd(); rows->MoveNext()) {
            for (const char* field : {"FID", "FName", "FAmount", "FDate"})
                text += rows->Value(field).ToTextOrEmpty() + "|";
            text += "\n";
        }
        return text;
    }
    static std::string Read(const std::string& file) {
        std::ifstream in(system::PathFromUtf8(file), std::ios::binary);
        std::ostringstream content;
        content << in.rdbuf();
        return content.str();
    }
    static void Write(const std::string& file, const std::string& content) {
        std::ofstream(system::PathFromUtf8(file), std::ios::binary) << content;
    }
    // The text of the error, or nothing.
    template <class Work>
    static std::string Told(Work work) {
        try {
            work();
        } catch (const automation::Error& error) {
            return error.Text();
        }
        return {};
    }
    Lines Names() const {
        Lines names;
        for (const auto& entry : fs::directory_iterator(folder_.Path()))
            names.push_back(system::PathToUtf8(entry.path().filename()));
        std::sort(names.begin(), names.end());
        return names;
    }

    fakes::TemporaryFolder folder_;
    std::string set_;
    std::string backup_ = folder_.File("backup.vas");
};

TEST_F(CopiesTest, ABackupHoldsWhatWasCommittedWhileOthersWork) {
    const ConnectionRef other = OpenConnection(Connect(set_));
    other->Execute("insert into t values(3,N'三',1,null)");
    other->Execute("begin transaction insert into t values(4,N'四',1,null)");
    BackUpAccountSet(set_, backup_);
    EXPECT_EQ(Content(backup_), "1|现金|12.5|2026-01-31 00:00:00|\n2|银行|-3||\n3|三|1||\n");
    other->Execute("commit");
    EXPECT_EQ(FindAccountSetDamage(backup_), Lines{});
    EXPECT_EQ(FindAccountSetDamage(set_), Lines{});
}

TEST_F(CopiesTest, ABackupIsOneFileAndReplacesAnEarlierOne) {
    BackUpAccountSet(set_, backup_);
    Run(set_, "delete t where FID = 1");
    BackUpAccountSet(set_, backup_);
    EXPECT_EQ(Content(backup_), "2|银行|-3||\n");
    EXPECT_EQ(Names(), (Lines{"backup.vas", "set.vas"}));
}

TEST_F(CopiesTest, ABackupIsNeverWrittenOverAnythingElse) {
    const std::string other = Make("other.vas");
    const std::string letter = folder_.File("letter");
    Write(letter, "dear");
    Lines targets{set_, other, letter, folder_.Text(), fakes::kDevice, folder_.File("nowhere/b.vas")};
#ifndef _WIN32
    fs::create_symlink("other.vas", folder_.Path() / "link.vas");
    targets.push_back(folder_.File("link.vas"));
#endif
    for (const std::string& target : targets) {
        EXPECT_NE(Told([&] { BackUpAccountSet(set_, target); }), "") << target;
    }
    EXPECT_EQ(Read(letter), "dear");
    EXPECT_EQ(Content(set_), "1|现金|12.5|2026-01-31 00:00:00|\n2|银行|-3||\n");
    BackUpAccountSet(set_, backup_);
    const ConnectionRef open = OpenConnection(Connect(backup_));
    EXPECT_EQ(Told([&] { BackUpAccountSet(set_, backup_); }), "目标文件正在使用，不能覆盖：" + backup_);
    EXPECT_EQ(Told([&] { BackUpAccountSet(letter, folder_.File("b.vas")); }).find("账套备份失败："), 0U);
}

#ifndef _WIN32
TEST_F(CopiesTest, ABackupHasNoNameUnderWhichItCouldNotBeRead) {
    // 253 bytes: the file itself has room, its logs have none.
    std::string name;
    for (int i = 0; i < 83; ++i)
        name += "备";
    const std::string longest = folder_.File(name + ".vas");
    EXPECT_EQ(Told([&] { BackUpAccountSet(set_, longest); }), "文件名太长，请另选文件名：" + longest);
    EXPECT_NE(Told([&] { BackUpAccountSet(set_, set_ + "-wal"); }), "");
    EXPECT_EQ(Names(), Lines{"set.vas"});
}

TEST_F(CopiesTest, WhatAKilledRestoreLeavesBesideABackupDoesNotKeepTheNextOneFromItsPlace) {
    BackUpAccountSet(set_, backup_);
    const pid_t child = fork();
    if (child == 0) {
        const ConnectionRef reader = OpenConnection(Connect(backup_));
        reader->Execute("select * from t");
        kill(getpid(), SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(fs::exists(system::PathFromUtf8(backup_ + "-shm")));
    EXPECT_EQ(Told([&] { BackUpAccountSet(set_, backup_); }), "");
    EXPECT_FALSE(fs::exists(system::PathFromUtf8(backup_ + "-shm")));
    EXPECT_EQ(FindAccountSetDamage(backup_), Lines{});
}

// A writer is killed, and the account set gets another name without its log.
TEST_F(CopiesTest, TheLogOfASetThatWasRenamedAfterAKillIsMixedIntoNoOther) {
    BackUpAccountSet(set_, backup_);
    const pid_t child = fork();
    if (child == 0) {
        OpenConnection(Connect(set_))->Execute("insert into t values(3,N'三',1,null)");
        const ConnectionRef writer = OpenConnection(Connect(set_));
        writer->Execute("update t set FName = N'改' alter table t add FMore int");
        kill(getpid(), SIGKILL);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    const std::string renamed = folder_.File("renamed.vas");
    fs::rename(set_, renamed);
    const std::string log = Read(set_ + "-wal");
    ASSERT_NE(log, "");

    const std::string refusal = system::WhyNoPlaceForDatabase(set_);
    EXPECT_NE(refusal, "");
    EXPECT_EQ(Told([&] { RestoreAccountSet(backup_, set_); }), refusal);
    EXPECT_EQ(Told([&] { BackUpAccountSet(backup_, set_); }), refusal);
    EXPECT_NE(Told([&] { OpenConnection(Connect(set_) + ";Create=yes"); }), "");
    EXPECT_FALSE(fs::exists(set_));
    EXPECT_EQ(Read(set_ + "-wal"), log);

    // What was told as stored is there once its log has followed it, and the name is free.
    fs::rename(set_ + "-wal", renamed + "-wal");
    EXPECT_EQ(Content(renamed), "1|改|12.5|2026-01-31 00:00:00|\n2|改|-3||\n3|改|1||\n");
    EXPECT_EQ(Told([&] { RestoreAccountSet(backup_, set_); }), "");
    EXPECT_EQ(Content(set_), Content(backup_));
}

TEST_F(CopiesTest, ABackupThatAnotherProcessHasOpenIsNotReplaced) {
    BackUpAccountSet(set_, backup_);
    int ready[2];
    int done[2];
    ASSERT_EQ(pipe(ready), 0);
    ASSERT_EQ(pipe(done), 0);
    const pid_t child = fork();
    if (child == 0) {
        close(done[1]);
        const ConnectionRef reader = OpenConnection(Connect(backup_));
        reader->Execute("select * from t");
        char sign = 1;
        if (write(ready[1], &sign, 1) != 1) _exit(1);
        while (read(done[0], &sign, 1) > 0) {
        }
        _exit(0);
    }
    close(done[0]);
    char sign = 0;
    EXPECT_EQ(read(ready[0], &sign, 1), 1);
    EXPECT_EQ(Told([&] { BackUpAccountSet(set_, backup_); }), "目标文件正在使用，不能覆盖：" + backup_);
    close(done[1]);
    close(ready[0]);
    close(ready[1]);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
}
#endif

TEST_F(CopiesTest, RestoredItIsSeenByWhoeverHasTheAccountSetOpen) {
    const std::string before = Content(set_);
    BackUpAccountSet(set_, backup_);
    const ConnectionRef other = OpenConnection(Connect(set_));
    other->Execute("delete t alter table t add FMore int");
    const auto version = other->DataVersion();
    RestoreAccountSet(backup_, set_);
    EXPECT_NE(other->DataVersion(), version);
    EXPECT_EQ(Content(*other), before);
    EXPECT_EQ(other->Execute("select * from t")->ColumnCount(), 4U);
    // And goes on working there.
    other->Execute("insert into t values(5,N'五',1,null)");
    EXPECT_EQ(Content(set_), before + "5|五|1||\n");
    EXPECT_EQ(FindAccountSetDamage(set_), Lines{});
}

TEST_F(CopiesTest, RestoredItHasACatalogThatNoSessionTakesForItsOwn) {
    BackUpAccountSet(set_, backup_);
    const ConnectionRef one = OpenConnection(Connect(set_));
    one->Execute("create table mine(a int)");
    RestoreAccountSet(backup_, set_);
    // As many changes again, seen by nobody else.
    OpenConnection(Connect(set_))->Execute("create table yours(b int)");
    EXPECT_NE(Told([&] { one->Execute("select a from mine"); }), "");
    EXPECT_EQ(one->Execute("select b from yours")->RecordCount(), 0);
}

TEST_F(CopiesTest, RestoredIntoANewFileItIsAnAccountSetWithoutASeal) {
    BackUpAccountSet(set_, backup_);
    const std::string fresh = folder_.File("fresh.vas");
    RestoreAccountSet(backup_, fresh);
    EXPECT_EQ(Content(fresh), Content(set_));
    EXPECT_NE(Told([&] { BackUpAccountSet(set_, fresh); }), "") << "it is no backup any more";
}

TEST_F(CopiesTest, NothingIsRestoredOverWhatIsNoAccountSet) {
    BackUpAccountSet(set_, backup_);
    const std::string letter = folder_.File("letter.vas");
    Write(letter, "dear");
    EXPECT_EQ(Told([&] { RestoreAccountSet(backup_, letter); }).find("账套恢复失败，原内容没有改变："), 0U);
    EXPECT_EQ(Read(letter), "dear");
    EXPECT_NE(Told([&] { RestoreAccountSet(backup_, fakes::kDevice); }), "");
    EXPECT_NE(Told([&] { RestoreAccountSet(backup_, backup_); }), "");
    EXPECT_NE(Told([&] { RestoreAccountSet(letter, set_); }), "");
    EXPECT_NE(Told([&] { RestoreAccountSet(folder_.File("none"), set_); }), "");
    EXPECT_EQ(Content(set_), "1|现金|12.5|2026-01-31 00:00:00|\n2|银行|-3||\n");
}

TEST_F(CopiesTest, ABackupThatIsWorkedOnIsAnOrdinaryAccountSet) {
    BackUpAccountSet(set_, backup_);
    Run(backup_, "update t set FName = N'改' where FID = 1");
    EXPECT_EQ(FindAccountSetDamage(backup_), Lines{});
    EXPECT_NE(Told([&] { BackUpAccountSet(set_, backup_); }), "");
    // What only reads, or is undone, leaves it a backup.
    const std::string second = folder_.File("second.vas");
    BackUpAccountSet(set_, second);
    Run(second, "select * from t");
    Run(second, "begin transaction delete t rollback");
    EXPECT_EQ(Told([&] { BackUpAccountSet(set_, second); }), "");
}

// One bit after another in every part of the file: either the damage is found, or every value is as it was.
TEST_F(CopiesTest, NoFlippedBitOfABackupShowsOtherContentUnseen) {
    BackUpAccountSet(set_, backup_);
    const std::string whole = Read(backup_);
    const std::string content = Content(backup_);
    const std::string flipped = folder_.File("flipped.vas");
    // Most of the small file is empty: what is not is where damage does harm.
    std::vector<std::size_t> used;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        if (whole[at] != 0) used.push_back(at);
    }
    int found = 0;
    int harmless = 0;
    for (std::size_t i = 0; i < 300; ++i) {
        std::string bytes = whole;
        const std::size_t at = used[i * used.size() / 300];
        bytes[at] = static_cast<char>(bytes[at] ^ (1 << (i % 8)));
        Write(flipped, bytes);
        if (FindAccountSetDamage(flipped).empty()) {
            ++harmless;
            EXPECT_EQ(Content(flipped), content) << "byte " << at;
        } else {
            ++found;
        }
        for (const char* tail : {"", "-wal", "-shm"})
            fs::remove(system::PathFromUtf8(flipped + tail));
    }
    std::cout << found << " found, " << harmless << " without effect\n";
    EXPECT_GT(found, 200);
}

TEST_F(CopiesTest, AByteOfAnAmountThatHasChangedInABackupIsFoundAndNotRestored) {
    BackUpAccountSet(set_, backup_);
    std::string bytes = Read(backup_);
    const std::size_t at = bytes.find("12.52026");
    ASSERT_NE(at, std::string::npos);
    bytes[at] = '9';
    Write(backup_, bytes);
    EXPECT_EQ(FindAccountSetDamage(backup_), Lines{"备份校验：表 t的内容与备份时不同"});
    EXPECT_EQ(Told([&] { RestoreAccountSet(backup_, set_); }),
              "备份文件已损坏或被改动，没有恢复：" + backup_ + "\r\n备份校验：表 t的内容与备份时不同");
    EXPECT_EQ(Content(set_), "1|现金|12.5|2026-01-31 00:00:00|\n2|银行|-3||\n");
}

TEST_F(CopiesTest, ValuesThatTheirTypeCannotHoldAreFoundInAnyAccountSet) {
    CloseIdleAccountSets();
    std::string bytes = Read(set_);
    std::size_t at = bytes.find("12.52026");
    ASSERT_NE(at, std::string::npos);
    bytes[at] = 'x';
    at = bytes.find("2026-01-31");
    ASSERT_NE(at, std::string::npos);
    bytes[at] = 'x';
    Write(set_, bytes);
    const Lines found = FindAccountSetDamage(set_);
    ASSERT_EQ(found.size(), 2U) << testing::PrintToString(found);
    EXPECT_EQ(found[0], "数据：表 t 的列 FAmount 有 1 个值不符合 decimal(18,4)，首先是第 1 行");
    EXPECT_EQ(found[1], "数据：表 t 的列 FDate 有 1 个值不符合 datetime，首先是第 1 行");
}

TEST_F(CopiesTest, WhatIsNoAccountSetIsAFinding) {
    const std::string letter = folder_.File("letter");
    Write(letter, "dear");
    ASSERT_EQ(FindAccountSetDamage(letter).size(), 1U);
    EXPECT_EQ(FindAccountSetDamage(letter)[0].find("无法读取："), 0U);
    EXPECT_EQ(Read(letter), "dear");
    std::string half = Read(set_);
    half.resize(half.size() / 2);
    Write(set_, half);
    EXPECT_FALSE(FindAccountSetDamage(set_).empty());
}

TEST(AccountSetFile, IsThatOfTheEmbeddedProviderOnly) {
    EXPECT_EQ(AccountSetFile("Provider=VelaAccountSet;Data Source=\"a b.vas\""), "a b.vas");
    EXPECT_EQ(AccountSetFile("Provider=SQLOLEDB;Data Source=server"), std::nullopt);
}

TEST_F(CopiesTest, ASessionForReadingChangesNothingAndHasTemporaryTables) {
    const ConnectionRef reading = OpenConnection(Connect(set_) + ";Access=read");
    const std::string before = Content(*reading);
    for (const char* batch :
         {"delete t", "create table u(a int)", "drop table t", "begin transaction delete t commit",
          "exec('delete t')", "if 1 = 1 begin delete t end", "truncate table t",
          "begin try delete t end try begin catch select 1 as a end catch delete t"}) {
        EXPECT_NE(Told([&] { reading->Execute(batch); }), "") << batch;
    }
    reading->Execute("create table #u(a int) insert into #u values(1) delete #u");
    EXPECT_EQ(Content(*reading), before);
}

}  // namespace
}  // namespace vicenter::ado
