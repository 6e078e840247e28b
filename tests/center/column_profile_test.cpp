#include "center/grid/column_profile.h"

#include "tests/center/grid_fixture.h"

namespace vicenter::center {

namespace {

constexpr const char* kDefault =
    "1|0|1170,2|0|2820,3|0|1150,4|1|800,5|0|1455,6|0|1455,7|0|850,8|1|800,9|1|1400,10|1|1250,11|1|1800,"
    "12|1|800,13|1|1000,14|1|1600,15|1|1700,16|1|800,17|1|1250,18|1|1600,19|1|1700,20|1|1700,21|0|4005";

// A grid in which every column is 100 wide and shown.
void Flatten(EntryGrid& grid) {
    for (int c = 1; c <= kColumnCount; ++c) {
        grid.SetColumnWidth(c, 100);
        grid.SetColumnHidden(c, false);
    }
}

std::vector<int> Shown(const EntryGrid& grid) {
    std::vector<int> shown;
    for (int c = 1; c <= kColumnCount; ++c) {
        if (!grid.Layout(c).hidden) shown.push_back(c);
    }
    return shown;
}

}  // namespace

TEST(ProfileText, TheEmptyTextGivesTheBuiltInLayoutWhichIsTheDefaultText) {
    EntryGrid grid;
    Flatten(grid);
    ApplyProfile(grid, "");
    EXPECT_EQ(ProfileOf(grid), kDefault);
    EXPECT_THAT(Shown(grid), testing::ElementsAre(1, 2, 3, 5, 6, 7, 21));
    Flatten(grid);
    ApplyProfile(grid, kDefault);
    EXPECT_EQ(ProfileOf(grid), kDefault);
}

TEST(ProfileText, OneHidesAndZeroShows) {
    EntryGrid grid;
    Flatten(grid);
    ApplyProfile(grid, "1|1|500,2|0|600");
    EXPECT_TRUE(grid.Layout(1).hidden);
    EXPECT_EQ(grid.Layout(1).width, 500);
    EXPECT_FALSE(grid.Layout(2).hidden);
    EXPECT_EQ(grid.Layout(2).width, 600);
}

TEST(ProfileText, PositionDecidesWhateverNumberAPieceCarries) {
    EntryGrid grid;
    Flatten(grid);
    ApplyProfile(grid, "21|1|500,x|0|600,|1|700,1|0|800");
    EXPECT_TRUE(grid.Layout(1).hidden);
    EXPECT_EQ(grid.Layout(1).width, 500);
    EXPECT_EQ(grid.Layout(2).width, 600);
    EXPECT_TRUE(grid.Layout(3).hidden);
    EXPECT_EQ(grid.Layout(4).width, 800);
    EXPECT_EQ(grid.Layout(21).width, 100);
}

TEST(ProfileText, FewerPiecesLeaveTheOtherColumnsAsTheyAre) {
    EntryGrid grid;
    ApplyProfile(grid, "1|0|500");
    EXPECT_EQ(grid.Layout(1).width, 500);
    EXPECT_EQ(grid.Layout(2).width, 2820);
    EXPECT_TRUE(grid.Layout(4).hidden);
}

TEST(ProfileText, AMalformedPieceLeavesItsColumnAndTheNextOnesCount) {
    EntryGrid grid;
    Flatten(grid);
    ApplyProfile(grid, "1|1,2|x|600,,4|1|y,5|1|-3,6||600,nonsense,8|1|900");
    for (int c = 1; c <= 7; ++c) {
        EXPECT_FALSE(grid.Layout(c).hidden) << c;
        EXPECT_EQ(grid.Layout(c).width, 100) << c;
    }
    EXPECT_TRUE(grid.Layout(8).hidden);
    EXPECT_EQ(grid.Layout(8).width, 900);
}

TEST(ProfileText, MorePiecesThanColumnsDoNoHarm) {
    EntryGrid grid;
    ApplyProfile(grid, std::string(kDefault) + ",22|1|500,23|0|1");
    EXPECT_EQ(ProfileOf(grid), kDefault);
}

TEST(ProfileText, AFractionalWidthIsReadAsAWholeNumberAndWrittenWithItsFraction) {
    EntryGrid grid;
    ApplyProfile(grid, "1|0|500.75");
    EXPECT_EQ(grid.Layout(1).width, 501);
    grid.SetColumnWidth(1, 1234.5);
    grid.SetColumnWidth(2, 0.25);
    EXPECT_EQ(ProfileOf(grid).substr(0, 23), "1|0|1234.5,2|0|0.25,3|0");
}

class ColumnProfileTest : public GridTest {
  protected:
    // The user's stored font size, as the host's connection answers.
    fakes::ScriptedRef StoreFontSize(const std::string& size) {
        fakes::ScriptedRef connection = fakes::RegisterScripted("VelaConnection.AppConnection");
        connection->On("Execute", [size](fakes::Arguments&) {
            return Variant(size.empty() ? Rows({"FValue"}) : Rows({"FValue"}, {{size}}));
        });
        return connection;
    }

    ColumnProfile profile_{state_};
};

TEST_F(ColumnProfileTest, TheUsersStoredTextIsApplied) {
    set_.Answer("t_VchTpProfile", Rows({"FValue"}, {{"1|1|500"}}));
    profile_.Apply();
    EXPECT_EQ(Grid().Layout(1).width, 500);
    EXPECT_TRUE(Grid().Layout(1).hidden);
    EXPECT_GE(Questions("FUserID = 16394"), 1);
}

TEST_F(ColumnProfileTest, AnAccountSetThatFailsGivesTheBuiltInLayout) {
    Flatten(Grid());
    set_.Fail("t_VchTpProfile", "no such table");
    profile_.Apply();
    EXPECT_EQ(ProfileOf(Grid()), kDefault);
    EXPECT_THAT(Messages(), testing::IsEmpty());
}

TEST_F(ColumnProfileTest, SavingUpdatesTheUsersRow) {
    Grid().SetColumnHidden(11, true);
    profile_.Save();
    EXPECT_EQ(set_.LastStatement(),
              "update t_VchTpProfile set FValue='" + std::string(kDefault) + "' where FUserID = 16394");
}

TEST_F(ColumnProfileTest, HidingColumn11StoresItsPieceAndTheNextOpeningHidesIt) {
    Grid().SetColumnHidden(11, false);
    Grid().SetColumnWidth(11, 1810);
    const std::string shown = ProfileOf(Grid());
    EXPECT_NE(shown.find(",11|0|1810,"), std::string::npos);
    Grid().SetColumnHidden(11, true);
    profile_.Save();
    EXPECT_NE(set_.LastStatement().find(",11|1|1810,"), std::string::npos);
    EntryGrid next;
    Flatten(next);
    ApplyProfile(next, ProfileOf(Grid()));
    EXPECT_TRUE(next.Layout(11).hidden);
    EXPECT_EQ(next.Layout(11).width, 1810);
}

TEST_F(ColumnProfileTest, AFailedUpdateIsReportedByTheExecutionOfTheStatement) {
    set_.Fail("update t_VchTpProfile", "the account set is read-only");
    profile_.Save();
    EXPECT_THAT(Messages(), testing::ElementsAre("the account set is read-only"));
}

// --- the bill font

TEST_F(ColumnProfileTest, TheBillFontIsNinePointsWithoutASetting) {
    const fakes::ScriptedRef connection = StoreFontSize("");
    profile_.ApplyBillFont();
    ASSERT_EQ(view_.fonts.size(), 1U);
    EXPECT_EQ(view_.fonts[0].name, "宋体");
    EXPECT_EQ(view_.fonts[0].size, 9);
    EXPECT_EQ(Grid().Font().name, "宋体");
    EXPECT_EQ(Grid().Font().size, 9);
    EXPECT_EQ(Grid().HeaderHeight(), 450);
    EXPECT_EQ(Grid().RowHeight(), 285);
    EXPECT_THAT(connection->Calls(),
                testing::ElementsAre(testing::AllOf(testing::HasSubstr("FUserID=16394 "),
                                                    testing::HasSubstr("FKey ='BillFontSize'"))));
}

TEST_F(ColumnProfileTest, AFontOfTwelvePointsMakesTheRowsTallerThanOneOfNine) {
    StoreFontSize("12");
    view_.labelHeight = 240;
    profile_.ApplyBillFont();
    EXPECT_EQ(Grid().Font().size, 12);
    EXPECT_EQ(Grid().HeaderHeight(), 510);
    EXPECT_EQ(Grid().RowHeight(), 345);
}

TEST_F(ColumnProfileTest, AFontBelowNinePointsIsNotApplied) {
    StoreFontSize("8");
    const GridFont before = Grid().Font();
    profile_.ApplyBillFont();
    EXPECT_TRUE(view_.fonts.empty());
    EXPECT_EQ(Grid().Font().name, before.name);
    EXPECT_EQ(Grid().Font().size, before.size);
}

TEST_F(ColumnProfileTest, TheFontIsThatOfTheWholeKeyUserID) {
    const fakes::ScriptedRef connection = StoreFontSize("12");
    entry::PresetPropsString("CloudUserID=1;userid=8;");
    profile_.ApplyBillFont();
    EXPECT_THAT(connection->Calls(), testing::ElementsAre(testing::HasSubstr("FUserID=8 ")));
}

TEST_F(ColumnProfileTest, AHostWithoutAUserGetsTheDefaultFont) {
    entry::PresetPropsString("Server=a;");
    profile_.ApplyBillFont();
    ASSERT_EQ(view_.fonts.size(), 1U);
    EXPECT_EQ(view_.fonts[0].size, 9);
}

}  // namespace vicenter::center
