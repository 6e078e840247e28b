#include "store/operation_log.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>

#include "automation/error.h"
#include "entry/sql_text.h"
#include "store/statements.h"

namespace vicenter::store {

namespace {

constexpr std::size_t kToTheSecond = 19;

// Dates in the form that no language setting reads otherwise.
std::string Day(const std::string& day) {
    std::string digits = day;
    std::erase(digits, '-');
    return "'" + digits + "'";
}

// How many lines templates had, by name and owner: until when (days as dates count them, since two commands
// may follow each other within a second; none: today) and how many.
using LineCounts = std::map<std::pair<std::string, std::int32_t>,
                            std::vector<std::pair<std::optional<double>, std::int32_t>>>;

void AddCounts(LineCounts& counts, const std::string& question) {
    const ado::RecordsetRef rows = GetRecordset(question);
    if (rows == nullptr || rows->ColumnCount() == 0) return;
    for (; !rows->AtEnd(); rows->MoveNext()) {
        std::optional<double> until;
        if (!rows->Value("FUntil").ToTextOrEmpty().empty()) until = rows->Value("FUntil").ToDouble();
        counts[{rows->Value("FName").ToTextOrEmpty(), rows->Value("FOwnerID").ToInt32()}].emplace_back(
            until, rows->Value("FLines").ToInt32());
    }
}

// What every version held until it was replaced, the oldest first, and what templates hold now.
LineCounts ReadLineCounts() {
    LineCounts counts;
    AddCounts(
        counts,
        "if object_id('t_VchTpHistory') is not null select FName,FOwnerID,FKeptAt as FUntil,FLines from "
        "t_VchTpHistory order by FHistoryID");
    AddCounts(
        counts,
        "select FName,FUserID as FOwnerID,'' as FUntil,(select count(*) from t_VchTemplateEntry b where "
        "b.FID = a.FID) as FLines from t_VchTemplate a");
    return counts;
}

// The lines of the template just behind that moment.
std::optional<std::int32_t> LinesAfter(const LineCounts& counts, const std::string& name, std::int32_t userId,
                                       double moment) {
    for (const std::int32_t owner : {userId, 0}) {
        const auto found = counts.find({name, owner});
        if (found == counts.end()) continue;
        for (const auto& [until, lines] : found->second) {
            if (!until || *until > moment) return lines;
        }
    }
    return std::nullopt;
}

}  // namespace

std::string LogQuestion(const LogFilter& filter) {
    std::string conditions;
    const auto add = [&](const std::string& condition) {
        conditions += (conditions.empty() ? " where " : " and ") + condition;
    };
    if (!filter.from.empty()) add("FDate >= " + Day(filter.from));
    if (!filter.to.empty()) add("FDate < dateadd(day, 1, " + Day(filter.to) + ")");
    if (!filter.user.empty()) add("FUserID = " + filter.user);
    if (!filter.kind.empty()) add("FKind = " + filter.kind);
    if (!filter.templateName.empty())
        add("charindex(" + entry::SqlQuote(filter.templateName) + ", FDescription) > 0");
    return "select FLogID,FDate,FUserID,FFunctionID,FKind,FDescription from t_Log" + conditions +
           " order by FLogID";
}

std::string WrittenTemplate(const LogEntry& entry) {
    constexpr std::string_view kTail = " 成功";
    std::string_view text = entry.text;
    if (!text.ends_with(kTail)) return {};
    text.remove_suffix(kTail.size());
    for (const std::string_view head : {"凭证模板-引入模板 ", "凭证模板-通过凭证生成模板 "}) {
        if (text.starts_with(head)) return std::string(text.substr(head.size()));
    }
    return {};
}

LogAnswer ReadOperationLog(const LogFilter& filter) {
    LogAnswer answer;
    const ado::RecordsetRef rows =
        GetRecordset(std::string("if object_id('t_Log') is not null") + entry::kCrLf + LogQuestion(filter));
    if (rows == nullptr) return answer;
    try {
        answer.state = rows->ColumnCount() == 0 ? LogAnswer::State::Off : LogAnswer::State::Read;
        std::optional<LineCounts> counts;
        for (; answer.state == LogAnswer::State::Read && !rows->AtEnd(); rows->MoveNext()) {
            const std::string moment = rows->Value("FDate").ToTextOrEmpty();
            LogEntry entry{moment.substr(0, kToTheSecond),
                           rows->Value("FUserID").ToInt32(),
                           rows->Value("FKind").ToInt32(),
                           rows->Value("FDescription").ToTextOrEmpty(),
                           {}};
            if (const std::string name = WrittenTemplate(entry); !name.empty()) {
                if (!counts) counts = ReadLineCounts();
                if (const auto lines =
                        LinesAfter(*counts, name, entry.userId, rows->Value("FDate").ToDouble()))
                    entry.counts = std::to_string(*lines) + " 行";
            }
            answer.entries.push_back(std::move(entry));
        }
    } catch (const automation::Error&) {
        return {};  // another table of that name
    }
    return answer;
}

}  // namespace vicenter::store
