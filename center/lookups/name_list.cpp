#include "center/lookups/name_list.h"

#include <algorithm>

#include "automation/class_registry.h"
#include "center/lookups/cell_look_ups.h"
#include "center/lookups/cell_resolution.h"
#include "platform/ado/recordset.h"
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
bool IsDetail(const std::string& detail) {
    return detail != "0" && !automation::SameName(detail, "False");
}

// The component's word for the state of its lists; empty when it has none.
std::string VersionOf(automation::Object& component) {
    return component.HasMember("ListVersion") ? component.Get("ListVersion").ToTextOrEmpty() : std::string();
}

// The lists that no row decides about; those of units are short.
constexpr int kPreparedColumns[] = {column::kExplanation, column::kAccountNumber, column::kSettleName,
                                    column::kCurrencyName};

}  // namespace

void NameList::Prepare() {
    if (!state_.hasRight || !state_.open.IsOpen() || list_.open) return;
    for (const char* library : {kFirstLibrary, kSecondLibrary}) {
        std::string version;
        try {
            version = VersionOf(*automation::CreateObject(library));
        } catch (const automation::Error&) {
            // No component, no list.
        }
        // Without a word about changes the lists would be read for nothing.
        if (version.empty()) continue;
        for (const int gridColumn : kPreparedColumns) {
            if (LibraryOf(gridColumn) != library || sources_[gridColumn].version == version) continue;
            Fetch({state_.grid->ActiveCell().row, gridColumn});
        }
    }
}

NameList::Source* NameList::Fetch(const CellAddress& cell) {
    try {
        std::string text;
        if (cell.column == column::kUnitName) {
            const std::string accountId(state_.grid->Text(cell.row, column::kAccountId));
            if (accountId.empty()) return nullptr;
            const Variant group = UnitGroupOf(accountId);
            if (group.IsEmpty()) return nullptr;
            text = group.ToText();
        }
        const automation::ObjectRef component = automation::CreateObject(LibraryOf(cell.column));
        const std::string version = VersionOf(*component);
        Source& source = sources_[cell.column];
        if (version.empty() || version != source.version || text != source.text) {
            // Whatever goes wrong on the way: the list is to be read again next time.
            source.version.clear();
            source.text = text;
            Read(source, *component, cell.column);
            source.version = version;
        }
        return &source;
    } catch (const automation::Error&) {
        return nullptr;
    }
}

std::vector<NameList::Entry> NameList::EntriesOf(const Variant& list) {
    std::vector<Entry> entries;
    if (!list.IsObject() || list.AsObject() == nullptr) return entries;
    automation::Object& object = *list.AsObject();
    if (const auto* records = dynamic_cast<const ado::Recordset*>(&object)) {
        // The same fields, found once for all rows: charts of accounts are long.
        const std::size_t id = records->ColumnIndex("FID");
        const std::size_t number = records->ColumnIndex("FNumber");
        const std::size_t name = records->ColumnIndex("FName");
        const std::size_t detail = records->ColumnIndex("FDetail");
        const auto rows = static_cast<std::size_t>(std::max<std::int64_t>(0, records->RecordCount()));
        entries.reserve(rows);
        for (std::size_t row = 0; row < rows; ++row) {
            const auto text = [&](std::size_t field) { return records->ValueAt(row, field).ToTextOrEmpty(); };
            entries.push_back({text(id), text(number), text(name), IsDetail(text(detail))});
        }
        return entries;
    }
    for (; !object.Get("EOF").ToBoolean(); object.Call("MoveNext")) {
        const auto text = [&](const char* field) { return RecordField(list, field).ToTextOrEmpty(); };
        entries.push_back({text("FID"), text("FNumber"), text("FName"), IsDetail(text("FDetail"))});
    }
    return entries;
}

void NameList::Read(Source& source, automation::Object& component, int gridColumn) {
    const Variant list =
        component.Call("GetNameList", {Argument(std::int32_t{gridColumn}), Argument(source.text)});
    std::vector<Entry> entries = EntriesOf(list);
    // The same entries are already folded.
    if (entries == source.entries) return;
    source.entries = std::move(entries);
    source.index.Clear();
    source.index.Reserve(source.entries.size());
    for (const Entry& entry : source.entries)
        source.index.Add(entry.number, entry.name);
}

void NameList::TextTyped(const std::string& text) {
    const CellAddress cell = state_.grid->ActiveCell();
    if (!state_.hasRight || cell.row < 1 || !IsLookUpColumn(cell.column) ||
        system::TrimBlanks(text).empty()) {
        list_.open = false;
        state_.view.SetNameList(list_);
        return;
    }
    if (!(cell == cell_)) {
        cell_ = cell;
        source_ = Fetch(cell);
    }
    shown_ = source_ == nullptr ? std::vector<std::size_t>() : source_->index.Best(text, kMostShown);
    list_ = {!shown_.empty(), cell.row, cell.column, -1, {}};
    for (const std::size_t i : shown_)
        list_.entries.push_back(
            {source_->entries[i].number, source_->entries[i].name, source_->entries[i].selectable});
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
    const int wanted = std::clamp(list_.selected + steps, 0, last);
    const auto takeable = [this](int index) {
        return list_.entries[static_cast<std::size_t>(index)].selectable;
    };
    // Groups are passed over: on in the same direction, else back to the last entry that can be taken.
    const int direction = steps < 0 ? -1 : 1;
    for (int index = wanted; index >= 0 && index <= last; index += direction) {
        if (takeable(index)) return Select(index);
    }
    for (int index = wanted; index >= 0 && index <= last; index -= direction) {
        if (takeable(index)) return Select(index);
    }
}

bool NameList::Take() {
    const bool taken = list_.open && list_.selected >= 0 &&
                       list_.entries[static_cast<std::size_t>(list_.selected)].selectable;
    if (taken) {
        const Entry& entry = source_->entries[shown_[static_cast<std::size_t>(list_.selected)]];
        const CellAddress cell{list_.row, list_.column};
        // A message may let the list close under it.
        const std::optional<Choice> choice = WithPlainId({entry.id, entry.number, entry.name}, cell.column);
        if (choice) {
            WriteChosen(state_, cell.row, TextsOfChoice(*state_.grid, cell.row, cell.column, *choice));
            state_.open.Touch();
        }
        Close();
        return choice.has_value();
    }
    Close();
    return false;
}

void NameList::Close() {
    cell_ = {0, 0};
    if (!list_.open) return;
    list_ = {};
    shown_.clear();
    state_.view.SetNameList(list_);
}

}  // namespace vicenter::center
