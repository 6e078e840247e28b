// vicenter account-set new FILE [--demo] [--vouchers N], account-set new --connect STRING, account-set copy
// FROM TO

#include "host/account_set.h"
#include "host/account_set_setup.h"
#include "host/cli/connect_text.h"
#include "host/cli/context.h"

namespace vicenter::host {

namespace {

ado::ConnectionRef OpenSource(const CliContext& context, const std::string& place) {
    return ado::OpenConnection(IsConnectString(place) ? WithPassword(context, place)
                                                      : FileConnectString(place));
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

}  // namespace vicenter::host
