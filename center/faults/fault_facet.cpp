#include "center/faults/fault_facet.h"

#include <algorithm>
#include <filesystem>

#include "center/frame/window_parts.h"
#include "platform/system/files.h"

namespace vicenter::center {

namespace {

void OpenWorkbook(const std::string& file) {
    std::error_code failed;
    if (!std::filesystem::exists(system::PathFromUtf8(file), failed)) {
        Tell("工作簿已不存在，请更正后重新引入！\r\n\r\n" + file);
        return;
    }
    try {
        system::Surroundings::Current().processes->OpenDocument(file);
    } catch (const automation::Error&) {
        Tell("没有可以打开工作簿的程序，请自行打开后更正！\r\n\r\n" + file);
    }
}

}  // namespace

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

const std::vector<ReportedFault>& FaultFacet::Reported() {
    return parts_.reported.All();
}

void FaultFacet::OpenReported(const ReportedFault& fault) {
    parts_.edge.Command([&] {
        if (fault.kind == FaultSource::Workbook) {
            OpenWorkbook(fault.source);
            return;
        }
        for (const TreeNode& node : parts_.tree.Nodes()) {
            if (node.text != fault.source || node.key == kRootKey) continue;
            parts_.tree.NodeClick(node.key);
            if (fault.kind == FaultSource::Template) GoToLine(fault.fault);
            return;
        }
        if (fault.kind == FaultSource::Template) {
            Tell("模板“" + fault.source + "”已不存在！");
            return;
        }
        Tell("模板“" + fault.source + "”没有生成，请更正凭证后重新生成！");
    });
}

// In the template that has just been opened, unless its lines are fewer now or the user kept another one
// open.
void FaultFacet::GoToLine(const store::LineFault& fault) {
    const OpenTemplate& open = parts_.state.open;
    if (parts_.tree.SelectedKey() != std::string(kTemplateKeyHead) + open.Id()) return;
    if (fault.row < 1 || fault.row > open.RowCount()) return;
    GoTo({fault.row, std::max(fault.column, column::kNo)});
}

void FaultFacet::SaveMarkedCopy(const std::string& workbook) {
    parts_.edge.Command([&] {
        if (parts_.commands != nullptr) parts_.commands->SaveMarkedCopy(parts_.window, workbook);
    });
}

void FaultFacet::ImportTidily(const std::string& workbook) {
    parts_.edge.Command([&] { parts_.RunImport({workbook}, true); });
}

void FaultFacet::DropReported(const std::vector<std::size_t>& places) {
    parts_.reported.Drop(places);
    parts_.ReportsChanged();
}

}  // namespace vicenter::center
