#include "center/frame/frm_vi_center.h"

#include "automation/class_registry.h"
#include "center/editing/fault_text.h"
#include "center/frame/account_set_care.h"
#include "center/frame/frm_vi_center_parts.h"
#include "center/frame/help.h"
#include "center/template/line_loader.h"
#include "entry/host_context.h"
#include "entry/host_services.h"
#include "platform/ado/connection.h"
#include "store/cls_vi_data.h"

namespace vicenter::center {

using automation::Argument;
using automation::Variant;
using entry::LogKind;

namespace {

// The voucher-template function to the host's rights system.
constexpr std::int32_t kTemplateRight = 3145728;

}  // namespace

// --- parts

frmVICenter::Parts::Parts(VICenterView& view, TemplateCommands* theCommands)
    : state(view),
      commands(theCommands),
      profile(state),
      editing(state),
      kept(state),
      drafts(state, kept),
      tree(
          state, [this] { return save.ConfirmUnsavedChanges(); }, [this] { drafts.Leaving(); },
          [this] {
              drafts.Opened();
              editing.Forget();
              RefreshSurroundings();
          }),
      save(state, kept, drafts, SaveActions()),
      lookUps(state),
      items(state),
      names(state),
      blocks(state, [this] { RefreshSurroundings(); }) {
    state.grid->AddObserver(*this);
}

frmVICenter::Parts::~Parts() {
    state.grid->RemoveObserver(*this);
}

TemplateSaveActions frmVICenter::Parts::SaveActions() {
    TemplateSaveActions actions;
    actions.reload = [this] { return Reload(); };
    actions.readTreeAgain = [this](const std::string& id) { tree.ReadAgain(id); };
    actions.insertTemplate = [this] { return tree.InsertTemplate(); };
    actions.undo = [this] { editing.Undo(); };
    actions.refreshStatus = [this] { RefreshStatus(); };
    return actions;
}

bool frmVICenter::Parts::Reload() {
    CellAddress active = state.grid->ActiveCell();
    // The lines come back sorted by number; the cursor stays on the line where the user was working.
    active.row = RowOnceSorted(*state.grid, state.rowCount, active.row);
    const bool read = tree.Reload();
    if (active.row >= 1 && active.row <= state.rowCount + 1) {
        state.grid->SetActiveCell(active);
        state.grid->ScrollIntoView(active);
    }
    return read;
}

void frmVICenter::Parts::RefreshStatus() {
    if (!sums || sums->RowCount() != state.rowCount) sums.emplace(*state.grid, state.rowCount);
    StatusState status = sums->Status(*state.grid, state.grid->ActiveCell().row);
    if (!selection.IsEmpty()) status.selectionSum = SumOfSelection(*state.grid, selection);
    const CellAddress active = state.grid->ActiveCell();
    status.hint = state.notice.empty() ? FaultText(*state.grid, active) : state.notice;
    state.view.SetStatus(status);
}

void frmVICenter::Parts::RefreshSurroundings() {
    names.Close();
    items.Refresh();
    RefreshStatus();
}

void frmVICenter::Parts::ActiveCellChanged(const CellAddress&) {
    RefreshSurroundings();
}

void frmVICenter::Parts::ContentChanged() {
    kept.Touched();
    drafts.Changed();
}

void frmVICenter::Parts::RowsInserted(int firstRow, int /*count*/) {
    sums.reset();
    if (firstRow <= state.rowCount + 1) ContentChanged();
}

void frmVICenter::Parts::RowsRemoved(int firstRow, int /*count*/) {
    sums.reset();
    if (firstRow <= state.rowCount + 1) ContentChanged();
}

void frmVICenter::Parts::WasReset() {
    sums.reset();
}

void frmVICenter::Parts::TextsChanged(const CellRange& range) {
    sums.reset();
    ContentChanged();
    const CellAddress active = state.grid->ActiveCell();
    const bool touchesItems = range.firstRow <= active.row && active.row <= range.lastRow &&
                              range.firstColumn <= column::kItems &&
                              range.lastColumn >= column::kAccountNumber;
    if (touchesItems && active.column == column::kItems) items.Refresh();
}

// --- the window system

frmVICenter::frmVICenter(VICenterView& view, TemplateCommands* commands)
    : parts_(std::make_unique<Parts>(view, commands)) {}

frmVICenter::~frmVICenter() = default;

void frmVICenter::Load() {
    WindowState& state = parts_->state;
    state.userId = entry::GetPropValue("UserID");
    entry::SetCurrentUserId(state.userId);
    state.templateId.clear();
    state.entryCount = 0;
    parts_->drafts.Open();
    parts_->tree.Build();
    state.Enable({Tool::Del, Tool::DelRow, Tool::AddRow, Tool::Share}, false);
    state.grid->SetRowHeights(RowHeights().header, RowHeights().data);
    state.grid->Clear(kFirstRowTotal);
    parts_->profile.Apply();
    // The columns' cell types and the list of column 3 are fixed by the column table.
    parts_->tree.OpenAtLoad();
    state.view.PlaceProgressFrame(PlaceProgress(state.view.WindowSize()));
    entry::WriteOperationLog(LogKind::Requested, "凭证模板-打开");
    try {
        state.security = automation::CreateObject("VelaEBSBase.SecurityInfo");
        state.hasRight =
            state.security
                ->Call("AccessCheck", {Argument(entry::GetPropsString()), Argument(std::int16_t{4}),
                                       Argument(std::int16_t{4}), Argument(kTemplateRight)})
                .ToBoolean();
    } catch (const automation::Error&) {
        state.hasRight = false;
    }
    if (!state.hasRight) state.view.SetGridInteractive(false);
}

void frmVICenter::Shown() {
    AtEdge([&] {
        const entry::UserScope user(parts_->state.userId);
        if (!parts_->state.linesKnown) parts_->tree.TellUnreadable();
        parts_->offersDrafts = true;
        parts_->OfferNewestDraft();
    });
}

void frmVICenter::UserRests() {
    AtEdge([&] { parts_->drafts.Keep(); });
}

void frmVICenter::Activate() {
    AtEdge([&] { parts_->profile.ApplyBillFont(); });
}

void frmVICenter::Unload() {
    AtEdge([&] {
        parts_->editing.FinishTyping();
        parts_->drafts.Close();
        parts_->profile.Save();
        parts_->state.security.reset();
        entry::WriteOperationLog(LogKind::Closed, "凭证模板-关闭");
    });
    Rest();
}

void frmVICenter::Rest() {
    ado::RestConnections();
}

bool frmVICenter::KeyPreview(int keyCode) {
    if (keyCode != key_code::kF1) return false;
    ShowHelp();
    return true;
}

void frmVICenter::ToolClick(std::string_view key) {
    for (const ToolSpec& spec : Tools()) {
        if (!automation::SameName(spec.key, key)) continue;
        AtEdge([&] {
            const entry::UserScope user(parts_->state.userId);
            parts_->RunCommand(spec.tool, *this);
            parts_->drafts.SetDeclined(false);
        });
        return;
    }
}

void frmVICenter::FileDropped(const std::string& fileName) {
    AtEdge([&] {
        const entry::UserScope user(parts_->state.userId);
        parts_->RunImport(*this, fileName);
    });
}

// --- tree

void frmVICenter::TreeGotFocus() {
    parts_->tree.GotFocus();
}

void frmVICenter::TreeLostFocus() {
    parts_->tree.LostFocus();
}

void frmVICenter::TreeNodeClick(const std::string& key) {
    AtEdge([&] {
        const entry::UserScope user(parts_->state.userId);
        parts_->editing.FinishTyping();
        parts_->tree.NodeClick(key);
        parts_->OfferDraftOfOpenTemplate();
    });
}

void frmVICenter::TreeDoubleClick() {
    AtEdge([&] {
        const entry::UserScope user(parts_->state.userId);
        parts_->editing.FinishTyping();
        parts_->tree.DoubleClick();
    });
}

bool frmVICenter::TreeBeforeLabelEdit() {
    return parts_->tree.BeforeLabelEdit();
}

bool frmVICenter::TreeAfterLabelEdit(const std::string& newText) {
    bool stands = false;
    AtEdge([&] { stands = parts_->tree.AfterLabelEdit(newText); });
    return stands;
}

bool frmVICenter::TreeEditsLabels() const {
    return parts_->tree.EditsLabels();
}

bool frmVICenter::OffersAccountSetCare() const {
    return AccountSetCare::IsOffered();
}

void frmVICenter::BackUpAccountSet() {
    AtEdge([this] {
        parts_->editing.FinishTyping();
        AccountSetCare::BackUp(parts_->state.dirty);
    });
}

void frmVICenter::VerifyAccountSet() {
    AtEdge([] { AccountSetCare::Verify(); });
}

const std::string& frmVICenter::SelectedNode() const {
    return parts_->tree.SelectedKey();
}

const std::vector<TreeNode>& frmVICenter::Nodes() const {
    return parts_->tree.Nodes();
}

// --- what other folders use

const std::string& frmVICenter::TemplateId() const {
    return parts_->state.templateId;
}

const std::string& frmVICenter::TemplateName() const {
    return parts_->state.templateName;
}

int frmVICenter::RowCount() const {
    return parts_->state.rowCount;
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

const std::shared_ptr<EntryGrid>& frmVICenter::GridObject() const {
    return parts_->state.grid;
}

std::int32_t frmVICenter::CurrentEntryCount() const {
    return parts_->state.entryCount;
}

bool frmVICenter::IsDirty() const {
    return parts_->state.dirty;
}

bool frmVICenter::HasRight() const {
    return parts_->state.hasRight;
}

const ToolStates& frmVICenter::EnabledTools() const {
    return parts_->state.tools;
}

bool frmVICenter::Save() {
    bool saved = false;
    AtEdge([&] {
        const entry::UserScope user(parts_->state.userId);
        parts_->editing.FinishTyping();
        saved = parts_->save.Save();
    });
    return saved;
}

bool frmVICenter::ConfirmUnsavedChanges() {
    bool mayGoOn = false;
    AtEdge([&] {
        const entry::UserScope user(parts_->state.userId);
        parts_->editing.FinishTyping();
        mayGoOn = parts_->save.ConfirmUnsavedChanges();
    });
    return mayGoOn;
}

}  // namespace vicenter::center
