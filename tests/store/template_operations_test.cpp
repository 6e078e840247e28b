#include "tests/store/store_fixture.h"

namespace vicenter::store {
namespace {

constexpr const char* kProfile =
    "1|0|1170,2|0|2820,3|0|1150,4|1|800,5|0|1455,6|0|1455,7|0|850,8|1|800,9|1|1400,10|1|1250,11|1|1800,12|1|"
    "800,"
    "13|1|1000,14|1|1600,15|1|1700,16|1|800,17|1|1250,18|1|1600,19|1|1700,20|1|1700,21|0|4005";

TEST_F(StoreTest, ListingSeedsTheStandardTemplateFirst) {
    set_.Answer("union all", Rows({"FID", "FName"}, {{0, "标准模板"}, {3, "自定义模板(1)"}}));
    const RecordsetRef rows = clsVIData().GetVchTemplateByUserID("16394");
    EXPECT_EQ(rows->RecordCount(), 2);
    EXPECT_EQ(
        set_.Statements(),
        (Statements{
            "if Not exists(select 1 from t_VchTemplate where FID = 0) \r\n begin \r\n insert into "
            "t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) values(0,'标准模板',0,'0',GETDATE()) \r\n end",
            "select a.* from (select FID,FName from t_VchTemplate where fid <> 0 and FUserID = 16394\r\n "
            "union all \r\n select FID,FName from t_VchTemplate where FID = 0 ) a order by a.FID "}));
}

TEST_F(StoreTest, AListingThatFailsIsNoRecordsetAndSilent) {
    set_.Fail("t_VchTemplate", "down");
    EXPECT_EQ(clsVIData().GetVchTemplateByUserID("1"), nullptr);
    EXPECT_TRUE(surroundings_.messageBoxes->shown.empty());
}

TEST_F(StoreTest, TheDefaultProfileHas21Pieces) {
    EXPECT_EQ(DefaultColumnProfile(), kProfile);
}

TEST_F(StoreTest, TheProfileIsSeededAndReadBack) {
    set_.Answer("select FValue", Rows({"FValue"}, {{"1|0|900"}}));
    EXPECT_EQ(clsVIData().GetVchTpProfileByUserID("16394"), "1|0|900");
    EXPECT_EQ(
        set_.Statements(),
        (Statements{
            std::string("if Not exists(select 1 from t_VchTpProfile where FUserID = 16394) \r\n begin \r\n "
                        "insert into t_VchTpProfile(FUserID,FValue) values(16394,'") +
                kProfile + "') \r\n end",
            "select FValue from t_VchTpProfile where FUserID = 16394"}));
}

TEST_F(StoreTest, AProfileWithoutARowOrOnErrorIsEmpty) {
    set_.Answer("select FValue", Rows({"FValue"}));
    EXPECT_EQ(clsVIData().GetVchTpProfileByUserID("1"), "");
    set_.Fail("t_VchTpProfile", "down");
    EXPECT_EQ(clsVIData().GetVchTpProfileByUserID("1"), "");
}

TEST_F(StoreTest, EntryLinesAreCounted) {
    set_.Answer("count(*)", Rows({"FCount"}, {{150}}));
    EXPECT_EQ(clsVIData().GetVchEntryCount("12"), 150);
    EXPECT_EQ(set_.LastStatement(), "select count(*) as FCount from t_VchTemplateEntry where FID = 12");
    set_.Fail("count(*)", "down");
    EXPECT_EQ(clsVIData().GetVchEntryCount("12"), 0);
}

TEST_F(StoreTest, ANameIsLookedForAmongAllUsersTemplates) {
    EXPECT_FALSE(clsVIData().CheckVchTemplateIsExist("无此模板"));
    EXPECT_EQ(clsVIData().FindVchTemplate("无此模板", "7"), clsVIData::kNoTemplate);
    set_.Answer("where FName", Rows({"FID"}, {{0}}));
    EXPECT_TRUE(clsVIData().CheckVchTemplateIsExist("标准模板"));
    EXPECT_EQ(clsVIData().FindVchTemplate(" O'Neil ", "7"), 0);
    EXPECT_EQ(set_.LastStatement(), "select FID from t_VchTemplate where FName = 'O''Neil'");
    set_.Fail("where FName", "down");
    EXPECT_FALSE(clsVIData().CheckVchTemplateIsExist("标准模板"));
    EXPECT_EQ(clsVIData().FindVchTemplate("标准模板", "7"), clsVIData::kUnreadable);
}

TEST_F(StoreTest, OfSeveralTemplatesOfANameTheUsersOwnComesFirst) {
    set_.Answer("where FName = '同名'", Rows({"FID"}, {{3}, {8}}));
    set_.Answer("FName = '同名' and (FUserID = 7 or FID = 0) order by FID desc", Rows({"FID"}, {{8}}));
    EXPECT_EQ(clsVIData().FindVchTemplate("同名", "7"), 8);
    EXPECT_EQ(clsVIData().FindVchTemplate("同名", "9"), 3);
    EXPECT_TRUE(clsVIData().CheckVchTemplateIsExist("同名"));
}

TEST_F(StoreTest, DeletingIsOneBatchOfThree) {
    EXPECT_TRUE(clsVIData().DeleteVchTemplateInfo("12"));
    EXPECT_EQ(
        set_.Statements(),
        Statements{
            " delete t_VchTemplate where FID = 12\r\n delete t_VchTemplateEntry where FID = 12\r\n delete "
            "t_VchTpControl where FID = 12"});
    set_.Fail("delete", "down");
    EXPECT_FALSE(clsVIData().DeleteVchTemplateInfo("12"));
    EXPECT_TRUE(surroundings_.messageBoxes->shown.empty());
}

class InsertTest : public StoreTest {
  protected:
    // Inserts on a set that holds these numbers and returns the name in the batch.
    std::string NameAfter(const std::vector<Variant>& numbers, std::int32_t& lMaxNum) {
        std::vector<std::vector<Variant>> rows;
        rows.reserve(numbers.size());
        for (const Variant& number : numbers)
            rows.push_back({number});
        set_.Answer("FNum", Rows({"FNum"}, rows));
        set_.Answer("Max(FID) as FID", Rows({"FID"}, {{42}}));
        set_.Forget();
        EXPECT_EQ(clsVIData().InsertVchTemplateInfo(lMaxNum), 42);
        const std::string& batch = set_.Statements().at(1);
        const std::size_t start = batch.find('\'') + 1;
        return batch.substr(start, batch.find('\'', start) - start);
    }
};

TEST_F(InsertTest, RunsItsThreeStatements) {
    std::int32_t number = 0;
    NameAfter({"2"}, number);
    EXPECT_EQ(
        set_.Statements(),
        (Statements{
            "select REPLACE(REPLACE(fname,')',''),'自定义模板(','') as FNum from t_VchTemplate where FName "
            "like '%自定义模板(%'",
            " declare @MaxFID int \r\n select @MaxFID = MAX(FID)+1 from t_VchTemplate \r\n insert into "
            "t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) values(@MaxFID,'自定义模板(3)',16394,'0',"
            "GETDATE())\r\n",
            "select Max(FID) as FID from t_VchTemplate "}));
    EXPECT_EQ(number, 2);
}

TEST_F(InsertTest, TheFirstCustomTemplateIsNumberOne) {
    std::int32_t number = 0;
    EXPECT_EQ(NameAfter({}, number), "自定义模板(1)");
    EXPECT_EQ(number, 0);
}

TEST_F(InsertTest, ANameWithATailCountsByItsLeadingDigits) {
    std::int32_t number = 0;
    EXPECT_EQ(NameAfter({"3a", "x", "1"}, number), "自定义模板(4)");
    EXPECT_EQ(number, 3);
}

TEST_F(InsertTest, TheCallersNumberIsALowerBound) {
    std::int32_t number = 10;
    EXPECT_EQ(NameAfter({"3"}, number), "自定义模板(11)");
    EXPECT_EQ(number, 10);
}

TEST_F(InsertTest, ANumberBeyondALongDoesNotStopNewTemplates) {
    std::int32_t number = 0;
    EXPECT_EQ(NameAfter({"99999999999", "2147483647", "5"}, number), "自定义模板(6)");
}

TEST_F(InsertTest, AtTheEndOfTheNumbersTheLeastFreeOneIsTaken) {
    std::int32_t number = 0;
    EXPECT_EQ(NameAfter({"1", "2147483646"}, number), "自定义模板(2147483647)");
    EXPECT_EQ(number, 2147483646);
    number = 0;
    EXPECT_EQ(NameAfter({"1", "2147483646", "2147483647", "3"}, number), "自定义模板(2)");
    EXPECT_EQ(number, 1);
    number = 0;
    EXPECT_EQ(NameAfter({"2147483647"}, number), "自定义模板(1)");
    EXPECT_EQ(number, 0);
}

TEST_F(InsertTest, ACallersNumberAtTheEndStillMakesANameOfItsOwn) {
    std::int32_t number = 2147483647;
    EXPECT_EQ(NameAfter({"5"}, number), "自定义模板(2147483648)");
    EXPECT_EQ(number, 2147483647);
    EXPECT_EQ(NameAfter({"1", "2147483648"}, number), "自定义模板(2)");
    EXPECT_EQ(number, 1);
}

TEST_F(InsertTest, NumbersAreRoundedToWholeOnesAndNeverNegative) {
    std::int32_t number = 0;
    EXPECT_EQ(NameAfter({"2.6", "-7"}, number), "自定义模板(4)");
    EXPECT_EQ(number, 3);
    EXPECT_EQ(NameAfter({Variant::Null(), ""}, number), "自定义模板(4)");
}

TEST_F(InsertTest, AnErrorGivesZero) {
    set_.Fail("insert into", "down");
    std::int32_t number = 0;
    EXPECT_EQ(clsVIData().InsertVchTemplateInfo(number), 0);
}

TEST_F(StoreTest, AConnectionThatIsLostBetweenTwoStatementsGivesTheEmptyDefaultSilently) {
    set_.Fail("union all", "down");
    EXPECT_EQ(clsVIData().GetVchTemplateByUserID("1"), nullptr);
    set_.Fail("select FValue from t_VchTpProfile", "down");
    EXPECT_EQ(clsVIData().GetVchTpProfileByUserID("1"), "");
    set_.Answer("as FNum", Rows({"FNum"}, {{"4"}}));
    set_.Fail("select Max(FID) as FID", "down");
    std::int32_t number = 0;
    EXPECT_EQ(clsVIData().InsertVchTemplateInfo(number), 0);
    EXPECT_TRUE(surroundings_.messageBoxes->shown.empty());
}

TEST_F(StoreTest, LinesAreReadInTheirOrder) {
    EXPECT_NE(clsVIData().GetVchTemplateEntryInfo("12"), nullptr);
    EXPECT_EQ(set_.LastStatement(), "select * from t_VchTemplateEntry where FID = 12 order by FNo,FEntryID ");
    set_.Fail("t_VchTemplateEntry", "down");
    EXPECT_EQ(clsVIData().GetVchTemplateEntryInfo("12"), nullptr);
}

}  // namespace
}  // namespace vicenter::store
