// The late-bound members of the entry grid, by the spread control's names.

#include <algorithm>
#include <utility>

#include "center/grid/entry_grid.h"

namespace vicenter::center {

namespace {

using automation::ArgumentNames;
using automation::Arguments;
using automation::IndexedProperty;
using automation::Member;
using automation::Method;
using automation::Property;
using automation::Variant;

constexpr int kWholeSheet = -1;

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

// How members that are alike are made.
struct EntryGrid::LateBound {
    using Grid = EntryGrid;
    using Entry = Member<Grid>;

    // A bound of the current block.
    static Entry Bound(const char* name, int Selection::*field) {
        return Property<Grid>(
            name, [field](Grid& g, Arguments&) { return Variant(std::int32_t{g.selection_.*field}); },
            [field](Grid& g, Arguments& a) { g.selection_.*field = Int(a, 0); });
    }
    static Entry BlockText(const char* name) {
        return Property<Grid>(
            name, [](Grid& g, Arguments&) { return g.SelectedText(); },
            [](Grid& g, Arguments& a) { g.SetSelectedText(a[0].Value().ToTextOrEmpty()); });
    }
    static Entry Color(const char* name, std::int32_t CellLook::*field,
                       void (Grid::*set)(const CellRange&, std::int32_t)) {
        return Property<Grid>(
            name,
            [field](Grid& g, Arguments&) {
                const CellRange at = g.SelectedRange();
                return Variant(g.Look(at.firstRow, at.firstColumn).*field);
            },
            [set](Grid& g, Arguments& a) { (g.*set)(g.SelectedRange(), Int(a, 0)); });
    }
    // Of the current column, and never changed.
    template <class Value>
    static Entry OfColumn(const char* name, Value value) {
        return Property<Grid>(name, [value](Grid& g, Arguments&) {
            return Variant(value(Column(CheckedColumn(g.selection_.column))));
        });
    }
    static Entry Active(const char* name, int CellAddress::*field) {
        return Property<Grid>(
            name, [field](Grid& g, Arguments&) { return Variant(std::int32_t{g.ActiveCell().*field}); });
    }
    static Entry ColHidden() {
        return Property<Grid>(
            "ColHidden",
            [](Grid& g, Arguments&) { return Variant(g.Layout(CheckedColumn(g.selection_.column)).hidden); },
            [](Grid& g, Arguments& a) {
                g.SetColumnHidden(CheckedColumn(g.selection_.column), a[0].Value().ToBoolean());
            });
    }
    static Entry ColWidth() {
        return IndexedProperty<Grid>(
            "ColWidth", {"Col"},
            [](Grid& g, Arguments& a) { return Variant(g.Layout(CheckedColumn(Int(a, 0))).width); },
            [](Grid& g, Arguments& a) {
                g.SetColumnWidth(CheckedColumn(Int(a, 0)), a[1].Value().ToDouble());
            });
    }
    static Entry RowHeight() {
        return IndexedProperty<Grid>("RowHeight", {"Row"}, [](Grid& g, Arguments& a) {
            return Variant(std::int32_t{Int(a, 0) == 0 ? g.HeaderHeight() : g.RowHeight()});
        });
    }
    static Entry FontName() {
        return Property<Grid>(
            "FontName", [](Grid& g, Arguments&) { return Variant(g.Font().name); },
            [](Grid& g, Arguments& a) {
                g.SetFont({a[0].Value().ToText(), g.Font().size});
            });
    }
    static Entry FontSize() {
        return Property<Grid>(
            "FontSize", [](Grid& g, Arguments&) { return Variant(g.Font().size); },
            [](Grid& g, Arguments& a) {
                g.SetFont({g.Font().name, a[0].Value().ToDouble()});
            });
    }
    // A method without a result.
    template <class Work>
    static Entry Action(const char* name, ArgumentNames names, Work work) {
        return Method<Grid>(name, std::move(names), [work](Grid& g, Arguments& a) {
            work(g, a);
            return Variant();
        });
    }
};
const automation::MemberTable<EntryGrid>& EntryGrid::Members() {
    using Grid = EntryGrid;
    using Late = LateBound;
    static const automation::MemberTable<Grid> table{
        Late::Bound("Row", &Selection::row),
        Late::Bound("Col", &Selection::column),
        Late::Bound("Row2", &Selection::row2),
        Late::Bound("Col2", &Selection::column2),
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
        Late::BlockText("Text"),
        Late::BlockText("Value"),
        Late::Color("ForeColor", &CellLook::foreColor, &Grid::SetForeColor),
        Late::Color("BackColor", &CellLook::backColor, &Grid::SetBackColor),
        Late::ColHidden(),
        Late::ColWidth(),
        Late::RowHeight(),
        Late::OfColumn("Lock", [](const ColumnSpec& c) { return c.locked; }),
        Late::OfColumn("TypeMaxEditLen", [](const ColumnSpec& c) { return std::int32_t{c.maxCharacters}; }),
        Property<Grid>("TypeComboBoxList",
                       [](Grid& g, Arguments&) {
                           return g.selection_.column == column::kDirection ? Variant(kDirectionList)
                                                                            : Variant("");
                       }),
        Late::Active("ActiveRow", &CellAddress::row),
        Late::Active("ActiveCol", &CellAddress::column),
        Late::FontName(),
        Late::FontSize(),
        Late::Action("SetActiveCell", {"Col", "Row"},
                     [](Grid& g, Arguments& a) {
                         g.SetActiveCell({Int(a, 1), Int(a, 0)});
                     }),
        Late::Action("ShowCell", {"Col", "Row", "Position?"},
                     [](Grid& g, Arguments& a) {
                         g.ScrollIntoView({Int(a, 1), Int(a, 0)});
                     }),
        Method<Grid>("GetText", {"Col", "Row", "Var"},
                     [](Grid& g, Arguments& a) {
                         const std::string_view text = g.Text(Int(a, 1), Int(a, 0));
                         a[2].Assign(Variant(text));
                         return Variant(!text.empty());
                     }),
        Late::Action(
            "SetText", {"Col", "Row", "Var"},
            [](Grid& g, Arguments& a) { g.SetText(Int(a, 1), Int(a, 0), a[2].Value().ToTextOrEmpty()); }),
        Late::Action("InsertRows", {"Row", "Rows"},
                     [](Grid& g, Arguments& a) { g.InsertRows(Int(a, 0), Int(a, 1)); }),
        Late::Action("DeleteRows", {"Row", "Rows"},
                     [](Grid& g, Arguments& a) { g.RemoveRows(Int(a, 0), Int(a, 1)); }),
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
