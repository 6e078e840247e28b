#include "ui/grid/grid_view.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QContextMenuEvent>
#include <QElapsedTimer>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <algorithm>

#include <gtest/gtest.h>

#include "tests/ui/fakes.h"
#include "ui/grid/cell_delegate.h"
#include "ui/look/twips.h"

namespace vicenter::ui {
namespace {

using testing::PlainActions;

class GridViewTest : public ::testing::Test {
  protected:
    GridViewTest() {
        grid->SetRowTotal(100);
        for (const int column : {4, 8, 12, 16})
            grid->SetColumnHidden(column, true);
        model = std::make_unique<GridModel>(grid, actions);
        view = std::make_unique<GridView>(*model, actions, actions);
        view->resize(900, 400);
        view->show();
        view->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(view.get()));
        view->setFocus();
        Go(1, 1);
        actions.moves.clear();
    }

    void Go(int row, int column) {
        view->selectionModel()->setCurrentIndex(model->IndexOf({row, column}),
                                                QItemSelectionModel::ClearAndSelect);
    }
    QWidget* Editor() { return view->indexWidget(view->currentIndex()); }
    QLineEdit* Field() { return qobject_cast<QLineEdit*>(Editor()); }
    // A key goes to the editor when one is open, as it would on a desktop.
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(Target(), key, modifiers); }
    void Type(const char* text) {
        for (const char* c = text; *c; ++c)
            QTest::keyClick(Target(), *c);
    }
    void Click(int row, int column, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mouseClick(view->viewport(), Qt::LeftButton, modifiers, Middle(row, column));
    }
    QPoint Middle(int row, int column) { return view->visualRect(model->IndexOf({row, column})).center(); }
    void DragOver(const center::CellAddress& from, const center::CellAddress& to) {
        QTest::mousePress(view->viewport(), Qt::LeftButton, {}, Middle(from.row, from.column));
        for (int row = from.row; row <= to.row; ++row) {
            const QPoint at = Middle(row, row == to.row ? to.column : from.column);
            QMouseEvent move(QEvent::MouseMove, at, view->viewport()->mapToGlobal(at), Qt::NoButton,
                             Qt::LeftButton, {});
            QApplication::sendEvent(view->viewport(), &move);
        }
        QTest::mouseRelease(view->viewport(), Qt::LeftButton, {}, Middle(to.row, to.column));
    }
    void PressRowHeader(int row, Qt::KeyboardModifiers modifiers = {}) {
        QHeaderView* header = view->verticalHeader();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, modifiers,
                          {header->width() / 2, header->sectionViewportPosition(row - 1) + 4});
    }
    using Ranges = std::vector<center::CellRange>;
    static Ranges Pieces(const center::CellSelection& selection) {
        Ranges pieces = selection.pieces;
        std::sort(pieces.begin(), pieces.end(),
                  [](const auto& a, const auto& b) { return a.firstRow < b.firstRow; });
        return pieces;
    }
    QWidget* Target() { return Editor() ? Editor() : static_cast<QWidget*>(view.get()); }
    center::CellAddress Current() { return model->AddressOf(view->currentIndex()); }

    std::shared_ptr<center::EntryGrid> grid = std::make_shared<center::EntryGrid>();
    PlainActions actions{grid};
    std::unique_ptr<GridModel> model;
    std::unique_ptr<GridView> view;
};

TEST_F(GridViewTest, TypingStartsEditingAndEnterTakesTheTextAndMovesRight) {
    Go(1, 2);
    Type("abc");
    ASSERT_NE(Field(), nullptr);
    EXPECT_EQ(Field()->text(), "abc");
    EXPECT_EQ(grid->Text(1, 2), "");
    Key(Qt::Key_Return);
    EXPECT_EQ(grid->Text(1, 2), "abc");
    EXPECT_EQ(Editor(), nullptr);
    EXPECT_EQ(Current(), (center::CellAddress{1, 3}));
    EXPECT_EQ(grid->ActiveCell(), (center::CellAddress{1, 3}));
}

TEST_F(GridViewTest, TypingReplacesWhatTheCellHeldAndF2GoesOnWithIt) {
    grid->SetText(1, 2, "old");
    Go(1, 2);
    Type("n");
    EXPECT_EQ(Field()->text(), "n");
    Key(Qt::Key_Escape);
    EXPECT_EQ(grid->Text(1, 2), "old");
    Key(Qt::Key_F2);
    ASSERT_NE(Field(), nullptr);
    Type("er");
    Key(Qt::Key_Tab);
    EXPECT_EQ(grid->Text(1, 2), "older");
}

TEST_F(GridViewTest, ADoubleClickGoesOnWithWhatTheCellHolds) {
    grid->SetText(1, 2, "old");
    Click(1, 2);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, Middle(1, 2));
    ASSERT_NE(Field(), nullptr);
    Type("er");
    Key(Qt::Key_Tab);
    EXPECT_EQ(grid->Text(1, 2), "older");
}

TEST_F(GridViewTest, EscapeGivesTheTextUp) {
    grid->SetText(1, 2, "kept");
    Go(1, 2);
    Type("lost");
    Key(Qt::Key_Escape);
    EXPECT_EQ(Editor(), nullptr);
    EXPECT_EQ(grid->Text(1, 2), "kept");
    EXPECT_EQ(Current(), (center::CellAddress{1, 2}));
}

TEST_F(GridViewTest, DeleteClearsTheSelectedCellsAndNeverARow) {
    grid->SetText(1, 2, "a");
    grid->SetText(2, 2, "b");
    grid->SetText(3, 2, "c");
    Go(1, 2);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    Key(Qt::Key_Delete);
    EXPECT_EQ(grid->Text(1, 2), "");
    EXPECT_EQ(grid->Text(2, 2), "");
    EXPECT_EQ(grid->Text(3, 2), "c");
    EXPECT_EQ(grid->RowTotal(), 100);
    EXPECT_EQ(actions.deletes, 0);
}

TEST_F(GridViewTest, TabSkipsHiddenColumnsAndGoesOnInTheNextRow) {
    Go(1, 3);
    Key(Qt::Key_Tab);
    EXPECT_EQ(Current(), (center::CellAddress{1, 5}));
    Key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(Current(), (center::CellAddress{1, 3}));
    Go(1, 21);
    Key(Qt::Key_Return);
    EXPECT_EQ(Current(), (center::CellAddress{2, 1}));
    Key(Qt::Key_Return, Qt::ShiftModifier);
    EXPECT_EQ(Current(), (center::CellAddress{1, 21}));
}

TEST_F(GridViewTest, EveryCursorMoveIsToldToTheRules) {
    Key(Qt::Key_Down);
    Key(Qt::Key_Right);
    ASSERT_EQ(actions.moves.size(), 2U);
    EXPECT_EQ(actions.moves[0], (center::CellAddress{2, 1}));
    EXPECT_EQ(actions.moves[1], (center::CellAddress{2, 2}));
}

TEST_F(GridViewTest, TheCursorEndsUpWhereTheRulesSendIt) {
    actions.sendTo = {11, 2};
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {},
                      view->visualRect(model->IndexOf({15, 2})).center());
    EXPECT_EQ(Current(), (center::CellAddress{11, 2}));
    EXPECT_EQ(view->selectionModel()->selectedIndexes(), QModelIndexList{model->IndexOf({11, 2})});
    EXPECT_EQ(actions.moves.size(), 1U);
}

TEST_F(GridViewTest, TheCursorFollowsTheGridWithoutTellingTheRulesAgain) {
    grid->SetActiveCell({42, 6});
    EXPECT_EQ(Current(), (center::CellAddress{42, 6}));
    EXPECT_TRUE(actions.moves.empty());
}

TEST_F(GridViewTest, RowsThatComeAndGoLeaveTheCursorOnTheActiveCell) {
    grid->SetActiveCell({5, 2});
    grid->InsertRows(5, 1);
    EXPECT_EQ(Current(), grid->ActiveCell());
    grid->RemoveRows(5, 1);
    EXPECT_EQ(Current(), grid->ActiveCell());
    grid->Clear(100);
    EXPECT_EQ(Current(), grid->ActiveCell());
    EXPECT_TRUE(actions.moves.empty());
}

TEST_F(GridViewTest, ColumnOneTakesDigitsOnlyWhicheverWayTheyComeIn) {
    Go(1, 1);
    Type("a1b2");
    EXPECT_EQ(Field()->text(), "12");
    QApplication::clipboard()->setText("3x");
    Field()->paste();
    EXPECT_EQ(Field()->text(), "12");
    QInputMethodEvent commit;
    commit.setCommitString("借");
    QApplication::sendEvent(Field(), &commit);
    EXPECT_EQ(Field()->text(), "12");
    QApplication::clipboard()->setText("34");
    Field()->paste();
    EXPECT_EQ(Field()->text(), "1234");
}

TEST_F(GridViewTest, QuotesAndBarsAreRefusedInEveryColumn) {
    for (const int column : {1, 2, 5, 20, 21}) {
        Go(1, column);
        Type("'");
        Type("|");
        EXPECT_EQ(Editor(), nullptr) << column;
        Type("1'|2");
        EXPECT_EQ(Field()->text(), "12") << column;
        Key(Qt::Key_Escape);
    }
}

TEST_F(GridViewTest, NoKeyOfANumberIsDroppedAndTheTextIsJudgedAsAWhole) {
    for (const char* text : {"-9", "2,5", "=100+200", "1.2.3", "5e3", "(5)"}) {
        for (const int column : {7, 20}) {
            Go(1, column);
            Type(text);
            ASSERT_NE(Field(), nullptr);
            EXPECT_EQ(Field()->text(), text) << column;
            Key(Qt::Key_Escape);
        }
    }
}

TEST_F(GridViewTest, TextsLongerThanTheColumnAreJudgedAsAWholeAndNeverCut) {
    Go(1, 21);
    Key(Qt::Key_F2);
    QApplication::clipboard()->setText(QString(81, u'注'));
    Field()->paste();
    EXPECT_EQ(Field()->text().size(), 81);
    Type("x");
    EXPECT_EQ(Field()->text().size(), 82);
    Key(Qt::Key_Escape);
    Key(Qt::Key_F2);
    QApplication::clipboard()->setText(QString(4001, u'x'));
    Field()->paste();
    EXPECT_EQ(Field()->text(), "") << "no cell keeps that much";
}

TEST_F(GridViewTest, TheLineEndOfACopiedCellIsDroppedAndOtherControlCharactersAreRefused) {
    Go(1, 2);
    Key(Qt::Key_F2);
    QApplication::clipboard()->setText("报销办公费\r\n");
    Field()->paste();
    EXPECT_EQ(Field()->text(), "报销办公费");
    Field()->setCursorPosition(0);
    Field()->paste();
    EXPECT_EQ(Field()->text(), "报销办公费报销办公费");
    EXPECT_EQ(Field()->cursorPosition(), 5);
    QApplication::clipboard()->setText("a\tb");
    Field()->paste();
    QApplication::clipboard()->setText("a\nb");
    Field()->paste();
    EXPECT_EQ(Field()->text(), "报销办公费报销办公费");
    Key(Qt::Key_Escape);
    Go(1, 1);
    Key(Qt::Key_F2);
    QApplication::clipboard()->setText("12\r\n");
    Field()->paste();
    EXPECT_EQ(Field()->text(), "12");
}

TEST_F(GridViewTest, WhatAnInputMethodTypesIsFilteredLikeKeys) {
    Go(1, 2);
    Key(Qt::Key_F2);
    QInputMethodEvent commit;
    commit.setCommitString("货'款|");
    QApplication::sendEvent(Field(), &commit);
    EXPECT_EQ(Field()->text(), "货款");
}

TEST_F(GridViewTest, AnInputMethodStartsEditingAndItsTextComesIn) {
    Go(1, 2);
    QInputMethodEvent preedit("shou", {});
    QApplication::sendEvent(view.get(), &preedit);
    ASSERT_NE(Field(), nullptr);
    QInputMethodEvent commit;
    commit.setCommitString("收到货款");
    QApplication::sendEvent(Field(), &commit);
    Key(Qt::Key_Return);
    EXPECT_EQ(grid->Text(1, 2), "收到货款");
}

TEST_F(GridViewTest, TextCommittedWithoutComposingLosesNoCharacter) {
    Go(1, 2);
    for (const char* character : {"收", "货", "款"}) {
        QInputMethodEvent commit;
        commit.setCommitString(character);
        QApplication::sendEvent(QApplication::focusWidget(), &commit);
    }
    Key(Qt::Key_Return);
    EXPECT_EQ(grid->Text(1, 2), "收货款");
}

TEST_F(GridViewTest, ATextThatAnInputMethodCommitsWithoutComposingIsNotLost) {
    grid->SetText(1, 2, "old");
    Go(1, 2);
    QInputMethodEvent commit;
    commit.setCommitString("支");
    QApplication::sendEvent(view.get(), &commit);
    ASSERT_NE(Field(), nullptr);
    EXPECT_EQ(Field()->text(), "支");
    Key(Qt::Key_Return);
    EXPECT_EQ(grid->Text(1, 2), "支");
}

TEST_F(GridViewTest, ACompositionThatEndsInTheGridGoesToTheEditor) {
    Go(1, 2);
    QInputMethodEvent preedit("zhi", {});
    QApplication::sendEvent(view.get(), &preedit);
    QInputMethodEvent commit;
    commit.setCommitString("支付");
    QApplication::sendEvent(view.get(), &commit);
    ASSERT_NE(Field(), nullptr);
    EXPECT_EQ(Field()->text(), "支付");
}

TEST_F(GridViewTest, TheDirectionColumnOffersBlankDebitAndCredit) {
    Go(1, 3);
    Key(Qt::Key_F2);
    auto* list = qobject_cast<QComboBox*>(Editor());
    ASSERT_NE(list, nullptr);
    EXPECT_FALSE(list->isEditable());
    ASSERT_EQ(list->count(), 3);
    EXPECT_EQ(list->itemText(0), "");
    EXPECT_EQ(list->itemText(1), "借");
    EXPECT_EQ(list->itemText(2), "贷");
    list->hidePopup();
    list->setCurrentIndex(2);
    emit list->activated(2);
    EXPECT_EQ(grid->Text(1, 3), "贷");
}

TEST_F(GridViewTest, TypingInTheDirectionColumnChoosesAndNeverWritesOtherText) {
    Go(1, 3);
    Type("x");
    EXPECT_EQ(grid->Text(1, 3), "");
    EXPECT_EQ(Editor(), nullptr);
    Type("j");
    EXPECT_EQ(grid->Text(1, 3), "借");
    Type("d");
    EXPECT_EQ(grid->Text(1, 3), "贷");
    QInputMethodEvent commit;
    commit.setCommitString("借");
    QApplication::sendEvent(view.get(), &commit);
    EXPECT_EQ(grid->Text(1, 3), "借");
    EXPECT_EQ(Editor(), nullptr);
}

TEST_F(GridViewTest, LookUpKeysGoToTheRulesAlsoWhileEditing) {
    Go(1, 5);
    Key(Qt::Key_F7);
    Key(Qt::Key_Insert);
    ASSERT_GE(actions.keys.size(), 2U);
    EXPECT_EQ(actions.keys[0], 118);
    EXPECT_EQ(actions.keys[1], 45);
    actions.keys.clear();
    actions.keyTexts.clear();
    Type("1001");
    actions.keys.clear();
    actions.keyTexts.clear();
    Key(Qt::Key_F7);
    EXPECT_EQ(Editor(), nullptr);
    EXPECT_EQ(actions.keys, std::vector<int>{118});
    EXPECT_EQ(actions.keyTexts, std::vector<std::string>{"1001"});
}

TEST_F(GridViewTest, InsertWithShiftOrControlPastesAndCopiesInAnOpenEditor) {
    QApplication::clipboard()->setText("02.01");
    Go(1, 5);
    Type("10");
    actions.keys.clear();
    Key(Qt::Key_Insert, Qt::ShiftModifier);
    ASSERT_NE(Field(), nullptr);
    EXPECT_EQ(Field()->text(), "1002.01");
    Field()->selectAll();
    Key(Qt::Key_Insert, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "1002.01");
    ASSERT_NE(Field(), nullptr);
    EXPECT_TRUE(actions.keys.empty()) << "no look-up";
    Key(Qt::Key_Escape);
    Key(Qt::Key_Insert, Qt::ShiftModifier);
    EXPECT_EQ(actions.pasted, "1002.01") << "over the cell";
    EXPECT_TRUE(actions.keys.empty());
}

TEST_F(GridViewTest, TheHeadersFollowTheCursorWhenRowsComeAndGoAboveIt) {
    const auto* rows = qobject_cast<GridHeader*>(view->verticalHeader());
    Go(1, 2);
    grid->RemoveRows(1, 1);
    EXPECT_EQ(Current(), (center::CellAddress{1, 2}));
    EXPECT_EQ(rows->ActiveSection(), 0);
    Go(4, 2);
    grid->RemoveRows(1, 2);
    EXPECT_EQ(rows->ActiveSection(), Current().row - 1);
    grid->InsertRows(1, 3);
    EXPECT_EQ(rows->ActiveSection(), Current().row - 1);
}

TEST_F(GridViewTest, TheSecondPointOnTheKeypadIsTheRules) {
    Go(2, 2);
    QTest::keyClick(Target(), Qt::Key_Period, Qt::KeypadModifier);
    ASSERT_NE(Field(), nullptr);
    EXPECT_EQ(Field()->text(), ".");
    QTest::keyClick(Target(), Qt::Key_Period, Qt::KeypadModifier);
    EXPECT_EQ(grid->Text(2, 2), "above");
    ASSERT_NE(Field(), nullptr);
    EXPECT_EQ(Field()->text(), "above");
    Key(Qt::Key_Return);
    EXPECT_EQ(grid->Text(2, 2), "above");
}

TEST_F(GridViewTest, ArrowsLeaveACellThatIsBeingTypedButMoveInOneThatIsEdited) {
    Go(2, 2);
    Type("ab");
    Key(Qt::Key_Left);
    EXPECT_EQ(grid->Text(2, 2), "ab");
    EXPECT_EQ(Current(), (center::CellAddress{2, 1}));
    Go(2, 2);
    Key(Qt::Key_F2);
    Key(Qt::Key_End);
    Key(Qt::Key_Left);
    ASSERT_NE(Field(), nullptr);
    EXPECT_EQ(Field()->cursorPosition(), 1);
    Key(Qt::Key_Down);
    EXPECT_EQ(Current(), (center::CellAddress{3, 2}));
}

TEST_F(GridViewTest, ControlKeysJumpAsInASpreadsheetAndNeverPastTheFirstBlankRow) {
    Go(3, 5);
    Key(Qt::Key_End);
    EXPECT_EQ(Current(), (center::CellAddress{3, 21}));
    Key(Qt::Key_Home);
    EXPECT_EQ(Current(), (center::CellAddress{3, 1}));
    Key(Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(Current(), (center::CellAddress{10, 21}));
    Key(Qt::Key_Home, Qt::ControlModifier);
    EXPECT_EQ(Current(), (center::CellAddress{1, 1}));
    Key(Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(Current(), (center::CellAddress{10, 1}));
    Key(Qt::Key_Down, Qt::ControlModifier);
    EXPECT_EQ(Current(), (center::CellAddress{11, 1}));
    Key(Qt::Key_PageUp);
    Key(Qt::Key_PageDown);
    EXPECT_LE(Current().row, 11);
    Key(Qt::Key_Right, Qt::ControlModifier);
    EXPECT_EQ(Current().column, 21);
    Key(Qt::Key_Left, Qt::ControlModifier);
    EXPECT_EQ(Current().column, 1);
}

TEST_F(GridViewTest, TheSelectionGoesAlongWithTheCursorHoweverItMoves) {
    const auto only = [this] {
        const center::CellAddress cell = Current();
        return view->SelectedBlock() == center::CellRange{cell.row, cell.column, cell.row, cell.column};
    };
    Go(3, 5);
    Key(Qt::Key_End, Qt::ControlModifier);
    EXPECT_TRUE(only());
    grid->SetText(1, 1, "7");
    grid->SetText(10, 21, "kept");
    Key(Qt::Key_Home, Qt::ControlModifier);
    EXPECT_TRUE(only());
    Key(Qt::Key_Delete);
    EXPECT_EQ(grid->Text(1, 1), "");
    EXPECT_EQ(grid->Text(10, 21), "kept");
    Key(Qt::Key_Tab);
    EXPECT_TRUE(only());
}

TEST_F(GridViewTest, ArrowsWithAKeyHeldAreNoOthersOutOfAnOpenEditor) {
    grid->SetActiveCell({2, 2});
    Type("x");
    ASSERT_TRUE(view->IsEditing());
    Key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_FALSE(view->IsEditing());
    EXPECT_EQ(grid->Text(2, 2), "x");
    EXPECT_EQ(view->SelectedBlock(), (center::CellRange{2, 2, 3, 2}));
}

TEST_F(GridViewTest, ShiftSelectsFromTheCursorHoweverItCameThere) {
    Go(7, 7);
    Key(Qt::Key_Home, Qt::ControlModifier);
    Key(Qt::Key_Tab);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(view->SelectedBlock(), (center::CellRange{1, 2, 2, 2}));
    Key(Qt::Key_Down, Qt::ShiftModifier | Qt::ControlModifier);
    EXPECT_EQ(view->SelectedBlock(), (center::CellRange{1, 2, 10, 2}));
    Key(Qt::Key_Right, Qt::ShiftModifier);
    EXPECT_EQ(view->SelectedBlock(), (center::CellRange{1, 2, 10, 3}));
    grid->SetActiveCell({5, 2});
    Key(Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(view->SelectedBlock(), (center::CellRange{4, 2, 5, 2}));
    Type("x");
    Key(Qt::Key_Return);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(view->SelectedBlock(), (center::CellRange{4, 3, 5, 3}));
    Key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(view->SelectedBlock(), (center::CellRange{5, 2, 5, 2}))
        << "Shift with Tab selects nothing more";
}

TEST_F(GridViewTest, BlocksGoThroughTheClipboard) {
    grid->SetText(2, 2, "copied");
    Go(2, 2);
    Key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "copied");
    Go(5, 2);
    QApplication::clipboard()->setText("a\tb\r\nc\td\r\n");
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(actions.pastedAt, center::CellSelection(5, 2));
    EXPECT_EQ(actions.pasted, "a\tb\r\nc\td\r\n");
}

TEST_F(GridViewTest, PastingTellsTheRulesExactlyWhatIsSelected) {
    Go(2, 2);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    QApplication::clipboard()->setText("same\r\n");
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(actions.pastedAt, center::CellSelection(2, 2, 3, 2));
    EXPECT_EQ(actions.pasted, "same\r\n");
    Click(7, 2, Qt::ControlModifier);
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(Pieces(actions.pastedAt), (Ranges{{2, 2, 3, 2}, {7, 2, 7, 2}}));
}

TEST_F(GridViewTest, ABlockThatIsSelectedByKeysOrMouseHoldsShownCellsOnly) {
    Go(1, 1);
    Key(Qt::Key_End, Qt::ShiftModifier);
    EXPECT_FALSE(view->Selected().wholeRows);
    for (const QModelIndex& index : view->selectionModel()->selectedIndexes())
        EXPECT_FALSE(view->isColumnHidden(index.column())) << index.column();
    EXPECT_EQ(view->SelectedBlock(), (center::CellRange{1, 1, 1, 21}));
    grid->SetText(1, 1, "1");
    grid->SetText(1, 4, "77");
    Key(Qt::Key_Delete);
    EXPECT_EQ(grid->Text(1, 1), "");
    EXPECT_EQ(grid->Text(1, 4), "77");
    DragOver({2, 3}, {3, 6});
    for (const QModelIndex& index : view->selectionModel()->selectedIndexes())
        EXPECT_NE(index.column(), 3);
    EXPECT_EQ(view->SelectedBlock(), (center::CellRange{2, 3, 3, 6}));
}

TEST_F(GridViewTest, RowHeadersAndSelectAllSelectWholeRows) {
    grid->SetText(2, 1, "7");
    PressRowHeader(2);
    EXPECT_TRUE(view->Selected().wholeRows);
    EXPECT_EQ(Pieces(view->Selected()), (Ranges{{2, 1, 2, 21}}));
    PressRowHeader(5, Qt::ControlModifier);
    EXPECT_TRUE(view->Selected().wholeRows);
    EXPECT_EQ(Pieces(view->Selected()), (Ranges{{2, 1, 2, 21}, {5, 1, 5, 21}}));
    Key(Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_EQ(Pieces(actions.deleted), (Ranges{{2, 1, 2, 21}, {5, 1, 5, 21}}));
    Key(Qt::Key_C, Qt::ControlModifier);
    Go(7, 2);
    Key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(actions.pastedRows, "rows");
    Key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_TRUE(view->Selected().wholeRows);
    EXPECT_EQ(view->SelectedBlock(), (center::CellRange{1, 1, 100, 21}));
}

TEST_F(GridViewTest, BuildingASelectionIsToldFromGoingSomewhere) {
    Click(15, 2);
    EXPECT_FALSE(actions.selecting);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_TRUE(actions.selecting);
    Key(Qt::Key_Down);
    EXPECT_FALSE(actions.selecting);
    Click(3, 2, Qt::ShiftModifier);
    EXPECT_TRUE(actions.selecting);
    Click(4, 2);
    EXPECT_FALSE(actions.selecting);
    Click(8, 2, Qt::ControlModifier);
    EXPECT_TRUE(actions.selecting);
    DragOver({2, 2}, {14, 2});
    EXPECT_TRUE(actions.selecting);
    Click(4, 2);
    PressRowHeader(16);
    EXPECT_TRUE(actions.selecting);
}

TEST_F(GridViewTest, TypingBelowTheFirstBlankRowAsksTheRulesFirstAndEntersNothing) {
    actions.rowsInUse = 3;
    Go(9, 2);
    actions.moves.clear();
    actions.sendTo = {4, 2};
    Type("x");
    EXPECT_EQ(Editor(), nullptr);
    EXPECT_EQ(Current(), (center::CellAddress{4, 2}));
    EXPECT_FALSE(actions.selecting);
    EXPECT_EQ(grid->Text(9, 2), "");
}

TEST_F(GridViewTest, TheCursorLeavesAColumnThatIsHidden) {
    grid->SetText(1, 5, "kept");
    Go(1, 5);
    Key(Qt::Key_Right, Qt::ShiftModifier);
    grid->SetColumnHidden(6, true);
    grid->SetColumnHidden(5, true);
    EXPECT_EQ(Current(), (center::CellAddress{1, 7}));
    EXPECT_EQ(grid->ActiveCell(), (center::CellAddress{1, 7}));
    Key(Qt::Key_Delete);
    EXPECT_EQ(grid->Text(1, 5), "kept");
    grid->SetActiveCell({2, 5});
    EXPECT_EQ(Current(), (center::CellAddress{2, 7}));
    for (int c = 7; c <= 21; ++c)
        grid->SetColumnHidden(c, true);
    EXPECT_EQ(Current(), (center::CellAddress{2, 3}));
}

TEST_F(GridViewTest, UndoRedoFillAndDuplicateHaveTheirUsualKeys) {
    Key(Qt::Key_Z, Qt::ControlModifier);
    Key(Qt::Key_Y, Qt::ControlModifier);
    Key(Qt::Key_D, Qt::ControlModifier);
    Key(Qt::Key_D, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(actions.undos, 1);
    EXPECT_EQ(actions.redos, 1);
    EXPECT_EQ(actions.filled, center::CellSelection(1, 1));
    EXPECT_EQ(actions.duplicated, center::CellSelection(1, 1));
    EXPECT_EQ(actions.duplicates, 1);
}

TEST_F(GridViewTest, PlusAndMinusWithControlInsertAndDeleteAsManyRowsAsAreSelected) {
    Go(3, 2);
    Key(Qt::Key_Plus, Qt::ControlModifier);
    EXPECT_EQ(actions.inserted, center::CellSelection(3, 2));
    Key(Qt::Key_Down, Qt::ShiftModifier);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    Key(Qt::Key_Equal, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(actions.inserted, center::CellSelection(3, 2, 5, 2));
    Key(Qt::Key_Minus, Qt::ControlModifier | Qt::KeypadModifier);
    EXPECT_EQ(actions.deleted, center::CellSelection(3, 2, 5, 2));
    view->SetInteractive(false);
    Key(Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_EQ(actions.deletes, 1);
}

TEST_F(GridViewTest, ItsMenuInsertsAndDeletesAsManyRowsAsAreSelected) {
    Go(2, 2);
    Key(Qt::Key_Down, Qt::ShiftModifier);
    const auto choose = [this](const QString& text) {
        QTimer::singleShot(0, view.get(), [this, text] {
            auto* menu = view->findChild<QMenu*>("gridMenu");
            ASSERT_NE(menu, nullptr);
            for (QAction* action : menu->actions()) {
                if (action->text().section('\t', 0, 0) == text) action->trigger();
            }
            menu->close();
        });
        const QPoint at = view->visualRect(model->IndexOf({2, 2})).center();
        QContextMenuEvent event(QContextMenuEvent::Keyboard, at, view->viewport()->mapToGlobal(at));
        QApplication::sendEvent(view->viewport(), &event);
    };
    choose("添加 2 行分录");
    EXPECT_EQ(actions.inserted, center::CellSelection(2, 2, 3, 2));
    choose("删除 2 行分录");
    EXPECT_EQ(actions.deleted, center::CellSelection(2, 2, 3, 2));
    choose("复制分录");
    EXPECT_EQ(actions.duplicates, 1);
}

TEST_F(GridViewTest, ADoubleClickOnAColumnsEdgeFitsItToItsTexts) {
    grid->SetText(1, 2, "收到国外客户支付的上一年度货款及其利息");
    grid->SetColumnWidth(2, 600);
    QHeaderView* header = view->horizontalHeader();
    const QPoint edge(header->sectionViewportPosition(1) + header->sectionSize(1) - 1, header->height() / 2);
    QTest::mouseMove(header->viewport(), edge);
    QTest::mouseDClick(header->viewport(), Qt::LeftButton, {}, edge);
    const int text = view->fontMetrics().horizontalAdvance("收到国外客户支付的上一年度货款及其利息");
    EXPECT_GE(view->columnWidth(1), text);
    EXPECT_LE(view->columnWidth(1), text + 40);
    EXPECT_DOUBLE_EQ(grid->Layout(2).width, PixelsToTwips(view->columnWidth(1), *view));
    EXPECT_FALSE(header->sectionsMovable());
}

TEST_F(GridViewTest, AGridThatIsNotInteractiveTakesNothing) {
    grid->SetText(1, 2, "kept");
    view->SetInteractive(false);
    Go(1, 2);
    Type("x");
    Key(Qt::Key_F2);
    Key(Qt::Key_Delete);
    Key(Qt::Key_F7);
    QApplication::clipboard()->setText("p");
    Key(Qt::Key_V, Qt::ControlModifier);
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Editor(), nullptr);
    EXPECT_EQ(grid->Text(1, 2), "kept");
    EXPECT_TRUE(actions.keys.empty());
    EXPECT_EQ(actions.pasted, "");
    EXPECT_EQ(actions.undos, 0);
    Key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "kept");
}

TEST_F(GridViewTest, KeysOfAnOpenNameListGoToIt) {
    Go(1, 5);
    Type("10");
    EXPECT_EQ(actions.typed, (std::vector<std::string>{"1", "10"}));
    actions.listOpen = true;
    actions.listTakes = true;
    Key(Qt::Key_Down);
    EXPECT_EQ(actions.listMoves, 1);
    EXPECT_EQ(Current(), (center::CellAddress{1, 5}));
    Key(Qt::Key_Return);
    EXPECT_EQ(grid->Text(1, 5), "chosen");
    EXPECT_EQ(Editor(), nullptr);
    EXPECT_EQ(Current(), (center::CellAddress{1, 6}));
}

TEST_F(GridViewTest, EscapeClosesTheNameListFirstAndKeepsWhatWasTyped) {
    Go(1, 5);
    Type("10");
    actions.listOpen = true;
    Key(Qt::Key_Escape);
    ASSERT_NE(Field(), nullptr);
    EXPECT_EQ(Field()->text(), "10");
    EXPECT_FALSE(actions.listOpen);
    Key(Qt::Key_Return);
    EXPECT_EQ(grid->Text(1, 5), "10");
}

TEST_F(GridViewTest, AListThatHasNothingToTakeDoesNotStopPlainTyping) {
    Go(1, 5);
    Type("zz");
    actions.listOpen = true;
    actions.listTakes = false;
    Key(Qt::Key_Tab);
    EXPECT_EQ(grid->Text(1, 5), "zz");
    EXPECT_EQ(Current(), (center::CellAddress{1, 6}));
}

TEST_F(GridViewTest, TheButtonOfTheActiveCellOpensTheLookUp) {
    Go(2, 5);
    const QRect button = CellDelegate::ButtonRect(view->visualRect(view->currentIndex()));
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, button.center());
    EXPECT_EQ(actions.lookUps, 1);
    EXPECT_EQ(Editor(), nullptr);
}

TEST_F(GridViewTest, ColumnsHaveTheWidthsOfTheGridAndDraggedOnesGoBackToIt) {
    grid->SetColumnWidth(2, 3000);
    EXPECT_EQ(view->columnWidth(1), TwipsToPixels(3000, *view));
    grid->SetColumnHidden(7, true);
    EXPECT_TRUE(view->isColumnHidden(6));
    EXPECT_DOUBLE_EQ(grid->Layout(7).width, 850);
    grid->SetColumnHidden(7, false);
    EXPECT_EQ(view->columnWidth(6), TwipsToPixels(850, *view));
    view->horizontalHeader()->resizeSection(1, 100);
    EXPECT_DOUBLE_EQ(grid->Layout(2).width, PixelsToTwips(100, *view));
}

TEST_F(GridViewTest, WidthsThatNobodyDraggedKeepTheirFractions) {
    grid->SetColumnWidth(2, 2820.37);
    EXPECT_DOUBLE_EQ(grid->Layout(2).width, 2820.37);
}

TEST_F(GridViewTest, RowHeightsFollowTheGrid) {
    grid->SetRowHeights(450, 285);
    EXPECT_EQ(view->rowHeight(0), TwipsToPixels(285, *view));
    EXPECT_EQ(view->horizontalHeader()->height(), TwipsToPixels(450, *view));
    grid->SetRowHeights(510, 345);
    EXPECT_EQ(view->rowHeight(99), TwipsToPixels(345, *view));
    EXPECT_EQ(view->horizontalHeader()->height(), TwipsToPixels(510, *view));
}

TEST_F(GridViewTest, HeadersTintTheActiveRowAndColumnAndFitTheirNumbers) {
    const int narrow = view->verticalHeader()->width();
    grid->SetRowTotal(100000);
    QApplication::processEvents();
    EXPECT_GE(view->verticalHeader()->width(), view->fontMetrics().horizontalAdvance("100000"));
    EXPECT_GE(view->verticalHeader()->width(), narrow);
}

TEST_F(GridViewTest, KeepsNoWidgetPerCell) {
    grid->SetRowTotal(100000);
    view->verticalScrollBar()->setValue(view->verticalScrollBar()->maximum());
    QApplication::processEvents();
    EXPECT_LT(view->viewport()->children().size(), 3);
}

}  // namespace
}  // namespace vicenter::ui
