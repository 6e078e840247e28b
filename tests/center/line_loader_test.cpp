#include "center/template/line_loader.h"

#include <map>
#include <set>

#include "tests/center/grid_fixture.h"

namespace vicenter::center {

namespace {

using automation::Decimal;

using Record = std::map<std::string, Variant>;

// An entry line: nothing but a number, a side and a detail account, and what `more` says.
Record Line(const Record& more = {}) {
    Record record{{"FNo", Variant(1)},
                  {"FExp", "提现"},
                  {"FDC", Variant(1)},
                  {"FAccountID", Variant(1)},
                  {"FAccountNumber", "1001"},
                  {"FAcctountName", "库存现金"},
                  {"FFileCount", Variant(0)},
                  {"FSettleID", Variant(0)},
                  {"FSettleName", ""},
                  {"FSettleNumber", ""},
                  {"FItemsInfo", ""},
                  {"FCurrencyID", Variant(0)},
                  {"FCurrencyName", ""},
                  {"FRate", *Decimal::Parse("0.0000000000")},
                  {"FAmountFor", *Decimal::Parse("0.0000")},
                  {"FUnitID", Variant(0)},
                  {"FUnitName", ""},
                  {"FQty", *Decimal::Parse("0.0000")},
                  {"FPrice", *Decimal::Parse("0.0000000000")},
                  {"FAmount", *Decimal::Parse("0.0000")},
                  {"FRemark", ""}};
    for (const auto& [field, value] : more)
        record[field] = value;
    return record;
}

ado::RecordsetRef Lines(const std::vector<Record>& records) {
    // In the table's own order, which is not the grid's.
    std::vector<std::string> names{"FID", "FEntryID"};
    for (const auto& [field, value] : Line())
        names.push_back(field);
    std::vector<std::vector<Variant>> rows;
    for (const Record& record : records) {
        std::vector<Variant> row{Variant(5), Variant(static_cast<std::int32_t>(rows.size() + 1))};
        for (std::size_t i = 2; i < names.size(); ++i)
            row.push_back(record.at(names[i]));
        rows.push_back(row);
    }
    return Rows(names, rows);
}

class LineLoaderTest : public GridTest {
  protected:
    std::optional<int> Load(const std::vector<Record>& records) {
        set_.Answer("t_VchTemplateEntry", Lines(records));
        return LoadLines(Grid(), "5");
    }
    // The text that column `gridColumn` shows of one line.
    std::string Shown(int gridColumn, const Record& more) {
        EXPECT_EQ(Load({Line(more)}), 1);
        return Text(1, gridColumn);
    }
};

}  // namespace

TEST_F(LineLoaderTest, EveryFieldStandsInItsColumn) {
    Record record;
    for (const ColumnSpec& spec : Columns())
        record[std::string(spec.field)] = Variant(std::int32_t{100 + spec.column});
    record["FDC"] = Variant(0);
    record["FCurrencyName"] = "美元";
    Load({record});
    for (const ColumnSpec& spec : Columns()) {
        const std::string expected = spec.column == column::kDirection ? "贷"
                                     : spec.column == column::kCurrencyName
                                         ? "美元"
                                         : std::to_string(100 + spec.column);
        EXPECT_EQ(Text(1, spec.column), expected) << spec.field;
    }
}

TEST_F(LineLoaderTest, TheDirectionIsDebitForOneAndCreditForZero) {
    EXPECT_EQ(Shown(3, {{"FDC", Variant(1)}}), "借");
    EXPECT_EQ(Shown(3, {{"FDC", Variant(0)}}), "贷");
    EXPECT_EQ(Shown(3, {{"FDC", Variant(-1)}}), "");
    EXPECT_EQ(Shown(3, {{"FDC", Variant::Null()}}), "");
}

TEST_F(LineLoaderTest, TheTemplateNumberIsShownEvenWhenItIsZero) {
    EXPECT_EQ(Shown(1, {{"FNo", Variant(0)}}), "0");
    EXPECT_EQ(Shown(1, {{"FNo", Variant(2147483647)}}), "2147483647");
}

TEST_F(LineLoaderTest, IdsOfZeroShowEmptyCells) {
    for (const auto& [gridColumn, field] : std::map<int, std::string>{
             {4, "FAccountID"}, {8, "FSettleID"}, {12, "FCurrencyID"}, {16, "FUnitID"}}) {
        EXPECT_EQ(Shown(gridColumn, {{field, Variant(0)}}), "") << field;
        EXPECT_EQ(Shown(gridColumn, {{field, Variant::Null()}}), "") << field;
        EXPECT_EQ(Shown(gridColumn, {{field, Variant(1001)}}), "1001") << field;
    }
}

TEST_F(LineLoaderTest, NumbersOfZeroShowEmptyCells) {
    for (const auto& [gridColumn, field] : std::map<int, std::string>{
             {7, "FFileCount"}, {15, "FAmountFor"}, {18, "FQty"}, {19, "FPrice"}, {20, "FAmount"}}) {
        EXPECT_EQ(Shown(gridColumn, {{field, Variant(0)}}), "") << field;
        EXPECT_EQ(Shown(gridColumn, {{field, *Decimal::Parse("0.0000")}}), "") << field;
        EXPECT_EQ(Shown(gridColumn, {{field, Variant(0.0)}}), "") << field;
        EXPECT_EQ(Shown(gridColumn, {{field, Variant::Null()}}), "") << field;
        EXPECT_EQ(Shown(gridColumn, {{field, Variant(12)}}), "12") << field;
    }
}

TEST_F(LineLoaderTest, TheRateIsShownOnlyBesideACurrencyName) {
    const Variant rate = *Decimal::Parse("6.8765000000");
    EXPECT_EQ(Shown(14, {{"FRate", rate}, {"FCurrencyName", "美元"}}), "6.8765");
    EXPECT_EQ(Shown(14, {{"FRate", rate}, {"FCurrencyName", ""}}), "");
    EXPECT_EQ(Shown(14, {{"FRate", rate}, {"FCurrencyName", Variant::Null()}}), "");
    EXPECT_EQ(Shown(14, {{"FRate", Variant(0)}, {"FCurrencyName", "美元"}}), "");
}

TEST_F(LineLoaderTest, AmountsComeBackDigitForDigit) {
    EXPECT_EQ(Shown(20, {{"FAmount", *Decimal::Parse("999999998.1234")}}), "999999998.1234");
    EXPECT_EQ(Shown(20, {{"FAmount", *Decimal::Parse("0.1000")}}), "0.1");
    EXPECT_EQ(Shown(20, {{"FAmount", *Decimal::Parse("100.0000")}}), "100");
    EXPECT_EQ(Shown(19, {{"FPrice", *Decimal::Parse("0.0000000001")}}), "0.0000000001");
    // An account set of floating numbers shows what was meant.
    EXPECT_EQ(Shown(20, {{"FAmount", Variant(0.1)}}), "0.1");
    EXPECT_EQ(Shown(19, {{"FPrice", Variant(1e-10)}}), "0.0000000001");
    EXPECT_EQ(Shown(20, {{"FAmount", Variant(123456789.1234)}}), "123456789.1234");
}

TEST_F(LineLoaderTest, NullTextsShowEmptyCellsAndOtherTextsAsTheyAre) {
    EXPECT_EQ(Shown(21, {{"FRemark", Variant::Null()}}), "");
    EXPECT_EQ(Shown(2, {{"FExp", "a'b|c 😀 "}}), "a'b|c 😀 ");
    EXPECT_EQ(Shown(10, {{"FSettleNumber", "00012"}}), "00012");
}

TEST_F(LineLoaderTest, LinesFillRowsInTheOrderOfTheirRecords) {
    EXPECT_EQ(Load({Line({{"FRemark", "a"}}), Line({{"FRemark", "b"}}), Line({{"FRemark", "c"}})}), 3);
    EXPECT_EQ(Text(1, 21), "a");
    EXPECT_EQ(Text(2, 21), "b");
    EXPECT_EQ(Text(3, 21), "c");
    EXPECT_TRUE(Grid().IsBlankRow(4));
    EXPECT_EQ(set_.Statements().front(),
              "select * from t_VchTemplateEntry where FID = 5 order by FNo,FEntryID ");
}

TEST_F(LineLoaderTest, WithoutLinesTheGridStaysBlank) {
    EXPECT_EQ(Load({}), 0);
    EXPECT_EQ(Grid().RowTotal(), 100);
    EXPECT_TRUE(Grid().IsBlankRow(1));
}

TEST_F(LineLoaderTest, LinesThatCannotBeReadAreToldApartFromNone) {
    set_.Fail("t_VchTemplateEntry", "no such table");
    EXPECT_EQ(LoadLines(Grid(), "5"), std::nullopt);
    EXPECT_THAT(Messages(), testing::IsEmpty());
}

TEST_F(LineLoaderTest, FromAHundredLinesOnTheGridGetsTwoRowsMore) {
    for (const auto& [lines, rows] : std::map<int, int>{{99, 100}, {100, 102}, {150, 152}}) {
        Grid().Clear(kFirstRowTotal);
        EXPECT_EQ(Load(std::vector<Record>(static_cast<std::size_t>(lines), Line())), lines);
        EXPECT_EQ(Grid().RowTotal(), rows) << lines;
        EXPECT_FALSE(Grid().IsBlankRow(lines));
        EXPECT_TRUE(Grid().IsBlankRow(lines + 1));
    }
}

TEST_F(LineLoaderTest, LoadingIsNoChangeAndIsToldToTheWindowAtTheEnd) {
    const GridEditing editing(state_);
    GridDiary diary(Grid());
    Load({Line(), Line()});
    EXPECT_FALSE(state_.open.IsDirty());
    EXPECT_EQ(state_.open.RowCount(), 0);
    EXPECT_FALSE(state_.open.Journal().CanUndo());
    EXPECT_EQ(Grid().Recorder(), &state_.open);
    EXPECT_TRUE(Grid().ReDraw());
    EXPECT_THAT(diary.Take(), testing::ElementsAre("texts 1,1..2,21"));
}

TEST_F(LineLoaderTest, RowsAreCheckedAsTheyAreLoaded) {
    Load({Line(), Line({{"FAccountNumber", "9999"}}),
          Line({{"FAccountNumber", "1002"}, {"FSettleName", "支票"}}), Line({{"FSettleName", "支票"}})});
    EXPECT_EQ(Color(1, column::kAccountNumber), color::kBlack);
    EXPECT_EQ(Color(2, column::kAccountNumber), color::kRed);
    EXPECT_EQ(Color(2, column::kAccountName), color::kRed);
    EXPECT_EQ(Color(2, column::kExplanation), color::kBlack);
    EXPECT_EQ(Color(3, column::kSettleName), color::kBlack);
    EXPECT_EQ(Color(4, column::kSettleName), color::kRed);
    EXPECT_EQ(Grid().FaultyCheck(2, column::kAccountName), 1);
    EXPECT_EQ(Grid().FaultyCheck(4, column::kSettleName), 2);
}

TEST_F(LineLoaderTest, WithinOneLoadTheSameQuestionIsAskedOnce) {
    std::vector<Record> records;
    for (int i = 0; i < 40; ++i) {
        records.push_back(
            Line({{"FAccountNumber", "1002"}, {"FSettleName", "支票"}, {"FCurrencyName", "美元"}}));
        records.push_back(Line({{"FAccountNumber", "1403"}, {"FUnitName", "千克"}}));
        records.push_back(Line({{"FAccountNumber", "1122"}, {"FItemsInfo", "C1,D1"}}));
        records.push_back(Line({{"FAccountNumber", "9999"}}));
    }
    Load(records);
    std::set<std::string> different(set_.Statements().begin(), set_.Statements().end());
    EXPECT_EQ(set_.Statements().size(), different.size());

    // Nothing is remembered for the next load.
    const std::size_t first = set_.Statements().size();
    set_.Forget();
    Load(records);
    EXPECT_EQ(set_.Statements().size(), first);
}

TEST_F(LineLoaderTest, EmptyCellsAreValidWithoutAQuestion) {
    Load({Line({{"FAccountNumber", ""}, {"FItemsInfo", ",,"}})});
    EXPECT_EQ(set_.Statements().size(), 1U);
    for (int c = 1; c <= kColumnCount; ++c)
        EXPECT_EQ(Color(1, c), color::kBlack) << c;
}

TEST(RowOnceSortedOf, FollowsTheLineToWhereItsNumberPutsIt) {
    EntryGrid grid;
    for (const auto& [row, number] : {std::pair{1, "10"}, {2, "2"}, {3, "02"}, {4, "1"}, {5, "2147483647"}})
        grid.SetText(row, column::kNo, number);
    EXPECT_EQ(RowOnceSorted(grid, 5, 1), 4);
    EXPECT_EQ(RowOnceSorted(grid, 5, 2), 2);
    EXPECT_EQ(RowOnceSorted(grid, 5, 3), 3) << "equal numbers keep their order";
    EXPECT_EQ(RowOnceSorted(grid, 5, 4), 1);
    EXPECT_EQ(RowOnceSorted(grid, 5, 5), 5);
    EXPECT_EQ(RowOnceSorted(grid, 5, 6), 6);
    EXPECT_EQ(RowOnceSorted(grid, 5, 0), 0);
}

}  // namespace vicenter::center
