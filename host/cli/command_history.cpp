// vicenter history [NAME], restore NAME: what templates held before, and back.

#include <algorithm>
#include <ostream>

#include "automation/error.h"
#include "center/frame/rights.h"
#include "center/history/restore.h"
#include "center/history/template_history.h"
#include "entry/host_services.h"
#include "host/cli/context.h"
#include "host/cli/differences.h"
#include "host/cli/one_line.h"
#include "host/cli/rights.h"
#include "host/cli/templates.h"
#include "platform/system/utf8.h"
#include "store/cls_vi_data.h"
#include "store/failure_text.h"
#include "store/line_difference.h"
#include "store/template_history.h"
#include "store/user_names.h"

namespace vicenter::host {

using automation::Error;
using store::History;
using store::HistoryVersion;
using store::LineTexts;

namespace {

// The versions of an answer that is one.
std::vector<HistoryVersion> Versions(History history) {
    switch (history.state) {
        case History::State::Off:
            throw Error(automation::error_number::kElementNotFound, center::kHistoryOff);
        case History::State::Unreadable:
            throw Error(automation::error_number::kElementNotFound,
                        store::WithReason(center::kHistoryUnreadable));
        case History::State::Kept:
            break;
    }
    return std::move(history.versions);
}

std::vector<LineTexts> TextsOf(const ado::RecordsetRef& lines) {
    if (lines == nullptr)
        throw Error(automation::error_number::kElementNotFound,
                    store::WithReason(center::kHistoryUnreadable));
    return store::TextsOfLines(*lines);
}

std::vector<LineTexts> LinesOfVersion(const HistoryVersion& version) {
    return TextsOf(store::ReadVersionLines(version.id));
}

std::vector<LineTexts> LinesOfTemplate(const std::string& templateId) {
    return TextsOf(store::clsVIData().GetVchTemplateEntryInfo(templateId));
}

Variant VersionObject(const HistoryVersion& version, const store::UserNames& users,
                      const store::DifferenceCounts& counts) {
    return JsonObject({{"version", Variant(version.id).ToInt32()},
                       {"replaced", version.keptAt},
                       {"by", version.keptBy},
                       {"byName", users.NameOf(version.keptBy)},
                       {"command", store::CommandText(version.command)},
                       {"FName", version.name},
                       {"lines", version.lines},
                       {"added", counts.added},
                       {"removed", counts.removed},
                       {"changed", counts.changed}});
}

void PrintVersion(std::ostream& out, const HistoryVersion& version, const store::UserNames& users) {
    out << version.id << "\t" << version.keptAt << "\t用户 " << OneLine(users.WithNumber(version.keptBy))
        << "\t" << store::CommandText(version.command) << "\t" << version.lines << " 行\t"
        << OneLine(version.name);
}

// What each version's command changed: the difference to the version behind it, or to what is there now.
int ListVersions(const CliContext& context, const TemplateHead& head) {
    const std::vector<HistoryVersion> versions = Versions(store::ReadHistory(head.id));
    const store::UserNames users = store::UserNames::Read();
    VariantArray list;
    std::vector<LineTexts> later = LinesOfTemplate(head.id);
    for (const HistoryVersion& version : versions) {
        std::vector<LineTexts> lines = LinesOfVersion(version);
        const store::DifferenceCounts counts = store::CountsOf(store::Differences(lines, later));
        later = std::move(lines);
        list.push_back(VersionObject(version, users, counts));
        if (context.options.json) continue;
        PrintVersion(context.streams.out, version, users);
        context.streams.out << "\t新增 " << counts.added << " 删除 " << counts.removed << " 修改 "
                            << counts.changed << "\n";
    }
    return FinishListing(context, list, center::NoVersionsText(head.name));
}

int ListDeleted(const CliContext& context) {
    const store::UserNames users = store::UserNames::Read();
    VariantArray list;
    for (const HistoryVersion& version :
         Versions(store::ReadDeleted(std::to_string(context.options.userId)))) {
        list.push_back(VersionObject(version, users, {0, version.lines, 0}));
        if (context.options.json) continue;
        PrintVersion(context.streams.out, version, users);
        context.streams.out << "\n";
    }
    return FinishListing(context, list, center::kNoDeletedTemplates);
}

const HistoryVersion* FindVersion(const std::vector<HistoryVersion>& versions, const std::string& id) {
    const auto found =
        std::find_if(versions.begin(), versions.end(), [&](const auto& version) { return version.id == id; });
    return found == versions.end() ? nullptr : &*found;
}

[[noreturn]] void ThrowNoVersion(const CliContext& context) {
    throw Error(automation::error_number::kElementNotFound,
                "模板 " + context.options.name + " 没有版本 " + context.options.version + "！");
}

int ShowDifference(const CliContext& context, const TemplateHead& head) {
    const std::vector<HistoryVersion> versions = Versions(store::ReadHistory(head.id));
    const HistoryVersion* version = FindVersion(versions, context.options.version);
    if (version == nullptr) ThrowNoVersion(context);
    const std::vector<LineTexts> before = LinesOfVersion(*version);
    const std::vector<LineTexts> now = LinesOfTemplate(head.id);
    const std::vector<store::LineDifference> differences = store::Differences(before, now);
    if (!context.options.json) PrintDifferences(context.streams.out, differences, before, now);
    return FinishListing(context, DifferenceObjects(differences), center::kSameAsNow);
}

int ShowRule(const CliContext& context) {
    std::optional<store::HistoryRule> rule = store::ReadHistoryRule();
    if (!rule) Versions(store::ReadHistory("-1"));  // says why there is none
    if (!rule)
        throw Error(automation::error_number::kElementNotFound,
                    store::WithReason(center::kHistoryUnreadable));
    if (context.options.keepDays || context.options.keepVersions) {
        if (!MayAdministrate(*context.session))
            throw Error(automation::error_number::kPermissionDenied, center::kNoRight);
        rule->days = context.options.keepDays.value_or(rule->days);
        rule->versions = context.options.keepVersions.value_or(rule->versions);
        if (!store::SaveHistoryRule(*rule)) return FinishSpeaking(context, false, Variant::Null());
    }
    if (context.options.json) {
        PrintJson(context, JsonObject({{"days", rule->days}, {"versions", rule->versions}}));
    } else {
        context.streams.out << "历史版本保留 " << rule->days << " 天，每个模板至少保留 " << rule->versions
                            << " 个版本。\n";
    }
    return kExitDone;
}

// The deleted template that the command means: by its version, else the latest of the name.
HistoryVersion DeletedVersion(const CliContext& context) {
    const CliOptions& options = context.options;
    for (const HistoryVersion& version : Versions(store::ReadDeleted(std::to_string(options.userId)))) {
        const bool meant = options.version.empty() || version.id == options.version;
        if (meant && IsNamed(version.name, options.name)) return version;
    }
    if (!options.version.empty()) ThrowNoVersion(context);
    throw Error(automation::error_number::kElementNotFound,
                "没有名为“" + options.name + "”的凭证模板，也没有可以恢复的已删除模板！");
}

int FinishRestoring(const CliContext& context, const store::TemplateOutcome& outcome,
                    const HistoryVersion& version, const std::string& name) {
    return FinishWriting(context, outcome,
                         outcome
                             ? JsonObject({{"FID", outcome.id}, {"FName", name}, {"lines", version.lines}})
                             : Variant::Null());
}

int RestoreNew(const CliContext& context, const HistoryVersion& version) {
    const std::string userId = std::to_string(context.options.userId);
    // As it is stored.
    std::optional<std::string> name(system::TrimBlanks(context.options.newName));
    if (context.options.newName.empty()) name = center::NameForRestored(version.name, userId);
    if (!name)
        throw Error(automation::error_number::kElementNotFound,
                    store::WithReason(center::kHistoryUnreadable));
    return FinishRestoring(context, center::RestoreAsNew(version, *name, userId), version, *name);
}

}  // namespace

int RunHistory(const CliContext& context) {
    if (context.options.deleted) return ListDeleted(context);
    if (context.options.name.empty()) return ShowRule(context);
    const TemplateHead head = FindTemplate(context, context.options.name);
    return context.options.version.empty() ? ListVersions(context, head) : ShowDifference(context, head);
}

int RunRestore(const CliContext& context) {
    const CliOptions& options = context.options;
    const std::optional<TemplateHead> head = FindTemplateIfAny(context, options.name);
    entry::WriteOperationLog(entry::LogKind::Requested, "凭证模板-恢复模板");
    if (!CheckRight()) return FinishSpeaking(context, false, Variant::Null());
    if (!head) return RestoreNew(context, DeletedVersion(context));
    if (options.version.empty()) {
        throw Error(automation::error_number::kElementNotFound,
                    "请用 --version-id 指定要恢复的版本，版本见 vicenter history " + options.name);
    }
    const std::vector<HistoryVersion> versions = Versions(store::ReadHistory(head->id));
    const HistoryVersion* version = FindVersion(versions, options.version);
    if (version == nullptr) return RestoreNew(context, DeletedVersion(context));
    if (!options.newName.empty()) return RestoreNew(context, *version);
    return FinishRestoring(context, center::RestoreOver(*version, head->id, head->name), *version,
                           head->name);
}

}  // namespace vicenter::host
