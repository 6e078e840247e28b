#include "center/lookups/choice_facets.h"

#include "center/frame/window_parts.h"

namespace vicenter::center {

void NameListFacet::Prepare() {
    parts_.edge.Look([&] { parts_.names.Prepare(); });
}

void NameListFacet::TextTyped(const std::string& typedText) {
    parts_.edge.Look([&] { parts_.names.TextTyped(typedText); });
}

void NameListFacet::Select(int index) {
    parts_.names.Select(index);
}

void NameListFacet::Move(int steps) {
    parts_.names.Move(steps);
}

bool NameListFacet::Take() {
    const bool taken = parts_.edge.Look([&] { return parts_.names.Take(); });
    if (taken) parts_.editing.Forget();
    parts_.RefreshStatus();
    return taken;
}

// A list that is closed keeps what it knows of the cell that is being typed in.
void NameListFacet::Close() {
    if (IsOpen()) parts_.names.Close();
}

bool NameListFacet::IsOpen() const {
    return parts_.names.IsOpen();
}

void ItemFacet::Toggle() {
    parts_.items.Toggle();
}

void ItemFacet::CommitText(const std::string& text) {
    parts_.edge.Look([&] { parts_.items.CommitText(text); });
    parts_.RefreshStatus();
}

void ItemFacet::CommitNumber(std::size_t row, const std::string& number) {
    parts_.edge.Look([&] { parts_.items.CommitNumber(row, number); });
    parts_.RefreshStatus();
}

void ItemFacet::LookUp(std::size_t row) {
    parts_.edge.Look([&] { parts_.items.LookUp(row); });
    parts_.RefreshStatus();
}

std::vector<std::string> ItemFacet::Names() {
    return parts_.edge.Look([&] { return parts_.items.Names(); });
}

}  // namespace vicenter::center
