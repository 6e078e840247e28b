// vicenter replace: one code for another in every template of the user's, or the last replacement taken back.

#include <map>
#include <ostream>

#include "center/search/code_replacement.h"
#include "entry/host_services.h"
#include "host/cli/context.h"
#include "host/cli/one_line.h"
#include "host/cli/rights.h"
#include "store/template_guard.h"

namespace vicenter::host {

using center::CodeReplacement;
using center::ReplacementLine;

namespace {

// The grid's column of the option's word.
int ColumnNamed(const std::string& name) {
    namespace column = store::column;
    static const std::map<std::string, int> columns = {{"account", column::kAccountNumber},
                                                       {"items", column::kItems},
                                                       {"settlement", column::kSettleName},
                                                       {"currency", column::kCurrencyName},
                                                       {"unit", column::kUnitName}};
    return columns.at(name);
}

const char* StateName(ReplacementLine::State state) {
    switch (state) {
        case ReplacementLine::State::Ready:
            return "ready";
        case ReplacementLine::State::Doubtful:
            return "doubtful";
        case ReplacementLine::State::Impossible:
            break;
    }
    return "impossible";
}

std::string LineText(const ReplacementLine& line) {
    std::string text = std::string(line.chosen ? "*" : " ") + "\t" + OneLine(line.templateName) + "\t" +
                       line.number + " 号\t行" + std::to_string(line.row) + "\t" + OneLine(line.before) +
                       " → " + OneLine(line.after);
    if (!line.note.empty()) text += "\t" + line.note;
    return text + "\n";
}

Variant LineObject(const ReplacementLine& line) {
    return JsonObject({{"FName", line.templateName},
                       {"FNo", line.number},
                       {"row", line.row},
                       {"before", line.before},
                       {"after", line.after},
                       {"state", StateName(line.state)},
                       {"note", line.note},
                       {"chosen", line.chosen}});
}

}  // namespace

int RunReplace(const CliContext& context) {
    const ReplaceOptions& options = context.options.replace;
    const std::string userId = std::to_string(context.options.userId);
    // Opened first on its own, so that a missing account set is reported with its reason.
    context.session->Connection();
    if (!context.options.dryRun) {
        entry::WriteOperationLog(entry::LogKind::Requested,
                                 options.undo ? "凭证模板-撤消替换" : "凭证模板-替换代码");
        if (!CheckRight()) return FinishSpeaking(context, false, Variant::Null());
    }
    if (options.undo) return FinishSpeaking(context, CodeReplacement::UndoLast(userId), Variant::Null());
    CodeReplacement replacement(userId);
    if (!replacement.List({ColumnNamed(options.column), options.from, options.to}))
        return FinishSpeaking(context, false, Variant::Null());
    std::size_t index = 0;
    for (const ReplacementLine& line : replacement.Lines()) {
        const bool ready = line.state == ReplacementLine::State::Ready;
        if (options.standard && ready && store::IsStandard(line.templateId)) replacement.Choose(index, true);
        ++index;
    }
    VariantArray list;
    for (const ReplacementLine& line : replacement.Lines()) {
        list.push_back(LineObject(line));
        if (!context.options.json) context.streams.out << LineText(line);
    }
    if (context.options.dryRun) return FinishSpeaking(context, true, list);
    const bool done = replacement.Replace();
    return FinishSpeaking(context, done, done ? Variant(list) : Variant::Null());
}

}  // namespace vicenter::host
