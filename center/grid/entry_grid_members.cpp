// The late-bound members of the entry grid, by the spread control's names.

#include <algorithm>

#include "center/grid/entry_grid.h"

namespace vicenter::center {

namespace {

using automation::Arguments;
using automation::IndexedProperty;
using automation::Member;
using automation::Method;
using automation::Property;
using automation::Variant;

constexpr int kWholeSheet = -1;

Variant Color(std::int32_t value) {
    return Variant(value);
}

int Int(const Arguments& arguments, std::size_t index) {
    return arguments[index].Value().ToInt32();
}

}  // namespace

CellRange EntryGrid::SelectedRange() const {
    const auto span = [](int from, int to, int last) {
        if (from == kWholeSheet) return std::pair{1, last};
        return std::pair{std::min(from, to), std::max(from, to)};
    };
    const auto [firstRow, lastRow] =
        span(selection_.row, selection_.block ? selection_.row2 : selection_.row, RowTotal());
    const auto [firstColumn, lastColumn] =
        span(selection_.column, selection_.block ? selection_.column2 : selection_.column, kColumnCount);
    return {firstRow, firstColumn, lastRow, lastColumn};
}

const automation::MemberTable<EntryGrid>& EntryGrid::Members() {
    using Grid = EntryGrid;
    const auto number = [](const char* name, int Selection::*field) {
        return Property<Grid>(
            name, [field](Grid& g, Arguments&) { return Variant(std::int32_t{g.selection_.*field}); },
            [field](Grid& g, Arguments& a) { g.selection_.*field = Int(a, 0); });
    };
    static const automation::MemberTable<Grid> table{
        number("Row", &Selection::row),
        number("Col", &Selection::column),
        number("Row2", &Selection::row2),
        number("Col2", &Selection::column2),
        Property<Grid>(
            "BlockMode", [](Grid& g, Arguments&) { return Variant(g.selection_.block); },
            [](Grid& g, Arguments& a) { g.selection_.block = a[0].Value().ToBoolean(); }),
        Property<Grid>(
            "ReDraw", [](Grid& g, Arguments&) { return Variant(g.ReDraw()); },
            [](Grid& g, Arguments& a) { g.SetReDraw(a[0].Value().ToBoolean()); }),
        Property<Grid>(
            "MaxRows", [](Grid& g, Arguments&) { return Variant(std::int32_t{g.RowTotal()}); },
            [](Grid& g, Arguments& a) { g.SetRowTotal(Int(a, 0)); }),
        Property<Grid>("MaxCols", [](Grid&, Arguments&) { return Variant(std::int32_t{kColumnCount}); }),
        Property<Grid>(
            "Text", [](Grid& g, Arguments&) { return g.SelectedText(); },
            [](Grid& g, Arguments& a) { g.SetSelectedText(a[0].Value().ToTextOrEmpty()); }),
        Property<Grid>(
            "Value", [](Grid& g, Arguments&) { return g.SelectedText(); },
            [](Grid& g, Arguments& a) { g.SetSelectedText(a[0].Value().ToTextOrEmpty()); }),
        Property<Grid>(
            "ForeColor",
            [](Grid& g, Arguments&) {
                const CellRange at = g.SelectedRange();
                return Color(g.Look(at.firstRow, at.firstColumn).foreColor);
            },
            [](Grid& g, Arguments& a) { g.SetForeColor(g.SelectedRange(), Int(a, 0)); }),
        Property<Grid>(
            "BackColor",
            [](Grid& g, Arguments&) {
                const CellRange at = g.SelectedRange();
                return Color(g.Look(at.firstRow, at.firstColumn).backColor);
            },
            [](Grid& g, Arguments& a) { g.SetBackColor(g.SelectedRange(), Int(a, 0)); }),
        Property<Grid>(
            "ColHidden",
            [](Grid& g, Arguments&) { return Variant(g.Layout(CheckedColumn(g.selection_.column)).hidden); },
            [](Grid& g, Arguments& a) {
                g.SetColumnHidden(CheckedColumn(g.selection_.column), a[0].Value().ToBoolean());
            }),
        IndexedProperty<Grid>(
            "ColWidth", {"Col"},
            [](Grid& g, Arguments& a) { return Variant(g.Layout(CheckedColumn(Int(a, 0))).width); },
            [](Grid& g, Arguments& a) {
                g.SetColumnWidth(CheckedColumn(Int(a, 0)), a[1].Value().ToDouble());
            }),
        IndexedProperty<Grid>("RowHeight", {"Row"},
                              [](Grid& g, Arguments& a) {
                                  return Variant(
                                      std::int32_t{Int(a, 0) == 0 ? g.HeaderHeight() : g.RowHeight()});
                              }),
        Property<Grid>(
            "Lock",
            [](Grid& g, Arguments&) { return Variant(Column(CheckedColumn(g.selection_.column)).locked); }),
        Property<Grid>("TypeMaxEditLen",
                       [](Grid& g, Arguments&) {
                           return Variant(
                               std::int32_t{Column(CheckedColumn(g.selection_.column)).maxCharacters});
                       }),
        Property<Grid>("TypeComboBoxList",
                       [](Grid& g, Arguments&) {
                           return g.selection_.column == column::kDirection ? Variant(kDirectionList)
                                                                            : Variant("");
                       }),
        Property<Grid>("ActiveRow",
                       [](Grid& g, Arguments&) { return Variant(std::int32_t{g.ActiveCell().row}); }),
        Property<Grid>("ActiveCol",
                       [](Grid& g, Arguments&) { return Variant(std::int32_t{g.ActiveCell().column}); }),
        Property<Grid>(
            "FontName", [](Grid& g, Arguments&) { return Variant(g.Font().name); },
            [](Grid& g, Arguments& a) {
                g.SetFont({a[0].Value().ToText(), g.Font().size});
            }),
        Property<Grid>(
            "FontSize", [](Grid& g, Arguments&) { return Variant(g.Font().size); },
            [](Grid& g, Arguments& a) {
                g.SetFont({g.Font().name, a[0].Value().ToDouble()});
            }),
        Method<Grid>("SetActiveCell", {"Col", "Row"},
                     [](Grid& g, Arguments& a) {
                         g.SetActiveCell({Int(a, 1), Int(a, 0)});
                         return Variant();
                     }),
        Method<Grid>("ShowCell", {"Col", "Row", "Position?"},
                     [](Grid& g, Arguments& a) {
                         g.ScrollIntoView({Int(a, 1), Int(a, 0)});
                         return Variant();
                     }),
        Method<Grid>("GetText", {"Col", "Row", "Var"},
                     [](Grid& g, Arguments& a) {
                         const std::string_view text = g.Text(Int(a, 1), Int(a, 0));
                         a[2].Assign(Variant(text));
                         return Variant(!text.empty());
                     }),
        Method<Grid>("SetText", {"Col", "Row", "Var"},
                     [](Grid& g, Arguments& a) {
                         g.SetText(Int(a, 1), Int(a, 0), a[2].Value().ToTextOrEmpty());
                         return Variant();
                     }),
        Method<Grid>("InsertRows", {"Row", "Rows"},
                     [](Grid& g, Arguments& a) {
                         g.InsertRows(Int(a, 0), Int(a, 1));
                         return Variant();
                     }),
        Method<Grid>("DeleteRows", {"Row", "Rows"},
                     [](Grid& g, Arguments& a) {
                         g.RemoveRows(Int(a, 0), Int(a, 1));
                         return Variant();
                     }),
    };
    return table;
}

int EntryGrid::CheckedColumn(int gridColumn) {
    if (gridColumn < 1 || gridColumn > kColumnCount) {
        throw automation::Error(automation::error_number::kInvalidProcedureCall, {}, "vaSpread");
    }
    return gridColumn;
}

automation::Variant EntryGrid::SelectedText() const {
    if (selection_.row == 0) return Variant(Column(CheckedColumn(selection_.column)).header);
    const CellRange at = SelectedRange();
    return Variant(Text(at.firstRow, at.firstColumn));
}

void EntryGrid::SetSelectedText(const std::string& text) {
    const CellRange range = SelectedRange();
    for (int row = range.firstRow; row <= range.lastRow; ++row) {
        for (int c = range.firstColumn; c <= range.lastColumn; ++c)
            SetText(row, c, text);
    }
}

}  // namespace vicenter::center
