#include "center/lookups/cell_look_ups.h"

#include <charconv>

#include "automation/class_registry.h"
#include "center/editing/cell_checks.h"
#include "center/lookups/cell_resolution.h"
#include "platform/system/utf8.h"
#include "store/number_text.h"
#include "store/template_rows.h"

namespace vicenter::center {

using automation::Argument;
using automation::ObjectRef;
using automation::Variant;

namespace {
constexpr const char* kLedgerView = "VelaEBCGLView.GLView";
constexpr const char* kExplanationView = "VelaVchExp.ExpView";

// What is chosen in a column, for messages.
std::string_view KindOf(int gridColumn) {
    switch (gridColumn) {
        case column::kExplanation:
            return "摘要的科目";
        case column::kAccountNumber:
            return "科目";
        default:
            return Column(gridColumn).header;
    }
}

// A question without an answer is none to which the answer is "nothing".
void CheckRead(const ado::RecordsetRef& rows, std::string_view what) {
    if (rows == nullptr)
        throw automation::Error(automation::error_number::kElementNotFound, UnreadableText(what));
}

}  // namespace

Variant RecordField(const Variant& record, const char* name) {
    const ObjectRef& object = record.AsObject();
    if (object == nullptr) throw automation::Error(automation::error_number::kObjectVariableNotSet);
    if (object->HasMember(name)) return object->Get(name);
    return object->Get("", {Argument(name)});
}

LookUpResult::LookUpResult(const Variant& result) : result_(result.AsObject()) {
    if (result_ == nullptr) throw automation::Error(automation::error_number::kObjectVariableNotSet);
}

bool LookUpResult::Confirmed() const {
    return result_->Get("ReturnOK").ToBoolean();
}

std::string LookUpResult::Value() const {
    return result_->Get("ReturnValue").ToTextOrEmpty();
}

Variant LookUpResult::Record() const {
    return result_->Get("ReturnObject");
}

std::string LookUpResult::Field(const char* name) const {
    return RecordField(Record(), name).ToTextOrEmpty();
}

std::optional<std::string> PlainId(std::string_view answered) {
    const std::string text = store::TrimmedOfAnyBlanks(answered);
    if (text.empty()) return text;
    std::int32_t id = 0;
    const char* end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, id);
    if (read.ec != std::errc()) return std::nullopt;
    // A number with a point counts as whole when nothing but zeros stands behind it.
    std::string_view rest(read.ptr, static_cast<std::size_t>(end - read.ptr));
    if (rest.starts_with('.')) rest.remove_prefix(1);
    if (rest.find_first_not_of('0') != std::string_view::npos) return std::nullopt;
    return std::to_string(id);
}

std::optional<Choice> WithPlainId(Choice choice, int gridColumn) {
    const std::optional<std::string> id = PlainId(choice.id);
    if (!id) {
        Tell("所选" + std::string(KindOf(gridColumn)) + "的内码“" + choice.id + "”不是整数，没有取用！");
        return std::nullopt;
    }
    choice.id = *id;
    return choice;
}

ChosenTexts TextsOfChoice(const EntryGrid& grid, int row, int gridColumn, const Choice& choice) {
    switch (gridColumn) {
        case column::kExplanation: {
            ChosenTexts texts{{column::kExplanation, choice.name}};
            const bool hasAccount = !system::TrimBlanks(grid.Text(row, column::kAccountNumber)).empty();
            if (choice.id.empty() || choice.id == "0" || hasAccount) return texts;
            const ado::RecordsetRef account = store::ReadAccount(choice.id);
            CheckRead(account, choice.name);
            if (account->RecordCount() > 0) {
                texts.emplace_back(column::kAccountId, choice.id);
                texts.emplace_back(column::kAccountNumber, account->Value("FNumber").ToTextOrEmpty());
                texts.emplace_back(column::kAccountName, account->Value("FName").ToTextOrEmpty());
            }
            return texts;
        }
        case column::kAccountNumber:
            return {{column::kAccountNumber, choice.number},
                    {column::kAccountName, choice.name},
                    {column::kAccountId, choice.id}};
        default:
            return {{gridColumn, choice.name}, {Column(gridColumn).idColumn, choice.id}};
    }
}

void WriteChosen(WindowState& state, int row, const ChosenTexts& texts) {
    const UndoStep step(state.open);
    for (const auto& [gridColumn, text] : texts)
        state.grid->SetText(row, gridColumn, text);
    CellChecks checks;
    MarkRow(*state.grid, row, checks);
}

Variant UnitGroupOf(const std::string& accountId) {
    const ado::RecordsetRef group = store::ReadUnitGroup(accountId);
    CheckRead(group, "计量单位组");
    if (group->RecordCount() < 1) return {};
    return group->Value("FUnitGroupID");
}

bool CellLookUps::Open() {
    const EntryGrid& grid = *state_.grid;
    const CellAddress cell = grid.ActiveCell();
    if (cell.row < 1 || cell.column < 1) return false;

    // Everything is read from the host before the first cell is written: an error leaves the row whole.
    std::optional<Choice> choice;
    switch (cell.column) {
        case column::kExplanation:
            choice = Explanation();
            break;
        case column::kAccountNumber:
            choice = Account(cell.row);
            break;
        case column::kSettleName:
            choice = Settlement();
            break;
        case column::kCurrencyName:
            choice = Currency();
            break;
        case column::kUnitName: {
            const std::string accountId(grid.Text(cell.row, column::kAccountId));
            // The one way out that does not mark the template as changed.
            if (accountId.empty()) return false;
            choice = Unit(accountId);
            break;
        }
        default:
            break;
    }
    if (choice) choice = WithPlainId(std::move(*choice), cell.column);
    if (choice) WriteChosen(state_, cell.row, TextsOfChoice(grid, cell.row, cell.column, *choice));
    state_.open.Touch();
    return choice.has_value();
}

std::optional<Choice> CellLookUps::Explanation() {
    const LookUpResult result(automation::CreateObject(kExplanationView)->Call("LoadVchExpNewTp"));
    if (!result.Confirmed()) return std::nullopt;
    return Choice{result.Field("FAccountID"), {}, result.Value()};
}

std::optional<Choice> CellLookUps::Account(int row) {
    Variant text(state_.grid->Text(row, column::kAccountNumber));
    const LookUpResult result(
        automation::CreateObject(kLedgerView)->Call("AccountLookup", {Argument::ByReference(text)}));
    if (!result.Confirmed()) return std::nullopt;
    return Choice{result.Field("AccountID"), result.Field("Number"), result.Field("Name")};
}

std::optional<Choice> CellLookUps::Settlement() {
    const LookUpResult result(automation::CreateObject(kLedgerView)->Call("SettTypeLookup"));
    if (!result.Confirmed()) return std::nullopt;
    return Choice{result.Field("ItemID"), {}, result.Field("Name")};
}

std::optional<Choice> CellLookUps::Currency() {
    const LookUpResult result(automation::CreateObject(kLedgerView)->Call("CurrencyLookup"));
    if (!result.Confirmed()) return std::nullopt;
    return Choice{result.Value(), {}, result.Field("Name")};
}

std::optional<Choice> CellLookUps::Unit(const std::string& accountId) {
    const Variant group = UnitGroupOf(accountId);
    if (group.IsEmpty()) return std::nullopt;
    const LookUpResult result(
        automation::CreateObject(kLedgerView)->Call("UnitLookup", {Argument(group), Argument("")}));
    if (!result.Confirmed()) return std::nullopt;
    return Choice{result.Value(), {}, result.Field("Name")};
}

}  // namespace vicenter::center
