// The command dispatcher: what each tool of the bar does, in which order, with which log entries.

#include "center/frame/rights.h"
#include "center/frame/window_parts.h"
#include "dialogs/frm_search.h"
#include "dialogs/frm_set_colume.h"
#include "entry/host_services.h"
#include "store/stoppable_command.h"

namespace vicenter::center {

using entry::LogKind;

namespace {

void LogRequest(const char* text) {
    entry::WriteOperationLog(LogKind::Requested, text);
}

}  // namespace

bool WindowParts::RefusedForRight() {
    if (state.hasRight) return false;
    Tell(kNoRight);
    return true;
}

void WindowParts::ClickTool(Tool tool) {
    edge.Command([&] {
        // Others have dialogs, where another try is no part of what was stopped.
        std::optional<store::StoppableCommand> command;
        if (tool == Tool::Save) command.emplace();
        RunTool(tool);
        if (tool != Tool::Quit) MarkUnusable();
    });
}

void WindowParts::RunTool(Tool tool) {
    const auto gate = [this] { return save.ConfirmUnsavedChanges(); };
    switch (tool) {
        case Tool::Quit:
            if (gate()) state.view.CloseWindow();
            break;
        case Tool::New:
            LogRequest("凭证模板-新增模板");
            if (RefusedForRight() || !gate()) break;
            if (tree.CreateTemplate()) {
                entry::WriteOperationLog(LogKind::Succeeded, "凭证模板-新增模板成功");
            }
            break;
        case Tool::Del:
            LogRequest("凭证模板-删除模板");
            if (!RefusedForRight() && tree.PassGate()) tree.DeleteSelected();
            break;
        case Tool::PrcFind:
            if (gate()) ShowFind();
            break;
        case Tool::Save:
            LogRequest("凭证模板-保存模板 ");
            if (!RefusedForRight()) save.Save();
            break;
        case Tool::ShowCol:
            ShowColumns();
            break;
        case Tool::DelRow:
            if (RefusedForRight()) break;
            editing.DeleteRow();
            RefreshPanels();
            break;
        case Tool::AddRow:
            if (RefusedForRight()) break;
            editing.InsertRow();
            RefreshPanels();
            break;
        case Tool::Imp:
            RunImport({});
            break;
        case Tool::Exp:
            LogRequest("凭证模板-引出模板");
            if (gate() && commands != nullptr) commands->Export(window);
            break;
        case Tool::CloudP:
            LogRequest("凭证模板-上传云盘");
            if (gate() && commands != nullptr) commands->UploadToCloud(window);
            break;
        case Tool::AutoVch:
            LogRequest("凭证模板-通过凭证生成模板");
            if (gate() && commands != nullptr) commands->GenerateFromVouchers(window);
            break;
        case Tool::Share:
            // Known, and deliberately without effect.
            break;
    }
}

void WindowParts::RunImport(const std::vector<std::string>& fileNames, bool tidily) {
    LogRequest("凭证模板-引入模板");
    if (RefusedForRight() || !save.ConfirmUnsavedChanges() || commands == nullptr) return;
    if (fileNames.empty()) {
        commands->Import(window);
    } else if (tidily) {
        commands->ImportTidily(window, fileNames.front());
    } else {
        commands->ImportFiles(window, fileNames);
    }
}

void WindowParts::ShowFind() {
    dialogs::FrmSearch dialog;
    dialog.SetGrid(state.grid);
    dialog.SetEntryCount(state.open.EntryCount());
    state.view.ShowFindDialog(dialog);
}

void WindowParts::ShowColumns() {
    dialogs::frmSetColume dialog;
    dialog.SetGrid(state.grid);
    state.view.ShowColumnDialog(dialog);
    if (!profile.Save()) Tell("列设置未能读取，本次的调整不会保存！");
}

}  // namespace vicenter::center
