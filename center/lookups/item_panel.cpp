#include "center/lookups/item_panel.h"

#include <algorithm>

#include "automation/class_registry.h"
#include "center/editing/cell_checks.h"
#include "center/editing/cell_rules.h"
#include "center/lookups/cell_look_ups.h"
#include "platform/system/utf8.h"
#include "store/cls_vi_data.h"
#include "store/item_names.h"

namespace vicenter::center {

using automation::Argument;

std::vector<std::string> SplitItems(std::string_view text, std::size_t count) {
    std::vector<std::string> pieces;
    while (pieces.size() < count) {
        const std::size_t comma = text.find(',');
        pieces.emplace_back(text.substr(0, comma));
        text = comma == std::string_view::npos ? std::string_view() : text.substr(comma + 1);
    }
    return pieces;
}

std::string JoinItems(const std::vector<std::string>& pieces) {
    std::string joined;
    for (std::size_t i = 0; i < pieces.size(); ++i) {
        if (i != 0) joined += ',';
        joined += pieces[i];
    }
    return joined.find_first_not_of(',') == std::string::npos ? std::string() : joined;
}

void ItemPanel::Refresh() {
    const CellAddress cell = state_.grid->ActiveCell();
    const bool visible = state_.open.IsOpen() && state_.hasRight && cell.column == column::kItems &&
                         cell.row >= 1 && cell.row <= state_.open.RowCount() + 1;
    if (!visible) {
        account_.clear();
        const bool wasVisible = panel_.visible;
        panel_ = {};
        if (wasVisible) state_.view.SetItemPanel(panel_);
        return;
    }
    const std::string account(system::TrimBlanks(state_.grid->Text(cell.row, column::kAccountNumber)));
    if (!panel_.visible || account != account_) ReadClasses(account);
    panel_.visible = true;
    panel_.text = std::string(state_.grid->Text(cell.row, column::kItems));
    panel_.faulty = state_.grid->Look(cell.row, column::kItems).foreColor == color::kRed;

    const std::vector<std::string> numbers = SplitItems(panel_.text, panel_.rows.size());
    store::clsVIData data;
    for (std::size_t i = 0; i < panel_.rows.size(); ++i) {
        ItemPanelState::Row& row = panel_.rows[i];
        row.number = numbers[i];
        row.faulty = false;
        if (row.number.empty()) continue;
        // The check of the whole cell with this piece alone says whether the piece resolves.
        std::vector<std::string> alone(numbers.size());
        alone[i] = row.number;
        row.faulty = !data.CheckErrorCell(static_cast<std::int32_t>(store::CellCheck::Items), account, "", "",
                                          "", JoinItems(alone));
    }
    state_.view.SetItemPanel(panel_);
}

void ItemPanel::ReadClasses(const std::string& accountNumber) {
    account_ = accountNumber;
    panel_.rows.clear();
    if (accountNumber.empty()) return;
    store::clsVIData data;
    const ado::RecordsetRef items = data.GetItems(accountNumber);
    if (items != nullptr && items->RecordCount() < 1) return;
    const ado::RecordsetRef classes =
        items == nullptr ? nullptr : data.GetItemClassIDs(items->Value("FDetailID").ToText());
    if (classes == nullptr) {
        // Nobody knows the account's classes: the next refresh asks again.
        account_.clear();
        return;
    }
    for (; !classes->AtEnd(); classes->MoveNext()) {
        ItemPanelState::Row row;
        row.classId = classes->Value("FItemClassID").ToInt32();
        // Classes of 0 and less are no part of the items text.
        if (row.classId <= 0) continue;
        row.className = classes->Value("FName").ToTextOrEmpty();
        panel_.rows.push_back(std::move(row));
    }
}

void ItemPanel::Toggle() {
    if (!panel_.visible) return;
    panel_.expanded = !panel_.expanded;
    state_.view.SetItemPanel(panel_);
}

std::vector<std::string> ItemPanel::Numbers() const {
    std::vector<std::string> numbers;
    for (const ItemPanelState::Row& row : panel_.rows)
        numbers.push_back(row.number);
    return numbers;
}

std::vector<std::string> ItemPanel::Names() const {
    std::vector<std::string> names(panel_.rows.size());
    const std::vector<std::string> numbers = Numbers();
    if (JoinItems(numbers).empty()) return names;
    const std::vector<store::NamedItem> items = store::NamedItems(account_, JoinItems(numbers));
    // Classes that the panel leaves out have no piece of the text, either.
    for (std::size_t i = 0; i < std::min(names.size(), items.size()); ++i)
        names[i] = items[i].name;
    return names;
}

void ItemPanel::Write(const std::string& text) {
    const int row = state_.grid->ActiveCell().row;
    {
        const UndoStep step(state_.open);
        state_.grid->SetText(row, column::kItems, text);
        CellChecks checks;
        MarkCells(*state_.grid, row, static_cast<int>(store::CellCheck::Items), checks);
    }
    Refresh();
}

void ItemPanel::CommitText(const std::string& typed) {
    if (!panel_.visible) return;
    // The format knows no blanks around the numbers and has a piece for every class.
    const auto typedPieces = static_cast<std::size_t>(std::count(typed.begin(), typed.end(), ',')) + 1;
    std::vector<std::string> pieces = SplitItems(typed, std::max(typedPieces, panel_.rows.size()));
    for (std::string& piece : pieces)
        piece = std::string(system::TrimBlanks(piece));
    const std::string text = JoinItems(pieces);
    if (CheckTypedText(column::kItems, text) == TextVerdict::Taken) {
        Write(text);
    } else {
        state_.view.SetItemPanel(panel_);
    }
}

TextVerdict ItemPanel::Take(std::size_t row, const std::string& number) {
    std::vector<std::string> numbers = Numbers();
    numbers[row] = std::string(system::TrimBlanks(number));
    const std::string text = JoinItems(numbers);
    // A separator inside a number would shift the pieces behind it.
    const TextVerdict verdict = numbers[row].find(',') == std::string::npos
                                    ? CheckTypedText(column::kItems, text)
                                    : TextVerdict::BadCharacter;
    if (verdict == TextVerdict::Taken) {
        Write(text);
    } else {
        state_.view.SetItemPanel(panel_);
    }
    return verdict;
}

void ItemPanel::CommitNumber(std::size_t row, const std::string& number) {
    if (row < panel_.rows.size()) Take(row, number);
}

void ItemPanel::LookUp(std::size_t row) {
    if (row >= panel_.rows.size()) return;
    const automation::ObjectRef lookUp = automation::CreateObject("VelaEBCGLView.GLView");
    lookUp->Put("BeShortNumber", false);
    lookUp->Put("GetDataType", std::int32_t{0});
    lookUp->Put("Refresh", true);
    lookUp->Put("Search", true);
    const LookUpResult result(
        lookUp->Call("ItemLookUp", {Argument(panel_.rows[row].classId), Argument(panel_.rows[row].number)}));
    if (!result.Confirmed()) return;
    const std::string number = result.Field("Number");
    const TextVerdict verdict = Take(row, number);
    if (verdict == TextVerdict::Taken) return;
    const std::string reason = verdict == TextVerdict::BadCharacter
                                   ? "代码不能包含单引号、竖线、逗号或控制字符"
                                   : "核算项目" + VerdictText(verdict, column::kItems);
    Tell("所选核算项目“" + number + "”没有取用：" + reason + "！");
}

}  // namespace vicenter::center
