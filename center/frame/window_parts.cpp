#include "center/frame/window_parts.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "automation/quietly.h"
#include "center/editing/fault_text.h"
#include "center/frame/account_names.h"
#include "center/template/line_loader.h"
#include "store/template_outcome.h"

namespace vicenter::center {

namespace {

constexpr const char* kOrderKey = "grid.order";
constexpr const char* kFrozenKey = "grid.frozen-places";
constexpr const char* kFirstSixKey = "grid.frozen";  // kept as on or off: the first six

const char* KeyOf(EntryAid aid) {
    switch (aid) {
        case EntryAid::Proposals:
            return "entry.proposals";
        case EntryAid::PassingBy:
            return "entry.passing-by";
    }
    return "";
}

}  // namespace

WindowParts::WindowParts(VICenterView& view, TemplateCommands* theCommands, CommandTarget& theWindow)
    : state(view),
      commands(theCommands),
      window(theWindow),
      profile(state),
      editing(state),
      proposals(state),
      taking(state, editing, proposals),
      kept(state),
      drafts(state, kept),
      tree(
          state, [this] { return save.ConfirmUnsavedChanges(); }, [this] { drafts.Leaving(); },
          [this] {
              state.view.TellDone({}, {});  // what was done was done to another
              state.accounts.Forget();
              state.uses.Forget();
              LookOverStored();
              ReportsFollowTemplate();
              drafts.Opened();
              editing.Forget();
              RefreshPanels();
          }),
      refused(state),
      faults(state),
      save(state, kept, drafts, refused, SaveActions()),
      lookUps(state),
      items(state),
      names(state),
      blocks(state, [this] { RefreshPanels(); }),
      patterns(state, [this] { RefreshPanels(); }),
      edge(
          state,
          [this] {
              state.view.CommitTyping();
              editing.FinishTyping();
          },
          [this] {
              drafts.SetDeclined(false);
              automation::Quietly([this] { AskOfNewAccounts(); });
          }) {
    state.grid->AddObserver(*this);
    state.accounts.OnLearned([this] {
        faults.AccountLearned();
        FaultsChanged();
    });
}

WindowParts::~WindowParts() {
    state.grid->RemoveObserver(*this);
}

TemplateSaveActions WindowParts::SaveActions() {
    TemplateSaveActions actions;
    actions.reload = [this] { return Reload(); };
    actions.showAgain = [this](const std::string& id) { return tree.ShowAgain(id); };
    actions.undo = [this] { editing.Undo(); };
    actions.refused = [this] {
        faults.AddMissing();
        FaultsChanged();
        RefreshStatus();
    };
    actions.refreshStatus = [this] { RefreshStatus(); };
    return actions;
}

bool WindowParts::Reload() {
    CellAddress active = state.grid->ActiveCell();
    // The lines come back sorted by number; the cursor stays on the line where the user was working.
    active.row = RowOnceSorted(*state.grid, state.open.RowCount(), active.row);
    const bool read = tree.Reload();
    MarkUnusable();
    if (active.row >= 1 && active.row <= state.open.RowCount() + 1) {
        state.grid->SetActiveCell(active);
        state.grid->ScrollIntoView(active);
    }
    return read;
}

const NumberSums& WindowParts::Sums() {
    if (!sums || sums->RowCount() != state.open.RowCount()) sums.emplace(*state.grid, state.open.RowCount());
    return *sums;
}

SheetHead WindowParts::Head() const {
    AccountNames whose = NamesOfAccount();
    return {state.open.Name(), std::move(whose.accountSet), std::move(whose.user)};
}

void WindowParts::RefreshStatus() {
    StatusState status = Sums().Status(*state.grid, state.grid->ActiveCell().row);
    if (!selection.IsEmpty()) status.selectionSum = SumOfSelection(*state.grid, selection);
    const CellAddress active = state.grid->ActiveCell();
    status.hint = state.open.Notice();
    if (status.hint.empty()) status.hint = FaultText(*state.grid, active);
    if (status.hint.empty()) status.hint = faults.HiddenFaultText(active.row);
    if (status.hint.empty()) status.hint = faults.HintText(active);
    status.hints = faults.HintCount() + reported.HintCount();
    status.faults = faults.Count() + static_cast<int>(reported.All().size()) - reported.HintCount();
    state.view.SetStatus(status);
}

void WindowParts::RefreshPanels() {
    names.Close();
    items.Refresh();
    RefreshStatus();
}

void WindowParts::ReadSettings() {
    settings.Open(state.userId);
    showsTotals = settings.IsOn(kTotalsSetting, false);
    for (const EntryAid aid : {EntryAid::Proposals, EntryAid::PassingBy})
        Switch(aid, settings.IsOn(KeyOf(aid), true));
    ApplyColumnOrder(*state.grid, settings.Text(kOrderKey));
    const std::string frozen = settings.Text(kFrozenKey);
    frozenPlaces = settings.IsOn(kFirstSixKey, false) ? 6 : 0;
    std::from_chars(frozen.data(), frozen.data() + frozen.size(), frozenPlaces);
    frozenPlaces = std::clamp(frozenPlaces, 0, kColumnCount);
}

bool WindowParts::IsOn(EntryAid aid) const {
    switch (aid) {
        case EntryAid::Proposals:
            return proposals.IsOn();
        case EntryAid::PassingBy:
            return passesBy;
    }
    return false;
}

void WindowParts::SetOn(EntryAid aid, bool on) {
    Switch(aid, on);
    settings.PutOn(KeyOf(aid), on);
}

void WindowParts::SetColumnOrder(const ColumnOrder& order) {
    state.grid->SetOrder(order);
    settings.Put(kOrderKey, ColumnOrderText(*state.grid));
}

void WindowParts::SetFrozenPlaces(int places) {
    frozenPlaces = std::clamp(places, 0, kColumnCount);
    settings.Put(kFirstSixKey, {});
    settings.Put(kFrozenKey, frozenPlaces == 0 ? std::string() : std::to_string(frozenPlaces));
}

void WindowParts::Switch(EntryAid aid, bool on) {
    switch (aid) {
        case EntryAid::Proposals:
            proposals.SetOn(on);
            break;
        case EntryAid::PassingBy:
            passesBy = on;
            break;
    }
}

void WindowParts::ActiveCellChanged(const CellAddress&) {
    proposals.ActiveCellChanged();
    RefreshPanels();
}

void WindowParts::ContentChanged() {
    kept.Touched();
    drafts.Changed();
}

void WindowParts::RowsInserted(int firstRow, int count) {
    sums.reset();
    newAccounts = true;
    proposals.RowsInserted(firstRow, count);
    refused.RowsInserted(firstRow, count);
    faults.RowsInserted(firstRow, count);
    FaultsChanged();
    if (firstRow <= state.open.RowCount() + 1) ContentChanged();
}

void WindowParts::RowsRemoved(int firstRow, int count) {
    sums.reset();
    proposals.RowsRemoved(firstRow, count);
    refused.RowsRemoved(firstRow, count);
    faults.RowsRemoved(firstRow, count);
    FaultsChanged();
    if (firstRow <= state.open.RowCount() + 1) ContentChanged();
}

void WindowParts::WasReset() {
    sums.reset();
    proposals.WasReset();
    refused.WasReset();
    faults.WasReset();
    FaultsChanged();
}

// The status line says where its sums stand.
void WindowParts::ColumnsChanged(int firstColumn, int lastColumn) {
    if (firstColumn <= column::kAmount && column::kAmount <= lastColumn) RefreshStatus();
}

// What is stored is what the user has finished: nothing that it lacks is still to come.
void WindowParts::LookOverStored() {
    if (!state.open.LinesKnown()) return;
    newAccounts = true;
    AskOfNewAccounts();
    faults.AddMissing();
}

void WindowParts::AskOfNewAccounts() {
    if (state.open.IsOpen() && std::exchange(newAccounts, false))
        state.accounts.AskOfLines(*state.grid, state.open.RowCount());
}

void WindowParts::FaultsChanged() {
    state.view.FaultsChanged();
}

void WindowParts::ReportsChanged() {
    FaultsChanged();
    RefreshStatus();
}

void WindowParts::ReportsFollowTemplate() {
    // What has been deleted has no faults left.
    if (tree.KeyOfTemplate(reported.ShownId(), reported.ShownName()).empty() &&
        reported.ShownId() != state.open.Id())
        reported.ReplaceSteppedBack({});
    reported.Show(state.open.Id(), state.open.Name());
    if (!reported.SteppedBack().empty() && state.open.LinesKnown()) {
        std::vector<store::LineFault> stored;
        for (const CellAddress& cell : faults.Cells()) {
            Fault fault = faults.Describe(cell);
            stored.push_back({cell.row, cell.column, std::string(Column(cell.column).header),
                              std::move(fault.value), std::move(fault.reason), fault.hint});
        }
        reported.ReplaceSteppedBack(stored);
    }
    FaultsChanged();
}

void WindowParts::LooksChanged(const CellRange& range) {
    faults.CellsChanged(range);
    FaultsChanged();
}

void WindowParts::MarkUnusable() {
    if (!offersDrafts) return;
    const auto templates = store::ReadTemplatesWithUnusableNumbers(state.userId);
    if (!templates) return;
    std::vector<std::string> keys;
    for (const std::string& id : *templates)
        keys.push_back(std::string(kTemplateKeyHead) + id);
    state.view.SetUnusableNodes(keys);
}

void WindowParts::TextsChanged(const CellRange& range) {
    sums.reset();
    if (range.firstColumn <= column::kAccountNumber && column::kAccountNumber <= range.lastColumn)
        newAccounts = true;
    ContentChanged();
    proposals.TextsChanged();
    refused.TextsChanged();
    faults.CellsChanged(range);
    FaultsChanged();
    const CellAddress active = state.grid->ActiveCell();
    const bool touchesItems = range.firstRow <= active.row && active.row <= range.lastRow &&
                              range.firstColumn <= column::kItems &&
                              range.lastColumn >= column::kAccountNumber;
    if (touchesItems && active.column == column::kItems) items.Refresh();
}

}  // namespace vicenter::center
