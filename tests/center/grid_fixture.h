#pragma once

// The parts of the window that work on the grid, on a scripted account set and without a window.

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "center/editing/block_editing.h"
#include "center/editing/cell_checks.h"
#include "center/editing/grid_editing.h"
#include "center/frame/silent_view.h"
#include "center/frame/window_state.h"
#include "center/grid/column_profile.h"
#include "entry/host_context.h"
#include "store/statements.h"
#include "tests/fakes/fake_account_set.h"
#include "tests/fakes/fake_surroundings.h"
#include "tests/fakes/scripted_object.h"

namespace vicenter::center {

using automation::Variant;
using fakes::Rows;
using Texts = std::vector<std::string>;

inline void PrintTo(const CellAddress& cell, std::ostream* out) {
    *out << "(" << cell.row << ", " << cell.column << ")";
}
inline void PrintTo(const CellRange& range, std::ostream* out) {
    *out << "(" << range.firstRow << ", " << range.firstColumn << " to " << range.lastRow << ", "
         << range.lastColumn << ")";
}

// A view that keeps what the grid's side of the window tells it.
class NotingView : public SilentView {
  public:
    void SetProgress(const ProgressState& state) override { progress.push_back(state); }
    int ApplyFont(const std::string& name, double size) override {
        fonts.push_back({name, size});
        return labelHeight;
    }
    Size WindowSize() const override { return {12000, 9000}; }

    std::vector<ProgressState> progress;
    std::vector<GridFont> fonts;
    int labelHeight = 180;
};

// Writes down what a grid tells its observers, one text per call.
class GridDiary : public GridObserver {
  public:
    explicit GridDiary(EntryGrid& grid) : grid_(grid) { grid_.AddObserver(*this); }
    GridDiary(const GridDiary&) = delete;
    GridDiary& operator=(const GridDiary&) = delete;
    ~GridDiary() override { grid_.RemoveObserver(*this); }

    void TextsChanged(const CellRange& range) override { Note("texts", range); }
    void LooksChanged(const CellRange& range) override { Note("looks", range); }
    void RowsAboutToBeInserted(int first, int count) override { Note("inserting", first, count); }
    void RowsInserted(int first, int count) override { Note("inserted", first, count); }
    void RowsAboutToBeRemoved(int first, int count) override { Note("removing", first, count); }
    void RowsRemoved(int first, int count) override { Note("removed", first, count); }
    void AboutToReset() override { entries.emplace_back("resetting"); }
    void WasReset() override { entries.emplace_back("reset"); }
    void ColumnsChanged(int first, int last) override { Note("columns", first, last); }
    void RowHeightsChanged() override { entries.emplace_back("heights"); }
    void FontChanged() override { entries.emplace_back("font"); }
    void ActiveCellChanged(const CellAddress& cell) override { Note("active", cell.row, cell.column); }
    void ScrolledIntoView(const CellAddress& cell) override { Note("scrolled", cell.row, cell.column); }

    Texts Take() { return std::exchange(entries, {}); }
    Texts entries;

  private:
    void Note(const char* what, int a, int b) {
        entries.push_back(std::string(what) + " " + std::to_string(a) + " " + std::to_string(b));
    }
    void Note(const char* what, const CellRange& range) {
        entries.push_back(std::string(what) + " " + std::to_string(range.firstRow) + "," +
                          std::to_string(range.firstColumn) + ".." + std::to_string(range.lastRow) + "," +
                          std::to_string(range.lastColumn));
    }

    EntryGrid& grid_;
};

// An account set that knows a handful of master data:
//   accounts 1001 库存现金 (id 1, no bank, currency 1), 1002 银行存款 (id 2, bank, every currency),
//   1403 原材料 (id 3, unit group 7), 1122 应收账款 (id 4, item classes 1 and 2); 10 is no detail account;
//   settlement types 01 支票 (id 51), currencies RMB 人民币 (1) and USD 美元 (2), units KG 千克 (group 7),
//   explanations 1 提现 (account 1001) and 2 付款 (no account), customers C1, departments D1.
class LedgerOfAFew {
  public:
    explicit LedgerOfAFew(fakes::FakeAccountSet& set) {
        Account(set, "1001", 1, "库存现金", false, 1);
        Account(set, "1002", 2, "银行存款", true, 0);
        Account(set, "1403", 3, "原材料", false, 1);
        Account(set, "1122", 4, "应收账款", false, 1);
        Account(set, "0101", 5, "零一", false, 1);
        set.Answer("select FAccountID,FNumber,FName from t_Account where FNumber = '10'",
                   Rows({"FAccountID", "FNumber", "FName"}, {{Variant(9), "10", "流动资产"}}));
        set.Answer("select FItemID,FName from t_Settle where FNumber='01'",
                   Rows({"FItemID", "FName"}, {{Variant(51), "支票"}}));
        set.Answer("select FItemID from t_Settle where FName = '支票'", Rows({"FItemID"}, {{Variant(51)}}));
        Currency(set, "RMB", 1, "人民币");
        Currency(set, "USD", 2, "美元");
        set.Answer("select FUnitGroupID,FName from t_MeasureUnit where FNumber = 'KG'",
                   Rows({"FUnitGroupID", "FName"}, {{Variant(7), "千克"}}));
        set.Respond("select FMeasureUnitID from t_MeasureUnit", [](const std::string& sql) {
            const bool fits =
                sql.find("'1403'") != std::string::npos && sql.find("'千克'") != std::string::npos;
            return fits ? Rows({"FMeasureUnitID"}, {{Variant(71)}}) : Rows({"FMeasureUnitID"});
        });
        Explanation(set, "1", "提现", 1, "1001", "库存现金");
        Explanation(set, "2", "付款", 0, "", "");
        set.Respond("select a.FItemClassID,b.FSQLTableName", [](const std::string& sql) {
            if (sql.find("'1122'") == std::string::npos) return Rows({"FItemClassID", "FSQLTableName"});
            return Rows({"FItemClassID", "FSQLTableName"},
                        {{Variant(1), "t_Organization"}, {Variant(2), "t_Department"}});
        });
        set.Answer("from t_Organization where fnumber = 'C1'", Rows({"FItemID"}, {{Variant(101)}}));
        set.Answer("from t_Department where fnumber = 'D1'", Rows({"FItemID"}, {{Variant(201)}}));
    }

  private:
    static void Account(fakes::FakeAccountSet& set, const std::string& number, int id,
                        const std::string& name, bool bank, int currency) {
        const std::string where = " from t_Account where FNumber = '" + number + "'";
        set.Answer("select FAccountID,FNumber,FName" + where,
                   Rows({"FAccountID", "FNumber", "FName"}, {{Variant(id), number, name}}));
        set.Answer("select *" + where, Rows({"FAccountID"}, {{Variant(id)}}));
        set.Answer("select FIsBank" + where, Rows({"FIsBank"}, {{Variant(bank ? 1 : 0)}}));
        set.Answer("select FCurrencyID" + where, Rows({"FCurrencyID"}, {{Variant(currency)}}));
    }
    static void Currency(fakes::FakeAccountSet& set, const std::string& number, int id,
                         const std::string& name) {
        set.Answer("select FCurrencyID,FName from t_Currency where FNumber = '" + number + "'",
                   Rows({"FCurrencyID", "FName"}, {{Variant(id), name}}));
        set.Answer("select FCurrencyID from t_Currency where FName = '" + name + "'",
                   Rows({"FCurrencyID"}, {{Variant(id)}}));
    }
    static void Explanation(fakes::FakeAccountSet& set, const std::string& code, const std::string& text,
                            int accountId, const std::string& number, const std::string& name) {
        set.Answer("on a.FAccountID = b.FAccountID where a.FNumber = '" + code + "'",
                   Rows({"FExplanation", "FAccountID", "FNumber", "FName"},
                        {{text, Variant(accountId), number, name}}));
    }
};

class GridTest : public testing::Test {
  protected:
    GridTest() {
        entry::PresetPropsString("UserID=16394;");
        entry::SetCurrentUserId("16394");
        state_.userId = "16394";
        state_.open.Become("5", "自定义模板(1)");
        state_.hasRight = true;
    }
    ~GridTest() override {
        entry::PresetPropsString("");
        entry::SetCurrentUserId("");
    }

    EntryGrid& Grid() { return *state_.grid; }
    std::string Text(int row, int gridColumn) { return std::string(Grid().Text(row, gridColumn)); }
    std::int32_t Color(int row, int gridColumn) { return Grid().Look(row, gridColumn).foreColor; }
    const Texts Messages() const { return surroundings_.messageBoxes->Texts(); }
    // Puts a text into column 1 of the first rows, as typed work that has been saved.
    void UseRows(int rows) {
        for (int row = 1; row <= rows; ++row)
            Grid().SetText(row, column::kNo, std::to_string(row));
        state_.open.TakeRows(rows);
        state_.open.Settle();
        state_.open.Journal().Drop();
    }
    // The questions put to the account set about a table.
    int Questions(const std::string& part) const {
        int count = 0;
        for (const std::string& sql : set_.Statements())
            count += sql.find(part) != std::string::npos ? 1 : 0;
        return count;
    }

    automation::ClassRegistry::Restore restore_;
    fakes::FakeSurroundings surroundings_;
    fakes::FakeAccountSet set_;
    LedgerOfAFew ledger_{set_};
    NotingView view_;
    WindowState state_{view_};
};

}  // namespace vicenter::center
