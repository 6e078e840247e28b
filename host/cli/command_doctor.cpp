// vicenter doctor

#include <algorithm>
#include <ostream>

#include "host/account_set.h"
#include "host/cli/connect_text.h"
#include "host/cli/context.h"
#include "host/cli/doctor.h"
#include "host/components/components.h"
#include "platform/ado/account_set/account_set_copies.h"

namespace vicenter::host {

namespace {

const char* Mark(DoctorState state) {
    switch (state) {
        case DoctorState::Good:
            return "好";
        case DoctorState::Note:
            return "注意";
        case DoctorState::Missing:
            break;
    }
    return "缺少";
}

const char* Word(DoctorState state) {
    switch (state) {
        case DoctorState::Good:
            return "good";
        case DoctorState::Note:
            return "note";
        case DoctorState::Missing:
            break;
    }
    return "missing";
}

void Print(const CliContext& context, const std::vector<DoctorFinding>& findings) {
    for (const DoctorFinding& finding : findings) {
        context.streams.out << "[" << Mark(finding.state) << "]\t" << finding.area << "\t" << finding.text
                            << "\n";
        if (!finding.advice.empty()) context.streams.out << "\t\t→ " << finding.advice << "\n";
    }
}

void PrintDocument(const CliContext& context, const std::vector<DoctorFinding>& findings, bool well) {
    VariantArray list;
    for (const DoctorFinding& finding : findings)
        list.push_back(JsonObject({{"area", finding.area},
                                   {"state", Word(finding.state)},
                                   {"text", finding.text},
                                   {"advice", finding.advice}}));
    PrintJson(context, JsonObject({{"ok", well}, {"findings", std::move(list)}}));
}

}  // namespace

int RunDoctor(const CliContext& context) {
    const CliOptions& options = context.options;
    DoctorQuestions questions;
    questions.version = VICENTER_VERSION;
    questions.hasWindows = static_cast<bool>(context.hooks.openWindow);
    questions.chineseFont = context.hooks.chineseFont;
    questions.connectString =
        options.connectString.empty()
            ? FileConnectString(options.accountSet.empty() ? DemoSetFile() : options.accountSet)
            : WithPassword(context, options.connectString);
    questions.file = ado::AccountSetFile(questions.connectString);
    questions.userId = options.userId;
    RegisterHostComponents({questions.connectString, options.userId, {}});
    const std::vector<DoctorFinding> findings = Examine(questions);
    const bool well = std::none_of(findings.begin(), findings.end(), [](const DoctorFinding& finding) {
        return finding.state == DoctorState::Missing;
    });
    if (options.json) {
        PrintDocument(context, findings, well);
    } else {
        Print(context, findings);
    }
    return well ? kExitDone : kExitFailed;
}

}  // namespace vicenter::host
