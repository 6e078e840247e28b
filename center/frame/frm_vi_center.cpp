#include "center/frame/frm_vi_center.h"

#include "center/frame/account_names.h"
#include "center/frame/help.h"
#include "center/frame/key_code.h"
#include "center/frame/rights.h"
#include "center/frame/window_parts.h"
#include "entry/host_context.h"
#include "entry/host_services.h"
#include "platform/ado/connection.h"
#include "store/cls_vi_data.h"
#include "store/failure_text.h"

namespace vicenter::center {

using entry::LogKind;

// --- the window system

frmVICenter::frmVICenter(VICenterView& view, TemplateCommands* commands)
    : parts_(std::make_unique<WindowParts>(view, commands, *this)) {}

frmVICenter::~frmVICenter() = default;

TreeActions& frmVICenter::Tree() {
    return parts_->treeFacet;
}

GridActions& frmVICenter::Cells() {
    return parts_->gridFacet;
}

ItemActions& frmVICenter::Items() {
    return parts_->itemFacet;
}

NameListActions& frmVICenter::Names() {
    return parts_->nameListFacet;
}

FaultActions& frmVICenter::Faults() {
    return parts_->faultFacet;
}

SearchActions& frmVICenter::Search() {
    return parts_->searchFacet;
}

void frmVICenter::Load() {
    WindowState& state = parts_->state;
    {
        // Another window's command may go on.
        const entry::SessionScope ofHost({});
        state.userId = entry::GetPropValue("UserID");
        try {
            state.propsString = entry::GetPropsString();
        } catch (const automation::Error&) {
            // Whatever asks the account set tells it.
        }
    }
    entry::SetCurrentUserId(state.userId);
    const entry::SessionScope own({state.userId, state.propsString});
    const AccountNames names = NamesOfAccount();
    state.view.SetAccount(names.accountSet, names.user);
    parts_->drafts.Open();
    parts_->ReadSettings();
    store::clsVIData::ForgetFailure();
    parts_->tree.Build();
    state.Enable({Tool::Del, Tool::DelRow, Tool::AddRow, Tool::Share}, false);
    state.grid->SetRowHeights(RowHeights().header, RowHeights().data);
    state.grid->Clear(kFirstRowTotal);
    parts_->profile.Apply();
    // The columns' cell types and the list of column 3 are fixed by the column table.
    parts_->tree.OpenAtLoad();
    state.view.PlaceProgressFrame(PlaceProgress(state.view.WindowSize()));
    entry::WriteOperationLog(LogKind::Requested, "凭证模板-打开");
    const TemplateRight right = AskTemplateRight();
    state.security = right.security;
    state.hasRight = right.granted;
    state.rightsFailure = right.failure;
    if (!state.hasRight) state.view.SetGridInteractive(false);
}

void frmVICenter::Shown() {
    parts_->edge.Look([&] {
        // The standard template is in every tree that has been read.
        if (parts_->tree.KeyOfTemplate(std::to_string(store::kStandardTemplateId), {}).empty()) {
            Tell(store::WithReason("凭证模板未能读取，请检查账套连接后重新打开凭证模板！"));
        } else if (!parts_->state.open.LinesKnown()) {
            parts_->tree.TellUnreadable();
        }
        if (!RightsFailure().empty()) Tell(RightsFailure());
        parts_->offersDrafts = true;
        parts_->MarkUnusable();
        parts_->OfferNewestDraft();
    });
}

void frmVICenter::KeepDraft(const std::optional<TypedText>& typed) {
    parts_->edge.Look([&] { parts_->drafts.Keep(typed); });
}

void frmVICenter::Activate() {
    parts_->edge.Look([&] { parts_->profile.ApplyBillFont(); });
}

bool frmVICenter::StaysOpen() {
    return parts_->edge.Command([&] {
        if (parts_->drafts.Keep()) return false;
        return Ask("当前凭证模板修改后未保存，也未能保留为草稿（磁盘可能已满），关闭后这些修改将丢失。请确认"
                   "是否关闭？",
                   system::MessageButtons::YesNo) != system::MessageResult::Yes;
    });
}

void frmVICenter::Closing() {
    parts_->state.closing = true;
}

void frmVICenter::Unload() {
    parts_->edge.Last([&] {
        parts_->drafts.Close();
        parts_->profile.Save();
        parts_->state.security.reset();
        entry::WriteOperationLog(LogKind::Closed, "凭证模板-关闭");
    });
    BringHome();
}

void frmVICenter::BringHome() {
    ado::RestConnections();
}

bool frmVICenter::KeyPreview(int keyCode) {
    if (keyCode != key_code::kF1) return false;
    ShowHelp();
    return true;
}

void frmVICenter::ToolClick(std::string_view key) {
    for (const ToolSpec& spec : Tools()) {
        if (automation::SameName(spec.key, key)) return parts_->ClickTool(spec.tool);
    }
}

void frmVICenter::FilesDropped(const std::vector<std::string>& fileNames) {
    if (fileNames.empty()) return;
    parts_->edge.Command([&] {
        parts_->RunImport(fileNames);
        parts_->MarkUnusable();
    });
}

// --- what other folders use

const std::string& frmVICenter::SelectedNode() const {
    return parts_->tree.SelectedKey();
}

const std::vector<TreeNode>& frmVICenter::Nodes() const {
    return parts_->tree.Nodes();
}

const std::string& frmVICenter::TemplateId() const {
    return parts_->state.open.Id();
}

const std::string& frmVICenter::TemplateName() const {
    return parts_->state.open.Name();
}

int frmVICenter::RowCount() const {
    return parts_->state.open.RowCount();
}

EntryGrid& frmVICenter::Grid() {
    return *parts_->state.grid;
}

void frmVICenter::ShowProgress(const ProgressState& state) {
    parts_->state.view.SetProgress(state);
}

bool frmVICenter::ProgressCancelled() {
    return parts_->state.view.ProgressCancelled();
}

void frmVICenter::RebuildTreeAndSelect(std::int32_t id) {
    parts_->tree.RebuildAndSelect(id);
}

void frmVICenter::ShowStoredTemplate(std::int32_t id) {
    parts_->tree.ShowStored(id);
}

void frmVICenter::ReportFaults(const FaultReport& report) {
    parts_->reported.Take(report);
    parts_->ReportsChanged();
    if (!report.faults.empty()) parts_->state.view.ShowFaults();
}

void frmVICenter::TellDone(const std::string& text, const std::string& file) {
    parts_->state.view.TellDone(text, file);
}

void frmVICenter::RunHostCommand(std::string_view name) {
    if (parts_->commands == nullptr) return;
    for (const TreeMenuItem& item : parts_->commands->MenuItems()) {
        if (item.name == name) return parts_->edge.Command(item.run);
    }
}

void frmVICenter::OpenDocument(const std::string& file) {
    parts_->edge.Look([&] {
        try {
            system::Surroundings::Current().processes->OpenDocument(file);
        } catch (const automation::Error&) {
            Tell("文件未能打开！\r\n\r\n" + file);
        }
    });
}

const std::shared_ptr<EntryGrid>& frmVICenter::GridObject() const {
    return parts_->state.grid;
}

std::int32_t frmVICenter::CurrentEntryCount() const {
    return parts_->state.open.EntryCount();
}

bool frmVICenter::IsDirty() const {
    return parts_->state.open.IsDirty();
}

bool frmVICenter::HasRight() const {
    return parts_->state.hasRight;
}

const std::string& frmVICenter::RightsFailure() const {
    return parts_->state.rightsFailure;
}

bool frmVICenter::Save() {
    return parts_->edge.Command([&] { return parts_->save.Save(); });
}

bool frmVICenter::ConfirmUnsavedChanges() {
    return parts_->edge.Command([&] { return parts_->save.ConfirmUnsavedChanges(); });
}

}  // namespace vicenter::center
