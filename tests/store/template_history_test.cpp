// Versions of templates: what is sent to keep them, to read them and to bring them back, and what becomes of
// answers that are none. What the batches do is tested on account sets, by tests/host/cli/history.test.

#include "store/template_history.h"

#include <sstream>

#include "tests/fakes/template_answer.h"
#include "tests/store/store_fixture.h"

namespace vicenter::store {
namespace {

constexpr const char* kFields =
    "FNo,FExp,FDC,FAccountID,FAccountNumber,FAcctountName,FFileCount,FSettleID,FSettleName,FSettleNumber,"
    "FItemsInfo,FCurrencyID,FCurrencyName,FRate,FAmountFor,FUnitID,FUnitName,FQty,FPrice,FAmount,FRemark";

class HistoryTest : public StoreTest {
  protected:
    HistoryTest() {
        set_.Answer("as FTemplateName,@kept as FHistoryID", fakes::TemplateAnswer(16394, "费用", 41));
        set_.Answer("select FUserID,FName as FTemplateName", fakes::TemplateAnswer(16394, "费用"));
    }
    static SeenTemplate Seen(const std::string& id, const std::string& name = "费用") {
        return SeenAs(id, "16394", name);
    }

    // FHistoryID and FCommand of versions, the latest first.
    void AnswerVersions(const std::vector<std::pair<int, int>>& versions) {
        std::vector<std::vector<Variant>> rows;
        for (const auto& [id, command] : versions)
            rows.push_back({id, 5, "费用", 16394, command, 7, "2026-11-22 09:00:00.123", 3});
        set_.Answer("from t_VchTpHistory h", Rows({"FHistoryID", "FID", "FName", "FOwnerID", "FCommand",
                                                   "FKeptBy", "FKeptAt", "FLines"},
                                                  rows));
    }
    static std::string Ids(const History& history) {
        std::string ids;
        for (const HistoryVersion& version : history.versions)
            ids += (ids.empty() ? "" : ",") + version.id;
        return ids;
    }
};

TEST_F(HistoryTest, OneBatchKeepsAVersion) {
    const KeptVersions kept({Seen("5")}, HistoryCommand::Import);
    const std::string fields = kFields;
    EXPECT_EQ(
        set_.Statements(),
        (Statements{
            "declare @kept int\r\nif object_id('t_VchTpHistory') is not null and exists(select 1 from "
            "t_VchTemplate with (updlock, holdlock) where FID = 5)\r\nbegin\r\n"
            "insert into t_VchTpHistory(FID,FName,FOwnerID,FCommand,FKeptBy,FKeptAt,FLines) select "
            "FID,FName,FUserID,2,16394,GetDate(),(select count(*) from t_VchTemplateEntry where FID = 5) "
            "from "
            "t_VchTemplate where FID = 5\r\nselect @kept = scope_identity()\r\n"
            "insert into t_VchTpHistoryEntry(FHistoryID,FEntryID," +
            fields + ") select @kept,FEntryID," + fields +
            " from t_VchTemplateEntry where FID = 5\r\n"
            "insert into t_VchTpHistoryControl(FHistoryID,FNo,FUseFrequency,FKey,FFileCount) select "
            "@kept,FNo,FUseFrequency,FKey,FFileCount from t_VchTpControl where FID = 5\r\n"
            "end\r\nselect a.FUserID,a.FName as FTemplateName,@kept as FHistoryID from t_VchTemplate a with "
            "(updlock, holdlock) where a.FID = 5\r\n"}));
}

TEST_F(HistoryTest, TheSameBatchAsksForTheLinesThatTheUserSaw) {
    SeenTemplate seen = Seen("5");
    seen.lines.emplace();
    EXPECT_TRUE(KeptVersions({seen}, HistoryCommand::Import).MayWrite());
    const std::string batch = set_.Statements().front();
    EXPECT_EQ(batch.substr(batch.find("end\r\nselect")),
              "end\r\nselect a.FUserID,a.FName as FTemplateName,@kept as FHistoryID,b.* from t_VchTemplate a "
              "with (updlock, holdlock) left join t_VchTemplateEntry b with (updlock, holdlock) on a.FID = "
              "b.FID where a.FID = 5 order by b.FNo,b.FEntryID\r\n");
    seen.lines->lines = 1;
    EXPECT_FALSE(KeptVersions({seen}, HistoryCommand::Import).MayWrite());
}

// A condition on columns a and h, by the collation or by their units.
std::string Alike(const std::string& fields, bool byUnits) {
    std::string alike;
    std::istringstream list(fields);
    for (std::string field; std::getline(list, field, ',');) {
        const auto of = [&](const std::string& table) {
            return byUnits ? "cast(" + table + "." + field + " as varbinary(510))" : table + "." + field;
        };
        alike += (alike.empty() ? "(" : " and (") + of("a") + " = " + of("h") + " or a." + field +
                 " is null and h." + field + " is null)";
    }
    return alike;
}

// Of rows of template 5 that version 41 does not hold like that.
std::string HoldsOtherwise(const std::string& table, const std::string& historyTable, const std::string& key,
                           const std::string& alike) {
    return "exists(select 1 from " + table + " a left join " + historyTable +
           " h on h.FHistoryID = 41 and h." + key + " = a." + key + " where a.FID = 5 and case when " +
           alike + " then 0 else 1 end = 1)";
}

const std::string kElseOldOnesGo = [] {
    const std::string old =
        "select FHistoryID from t_VchTpHistory where FID = 5 and FKeptAt < @before and FHistoryID not in "
        "(select top (@least) FHistoryID from t_VchTpHistory where FID = 5 order by FHistoryID desc)";
    return "else\r\nbegin\r\n"
           "declare @days int, @least int, @before datetime\r\nselect @days = 90, @least = 20\r\n"
           "select @days = FDays, @least = FVersions from t_VchTpHistoryRule\r\n"
           "set @before = dateadd(day, -@days, GetDate())\r\n"
           "if exists(select 1 from t_VchTpHistory where FID = 5 and FKeptAt < @before)\r\nbegin\r\n"
           "delete from t_VchTpHistoryEntry where FHistoryID in (" +
           old + ")\r\ndelete from t_VchTpHistoryControl where FHistoryID in (" + old +
           ")\r\ndelete from t_VchTpHistory where FHistoryID in (" + old + ")\r\nend\r\nend\r\n";
}();

const std::string kIfLinesAreAlike =
    "if not ((select count(*) from t_VchTemplateEntry where FID = 5) <> (select count(*) from "
    "t_VchTpHistoryEntry where FHistoryID = 41)\r\nor " +
    HoldsOtherwise("t_VchTemplateEntry", "t_VchTpHistoryEntry", "FEntryID", Alike(kFields, false)) +
    ")\r\nselect 1 as FAlike\r\n";

const std::string kIfNothingDiffersItGoes =
    "if exists(select 1 from t_VchTemplate a inner join t_VchTpHistory h on h.FID = a.FID where "
    "h.FHistoryID = 41 and (cast(a.FName as varbinary(510)) = cast(h.FName as varbinary(510)) or a.FName is "
    "null and h.FName is null) and h.FOwnerID = a.FUserID)\r\n"
    "and not ((select count(*) from t_VchTpControl where FID = 5) <> (select count(*) from "
    "t_VchTpHistoryControl where FHistoryID = 41)\r\nor " +
    HoldsOtherwise("t_VchTpControl", "t_VchTpHistoryControl", "FNo",
                   Alike("FUseFrequency,FKey,FFileCount", false)) +
    "\r\nor " + HoldsOtherwise("t_VchTpControl", "t_VchTpHistoryControl", "FNo", Alike("FKey", true)) +
    "\r\nor " +
    HoldsOtherwise("t_VchTemplateEntry", "t_VchTpHistoryEntry", "FEntryID",
                   Alike("FExp,FAccountNumber,FAcctountName,FSettleName,FSettleNumber,FItemsInfo,"
                         "FCurrencyName,FUnitName,FRemark",
                         true)) +
    ")\r\nbegin\r\ndelete from t_VchTpHistoryEntry where FHistoryID = 41\r\n"
    "delete from t_VchTpHistoryControl where FHistoryID = 41\r\n"
    "delete from t_VchTpHistory where FHistoryID = 41\r\nend\r\n";

TEST_F(HistoryTest, AVersionIsGivenUpWhenNothingHasReplacedIt) {
    set_.Answer("select 1 as FAlike", Rows({"FAlike"}, {{1}}));
    {
        const KeptVersions kept({Seen("5")}, HistoryCommand::Save);
        set_.Forget();
    }
    EXPECT_EQ(set_.Statements(),
              (Statements{kIfLinesAreAlike + kElseOldOnesGo, kIfNothingDiffersItGoes + kElseOldOnesGo}));
}

TEST_F(HistoryTest, OtherLinesAreAllThatIsAskedForBeforeAVersionIsHistory) {
    KeptVersions kept({Seen("5")}, HistoryCommand::Save);
    set_.Forget();
    EXPECT_TRUE(kept.Commit());
    EXPECT_EQ(set_.Statements(), (Statements{kIfLinesAreAlike + kElseOldOnesGo}));
    EXPECT_LT(set_.LastStatement().size(), 4000U);  // longer ones the account set reads anew each time
    EXPECT_TRUE(kept.Commit());
    EXPECT_EQ(set_.Statements().size(), 1U);
}

TEST_F(HistoryTest, WhatIsAboutToBeBroughtBackIsNotLetGo) {
    set_.Answer("select 1 as FAlike", Rows({"FAlike"}, {{1}}));
    KeptVersions kept({Seen("5")}, HistoryCommand::Restore);
    set_.Forget();
    EXPECT_TRUE(kept.Commit());
    EXPECT_EQ(set_.Statements(), (Statements{kIfLinesAreAlike, kIfNothingDiffersItGoes}));
}

TEST_F(HistoryTest, WhereNothingIsKeptNothingIsGivenUpAndNobodyIsTold) {
    set_.Answer("as FTemplateName,@kept as FHistoryID", fakes::TemplateAnswer(16394, "费用"));
    {
        const KeptVersions kept({Seen("5")}, HistoryCommand::Save);
        set_.Forget();
    }
    EXPECT_TRUE(set_.Statements().empty());
    EXPECT_TRUE(surroundings_.messageBoxes->shown.empty());
}

TEST_F(HistoryTest, AFailureIsSilentAndStopsNothing) {
    set_.Fail("t_VchTpHistory", "disk full");
    { const KeptVersions kept({Seen("5")}, HistoryCommand::Delete); }
    EXPECT_TRUE(surroundings_.messageBoxes->shown.empty());
}

// --- version and command as one unit

class UnitOfHistory : public HistoryTest {
  protected:
    // Of the calls of the connection service those that make the order, statements by their first word.
    std::string Order() const {
        std::string order;
        std::size_t statement = 0;
        for (const std::string& call : set_.Calls()) {
            if (call == "execute") {
                const std::string& text = set_.Statements()[statement++];
                order += text.substr(0, text.find(' ')) + ";";
            } else if (call.ends_with(" unit")) {
                order += call + ";";
            }
        }
        return order;
    }
    std::vector<std::string> Shown() const {
        std::vector<std::string> texts;
        for (const auto& box : surroundings_.messageBoxes->shown)
            texts.push_back(box.text);
        return texts;
    }
    static bool Update() {
        return KeptVersions({Seen("5")}, HistoryCommand::Save)
            .RunAndCommit("update t_VchTemplateEntry set FNo = 1");
    }
};

TEST_F(UnitOfHistory, TheVersionAndTheCommandAreCommittedTogether) {
    set_.KnowUnits();
    EXPECT_TRUE(Update());
    EXPECT_EQ(Order(), "begin unit;declare;update;if;commit unit;end unit;");
    EXPECT_TRUE(Shown().empty());
}

TEST_F(UnitOfHistory, ARefusedCommandTakesItsVersionAlongAndIsShown) {
    set_.KnowUnits();
    set_.Fail("update ", "disk full");
    EXPECT_FALSE(Update());
    EXPECT_EQ(Order(), "begin unit;declare;update;end unit;");
    EXPECT_EQ(Shown(), Statements{"disk full"});
}

TEST_F(UnitOfHistory, AVersionThatCannotBeKeptEndsTheUnitBeforeTheCommandRuns) {
    set_.KnowUnits();
    set_.Fail("t_VchTpHistory", "damaged");
    EXPECT_TRUE(Update());
    EXPECT_EQ(Order(), "begin unit;declare;end unit;begin unit;select;update;commit unit;end unit;");
    EXPECT_TRUE(Shown().empty());
}

TEST_F(UnitOfHistory, AUnitThatCannotBeBegunIsNotAskedForAVersion) {
    set_.KnowUnits("nobody there");
    EXPECT_TRUE(Update());
    EXPECT_EQ(Order(), "begin unit;select;update;");
    EXPECT_TRUE(Shown().empty());
}

TEST_F(UnitOfHistory, ARefusedCommitIsShownAsARefusedBatch) {
    set_.KnowUnits({}, "nobody knows");
    EXPECT_FALSE(Update());
    EXPECT_EQ(Order(), "begin unit;declare;update;if;commit unit;end unit;");
    EXPECT_EQ(Shown(), Statements{"nobody knows"});
    EXPECT_EQ(clsVIData::LastRefusal(), "nobody knows");
}

// Where others hold a lock, and where the user has been promised a version, nothing is written without one.
TEST_F(UnitOfHistory, ALockEndsTheCommand) {
    set_.KnowUnits();
    set_.Fail("t_VchTpHistory", "Lock request time out period exceeded.");
    KeptVersions kept({Seen("5")}, HistoryCommand::Save);
    EXPECT_FALSE(kept.RunAndCommit("update t_VchTemplateEntry set FNo = 1"));
    EXPECT_EQ(Order(), "begin unit;declare;end unit;");
    EXPECT_EQ(kept.WhyNot("没有保存"),
              "现有分录未能保留为历史版本，没有保存，账套保持原样！\r\n\r\n账套正被其他用户锁定，请稍后再试！"
              "\r\n\r\n（1222：Lock request time out period exceeded.）");
    set_.Forget();
    set_.KnowUnits("Lock request time out period exceeded.");
    EXPECT_FALSE(Update());
    EXPECT_EQ(Order(), "begin unit;");
}

TEST_F(UnitOfHistory, OneOfSeveralThatCannotBeKeptTakesTheOthersAlong) {
    set_.KnowUnits();
    set_.Fail("where FID = 6", "damaged");
    for (const HistoryCommand command : {HistoryCommand::Replace, HistoryCommand::Restore}) {
        set_.Forget();
        KeptVersions kept({Seen("5"), Seen("6"), Seen("7")}, command);
        EXPECT_FALSE(kept.RunAndCommit("update t_VchTemplateEntry set FNo = 1"));
        EXPECT_EQ(Order(), "begin unit;declare;declare;end unit;");
        EXPECT_EQ(kept.WhyNot("没有替换"),
                  "现有分录未能保留为历史版本，没有替换，账套保持原样！\r\n\r\ndamaged");
    }
}

TEST_F(UnitOfHistory, WhatTheUserDidNotSeeIsNotWrittenTo) {
    set_.KnowUnits();
    const auto why = [&](const SeenTemplate& seen, const std::string& order = "declare;") {
        set_.Forget();
        KeptVersions kept({seen}, HistoryCommand::Import);
        EXPECT_FALSE(kept.RunAndCommit("update t_VchTemplateEntry set FNo = 1"));
        EXPECT_EQ(Order(), "begin unit;" + order + "end unit;");
        return kept.WhyNot("没有引入");
    };
    EXPECT_EQ(why(Seen("5", "别的")), "模板 别的 已在别处被删除或改名，没有引入，账套保持原样！");
    EXPECT_EQ(why(SeenAs("5", "7", "费用")), "模板 费用 已在别处被删除，没有引入，账套保持原样！");
    // A host that gives the first result alone is asked once more.
    set_.Answer("as FTemplateName,@kept as FHistoryID", Rows({}));
    EXPECT_EQ(why(Seen("5", "别的"), "declare;select;"),
              "模板 别的 已在别处被删除或改名，没有引入，账套保持原样！");
    set_.Fail("select FUserID,FName as FTemplateName", "gone");
    EXPECT_EQ(why(Seen("5"), "declare;select;"), "模板 费用 无法读取，没有引入，账套保持原样！");
}

TEST_F(UnitOfHistory, WithoutUnitsWhatWasKeptInVainIsGivenUpAtOnce) {
    KeptVersions kept({Seen("5", "别的")}, HistoryCommand::Import);
    EXPECT_EQ(Order(), "declare;if;");
}

TEST_F(UnitOfHistory, WhereUnitsAreUnknownEachStandsForItself) {
    EXPECT_TRUE(Update());
    EXPECT_EQ(Order(), "declare;update;if;");
    set_.Forget();
    set_.Fail("update ", "disk full");
    EXPECT_FALSE(Update());
    EXPECT_EQ(Order(), "declare;update;if;");  // the version is given up
}

TEST_F(HistoryTest, VersionsAreReadLatestFirst) {
    AnswerVersions({{44, 1}, {43, 4}});
    const History history = ReadHistory("5");
    EXPECT_EQ(set_.LastStatement(),
              "if object_id('t_VchTpHistory') is not null\r\nselect "
              "h.FHistoryID,h.FID,h.FName,h.FOwnerID,h.FCommand,h.FKeptBy,h.FKeptAt,h.FLines from "
              "t_VchTpHistory h where h.FID = 5 order by h.FHistoryID desc");
    ASSERT_EQ(history.state, History::State::Kept);
    ASSERT_EQ(Ids(history), "44,43");
    const HistoryVersion& version = history.versions.front();
    EXPECT_EQ(version.templateId, "5");
    EXPECT_EQ(version.name, "费用");
    EXPECT_EQ(version.ownerId, 16394);
    EXPECT_EQ(version.command, HistoryCommand::Save);
    EXPECT_EQ(version.keptBy, 7);
    EXPECT_EQ(version.keptAt, "2026-11-22 09:00:00");
    EXPECT_EQ(version.lines, 3);
}

TEST_F(HistoryTest, WhatWasKeptOfAnEarlierTemplateOfTheIdIsNotTheTemplates) {
    AnswerVersions({{44, 1}, {43, 2}, {42, 5}, {41, 1}});
    EXPECT_EQ(Ids(ReadHistory("5")), "44,43");
    AnswerVersions({{42, 5}, {41, 1}});
    EXPECT_EQ(Ids(ReadHistory("5")), "");
}

TEST_F(HistoryTest, DeletedTemplatesAreTheUsersOwn) {
    AnswerVersions({{42, 5}});
    EXPECT_EQ(Ids(ReadDeleted("16394")), "42");
    EXPECT_NE(set_.LastStatement().find("where h.FCommand = 5 and h.FOwnerID = 16394 order"),
              std::string::npos);
}

TEST_F(HistoryTest, WhatOneReplacementWroteToIsKnownByItsTime) {
    const KeptVersions kept({Seen("5"), Seen("6")}, HistoryCommand::Replace);
    ASSERT_EQ(set_.Statements().size(), 2U);
    EXPECT_NE(set_.Statements()[0].find(",7,16394,GetDate(),"), std::string::npos);
    EXPECT_NE(
        set_.LastStatement().find(",7,16394,(select FKeptAt from t_VchTpHistory where FHistoryID = 41),"),
        std::string::npos);
    AnswerVersions({{44, 7}, {43, 7}});
    EXPECT_EQ(Ids(ReadLastReplacement("16394")), "44,43");
    EXPECT_NE(set_.LastStatement().find(
                  "where h.FCommand = 7 and h.FKeptBy = 16394 and h.FKeptAt = (select top 1 FKeptAt from "
                  "t_VchTpHistory where FCommand = 7 and FKeptBy = 16394 order by FHistoryID desc) order by"),
              std::string::npos);
}

TEST_F(HistoryTest, NoTablesAndNoAnswerAreToldApart) {
    set_.Answer("from t_VchTpHistory h", Rows({}));
    EXPECT_EQ(ReadHistory("5").state, History::State::Off);
    EXPECT_FALSE(ReadHistoryRule().has_value());
    set_.Fail("t_VchTpHistory", "down");
    EXPECT_EQ(ReadHistory("5").state, History::State::Unreadable);
    EXPECT_FALSE(ReadHistoryRule().has_value());
}

TEST_F(HistoryTest, TheRuleIsNinetyDaysAndTwentyVersionsUntilItIsSet) {
    set_.Answer("select FDays,FVersions", Rows({"FDays", "FVersions"}));
    EXPECT_EQ(ReadHistoryRule()->days, 90);
    EXPECT_EQ(ReadHistoryRule()->versions, 20);
    set_.Answer("select FDays,FVersions", Rows({"FDays", "FVersions"}, {{5, 3}}));
    EXPECT_EQ(ReadHistoryRule()->days, 5);
    EXPECT_EQ(ReadHistoryRule()->versions, 3);
    EXPECT_TRUE(SaveHistoryRule({30, 10}));
    EXPECT_EQ(
        set_.LastStatement(),
        "delete from t_VchTpHistoryRule\r\ninsert into t_VchTpHistoryRule(FDays,FVersions) values(30,10)");
}

TEST_F(HistoryTest, LinesOfAVersionComeInTheOrderOfATemplates) {
    ReadVersionLines("41");
    EXPECT_EQ(set_.LastStatement(),
              "select * from t_VchTpHistoryEntry where FHistoryID = 41 order by FNo,FEntryID ");
}

TEST_F(HistoryTest, AVersionTakesThePlaceOfLinesAndKeepsHowOftenNumbersWereUsed) {
    const std::string fields = kFields;
    EXPECT_EQ(
        RestoreOverBatch("41", "5"),
        "if isnull((select FLines from t_VchTpHistory where FHistoryID = 41),-1) <> (select count(*) from "
        "t_VchTpHistoryEntry where FHistoryID = "
        "41)\r\nraiserror('历史版本已不存在，没有恢复！',16,1)\r\nelse\r\nbegin\r\n"
        "delete from t_VchTemplateEntry where FID = 5\r\n"
        "insert into t_VchTemplateEntry(FID,FEntryID," +
            fields + ") select 5,FEntryID," + fields +
            " from t_VchTpHistoryEntry where FHistoryID = 41\r\n"
            "delete from t_VchTpControl where FID = 5 and FNo not in (select FNo from "
            "t_VchTpHistoryControl where FHistoryID = 41)\r\n"
            "update c set FKey = h.FKey, FFileCount = h.FFileCount from t_VchTpControl c inner join "
            "t_VchTpHistoryControl h on h.FNo = c.FNo where c.FID = 5 and h.FHistoryID = 41\r\n"
            "insert into t_VchTpControl(FID,FNo,FUseFrequency,FKey,FFileCount,FIsCanUsed) select "
            "5,FNo,FUseFrequency,FKey,FFileCount,0 from t_VchTpHistoryControl where FHistoryID = 41 and "
            "FNo not in (select FNo from t_VchTpControl where FID = 5)\r\nexec pro_VchTpCanUsed "
            "5\r\nend\r\n");
}

TEST_F(HistoryTest, AVersionBecomesATemplateOfItsOwn) {
    const std::string fields = kFields;
    EXPECT_EQ(
        RestoreAsNewBatch("41", "O'Neil", "7"),
        "if isnull((select FLines from t_VchTpHistory where FHistoryID = 41),-1) <> (select count(*) from "
        "t_VchTpHistoryEntry where FHistoryID = "
        "41)\r\nraiserror('历史版本已不存在，没有恢复！',16,1)\r\nelse\r\nbegin\r\n"
        "declare @MaxFID int\r\nselect @MaxFID = Max(FID)+1 from (select FID from t_VchTemplate union all "
        "select FID from t_VchTpHistory) a\r\n"
        " insert into t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) "
        "values(@MaxFID,'O''Neil',7,'',GetDate()) \r\n"
        "insert into t_VchTemplateEntry(FID,FEntryID," +
            fields + ") select @MaxFID,FEntryID," + fields +
            " from t_VchTpHistoryEntry where FHistoryID = 41\r\n"
            "insert into t_VchTpControl(FID,FNo,FUseFrequency,FKey,FFileCount,FIsCanUsed) select "
            "@MaxFID,FNo,FUseFrequency,FKey,FFileCount,0 from t_VchTpHistoryControl where FHistoryID = "
            "41\r\n"
            // Of a deleted template everything up to the deletion before it, in one statement.
            "update h set FID = @MaxFID, FCommand = case when h.FHistoryID = 41 then 6 else h.FCommand end, "
            "FKeptBy = case when h.FHistoryID = 41 then 7 else h.FKeptBy end, FKeptAt = case when "
            "h.FHistoryID = 41 then GetDate() else h.FKeptAt end from t_VchTpHistory h inner join "
            "t_VchTpHistory d on d.FID = h.FID where d.FHistoryID = 41 and d.FCommand = 5 and h.FHistoryID "
            "<= 41 and not exists(select 1 from t_VchTpHistory e where e.FID = h.FID and e.FCommand = 5 and "
            "e.FHistoryID >= h.FHistoryID and e.FHistoryID < 41)\r\n"
            "exec pro_VchTpCanUsed @MaxFID\r\nend\r\n");
}

TEST_F(HistoryTest, EveryCommandHasAName) {
    std::string names;
    for (int command = 0; command <= 8; ++command)
        names += CommandText(static_cast<HistoryCommand>(command)) + ",";
    EXPECT_EQ(names, ",保存,引入,生成,改名,删除,恢复,替换,,");
}

}  // namespace
}  // namespace vicenter::store
