#include "center/template/template_save.h"

#include <unordered_set>

#include "center/editing/cell_rules.h"
#include "center/lookups/cell_resolution.h"
#include "center/template/save_as.h"
#include "entry/host_services.h"
#include "platform/system/utf8.h"
#include "store/cls_vi_data.h"
#include "store/stoppable_command.h"
#include "store/template_batches.h"
#include "store/template_guard.h"
#include "store/template_history.h"

namespace vicenter::center {

using automation::Error;
using entry::LogKind;
using system::MessageButtons;
using system::MessageResult;

namespace {

// explains: the row is the first of its number, which needs an explanation: it becomes the number's key.
void CollectFindings(const EntryGrid& grid, int r, bool explains, std::vector<Finding>& findings) {
    const auto add = [&](int gridColumn, const std::string& reason) {
        findings.push_back({r, gridColumn, "行" + std::to_string(r) + " " + reason, reason});
    };
    const std::string_view number = grid.Text(r, column::kNo);
    if (number.empty()) {
        add(column::kNo, "模板编号(*) 不允许为空，请进行设置！");
    } else if (explains && grid.Text(r, column::kExplanation).empty()) {
        add(column::kExplanation, "凭证模板 " + std::string(number) + " 号第一行摘要为空，请录入摘要！");
    }
    if (system::TrimBlanks(grid.Text(r, column::kDirection)).empty())
        add(column::kDirection, "借贷方向(*) 不允许为空，请进行设置！");
    if (grid.Text(r, column::kAccountNumber).empty())
        add(column::kAccountNumber, "科目编码(*) 不允许为空，请进行设置！");
    if (grid.Text(r, column::kAccountName).empty())
        add(column::kAccountName, "科目名称(*) 不允许为空，请进行设置！");
    // What the user gave and the column refused is nowhere to be saved.
    for (int c = 1; c <= kColumnCount; ++c) {
        const TextVerdict refusal = grid.Refusal(r, c);
        if (refusal == TextVerdict::Taken || refusal == TextVerdict::NotLookedUp) continue;
        add(c, std::string(Column(c).header) + " " + VerdictText(refusal, c) + "，请进行更正！");
    }
}

// Row by row until enough has been seen.
template <class Enough>
std::vector<Finding> FindingsUntil(const EntryGrid& grid, int rowCount, Enough enough) {
    std::vector<Finding> findings;
    std::unordered_set<std::string> seen;
    for (int r = 1; r <= rowCount && !enough(findings); ++r)
        CollectFindings(grid, r, seen.emplace(grid.Text(r, column::kNo)).second, findings);
    return findings;
}

}  // namespace

std::optional<Finding> ValidateLines(const EntryGrid& grid, int rowCount) {
    const std::vector<Finding> findings =
        FindingsUntil(grid, rowCount, [](const std::vector<Finding>& found) { return !found.empty(); });
    return findings.empty() ? std::nullopt : std::optional(findings.front());
}

std::vector<Finding> AllFindings(const EntryGrid& grid, int rowCount) {
    return FindingsUntil(grid, rowCount, [](const std::vector<Finding>&) { return false; });
}

std::vector<Finding> FindingsOfRow(const EntryGrid& grid, int row) {
    const std::string_view number = grid.Text(row, column::kNo);
    int first = 1;
    // Whoever has an explanation need not be asked whether it is the first.
    const bool explained = !grid.Text(row, column::kExplanation).empty();
    while (!explained && first < row && grid.Text(first, column::kNo) != number)
        ++first;
    std::vector<Finding> findings;
    CollectFindings(grid, row, first == row, findings);
    return findings;
}

std::string BuildSaveBatch(const EntryGrid& grid, int rowCount, const std::string& templateId) {
    return store::SaveBatch(templateId, rowCount, [&grid](int row, int c) { return grid.Text(row, c); });
}

store::TemplateOutcome SendTemplate(const EntryGrid& grid, int rowCount, const SeenTemplate& seen) {
    using State = store::TemplateOutcome::State;
    using Obstacle = store::KeptVersions::Obstacle;
    bool stored = false;
    try {
        store::KeptVersions before({seen}, store::HistoryCommand::Save);
        const bool asked = before.InTheWay() == Obstacle::NotAsSeen;
        if (asked && before.Found().back().fate != TemplateFate::Unknown)
            return {State::NotAsSeen, 0, {}, before.Found().back()};
        if (!before.MayWrite()) {
            if (!asked && !store::StoppableCommand::IsStopped()) Tell(before.WhyNot("没有保存"));
            TellSaveFailed(seen.name);
            return {State::Failed};
        }
        // A rejected batch has been shown to the user by then; the messages of a success follow all the same.
        // The user has not rejected anything by stopping: that ends the save.
        stored = before.RunAndCommit(BuildSaveBatch(grid, rowCount, seen.id));
        if (!stored && store::StoppableCommand::IsStopped()) {
            TellSaveFailed(seen.name);
            return {State::Failed};
        }
    } catch (const Error&) {
        TellSaveFailed(seen.name);
        return {State::Failed};
    }
    try {
        const auto unusable = store::ReadUnusableNumbers(seen.id);
        // It is stored, and whoever does not wait for what could be told of it is told that with the reload.
        if (!unusable && stored && store::StoppableCommand::IsStopped()) {
            entry::WriteOperationLog(LogKind::Succeeded, "凭证模板-保存模板 " + seen.name + " 成功");
            return {State::Saved, automation::Variant(seen.id).ToInt32()};
        }
        if (!unusable) throw Error(automation::error_number::kObjectVariableNotSet);
        Tell(store::WithUnusableNote("模板 " + seen.name + " 保存成功！", unusable));
        entry::WriteOperationLog(LogKind::Succeeded, "凭证模板-保存模板 " + seen.name + " 成功");
        return {stored ? State::Saved : State::Refused, automation::Variant(seen.id).ToInt32()};
    } catch (const Error&) {
        TellSaveFailed(seen.name);
        return {stored ? State::SavedUntold : State::Failed};
    }
}

std::string StoppedNote() {
    return store::StoppableCommand::IsStopped() ? "\r\n\r\n操作已取消，没有保存任何内容，录入的分录保持不变。"
                                                : "";
}

void TellSaveFailed(const std::string& name) {
    Tell("模板 " + name + " 保存失败！" + StoppedNote());
    entry::WriteOperationLog(LogKind::Succeeded, "凭证模板-保存模板 " + name + " 失败");
}

bool ConfirmEmptyTemplate() {
    return Ask("当前模板模板信息为空，您确认要保存么？", MessageButtons::OkCancel) == MessageResult::Ok;
}

TemplateSave::TemplateSave(WindowState& state, KeptLines& kept, TemplateDrafts& drafts, RefusedLine& refused,
                           TemplateSaveActions actions)
    : state_(state), kept_(kept), drafts_(drafts), refused_(refused), actions_(std::move(actions)) {}

bool TemplateSave::Save() {
    const store::StoppableCommand command;
    if (!state_.open.IsOpen() || !state_.open.IsDirty()) return false;
    if (!state_.open.LinesKnown() || store::StoppableCommand::IsStopped()) {
        // The batch replaces every line: what nobody has seen is not to be lost to the few that were typed.
        TellSaveFailed(state_.open.Name());
        return false;
    }
    // After a save that was refused the window shows what is stored; what is tried again is what was typed.
    if (kept_.IsPending()) actions_.undo();
    return Validate() && SendAs(SeenOpen(state_.open, state_.userId));
}

bool TemplateSave::SendAs(SeenTemplate seen) {
    using State = store::TemplateOutcome::State;
    bool asked = false;
    store::TemplateOutcome sent = SendTemplate(*state_.grid, state_.open.RowCount(), seen);
    while (sent.state == State::NotAsSeen) {
        // What the user is asked about is what there is: when it is not that either by then, once more.
        switch (AskHowToSave(seen, sent.found)) {
            case SaveChoice::Overwrite:
                seen = sent.found.now;
                asked = true;
                sent = SendTemplate(*state_.grid, state_.open.RowCount(), seen);
                break;
            case SaveChoice::KeepAsNew:
                return SendAsNewTemplate();
            case SaveChoice::LookAtTheirs:
                sent.found = LookAtTheirs(sent.found.now);
                if (sent.found.fate == TemplateFate::AsSeen || sent.found.fate == TemplateFate::Unknown)
                    return false;
                break;
            case SaveChoice::Leave:
                return false;
        }
    }
    return ShowSent(sent, asked);
}

bool TemplateSave::ShowSent(const store::TemplateOutcome& outcome, bool treeToo) {
    using State = store::TemplateOutcome::State;
    const State sent = outcome.state;
    // Nobody else has changed the template: the next save must not ask whether to overwrite it.
    if (sent == State::SavedUntold) {
        const FoundTemplate stored = store::LookAgain(SeenOpen(state_.open, state_.userId));
        state_.open.TypedUpon(stored.now.lines.value_or(state_.open.Loaded()));
    }
    if (sent == State::Failed || sent == State::SavedUntold) return false;
    const LinesDigest loadedBefore = state_.open.Loaded();
    if (sent == State::Refused) kept_.Take();
    bool reloaded = true;
    {
        const TemplateDrafts::Hold hold(drafts_);
        treeToo = treeToo && actions_.showAgain(state_.open.Id());
        reloaded = treeToo ? state_.open.LinesKnown() : actions_.reload();
    }
    const std::string name = state_.open.Name();
    state_.open.Settle();
    if (sent == State::Refused) {
        KeepRefused(reloaded, loadedBefore);
        return true;
    }
    drafts_.Drop();
    state_.view.TellDone("模板 " + name + " 已保存", {});
    if (!reloaded && !treeToo) {
        Tell("模板 " + name + " 已保存，但未能重新读取，请重新打开该模板！");
    }
    return true;
}

// The typed lines are one step of undo away, and the template counts as modified as long as they are.
void TemplateSave::KeepRefused(bool reloaded, const LinesDigest& loadedBefore) {
    if (reloaded) {
        if (kept_.OfferUndo("保存被拒绝，按 Ctrl+Z 找回保存前的分录")) state_.open.CountAsModified();
    } else {
        // Nothing has been written and nothing read: the window is as it was before the save.
        kept_.PutBack();
        state_.open.TypedUpon(loadedBefore);
    }
    drafts_.Changed();
    drafts_.Keep();
    actions_.refreshStatus();
}

// The template and its lines are there together or not at all.
bool TemplateSave::SendAsNewTemplate() {
    const std::string name = store::clsVIData().NewTemplateName();
    if (name.empty()) {
        TellSaveFailed(state_.open.Name());
        return false;
    }
    const store::TemplateOutcome sent =
        SaveLinesAs(*state_.grid, state_.open.RowCount(), name, state_.userId);
    if (!sent) return false;
    state_.open.Become(std::to_string(sent.id), name);
    state_.view.SetTemplateName(name);
    return ShowSent(sent, true);
}

FoundTemplate TemplateSave::LookAtTheirs(const SeenTemplate& theirs) {
    FoundTemplate found = store::LookAgain(theirs);
    // Other lines than a moment ago are still theirs.
    if (found.fate == TemplateFate::Changed && !found.HasOtherName(theirs)) found.fate = TemplateFate::AsSeen;
    if (found.fate == TemplateFate::Gone || found.fate == TemplateFate::Changed) return found;
    const LinesDigest loadedBefore = state_.open.Loaded();
    kept_.Take();
    bool shown = false;
    {
        const TemplateDrafts::Hold hold(drafts_);
        shown = found.fate == TemplateFate::AsSeen && actions_.showAgain(theirs.id);
    }
    if (shown && state_.open.LinesKnown()) {
        drafts_.Drop();
        kept_.OfferUndo("按 Ctrl+Z 找回您修改的分录");
    } else {
        if (shown) {
            kept_.PutBack();
            state_.open.TypedUpon(loadedBefore);
        }
        drafts_.Changed();
        drafts_.Keep();
        found.fate = TemplateFate::Unknown;
        Tell("模板 " + theirs.name + " 无法读取，窗口中的分录保持不变，请稍后再试！");
    }
    actions_.refreshStatus();
    return found;
}

// What could not be read while it was typed is asked about once more before it is stored.
std::optional<Finding> TemplateSave::FindUnread() {
    const UndoStep step(state_.open);
    const std::optional<CellAddress> cell = AskAgain(*state_.grid, state_.open.RowCount());
    if (!cell) return std::nullopt;
    const std::string reason = std::string(Column(cell->column).header) + " " +
                               UnreadableText(state_.grid->Text(cell->row, cell->column)) +
                               "，请稍后再保存！";
    return Finding{cell->row, cell->column, "行" + std::to_string(cell->row) + " " + reason, reason};
}

bool TemplateSave::Validate() {
    if (state_.open.RowCount() == 0) return ConfirmEmptyTemplate();
    std::optional<Finding> finding = FindUnread();
    if (store::StoppableCommand::IsStopped()) {
        TellSaveFailed(state_.open.Name());
        return false;
    }
    if (!finding) finding = ValidateLines(*state_.grid, state_.open.RowCount());
    if (!finding) return true;
    Tell(finding->text);
    actions_.refused();
    GoToCell({finding->row, finding->column});
    state_.view.FocusGrid();
    return false;
}

bool TemplateSave::ConfirmUnsavedChanges() {
    if (state_.closing) return false;
    if (!state_.open.IsOpen() || !state_.open.IsDirty()) return true;
    if (Ask("当前凭证模板修改后未保存，您是否进行保存?", MessageButtons::YesNo) != MessageResult::Yes) {
        drafts_.SetDeclined(true);
        return true;
    }
    const bool saved = Save();
    if (!saved) state_.view.FocusGrid();  // what is typed next is to mend it, and answers no question
    // A save that the database refused counts as one. Whatever comes next may replace the grid's content as
    // soon as what was typed is on the disk; as long as it is in this window alone, nothing goes on.
    return saved && (!kept_.IsPending() || drafts_.Keep());
}

void TemplateSave::GoToCell(const CellAddress& cell) {
    state_.grid->SetReDraw(false);
    state_.grid->SetActiveCell(cell);
    state_.grid->SetReDraw(true);
    refused_.Mark(cell.row);
    state_.grid->ScrollIntoView(cell);
}

}  // namespace vicenter::center
