// A row that is proposed, in the window's presenter: nothing but taking it makes it a line.

#include "center/frame/own_settings.h"
#include "tests/center/center_fixture.h"

namespace vicenter::center::test {
namespace {

class ProposedRowTest : public CenterTest {
  protected:
    void SetUp() override {
        std::vector<Variant> line = Line(31, "借方", 1);
        line[column::kAmount - 1] = 1234;
        lines_["5"] = {line};
        Open();
        Window().Tree().NodeClick("detail-5");
        Forget();
        for (const int c :
             {column::kNo, column::kExplanation, column::kDirection, column::kAccountNumber, column::kAmount})
            Grid().SetColumnHidden(c, false);
    }
    // What the user's saved templates say of an account.
    void Learn(const std::string& account, bool debit) {
        set_.Respond("where t.FUserID = 7 and a.FAccountNumber = '" + account + "'", [debit](const auto&) {
            return Rows({"FDC", "FNextNumber", "FNextDC"}, {{Variant(debit ? 1 : 0), "", Variant(0)}});
        });
    }
    void GoTo(int row, int gridColumn) { Window().Cells().MoveActiveCell({row, gridColumn}); }
    std::string Proposed(int row, int gridColumn) { return Window().Cells().ProposedText({row, gridColumn}); }
};

TEST_F(ProposedRowTest, IsShownBesideTheGridAndIsInNothingThatReadsIt) {
    ASSERT_EQ(Window().Cells().ProposedRow(), 2);
    EXPECT_EQ(Proposed(2, column::kNo), "31");
    EXPECT_EQ(Proposed(2, column::kDirection), "贷");
    EXPECT_EQ(Proposed(2, column::kAmount), "1234");

    Window().Cells().MoveActiveCell({2, column::kNo});
    for (int c = 1; c <= kColumnCount; ++c)
        EXPECT_EQ(Cell(2, c), "");
    EXPECT_EQ(Window().RowCount(), 1);
    EXPECT_FALSE(Window().IsDirty());
    EXPECT_FALSE(Window().Cells().CanUndo());
    const auto copied = Window().Cells().CopyBlock(CellSelection::Rows({{1, 2}}));
    ASSERT_TRUE(copied.has_value());
    EXPECT_EQ(copied->text.find("\t贷\t"), std::string::npos);
    EXPECT_EQ(Window().Faults().Cells(), (std::vector<CellAddress>{{1, column::kNo}})) << "it is unbalanced";

    Type(1, column::kExplanation, "改过");
    Forget();
    ASSERT_TRUE(Window().Save());
    int inserts = 0;
    for (const std::string& sql : set_.Statements()) {
        for (std::size_t at = 0; (at = sql.find("insert into t_VchTemplateEntry(", at)) != std::string::npos;
             ++at)
            ++inserts;
        EXPECT_EQ(sql.find(",31,'',0,"), std::string::npos) << sql;
    }
    EXPECT_EQ(inserts, 1);
}

TEST_F(ProposedRowTest, EachCellIsTakenForItselfAndIsAStepOfUndo) {
    Window().Cells().MoveActiveCell({2, column::kNo});
    EXPECT_TRUE(Window().Cells().TakeProposal({2, column::kNo}));
    EXPECT_EQ(Cell(2, column::kNo), "31");
    EXPECT_EQ(Cell(2, column::kAmount), "");
    EXPECT_EQ(Window().RowCount(), 2);
    EXPECT_FALSE(Window().Cells().TakeProposal({2, column::kNo}));
    EXPECT_TRUE(Window().Cells().TakeProposal({2, column::kExplanation}));
    EXPECT_EQ(Cell(2, column::kExplanation), "借方");
    EXPECT_FALSE(Window().Cells().TakeProposal({2, column::kRemark}));
    EXPECT_TRUE(Window().Cells().TakeProposal({2, column::kAmount}));
    EXPECT_EQ(Cell(2, column::kAmount), "1234");
    Window().Cells().Undo();
    Window().Cells().Undo();
    Window().Cells().Undo();
    EXPECT_EQ(Window().RowCount(), 1);
    EXPECT_FALSE(Window().IsDirty());
    EXPECT_EQ(Proposed(2, column::kNo), "31");
}

TEST_F(ProposedRowTest, WhatStandsBeforeTheAccountIsTakenInOneStep) {
    Window().Cells().MoveActiveCell({2, column::kNo});
    EXPECT_EQ(Window().Cells().TakeRow(), (CellAddress{2, column::kAccountNumber}));
    EXPECT_EQ(Cell(2, column::kNo), "31");
    EXPECT_EQ(Cell(2, column::kExplanation), "借方");
    EXPECT_EQ(Cell(2, column::kDirection), "贷");
    EXPECT_EQ(Cell(2, column::kAmount), "") << "the account may turn the side yet";
    EXPECT_EQ(Proposed(2, column::kAmount), "1234");
    EXPECT_EQ(Window().Cells().TakeRow(), std::nullopt);
    Window().Cells().Undo();
    EXPECT_EQ(Window().RowCount(), 1);
    EXPECT_FALSE(Window().Cells().CanUndo());
}

TEST_F(ProposedRowTest, WhatNobodySeesIsNotTakenWithTheRow) {
    Grid().SetColumnHidden(column::kDirection, true);
    Window().Cells().MoveActiveCell({2, column::kNo});
    Window().Cells().TakeRow();
    EXPECT_EQ(Cell(2, column::kNo), "31");
    EXPECT_EQ(Cell(2, column::kDirection), "");
}

TEST_F(ProposedRowTest, TheEndOfALineTakesTheRestOfItAndGoesToTheNextAccount) {
    GoTo(1, column::kAmount);
    EXPECT_EQ(Window().Cells().TakeRow(), (CellAddress{2, column::kAccountNumber}));
    GoTo(2, column::kAccountNumber);
    EXPECT_EQ(Window().RowCount(), 1) << "what has not been on the screen is not taken";
    Type(2, column::kAccountNumber, "2202");
    GoTo(2, column::kAmount);
    EXPECT_EQ(Cell(2, column::kNo), "");
    ASSERT_EQ(Window().Cells().CommitText({2, column::kAmount}, "1000"), TextVerdict::Taken);
    EXPECT_EQ(Window().Cells().TakeRow(), (CellAddress{3, column::kAccountNumber}));
    EXPECT_EQ(Cell(2, column::kNo), "31");
    EXPECT_EQ(Cell(2, column::kExplanation), "借方");
    EXPECT_EQ(Cell(2, column::kDirection), "贷");
    EXPECT_EQ(Cell(2, column::kAmount), "1000");
    GoTo(3, column::kAccountNumber);
    EXPECT_EQ(Proposed(3, column::kAmount), "234");
    EXPECT_EQ(Window().RowCount(), 2);
}

TEST_F(ProposedRowTest, TheEndOfTheLastLineTakesItsAmountAndLeavesTheNextNumberToTheUser) {
    GoTo(2, column::kNo);
    ASSERT_TRUE(Window().Cells().TakeRow().has_value());
    GoTo(2, column::kAccountNumber);
    Type(2, column::kAccountNumber, "2202");
    GoTo(2, column::kAmount);
    EXPECT_EQ(Window().Cells().TakeRow(), (CellAddress{3, column::kNo}));
    EXPECT_EQ(Cell(2, column::kAmount), "1234");
}

TEST_F(ProposedRowTest, WhatTheCursorHasComePastIsTakenOnceTheAccountIsThere) {
    GoTo(1, column::kAmount);
    Window().Cells().TakeRow();
    GoTo(2, column::kAccountNumber);
    Window().Cells().TakePassed({2, column::kAccountNumber});
    EXPECT_EQ(Window().RowCount(), 1) << "there is no account yet";
    Type(2, column::kAccountNumber, "2202");
    GoTo(2, column::kRemark);
    Window().Cells().TakePassed({2, column::kRemark});
    EXPECT_EQ(Cell(2, column::kNo), "31");
    EXPECT_EQ(Cell(2, column::kExplanation), "借方");
    EXPECT_EQ(Cell(2, column::kDirection), "贷");
    EXPECT_EQ(Cell(2, column::kAmount), "") << "that lies ahead";
}

TEST_F(ProposedRowTest, AnAccountThatTurnsTheSideIsLookedAtFirst) {
    Learn("1405", true);
    GoTo(1, column::kAmount);
    Window().Cells().TakeRow();
    GoTo(2, column::kAccountNumber);
    EXPECT_EQ(Proposed(2, column::kDirection), "贷");
    ASSERT_EQ(Window().Cells().CommitText({2, column::kAccountNumber}, "1405"), TextVerdict::Taken);
    EXPECT_EQ(Window().Cells().TakeRow(), std::nullopt);
    EXPECT_EQ(Cell(2, column::kNo), "31");
    EXPECT_EQ(Cell(2, column::kDirection), "");
    EXPECT_EQ(Proposed(2, column::kDirection), "借");
    EXPECT_EQ(Window().Cells().StopInRow(2), (CellAddress{2, column::kDirection}));
    GoTo(2, column::kRemark);
    EXPECT_EQ(Window().Cells().TakeRow(), (CellAddress{3, column::kAccountNumber}));
    EXPECT_EQ(Cell(2, column::kDirection), "借");
    EXPECT_EQ(Window().Cells().StopInRow(2), std::nullopt);
}

TEST_F(ProposedRowTest, WhoComesByArrowOrMouseTakesNothingOnTheWay) {
    GoTo(2, column::kAccountNumber);
    Type(2, column::kAccountNumber, "2202");
    GoTo(2, column::kRemark);
    Window().Cells().TakePassed({2, column::kRemark});
    EXPECT_EQ(Cell(2, column::kNo), "");
    EXPECT_EQ(Window().Cells().StopInRow(2), std::nullopt);
    EXPECT_EQ(Window().Cells().TakeRow(), (CellAddress{3, column::kNo})) << "the amount that is missing, too";
    EXPECT_EQ(Cell(2, column::kNo), "31");
}

TEST_F(ProposedRowTest, AnAccountIsAskedForOnce) {
    GoTo(2, column::kAccountNumber);
    Type(2, column::kAccountNumber, "2202");
    Forget();
    GoTo(2, column::kRemark);
    GoTo(2, column::kAmount);
    GoTo(2, column::kRemark);
    EXPECT_EQ(Sent("a.FAccountNumber = '2202'").size(), 1u);
}

TEST_F(ProposedRowTest, ALineInTheMiddleIsNotTaken) {
    FillLine(2, "31", "Second");
    Window().Cells().MoveActiveCell({1, column::kNo});
    EXPECT_EQ(Window().Cells().TakeRow(), std::nullopt);
    EXPECT_EQ(Window().RowCount(), 2);
}

TEST_F(ProposedRowTest, RefusedItIsGone) {
    Window().Cells().MoveActiveCell({2, column::kNo});
    EXPECT_TRUE(Window().Cells().RefuseProposals());
    EXPECT_EQ(Proposed(2, column::kNo), "");
    EXPECT_FALSE(Window().Cells().TakeProposal({2, column::kNo}));
    EXPECT_EQ(Window().RowCount(), 1);
}

TEST_F(ProposedRowTest, SwitchedOffItStaysOffInTheNextWindow) {
    EXPECT_TRUE(Window().Cells().IsOn(EntryAid::Proposals));
    Window().Cells().SetOn(EntryAid::Proposals, false);
    EXPECT_EQ(Window().Cells().ProposedRow(), 0);
    Open();
    Window().Tree().NodeClick("detail-5");
    EXPECT_EQ(Window().Cells().ProposedRow(), 0);
}

TEST_F(ProposedRowTest, ColumnsThatStayInSightDoSoInTheNextWindow) {
    EXPECT_EQ(Window().Cells().FrozenPlaces(), 0);
    Window().Cells().SetFrozenPlaces(3);
    Open();
    EXPECT_EQ(Window().Cells().FrozenPlaces(), 3);
    OwnSettings kept;
    kept.Open("7");
    kept.Put("grid.frozen-places", "");
    kept.PutOn("grid.frozen", true);
    Open();
    EXPECT_EQ(Window().Cells().FrozenPlaces(), 6) << "by a setting that was on or off";
    Window().Cells().SetFrozenPlaces(0);
    Open();
    EXPECT_EQ(Window().Cells().FrozenPlaces(), 0);
}

TEST_F(ProposedRowTest, WhoMayOnlyLookSeesNone) {
    right_ = false;
    Open();
    Window().Tree().NodeClick("detail-5");
    EXPECT_EQ(Window().Cells().ProposedRow(), 0);
    EXPECT_FALSE(Window().Cells().TakeProposal({2, column::kNo}));
}

}  // namespace
}  // namespace vicenter::center::test
