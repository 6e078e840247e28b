#include "center/lookups/cell_resolution.h"

#include <functional>
#include <string>

#include "center/editing/cell_checks.h"
#include "entry/host_context.h"
#include "platform/ado/side_by_side.h"
#include "platform/system/utf8.h"
#include "store/cls_vi_data.h"
#include "store/item_names.h"

namespace vicenter::center {

namespace {

class RowWriter {
  public:
    // record: none for a row of which cells are only cleared.
    RowWriter(EntryGrid& grid, int row, const ado::Recordset* record)
        : grid_(grid), row_(row), record_(record) {}

    void Put(int gridColumn, std::string_view field) {
        grid_.SetText(row_, gridColumn, record_->Value(field).ToTextOrEmpty());
    }
    void Clear(int gridColumn) { grid_.SetText(row_, gridColumn, {}); }
    bool IsZero(const char* field) const {
        const automation::Variant& value = record_->Value(field);
        return !value.IsNumeric() || value.ToDouble() == 0;
    }
    bool IsEmpty(int gridColumn) const { return grid_.Text(row_, gridColumn).empty(); }

  private:
    EntryGrid& grid_;
    int row_;
    const ado::Recordset* record_;
};

void ClearDependents(RowWriter& row, int gridColumn) {
    switch (gridColumn) {
        case column::kAccountNumber:
            row.Clear(column::kAccountId);
            row.Clear(column::kAccountName);
            break;
        case column::kAccountName:
            row.Clear(column::kAccountId);
            row.Clear(column::kAccountNumber);
            break;
        default:
            if (const int id = Column(gridColumn).idColumn; id != 0) row.Clear(id);
            break;
    }
}

void WriteFound(RowWriter& row, int gridColumn) {
    const ColumnSpec& spec = Column(gridColumn);
    if (spec.lookUp == store::LookUp::Explanation) {
        row.Put(column::kExplanation, "FExplanation");
        // The account that the explanation proposes never replaces one that is there.
        if (row.IsZero("FAccountID") || !row.IsEmpty(column::kAccountNumber)) return;
        row.Put(column::kAccountId, "FAccountID");
        row.Put(column::kAccountNumber, "FNumber");
        row.Put(column::kAccountName, "FName");
        return;
    }
    // A code becomes the name, an account's stays beside its name.
    row.Put(spec.lookUp == store::LookUp::Account ? column::kAccountName : gridColumn, "FName");
    row.Put(spec.idColumn, spec.idField);
}

// Where the cell shows the name and the id column holds what it stands for.
bool IsNamed(int gridColumn) {
    const store::LookUp lookUp = store::LookUpOf(gridColumn);
    return lookUp == store::LookUp::Settlement || lookUp == store::LookUp::Currency ||
           lookUp == store::LookUp::Unit;
}

std::string KeyOf(int gridColumn, const std::string& number) {
    return std::to_string(gridColumn) + ":" + number;
}

bool OnlySeparators(std::string_view text) {
    return !text.empty() && text.find_first_not_of(',') == std::string_view::npos;
}

}  // namespace

bool IsLookUpColumn(int gridColumn) {
    const store::LookUp lookUp = store::LookUpOf(gridColumn);
    return lookUp != store::LookUp::None && lookUp != store::LookUp::Items;
}

std::optional<TypedCode> CodeIn(int gridColumn, std::string_view text) {
    const std::string_view trimmed = system::TrimBlanks(text);
    if (trimmed.empty() || !IsLookUpColumn(gridColumn)) return std::nullopt;
    return TypedCode{gridColumn, std::string(trimmed)};
}

MasterAnswer MasterRecords::Ask(int gridColumn, const std::string& number) {
    const ado::RecordsetRef found = store::clsVIData().GetItemInfoByNumber(gridColumn, number);
    MasterAnswer answer;
    answer.wasRead = found != nullptr;
    if (found != nullptr && found->RecordCount() >= 1) answer.record = found;
    return answer;
}

const MasterAnswer& MasterRecords::Find(int gridColumn, const std::string& number) {
    const auto [at, isNew] = answers_.try_emplace(KeyOf(gridColumn, number));
    if (isNew) at->second = Ask(gridColumn, number);
    return at->second;
}

const MasterAnswer& MasterRecords::FindNamed(int gridColumn, const std::string& name,
                                             const std::string& account) {
    const bool ofAccount = store::LookUpOf(gridColumn) == store::LookUp::Unit;
    const std::string key = KeyOf(gridColumn, name) + "\n" + (ofAccount ? account : std::string());
    if (const auto known = answers_.find(key); known != answers_.end()) return known->second;
    const std::optional<std::string> code = store::CodeOfName(gridColumn, name, account);
    MasterAnswer answer;
    answer.wasRead = code.has_value();
    if (code && !code->empty()) answer = Find(gridColumn, *code);
    return answers_.emplace(key, answer).first->second;
}

void MasterRecords::AskAhead(const std::vector<TypedCode>& codes) {
    const std::string propsString = entry::GetPropsString();
    if (!ado::PaysToAskSideBySide(propsString)) return;
    std::vector<std::function<void()>> questions;
    for (const TypedCode& code : codes) {
        const auto [at, isNew] = answers_.try_emplace(KeyOf(code.gridColumn, code.number));
        if (!isNew) continue;
        MasterAnswer& answer = at->second;
        questions.emplace_back([&answer, &code] { answer = Ask(code.gridColumn, code.number); });
    }
    ado::AskSideBySide(propsString, questions);
}

std::string UnreadableText(std::string_view what) {
    std::string text = "基础资料无法读取：" + std::string(what);
    const std::string& why = store::clsVIData::LastFailure();
    return why.empty() ? text : text + "（" + why + "）";
}

namespace {

// Nothing else than the account that stands in the row.
const MasterAnswer& RecordOf(const EntryGrid& grid, const CellAddress& cell, const TypedCode& code,
                             TextOrigin origin, MasterRecords& records) {
    const MasterAnswer& byCode = records.Find(code.gridColumn, code.number);
    if (origin == TextOrigin::Typed || !IsNamed(cell.column) || !byCode.wasRead || byCode.record != nullptr)
        return byCode;
    const std::string account(system::TrimBlanks(grid.Text(cell.row, column::kAccountNumber)));
    return records.FindNamed(code.gridColumn, code.number, account);
}

Resolution Resolve(EntryGrid& grid, const CellAddress& cell, MasterRecords& records, TextOrigin origin) {
    const TextVerdict verdict = grid.Refusal(cell.row, cell.column);
    if (verdict != TextVerdict::Taken && verdict != TextVerdict::NotLookedUp) return Resolution::Done;
    const std::string text(system::TrimBlanks(grid.Text(cell.row, cell.column)));
    if (text.empty()) {
        RowWriter row(grid, cell.row, nullptr);
        ClearDependents(row, cell.column);
        return Resolution::Done;
    }
    if (cell.column == column::kItems && OnlySeparators(text)) {
        grid.SetText(cell.row, cell.column, {});
        return Resolution::Done;
    }
    const std::optional<TypedCode> code = CodeIn(cell.column, text);
    if (!code) return Resolution::Done;
    const MasterAnswer& answer = RecordOf(grid, cell, *code, origin, records);
    if (!answer.wasRead) return Resolution::Unreadable;
    if (verdict == TextVerdict::NotLookedUp) {
        grid.SetText(cell.row, cell.column, std::string(grid.Text(cell.row, cell.column)));
    }
    if (answer.record == nullptr) {
        // The id of what stood there before would be another's.
        if (origin == TextOrigin::Given && IsNamed(cell.column))
            RowWriter(grid, cell.row, nullptr).Clear(Column(cell.column).idColumn);
        return Resolution::Done;
    }
    RowWriter row(grid, cell.row, answer.record.get());
    WriteFound(row, cell.column);
    return Resolution::Done;
}

}  // namespace

Resolution ResolveCell(EntryGrid& grid, const CellAddress& cell, MasterRecords& records) {
    return Resolve(grid, cell, records, TextOrigin::Typed);
}

Resolution ResolveNew(EntryGrid& grid, const CellAddress& cell, MasterRecords& records, TextOrigin origin) {
    const Resolution resolution = Resolve(grid, cell, records, origin);
    if (resolution == Resolution::Unreadable) {
        grid.PutReading(cell.row, cell.column,
                        {TextVerdict::NotLookedUp, std::string(grid.Text(cell.row, cell.column))});
    }
    return resolution;
}

std::optional<CellAddress> AskAgain(EntryGrid& grid, int rowCount) {
    MasterRecords records;
    CellChecks checks;
    std::optional<CellAddress> unread;
    std::vector<TypedCode> codes;
    for (int row = 1; row <= rowCount; ++row) {
        for (int c = 1; c <= kColumnCount; ++c) {
            if (grid.Refusal(row, c) != TextVerdict::NotLookedUp) continue;
            if (std::optional<TypedCode> code = CodeIn(c, grid.Text(row, c)))
                codes.push_back(std::move(*code));
        }
    }
    records.AskAhead(codes);
    std::vector<int> asked;
    for (int row = 1; row <= rowCount; ++row) {
        bool any = false;
        for (int c = 1; c <= kColumnCount; ++c) {
            if (grid.Refusal(row, c) != TextVerdict::NotLookedUp) continue;
            any = true;
            // Whether it was typed or given, nobody knows by then.
            const bool still = Resolve(grid, {row, c}, records, TextOrigin::Given) == Resolution::Unreadable;
            // An explanation is stored as it stands; behind the others there is an id.
            if (still && !unread && c != column::kExplanation) unread = {row, c};
        }
        if (any) asked.push_back(row);
    }
    MarkRows(grid, asked, checks);
    return unread;
}

}  // namespace vicenter::center
