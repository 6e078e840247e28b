#include "center/frame/account_set_care.h"

#include <optional>

#include "automation/error.h"
#include "center/frame/window_state.h"
#include "entry/host_context.h"
#include "entry/host_services.h"
#include "platform/ado/connection.h"
#include "platform/ado/file_care.h"
#include "platform/system/file_dialog_flags.h"
#include "platform/system/file_names.h"
#include "platform/system/files.h"
#include "platform/system/surroundings.h"
#include "store/engine_text.h"
#include "store/template_health.h"

namespace vicenter::center {

using automation::Error;
using entry::LogKind;

namespace {

constexpr std::size_t kFindingsTold = 100;

std::optional<std::string> File() {
    try {
        return ado::FileOf(entry::ConnectStringOfHost());
    } catch (const Error&) {
        return std::nullopt;
    }
}

// "账套-备份-20260131.vas" of "账套.vas".
std::string ProposedName(const std::string& file) {
    const automation::DateTimeParts today = system::Surroundings::Current().clock->Now().Parts();
    const int day = today.year * 10000 + today.month * 100 + today.day;
    const std::string stem = system::PathToUtf8(system::PathFromUtf8(file).stem());
    return system::SafeFileName(stem + "-备份-" + std::to_string(day)) + ".vas";
}

}  // namespace

bool AccountSetCare::IsOffered() {
    return File().has_value();
}

std::string AccountSetCare::BackUp(bool unsaved) {
    const std::optional<std::string> file = File();
    if (!file) return {};
    system::FileRequest request;
    request.title = "备份账套";
    request.flags = system::file_dialog::kForSaving;
    request.filters = {{"账套备份 (*.vas)", "*.vas"}};
    request.proposedName = ProposedName(*file);
    const auto chosen = system::Surroundings::Current().fileDialogs->ChooseFileToSave(request);
    if (!chosen || chosen->empty()) return {};
    try {
        ado::RegisteredFileCare()->BackUp(*file, *chosen);
    } catch (const Error& error) {
        entry::WriteOperationLog(LogKind::Failed, "凭证模板-备份账套 失败");
        Tell("账套备份失败！\r\n\r\n" + store::EngineTextInChinese(error.Text()));
        return {};
    }
    entry::WriteOperationLog(LogKind::Succeeded, "凭证模板-备份账套 成功");
    Tell("账套备份成功！\r\n\r\n" + *chosen +
         (unsaved ? "\r\n\r\n当前凭证模板修改后未保存，备份中没有这些修改。" : ""));
    return *chosen;
}

void AccountSetCare::Verify() {
    const std::optional<std::string> file = File();
    if (!file) return;
    std::vector<std::string> findings;
    try {
        findings = ado::RegisteredFileCare()->FindDamage(*file);
        if (findings.empty())
            findings = store::FindTemplateFaults(*ado::OpenConnection(entry::ConnectStringOfHost()));
    } catch (const Error& error) {
        findings.push_back(store::EngineTextInChinese(error.Text()));
    }
    if (findings.empty()) {
        Tell("账套检查完毕，没有发现问题。");
        return;
    }
    std::string text = "账套检查发现以下问题，请先备份，再与管理员联系：";
    for (std::size_t i = 0; i < findings.size() && i < kFindingsTold; ++i)
        text += "\r\n" + findings[i];
    Tell(text);
}

}  // namespace vicenter::center
