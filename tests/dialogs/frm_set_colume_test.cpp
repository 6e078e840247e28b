#include "dialogs/frm_set_colume.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "center/grid/entry_grid.h"
#include "platform/scripting/dictionary.h"

namespace vicenter::dialogs {

namespace {

using automation::Variant;
using center::EntryGrid;
using testing::ElementsAre;

class Window : public frmSetColumeView {
  public:
    void Unload() override { ++unloads; }
    int unloads = 0;
};

std::vector<std::string> Captions(const frmSetColume& dialog) {
    std::vector<std::string> captions;
    for (const ColumnChoice& choice : dialog.ColList())
        captions.push_back(choice.caption);
    return captions;
}

std::vector<int> ItemData(const frmSetColume& dialog) {
    std::vector<int> columns;
    for (const ColumnChoice& choice : dialog.ColList())
        columns.push_back(choice.column);
    return columns;
}

std::vector<int> Ticked(const frmSetColume& dialog) {
    std::vector<int> columns;
    for (const ColumnChoice& choice : dialog.ColList()) {
        if (choice.ticked) columns.push_back(choice.column);
    }
    return columns;
}

class GridMode : public testing::Test {
  protected:
    GridMode() {
        dialog_.SetGrid(grid_);
        dialog_.Load(window_);
    }
    std::vector<int> Hidden() const {
        std::vector<int> hidden;
        for (int c = 1; c <= center::kColumnCount; ++c) {
            if (grid_->Layout(c).hidden) hidden.push_back(c);
        }
        return hidden;
    }

    std::shared_ptr<EntryGrid> grid_ = std::make_shared<EntryGrid>();
    Window window_;
    frmSetColume dialog_;
};

class SelectionMode : public testing::Test {
  protected:
    SelectionMode() {
        dialog_.SetSelectionMode(true);
        dialog_.SetSelection(selection_);
    }
    void Choose(const char* key, std::int32_t item) {
        selection_->Call("Add", {Variant(key), Variant(item)});
    }
    // "7=1" and so on, in the dictionary's order.
    std::vector<std::string> Chosen() const {
        std::vector<std::string> texts;
        const automation::VariantArray keys = selection_->Call("Keys").AsArray();
        for (const Variant& key : keys)
            texts.push_back(key.ToText() + "=" + selection_->Get("Item", {key}).ToText());
        return texts;
    }

    automation::ObjectRef selection_ = std::make_shared<scripting::Dictionary>();
    Window window_;
    frmSetColume dialog_;
};

}  // namespace

TEST_F(GridMode, TheListHoldsTwelveOptionalColumnsInTheirOrder) {
    EXPECT_THAT(Captions(dialog_), ElementsAre("附件数", "结算方式", "结算号", "核算项目", "币别", "汇率",
                                               "原币金额", "计量单位", "数量", "单价", "金额", "备注"));
    EXPECT_THAT(ItemData(dialog_), ElementsAre(7, 9, 10, 11, 13, 14, 15, 17, 18, 19, 20, 21));
}

TEST_F(GridMode, AColumnIsTickedWhenItIsShown) {
    EXPECT_THAT(Ticked(dialog_), ElementsAre(7, 21));
    grid_->SetColumnHidden(7, true);
    grid_->SetColumnHidden(11, false);
    dialog_.Load(window_);
    EXPECT_THAT(Ticked(dialog_), ElementsAre(11, 21));
    EXPECT_TRUE(dialog_.ShowsApply());
}

TEST_F(GridMode, OkAppliesAndCloses) {
    dialog_.SetTick(0, false);
    dialog_.SetTick(3, true);
    dialog_.Command(0);
    EXPECT_TRUE(grid_->Layout(7).hidden);
    EXPECT_FALSE(grid_->Layout(11).hidden);
    EXPECT_EQ(window_.unloads, 1);
}

TEST_F(GridMode, ApplyWritesAtOnceAndStaysOpen) {
    dialog_.SetTick(10, true);
    dialog_.Command(1);
    EXPECT_FALSE(grid_->Layout(20).hidden);
    EXPECT_EQ(window_.unloads, 0);
}

TEST_F(GridMode, CancelAfterApplyKeepsWhatApplyDid) {
    dialog_.SetTick(10, true);
    dialog_.Command(1);
    dialog_.SetTick(0, false);
    dialog_.Command(2);
    EXPECT_FALSE(grid_->Layout(20).hidden);
    EXPECT_FALSE(grid_->Layout(7).hidden);
    EXPECT_EQ(window_.unloads, 1);
}

TEST_F(GridMode, CancelAloneChangesNothing) {
    const std::vector<int> before = Hidden();
    for (std::size_t row = 0; row < dialog_.ColList().size(); ++row)
        dialog_.SetTick(row, true);
    dialog_.Command(2);
    EXPECT_EQ(Hidden(), before);
}

TEST_F(GridMode, ColumnsOutsideTheListAreNeverTouched) {
    grid_->SetColumnHidden(5, true);
    grid_->SetColumnHidden(4, false);
    for (std::size_t row = 0; row < dialog_.ColList().size(); ++row)
        dialog_.SetTick(row, true);
    dialog_.Command(1);
    EXPECT_THAT(Hidden(), ElementsAre(5, 8, 12, 16));
}

TEST_F(GridMode, WidthsStayAsTheyAre) {
    grid_->SetColumnWidth(7, 123.5);
    dialog_.SetTick(0, false);
    dialog_.Command(1);
    EXPECT_EQ(grid_->Layout(7).width, 123.5);
}

TEST_F(GridMode, AnUnknownButtonOrRowDoesNothing) {
    const std::vector<int> before = Hidden();
    dialog_.SetTick(99, true);
    dialog_.Command(3);
    dialog_.Command(-1);
    EXPECT_EQ(Hidden(), before);
    EXPECT_EQ(window_.unloads, 0);
}

TEST_F(SelectionMode, TheListHasElevenRowsAndNoRemark) {
    dialog_.Load(window_);
    EXPECT_EQ(dialog_.ColList().size(), 11U);
    EXPECT_EQ(dialog_.ColList().back().caption, "金额");
    EXPECT_EQ(dialog_.Caption(), "模板字段设置");
    EXPECT_FALSE(dialog_.ShowsApply());
}

TEST_F(SelectionMode, TicksComeFromTheDictionary) {
    Choose("7", 1);
    Choose("9", 0);
    Choose("20", 1);
    dialog_.Load(window_);
    EXPECT_THAT(Ticked(dialog_), ElementsAre(7, 20));
}

TEST_F(SelectionMode, LoadingAddsNoKey) {
    dialog_.Load(window_);
    EXPECT_EQ(selection_->Get("Count").ToInt32(), 0);
}

TEST_F(SelectionMode, OkFillsAnEmptyDictionaryAndCloses) {
    dialog_.Load(window_);
    dialog_.SetTick(1, true);
    dialog_.Command(0);
    EXPECT_THAT(Chosen(), ElementsAre("7=0", "9=1", "10=0", "11=0", "13=0", "14=0", "15=0", "17=0", "18=0",
                                      "19=0", "20=0"));
    EXPECT_EQ(window_.unloads, 1);
    EXPECT_EQ(dialog_.Selection(), selection_);
}

TEST_F(SelectionMode, OkReplacesTheItemsOfKeysThatAreThere) {
    Choose("9", 1);
    Choose("7", 1);
    dialog_.Load(window_);
    dialog_.SetTick(0, false);
    dialog_.SetTick(10, true);
    dialog_.Command(0);
    EXPECT_EQ(selection_->Get("Item", {Variant("7")}).ToInt32(), 0);
    EXPECT_EQ(selection_->Get("Item", {Variant("9")}).ToInt32(), 1);
    EXPECT_EQ(selection_->Get("Item", {Variant("20")}).ToInt32(), 1);
    EXPECT_EQ(selection_->Get("Count").ToInt32(), 11);
    // And once more, as at the second use of the dialog.
    dialog_.Load(window_);
    EXPECT_THAT(Ticked(dialog_), ElementsAre(9, 20));
    dialog_.Command(0);
    EXPECT_EQ(selection_->Get("Count").ToInt32(), 11);
}

TEST_F(SelectionMode, CancelAndTheHiddenApplyLeaveTheDictionaryAlone) {
    dialog_.Load(window_);
    dialog_.SetTick(0, true);
    dialog_.Command(1);
    EXPECT_EQ(window_.unloads, 0);
    dialog_.Command(2);
    EXPECT_EQ(window_.unloads, 1);
    EXPECT_EQ(selection_->Get("Count").ToInt32(), 0);
}

}  // namespace vicenter::dialogs
