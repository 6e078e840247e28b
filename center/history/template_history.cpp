#include "center/history/template_history.h"

#include "automation/error.h"
#include "center/frame/window_state.h"
#include "center/history/restore.h"
#include "entry/host_services.h"
#include "store/cls_vi_data.h"

namespace vicenter::center {

using store::History;
using store::LineDifference;
using store::LineTexts;

namespace {

const std::string& Text(const LineTexts& line, int gridColumn) {
    return line[static_cast<std::size_t>(gridColumn - 1)];
}

// What tells a whole line from others.
std::string WordsOf(const LineTexts& line) {
    namespace column = store::column;
    std::string words;
    for (const int c : {column::kExplanation, column::kDirection, column::kAccountNumber,
                        column::kAccountName, column::kItems, column::kAmount}) {
        if (Text(line, c).empty()) continue;
        if (!words.empty()) words += " ";
        words += Text(line, c);
    }
    return words;
}

std::optional<std::vector<LineTexts>> LinesOf(const ado::RecordsetRef& records) {
    try {
        if (records != nullptr) return store::TextsOfLines(*records);
    } catch (const automation::Error&) {
        // As unreadable as no answer.
    }
    return std::nullopt;
}

void AppendChanges(std::vector<HistoryChange>& changes, const LineDifference& difference,
                   const std::vector<LineTexts>& before, const std::vector<LineTexts>& now) {
    const std::string kind = store::KindText(difference.kind);
    const int row = static_cast<int>((difference.after ? *difference.after : *difference.before) + 1);
    for (const LineDifference::Cell& cell : difference.cells)
        changes.push_back({kind, difference.number, row, cell.column, cell.before, cell.after});
    if (difference.kind == LineDifference::Kind::Changed) return;
    changes.push_back({kind, difference.number, row, 0,
                       difference.before ? WordsOf(before[*difference.before]) : std::string(),
                       difference.after ? WordsOf(now[*difference.after]) : std::string()});
}

std::string CountsText(const std::vector<LineDifference>& differences) {
    if (differences.empty()) return "与现在的分录相同。";
    const store::DifferenceCounts counts = store::CountsOf(differences);
    return "此版本之后：新增 " + std::to_string(counts.added) + " 行，删除 " +
           std::to_string(counts.removed) + " 行，修改 " + std::to_string(counts.changed) + " 行。";
}

}  // namespace

TemplateHistory::TemplateHistory(std::string templateId, std::string name, std::string userId,
                                 bool mayRestore)
    : templateId_(std::move(templateId)),
      name_(std::move(name)),
      userId_(std::move(userId)),
      mayRestore_(mayRestore) {}

TemplateHistory::TemplateHistory(std::string userId, bool mayRestore)
    : userId_(std::move(userId)), mayRestore_(mayRestore) {}

bool TemplateHistory::Load() {
    History history = OfDeleted() ? store::ReadDeleted(userId_) : store::ReadHistory(templateId_);
    std::optional<std::vector<LineTexts>> now;
    if (history.state == History::State::Kept && !OfDeleted())
        now = LinesOf(store::clsVIData().GetVchTemplateEntryInfo(templateId_));
    if (history.state == History::State::Off) {
        Tell(kHistoryOff);
        return false;
    }
    if (history.state == History::State::Unreadable || (!OfDeleted() && !now)) {
        Tell(kHistoryUnreadable);
        return false;
    }
    if (history.versions.empty()) {
        Tell(OfDeleted() ? std::string("没有可以恢复的已删除模板。") : "模板 " + name_ + " 还没有历史版本。");
        return false;
    }
    versions_ = std::move(history.versions);
    now_ = now.value_or(std::vector<LineTexts>());
    Choose(0);
    return true;
}

std::string TemplateHistory::Caption() const {
    return OfDeleted() ? "已删除的模板" : "历史版本 - " + name_;
}

void TemplateHistory::Choose(std::size_t index) {
    chosen_.reset();
    changes_.clear();
    note_.clear();
    if (index >= versions_.size()) return;
    chosen_ = index;
    const auto before = LinesOf(store::ReadVersionLines(versions_[index].id));
    if (!before) {
        note_ = kHistoryUnreadable;
        return;
    }
    const std::vector<LineDifference> differences = store::Differences(*before, now_);
    for (const LineDifference& difference : differences)
        AppendChanges(changes_, difference, *before, now_);
    note_ =
        OfDeleted() ? "删除时有 " + std::to_string(before->size()) + " 行分录。" : CountsText(differences);
}

std::string TemplateHistory::ProposedName() const {
    if (!chosen_) return {};
    return NameForRestored(versions_[*chosen_].name, userId_).value_or(std::string());
}

void TemplateHistory::RestoreOver() {
    if (!chosen_ || OfDeleted() || !mayRestore_) return;
    entry::WriteOperationLog(entry::LogKind::Requested, "凭证模板-恢复模板");
    Take(center::RestoreOver(versions_[*chosen_], templateId_, name_));
}

void TemplateHistory::RestoreAsNew(const std::string& name) {
    if (!chosen_ || !mayRestore_) return;
    entry::WriteOperationLog(entry::LogKind::Requested, "凭证模板-恢复模板");
    Take(center::RestoreAsNew(versions_[*chosen_], name, userId_));
}

void TemplateHistory::Take(const store::TemplateOutcome& outcome) {
    if (!outcome) return;
    restored_ = outcome.id;
    if (view_ != nullptr) view_->Unload();
}

}  // namespace vicenter::center
