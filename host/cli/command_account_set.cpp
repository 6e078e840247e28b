// vicenter account-set new FILE or --connect STRING, copy FROM TO, backup FILE TO, restore FROM FILE,
// verify and upgrade FILE or --connect STRING

#include <filesystem>

#include "automation/error.h"
#include "center/frame/window_state.h"
#include "host/account_set.h"
#include "host/account_set_setup.h"
#include "host/cli/connect_text.h"
#include "host/cli/context.h"
#include "platform/ado/account_set/account_set_copies.h"
#include "platform/system/files.h"
#include "store/template_health.h"

namespace vicenter::host {

namespace {

ado::ConnectionRef OpenSource(const CliContext& context, const std::string& place) {
    return ado::OpenConnection(IsConnectString(place) ? WithPassword(context, place)
                                                      : ExistingFileConnectString(place));
}

int MakeInDatabase(const CliContext& context) {
    const CliOptions& options = context.options;
    const ado::ConnectionRef connection = ado::OpenConnection(WithPassword(context, options.connectString));
    const AccountSetOptions wanted{options.demo, options.vouchers};
    if (options.dryRun) {
        CompleteAccountSet(*connection, wanted, &context.streams.out);
        return kExitDone;
    }
    const SetupReport report = CompleteAccountSet(*connection, wanted);
    return FinishSpeaking(
        context, true,
        JsonObject({{"made", report.made}, {"present", report.present}, {"fresh", report.fresh}}),
        "新建 " + std::to_string(report.made) + " 个对象，原有 " + std::to_string(report.present) +
            " 个。\n");
}

bool Exists(const std::string& file) {
    std::error_code ignored;
    return std::filesystem::exists(system::PathFromUtf8(file), ignored);
}

bool Agreed(const std::string& question) {
    return center::Ask(question, system::MessageButtons::YesNo) == system::MessageResult::Yes;
}

// Faults of the templates of a set that can be read, which its structure knows nothing of.
std::vector<std::string> TemplateFaults(ado::Connection& connection) {
    try {
        return store::FindTemplateFaults(connection);
    } catch (const automation::Error& error) {
        return {"凭证模板无法检查：" + error.Text()};
    }
}

std::vector<std::string> FaultsOfFile(const std::string& file) {
    std::vector<std::string> findings = ado::FindAccountSetDamage(file);
    // Damage below makes what is read above worthless.
    if (!findings.empty()) return findings;
    try {
        return TemplateFaults(*ado::OpenConnection(FileConnectString(file) + ";Pooling=no"));
    } catch (const automation::Error& error) {
        return {"凭证模板无法检查：" + error.Text()};
    }
}

std::vector<std::string> FaultsOfDatabase(const CliContext& context) {
    const ado::ConnectionRef connection =
        ado::OpenConnection(WithPassword(context, context.options.connectString));
    StructureFaults structure = FindStructureFaults(*connection);
    std::vector<std::string> findings = std::move(structure.tables);
    if (findings.empty()) findings = TemplateFaults(*connection);
    findings.insert(findings.end(), structure.others.begin(), structure.others.end());
    return findings;
}

// As users know it: without the rest of the connect string.
std::string DatabaseName(const std::string& connectString) {
    const ado::ConnectString settings(connectString);
    for (const char* key : {"Initial Catalog", "Database", "DSN", "Data Source"}) {
        if (settings.Has(key)) return settings.Value(key);
    }
    return {};
}

}  // namespace

int RunAccountSetNew(const CliContext& context) {
    const CliOptions& options = context.options;
    if (options.file.empty()) return MakeInDatabase(context);
    CreateAccountSetFile(options.file, {options.demo, options.vouchers});
    return FinishSpeaking(context, true, JsonObject({{"file", options.file}}),
                          "账套已建立：" + options.file + "\n");
}

int RunAccountSetCopy(const CliContext& context) {
    const CliOptions& options = context.options;
    const ado::ConnectionRef from = OpenSource(context, options.file);
    CopyReport report;
    if (IsConnectString(options.target)) {
        const ado::ConnectionRef to = OpenSource(context, options.target);
        report = CopyAccountSet(*from, *to);
    } else {
        MakeAccountSetFile(options.target, [&](ado::Connection& to) { report = CopyAccountSet(*from, to); });
    }
    return FinishSpeaking(context, true, JsonObject({{"tables", report.tables}, {"rows", report.rows}}),
                          "已复制 " + std::to_string(report.tables) + " 张表、" +
                              std::to_string(report.rows) + " 行，内容一致。\n");
}

int RunAccountSetBackup(const CliContext& context) {
    const CliOptions& options = context.options;
    if (Exists(options.target) && !Agreed("备份文件已存在，是否替换？\r\n\r\n" + options.target))
        return FinishSpeaking(context, false, Variant::Null());
    ado::BackUpAccountSet(options.file, options.target);
    return FinishSpeaking(context, true, JsonObject({{"file", options.target}}),
                          "账套已备份：" + options.target + "\n");
}

int RunAccountSetRestore(const CliContext& context) {
    const CliOptions& options = context.options;
    if (Exists(options.target) &&
        !Agreed("账套的现有内容将被备份的内容替换，备份之后的修改都会丢失。请确认是否恢复？\r\n\r\n" +
                options.target))
        return FinishSpeaking(context, false, Variant::Null());
    ado::RestoreAccountSet(options.file, options.target);
    return FinishSpeaking(context, true, JsonObject({{"file", options.target}}),
                          "账套已恢复：" + options.target + "\n");
}

int RunAccountSetVerify(const CliContext& context) {
    const CliOptions& options = context.options;
    const std::string file = options.connectString.empty()
                                 ? options.file
                                 : ado::AccountSetFile(options.connectString).value_or(std::string());
    const std::vector<std::string> findings = file.empty() ? FaultsOfDatabase(context) : FaultsOfFile(file);
    for (const std::string& finding : findings)
        center::Tell(finding);
    const std::string place = file.empty() ? DatabaseName(options.connectString) : file;
    const VariantArray list(findings.begin(), findings.end());
    return FinishSpeaking(context, findings.empty(),
                          JsonObject({{file.empty() ? "database" : "file", place}, {"findings", list}}),
                          "没有发现问题：" + place + "\n");
}

int RunAccountSetUpgrade(const CliContext& context) {
    const CliOptions& options = context.options;
    const ado::ConnectionRef connection =
        OpenSource(context, options.file.empty() ? options.connectString : options.file);
    const SetupReport report = UpgradeAccountSet(*connection);
    return FinishSpeaking(context, true, JsonObject({{"made", report.made}, {"present", report.present}}),
                          report.made == 0
                              ? "账套已是最新，无需升级。\n"
                              : "账套已升级：新建 " + std::to_string(report.made) + " 个对象。\n");
}

}  // namespace vicenter::host
