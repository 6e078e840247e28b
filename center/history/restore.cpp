#include "center/history/restore.h"

#include "center/frame/window_state.h"
#include "center/template/new_name.h"
#include "center/template/template_fate.h"
#include "entry/host_context.h"
#include "entry/host_services.h"
#include "platform/system/utf8.h"
#include "store/cls_vi_data.h"
#include "store/new_template.h"

namespace vicenter::center {

using entry::LogKind;
using State = store::TemplateOutcome::State;

namespace {

store::TemplateOutcome TellRestored(const std::string& id, const std::string& name) {
    Tell(store::WithUnusableNote("模板 " + name + " 恢复成功！", store::ReadUnusableNumbers(id)));
    entry::WriteOperationLog(LogKind::Succeeded, "凭证模板-恢复模板 " + name + " 成功");
    return {State::Saved, automation::Variant(id).ToInt32()};
}

store::TemplateOutcome TellFailed(const std::string& name, State state) {
    if (state == State::SavedUntold) {
        // It is there: who took it for failed would make it twice.
        Tell("模板 " + name + " 已恢复，但未能重新读取，请重新打开凭证模板查看！");
        entry::WriteOperationLog(LogKind::Succeeded, "凭证模板-恢复模板 " + name + " 成功");
        return {state};
    }
    Tell("模板 " + name + " 恢复失败！");
    entry::WriteOperationLog(LogKind::Failed, "凭证模板-恢复模板 " + name + " 失败");
    return {state};
}

constexpr const char* kNotRestored = "没有恢复";

store::TemplateOutcome TellWhyNot(const std::string& name, const std::string& why) {
    Tell(why);
    entry::WriteOperationLog(LogKind::Failed, "凭证模板-恢复模板 " + name + " 失败");
    return {};
}

}  // namespace

store::TemplateOutcome RestoreOver(const store::HistoryVersion& version, const std::string& templateId,
                                   const std::string& name) {
    const SeenTemplate listed = store::SeenAs(templateId, entry::CurrentUserId(), name);
    const FoundTemplate seen = store::LookAgain(listed);
    if (seen.fate != TemplateFate::AsSeen)
        return TellWhyNot(name, store::WhyNotWritten(listed, seen, kNotRestored));
    if (Ask("模板 " + name + " 的现有分录将被 " + version.keptAt + " 之前的版本（" +
                std::to_string(version.lines) + " 行）替换，现有分录会保留为历史版本。请确认是否恢复？",
            system::MessageButtons::YesNo) != system::MessageResult::Yes) {
        return {};
    }
    {
        store::KeptVersions before({seen.now}, store::HistoryCommand::Restore);
        if (!before.MayWrite()) return TellWhyNot(name, before.WhyNot(kNotRestored));
        if (!before.RunAndCommit(store::RestoreOverBatch(version.id, templateId)))
            return TellFailed(name, State::Refused);
    }
    return TellRestored(templateId, name);
}

std::optional<std::string> NameForRestored(const std::string& versionName, const std::string& userId) {
    return FreeName(versionName, "恢复", userId);
}

store::TemplateOutcome RestoreAsNew(const store::HistoryVersion& version, const std::string& wished,
                                    const std::string& userId) {
    // As the batch writes it.
    const std::string name(system::TrimBlanks(wished));
    if (const std::string why = WhyNotNewName(name, userId, "恢复失败！"); !why.empty()) {
        Tell(why);
        return {};
    }
    {
        // The template and the versions that come along are there together or not at all.
        store::NewTemplate made(name, userId);
        if (!made.MayWrite()) return TellWhyNot(name, made.WhyNot(kNotRestored));
        if (!made.RunAndCommit(store::RestoreAsNewBatch(version.id, name, userId)))
            return TellFailed(name, State::Refused);
    }
    const std::int32_t id = store::clsVIData().FindVchTemplate(name, userId);
    if (id < 0) return TellFailed(name, State::SavedUntold);
    return TellRestored(std::to_string(id), name);
}

}  // namespace vicenter::center
