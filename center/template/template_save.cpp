#include "center/template/template_save.h"

#include <unordered_set>

#include "center/editing/cell_rules.h"
#include "center/lookups/cell_resolution.h"
#include "entry/host_services.h"
#include "platform/system/utf8.h"
#include "store/statements.h"
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

store::TemplateOutcome SendTemplate(const EntryGrid& grid, int rowCount, const std::string& templateId,
                                    const std::string& name) {
    using State = store::TemplateOutcome::State;
    bool stored = false;
    try {
        // A rejected batch has been shown to the user by then; the messages of a success follow all the same.
        stored = store::KeptVersions({templateId}, store::HistoryCommand::Save)
                     .RunAndCommit(BuildSaveBatch(grid, rowCount, templateId));
        const auto unusable = store::ReadUnusableNumbers(templateId);
        if (!unusable) throw Error(automation::error_number::kObjectVariableNotSet);
        Tell(store::WithUnusableNote("模板 " + name + " 保存成功！", *unusable));
        entry::WriteOperationLog(LogKind::Succeeded, "凭证模板-保存模板 " + name + " 成功");
        return {stored ? State::Saved : State::Refused, automation::Variant(templateId).ToInt32(), *unusable};
    } catch (const Error&) {
        TellSaveFailed(name);
        return {stored ? State::SavedUntold : State::Failed};
    }
}

void TellSaveFailed(const std::string& name) {
    Tell("模板 " + name + " 保存失败！");
    entry::WriteOperationLog(LogKind::Succeeded, "凭证模板-保存模板 " + name + " 失败");
}

bool ConfirmEmptyTemplate() {
    return Ask("当前模板模板信息为空，您确认要保存么？", MessageButtons::OkCancel) == MessageResult::Ok;
}

TemplateSave::TemplateSave(WindowState& state, KeptLines& kept, TemplateDrafts& drafts, RefusedLine& refused,
                           TemplateSaveActions actions)
    : state_(state), kept_(kept), drafts_(drafts), refused_(refused), actions_(std::move(actions)) {}

bool TemplateSave::Save() {
    if (!state_.open.IsOpen() || !state_.open.IsDirty()) return false;
    if (!state_.open.LinesKnown()) {
        // The batch replaces every line: what nobody has seen is not to be lost to the few that were typed.
        TellSaveFailed(state_.open.Name());
        return false;
    }
    // After a save that was refused the window shows what is stored; what is tried again is what was typed.
    if (kept_.IsPending()) actions_.undo();
    if (!Validate()) return false;
    const TemplateFate fate = FateOfOpenTemplate(state_.open, state_.userId);
    if (fate == TemplateFate::AsLoaded) return SendAndReload(false);
    if (fate == TemplateFate::Unknown) {
        TellSaveFailed(state_.open.Name());
        return false;
    }
    switch (AskHowToSave(fate, state_.open.Name(), !store::IsStandard(state_.open.Id()))) {
        case SaveChoice::Overwrite:
            return SendAndReload(true);
        case SaveChoice::KeepAsNew:
            return SendAsNewTemplate();
        case SaveChoice::LookAtTheirs:
            LookAtTheirs();
            return false;
        case SaveChoice::Leave:
            return false;
    }
    return false;
}

bool TemplateSave::SendAndReload(bool treeToo) {
    using State = store::TemplateOutcome::State;
    const State sent =
        SendTemplate(*state_.grid, state_.open.RowCount(), state_.open.Id(), state_.open.Name()).state;
    // Nobody else has changed the template: the next save must not ask whether to overwrite it.
    if (sent == State::SavedUntold)
        state_.open.TypedUpon(DigestOfStored(state_.open.Id()).value_or(state_.open.Loaded()));
    if (sent == State::Failed || sent == State::SavedUntold) return false;
    const std::string name = state_.open.Name();
    const LinesDigest loadedBefore = state_.open.Loaded();
    if (sent == State::Refused) kept_.Take();
    bool reloaded = true;
    {
        const TemplateDrafts::Hold hold(drafts_);
        if (treeToo) {
            actions_.readTreeAgain(state_.open.Id());
            reloaded = state_.open.LinesKnown();
        } else {
            reloaded = actions_.reload();
        }
    }
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
        if (kept_.OfferUndo("保存被拒绝，按 Ctrl+Z 找回保存前的分录")) state_.open.Touch();
    } else {
        // Nothing has been written and nothing read: the window is as it was before the save.
        kept_.PutBack();
        state_.open.TypedUpon(loadedBefore);
    }
    drafts_.Changed();
    drafts_.Keep();
    actions_.refreshStatus();
}

bool TemplateSave::SendAsNewTemplate() {
    const std::optional<TreeNode> node = actions_.insertTemplate();
    if (!node) return false;
    state_.open.Become(node->key.substr(kTemplateKeyHead.size()), node->text);
    state_.view.SetTemplateName(node->text);
    return SendAndReload(true);
}

void TemplateSave::LookAtTheirs() {
    kept_.Take();
    actions_.readTreeAgain(state_.open.Id());
    kept_.OfferUndo("按 Ctrl+Z 找回您修改的分录");
    actions_.refreshStatus();
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
    if (!finding) finding = ValidateLines(*state_.grid, state_.open.RowCount());
    if (!finding) return true;
    Tell(finding->text);
    actions_.refused();
    GoToCell({finding->row, finding->column});
    state_.view.FocusGrid();
    return false;
}

bool TemplateSave::ConfirmUnsavedChanges() {
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
