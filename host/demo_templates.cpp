#include "host/demo_templates.h"

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "automation/error.h"
#include "host/data_table.h"
#include "store/template_batches.h"

namespace vicenter::host {

using automation::Error;

namespace {

struct Line {
    std::string_view number;
    std::string_view explanation;
    bool debit = true;
    std::string_view account;
    std::map<std::string_view, std::string_view> values;

    std::string_view Value(std::string_view key) const {
        const auto found = values.find(key);
        return found == values.end() ? std::string_view() : found->second;
    }
    // A number as it stands in the table, 0 when the line has none.
    std::string Number(std::string_view key) const {
        const std::string_view value = Value(key);
        return value.empty() ? "0" : std::string(value);
    }
};

struct Template {
    std::string_view user;
    std::string_view name;
    std::vector<Line> lines;
};

// Times of creation: one every working day, at eight o'clock.
constexpr int kFirstDay = 5;

std::vector<Template> ReadTemplates() {
    std::vector<Template> templates;
    for (const DataRecord& record : ReadDataTable("demo/templates.tsv")) {
        const std::string_view head = record[0];
        if (head.starts_with("[")) {
            const std::size_t close = head.find(']');
            templates.push_back({head.substr(1, close - 1), head.substr(close + 2), {}});
            continue;
        }
        Line line{head, DataField(record, 1), DataField(record, 2) == "借", DataField(record, 3), {}};
        for (std::size_t i = 4; i < record.size(); ++i) {
            const std::size_t equals = record[i].find('=');
            if (equals == std::string_view::npos)
                throw Error(automation::error_number::kInvalidProcedureCall,
                            "Demo ledger: no value in " + std::string(record[i]));
            line.values[record[i].substr(0, equals)] = record[i].substr(equals + 1);
        }
        templates.back().lines.push_back(std::move(line));
    }
    return templates;
}

std::string EntryStatement(const DemoMaster& master, const std::string& id, std::size_t entryId,
                           const Line& line) {
    const DemoAccount* account = master.FindAccount(line.account);
    const DemoSettle* settle = master.FindSettle(line.Value("settle"));
    const DemoCurrency* currency = master.FindCurrency(line.Value("currency"));
    const DemoUnit* unit = master.FindUnit(line.Value("unit"));
    const std::string_view name =
        account && line.Value("name").empty() ? std::string_view(account->name) : line.Value("name");
    namespace column = store::column;
    store::LineValues values;
    const auto set = [&values](int c, std::string value) {
        values[static_cast<std::size_t>(c - 1)] = std::move(value);
    };
    set(column::kNo, std::string(line.number));
    set(column::kExplanation, SqlLiteral(line.explanation));
    set(column::kDirection, line.debit ? "1" : "0");
    set(column::kAccountId, std::to_string(account ? account->id : 0));
    set(column::kAccountNumber, SqlLiteral(line.account));
    set(column::kAccountName, SqlLiteral(name));
    set(column::kFileCount, line.Number("files"));
    set(column::kSettleId, std::to_string(settle ? settle->id : 0));
    set(column::kSettleName, SqlLiteral(line.Value("settle")));
    set(column::kSettleNumber, SqlLiteral(line.Value("settleno")));
    set(column::kItems, SqlLiteral(line.Value("items")));
    set(column::kCurrencyId, std::to_string(currency ? currency->id : 0));
    set(column::kCurrencyName, SqlLiteral(line.Value("currency")));
    set(column::kRate, line.Number("rate"));
    set(column::kAmountFor, line.Number("for"));
    set(column::kUnitId, std::to_string(unit ? unit->id : 0));
    set(column::kUnitName, SqlLiteral(line.Value("unit")));
    set(column::kQuantity, line.Number("qty"));
    set(column::kPrice, line.Number("price"));
    set(column::kAmount, line.Number("amount"));
    set(column::kRemark, SqlLiteral(line.Value("remark")));
    return store::LineInsert(id, entryId, values);
}

}  // namespace

void WriteDemoTemplates(const DemoMaster& master, SqlWriter& writer) {
    int templateId = 0;
    for (const Template& entry : ReadTemplates()) {
        const std::string id = std::to_string(templateId);
        writer.Add(store::kTemplateInsert + id + "," + SqlLiteral(entry.name) + "," +
                   std::string(entry.user) + ",'0','2026-01-" + (kFirstDay + templateId < 10 ? "0" : "") +
                   std::to_string(kFirstDay + templateId) + "T08:00:00')");
        std::string_view lastNumber;
        for (std::size_t i = 0; i < entry.lines.size(); ++i) {
            const Line& line = entry.lines[i];
            writer.Add(EntryStatement(master, id, i + 1, line));
            if (line.number == lastNumber) continue;  // the key is the first line's explanation
            lastNumber = line.number;
            writer.Add(store::kControlInsert + id + "," + std::string(line.number) + "," +
                       std::to_string((templateId * 7 + static_cast<int>(i) * 3) % 12) + "," +
                       SqlLiteral(line.explanation) + "," + line.Number("files") + ",0)");
        }
        writer.Add(store::MarkUsable(id));
        ++templateId;
    }
}

}  // namespace vicenter::host
