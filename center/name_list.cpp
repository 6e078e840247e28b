#include "center/name_list.h"

#include <algorithm>

#include "automation/class_registry.h"
#include "center/cell_look_ups.h"
#include "center/cell_resolution.h"
#include "platform/system/utf8.h"

namespace vicenter::center {

using automation::Argument;
using automation::Variant;

namespace {

constexpr const char* kFirstLibrary = "VelaGLNameListLib.GLNameList";
constexpr const char* kSecondLibrary = "VelaGLNameListLib2.GLNameList";

const char* LibraryOf(int gridColumn) {
    return gridColumn == column::kExplanation || gridColumn == column::kAccountNumber ? kFirstLibrary
                                                                                      : kSecondLibrary;
}

// Group accounts are shown but cannot be taken; the other lists know no groups.
bool IsDetail(const Variant& records) {
    const std::string detail = RecordField(records, "FDetail").ToTextOrEmpty();
    return detail != "0" && !automation::SameName(detail, "False");
}

}  // namespace

void NameList::ReadEntries(const CellAddress& cell) {
    cell_ = cell;
    entries_.clear();
    index_.Clear();
    try {
        Variant text("");
        if (cell.column == column::kUnitName) {
            const std::string accountId(state_.grid->Text(cell.row, column::kAccountId));
            if (accountId.empty()) return;
            const Variant group = UnitGroupOf(accountId);
            if (group.IsEmpty()) return;
            text = Variant(group.ToText());
        }
        const Variant list = automation::CreateObject(LibraryOf(cell.column))
                                 ->Call("GetNameList", {Argument(std::int32_t{cell.column}), Argument(text)});
        if (!list.IsObject() || list.AsObject() == nullptr) return;
        const automation::ObjectRef& records = list.AsObject();
        for (; !records->Get("EOF").ToBoolean(); records->Call("MoveNext")) {
            entries_.push_back({RecordField(list, "FID").ToTextOrEmpty(),
                                RecordField(list, "FNumber").ToTextOrEmpty(),
                                RecordField(list, "FName").ToTextOrEmpty(), IsDetail(list)});
            index_.Add(entries_.back().number, entries_.back().name);
        }
    } catch (const automation::Error&) {
        entries_.clear();
        index_.Clear();
    }
}

void NameList::TextTyped(const std::string& text) {
    const CellAddress cell = state_.grid->ActiveCell();
    if (!state_.hasRight || cell.row < 1 || !IsLookUpColumn(cell.column) ||
        system::TrimBlanks(text).empty()) {
        list_.open = false;
        state_.view.SetNameList(list_);
        return;
    }
    if (!(cell == cell_)) ReadEntries(cell);
    shown_ = index_.Best(text, kMostShown);
    list_ = {!shown_.empty(), cell.row, cell.column, -1, {}};
    for (const std::size_t i : shown_)
        list_.entries.push_back({entries_[i].number, entries_[i].name, entries_[i].selectable});
    state_.view.SetNameList(list_);
}

void NameList::Select(int index) {
    if (!list_.open || index < -1 || index >= static_cast<int>(list_.entries.size())) return;
    list_.selected = index;
    state_.view.SetNameList(list_);
}

void NameList::Move(int steps) {
    if (!list_.open) return;
    const int last = static_cast<int>(list_.entries.size()) - 1;
    Select(std::clamp(list_.selected + steps, 0, last));
}

bool NameList::Take() {
    const bool taken = list_.open && list_.selected >= 0 &&
                       list_.entries[static_cast<std::size_t>(list_.selected)].selectable;
    if (taken) {
        const Entry& entry = entries_[shown_[static_cast<std::size_t>(list_.selected)]];
        const Choice choice{entry.id, entry.number, entry.name};
        WriteChosen(state_, list_.row, TextsOfChoice(*state_.grid, list_.row, list_.column, choice));
        state_.dirty = true;
    }
    Close();
    return taken;
}

void NameList::Close() {
    cell_ = {0, 0};
    if (!list_.open) return;
    list_ = {};
    shown_.clear();
    state_.view.SetNameList(list_);
}

}  // namespace vicenter::center
