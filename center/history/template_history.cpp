#include "center/history/template_history.h"

#include "automation/error.h"
#include "center/frame/window_state.h"
#include "center/history/restore.h"
#include "entry/host_services.h"
#include "store/cls_vi_data.h"
#include "store/failure_text.h"

namespace vicenter::center {

using store::History;
using store::LineDifference;
using store::LineTexts;

namespace {

std::optional<std::vector<LineTexts>> LinesOf(const ado::RecordsetRef& records) {
    try {
        if (records != nullptr) return store::TextsOfLines(*records);
    } catch (const automation::Error&) {
        // As unreadable as no answer.
    }
    return std::nullopt;
}

std::string CountsText(const std::vector<LineDifference>& differences) {
    if (differences.empty()) return kSameAsNow;
    const store::DifferenceCounts counts = store::CountsOf(differences);
    return "此版本之后：新增 " + std::to_string(counts.added) + " 行，删除 " +
           std::to_string(counts.removed) + " 行，修改 " + std::to_string(counts.changed) + " 行。";
}

}  // namespace

std::string NoVersionsText(const std::string& name) {
    return "模板 " + name + " 还没有历史版本。";
}

TemplateHistory::TemplateHistory(std::string templateId, std::string name, std::string userId,
                                 bool mayRestore)
    : templateId_(std::move(templateId)),
      name_(std::move(name)),
      userId_(std::move(userId)),
      mayRestore_(mayRestore) {}

TemplateHistory::TemplateHistory(std::string userId, bool mayRestore)
    : userId_(std::move(userId)), mayRestore_(mayRestore) {}

bool TemplateHistory::Load() {
    store::clsVIData::ForgetFailure();
    History history = OfDeleted() ? store::ReadDeleted(userId_) : store::ReadHistory(templateId_);
    std::optional<std::vector<LineTexts>> now;
    if (history.state == History::State::Kept && !OfDeleted())
        now = LinesOf(store::clsVIData().GetVchTemplateEntryInfo(templateId_));
    if (history.state == History::State::Off) {
        Tell(kHistoryOff);
        return false;
    }
    if (history.state == History::State::Unreadable || (!OfDeleted() && !now)) {
        Tell(store::WithReason(kHistoryUnreadable));
        return false;
    }
    if (history.versions.empty()) {
        Tell(OfDeleted() ? std::string(kNoDeletedTemplates) : NoVersionsText(name_));
        return false;
    }
    versions_ = std::move(history.versions);
    users_ = store::UserNames::Read();
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
    changes_ = store::ChangesOf(differences, *before, now_);
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
