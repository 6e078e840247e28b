#include "center/faults/fault_facet.h"

#include "center/frame/window_parts.h"

namespace vicenter::center {

std::vector<CellAddress> FaultFacet::Cells() {
    return parts_.faults.Cells();
}

Fault FaultFacet::Describe(const CellAddress& cell) {
    return parts_.edge.Look([&] { return parts_.faults.Describe(cell); });
}

void FaultFacet::GoTo(const CellAddress& cell) {
    parts_.edge.Command([&] {
        EntryGrid& grid = *parts_.state.grid;
        if (grid.Layout(cell.column).hidden) grid.SetColumnHidden(cell.column, false);
        parts_.editing.MoveActiveCell(cell);
        parts_.state.view.FocusGrid();
    });
}

void FaultFacet::GoToNext(bool back) {
    const std::optional<CellAddress> next =
        parts_.edge.Command([&] { return parts_.faults.Next(parts_.state.grid->ActiveCell(), back); });
    if (next) GoTo(*next);
}

}  // namespace vicenter::center
