// What a replacement writes, and how it is taken back.

#include <algorithm>
#include <optional>

#include "center/frame/window_state.h"
#include "center/grid/quiet_grid.h"
#include "center/history/restore.h"
#include "center/search/code_replacement.h"
#include "center/template/template_save.h"
#include "entry/host_services.h"
#include "entry/sql_text.h"
#include "store/cls_vi_data.h"
#include "store/failure_text.h"
#include "store/template_batches.h"
#include "store/template_guard.h"
#include "store/template_history.h"
#include "store/template_outcome.h"

namespace vicenter::center {

using entry::LogKind;
using store::LineTexts;

namespace {

std::string Joined(const std::vector<std::string>& texts, const char* separator) {
    std::string joined;
    for (const std::string& text : texts)
        joined.append(joined.empty() ? "" : separator).append(text);
    return joined;
}

void Log(LogKind kind, const std::string& text) {
    entry::WriteOperationLog(kind, "凭证模板-" + text);
}

// What can be taken back of a replacement, side by side, as the user is asked about it.
struct Undoable {
    std::vector<const store::HistoryVersion*> open;
    std::vector<store::SeenTemplate> seen;
    std::vector<std::string> names;
    std::string since;  // what cannot, for users
};

// Nothing when the account set does not answer.
std::optional<Undoable> FindUndoable(const store::History& last, const std::string& userId) {
    Undoable found;
    for (const store::HistoryVersion& version : last.versions) {
        const auto row = store::AskTemplateWithLines(version.templateId);
        const store::History history = store::ReadHistory(version.templateId);
        if (!row || history.state == store::History::State::Unreadable) return std::nullopt;
        const store::FoundTemplate now =
            store::Compare({version.templateId, row->ownerId, row->name, std::nullopt}, row);
        if (now.fate == store::TemplateFate::Unknown) return std::nullopt;
        const bool latest = !history.versions.empty() && history.versions.front().id == version.id;
        if (store::MayWrite(*row, version.templateId, userId) && latest) {
            found.open.push_back(&version);
            found.seen.push_back(now.now);
            found.names.push_back(row->name);
        } else {
            found.since +=
                std::string(entry::kCrLf) + "模板 " + version.name + " 在替换之后又有改动，不在其中。";
        }
    }
    return found;
}

}  // namespace

std::vector<LineTexts> CodeReplacement::LinesOf(const Target& target) const {
    std::vector<LineTexts> lines;
    for (const Changed& changed : target.rows) {
        const ReplacementLine& line = lines_[changed.line];
        if (!line.chosen) continue;
        if (lines.empty()) lines = templates_[target.stored].lines;
        lines[static_cast<std::size_t>(line.row - 1)] = changed.texts;
    }
    return lines;
}

std::string CodeReplacement::WhyNot(const Target& target, const std::vector<LineTexts>& lines) const {
    EntryGrid grid;
    const Unpainted quiet(grid);
    grid.SetRowTotal(static_cast<int>(lines.size()) + 1);
    for (std::size_t i = 0; i < lines.size(); ++i)
        grid.FillRow(static_cast<int>(i) + 1, lines[i]);
    const auto finding = ValidateLines(grid, static_cast<int>(lines.size()));
    if (!finding) return {};
    return "模板 " + templates_[target.stored].name + " 不能保存，没有替换：" + finding->text;
}

CodeReplacement::Sent CodeReplacement::ToSend(std::vector<std::string>& told) const {
    Sent sent;
    for (const Target& target : targets_) {
        const std::vector<LineTexts> lines = LinesOf(target);
        if (lines.empty()) continue;
        if (std::string why = WhyNot(target, lines); !why.empty()) {
            told.push_back(std::move(why));
            continue;
        }
        const store::StoredTemplate& stored = templates_[target.stored];
        sent.targets.push_back(&target);
        sent.seen.push_back(store::SeenAs(stored.id, userId_, stored.name, stored.digest));
        sent.batches.push_back(
            store::SaveBatch(stored.id, static_cast<int>(lines.size()), [&](int row, int gridColumn) {
                return std::string_view(
                    lines[static_cast<std::size_t>(row - 1)][static_cast<std::size_t>(gridColumn - 1)]);
            }));
    }
    return sent;
}

// Those that are not what was listed any more stay as they are; the others are written together.
bool CodeReplacement::Write(Sent& sent, std::vector<std::string>& told) {
    using Obstacle = store::KeptVersions::Obstacle;
    while (!sent.targets.empty()) {
        store::KeptVersions before(sent.seen, store::HistoryCommand::Replace);
        if (before.MayWrite()) return before.RunAndCommit(Joined(sent.batches, ""));
        if (before.InTheWay() == Obstacle::NotKept) {
            told.push_back(before.WhyNot("没有替换"));
            return false;
        }
        const auto at = static_cast<std::ptrdiff_t>(before.Found().size()) - 1;
        told.push_back(store::WhatHappened(sent.seen[before.Found().size() - 1], before.Found().back()) +
                       "，没有替换！");
        sent.targets.erase(sent.targets.begin() + at);
        sent.seen.erase(sent.seen.begin() + at);
        sent.batches.erase(sent.batches.begin() + at);
    }
    return false;
}

bool CodeReplacement::Send(std::vector<std::string>& told) {
    Sent sent = ToSend(told);
    const bool done = Write(sent, told);
    if (sent.targets.empty()) return false;
    std::ptrdiff_t all = 0;
    std::string notes;
    for (const Target* target : sent.targets) {
        const store::StoredTemplate& stored = templates_[target->stored];
        const auto rows = std::count_if(target->rows.begin(), target->rows.end(),
                                        [&](const Changed& row) { return lines_[row.line].chosen; });
        all += rows;
        Log(done ? LogKind::Succeeded : LogKind::Failed,
            "替换代码 " + stored.name + (done ? " 成功，" + std::to_string(rows) + " 行" : " 失败"));
        if (done) store::AppendUnusableNote(notes, stored.name, store::ReadUnusableNumbers(stored.id));
    }
    told.insert(told.begin(), done ? "替换成功：" + std::to_string(sent.targets.size()) + " 个模板，" +
                                         std::to_string(all) + " 行。" + notes
                                   : std::string("替换失败，没有模板被修改！"));
    return done;
}

bool CodeReplacement::Replace() {
    std::size_t chosen = 0;
    for (const ReplacementLine& line : lines_)
        chosen += line.chosen ? 1 : 0;
    if (chosen == 0) {
        Tell("请先选择要替换的行！");
        return false;
    }
    store::clsVIData::ForgetFailure();
    const bool undoable = store::ReadHistoryRule().has_value();
    if (!undoable && store::ReadHistory("-1").state == store::History::State::Unreadable) {
        Tell(store::WithReason(kHistoryUnreadable));
        return false;
    }
    if (Ask(Note() + entry::kCrLf + entry::kCrLf +
                (undoable ? "替换之前的分录会保留为历史版本，可以一次撤消。"
                          : "当前账套没有开启模板历史，替换后不能撤消。") +
                "请确认是否替换？",
            system::MessageButtons::YesNo) != system::MessageResult::Yes) {
        return false;
    }
    std::vector<std::string> told;
    const bool done = Send(told);
    Tell(Joined(told, entry::kCrLf));
    if (done) Forget();
    return done;
}

void CodeReplacement::Forget() {
    hasWritten_ = true;
    lines_.clear();
    targets_.clear();
}

bool CodeReplacement::Undo() {
    const bool done = UndoLast(userId_);
    if (done) Forget();
    return done;
}

bool CodeReplacement::UndoLast(const std::string& userId) {
    store::clsVIData::ForgetFailure();
    const store::History last = store::ReadLastReplacement(userId);
    if (last.state != store::History::State::Kept) {
        Tell(last.state == store::History::State::Off ? kHistoryOff : store::WithReason(kHistoryUnreadable));
        return false;
    }
    const std::optional<Undoable> found = FindUndoable(last, userId);
    if (!found) {
        Tell(store::WithReason(kHistoryUnreadable));
        return false;
    }
    const auto& [open, seen, names, since] = *found;
    if (open.empty()) {
        Tell(last.versions.empty() ? "没有可以撤消的替换。"
                                   : "上次替换已经撤消，或者所替换的模板之后都有改动，没有可以撤消的替换。");
        return false;
    }
    if (Ask("将撤消 " + last.versions.front().keptAt + " 的替换，恢复模板：" + Joined(names, "、") + "。" +
                since + entry::kCrLf + entry::kCrLf + "请确认是否撤消？",
            system::MessageButtons::YesNo) != system::MessageResult::Yes) {
        return false;
    }
    std::string batch;
    for (const store::HistoryVersion* version : open)
        batch += store::RestoreOverBatch(version->id, version->templateId);
    bool done = false;
    std::string why = "撤消失败，模板保持原样！";
    {
        store::KeptVersions before(seen, store::HistoryCommand::Restore);
        done = before.RunAndCommit(batch);
        if (!before.MayWrite()) why = before.WhyNot("没有撤消替换");
    }
    std::string notes;
    for (std::size_t i = 0; i < open.size(); ++i) {
        Log(done ? LogKind::Succeeded : LogKind::Failed, "撤消替换 " + names[i] + (done ? " 成功" : " 失败"));
        if (done) store::AppendUnusableNote(notes, names[i], store::ReadUnusableNumbers(open[i]->templateId));
    }
    Tell(done ? "撤消成功：" + std::to_string(open.size()) + " 个模板。" + notes : why);
    return done;
}

}  // namespace vicenter::center
