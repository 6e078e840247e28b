#pragma once

// The host's look-up dialogs behind the cells. Part of frmVICenter.
//
// Each component is created by ProgID at the moment of use and released afterwards. An error inside one ends
// the look-up and leaves row and window as they were.

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "center/frame/window_state.h"

namespace vicenter::center {

// A value of a chosen record by its field name, whether the record has members or fields of that name.
automation::Variant RecordField(const automation::Variant& record, const char* name);

// What a look-up member returned.
class LookUpResult {
  public:
    explicit LookUpResult(const automation::Variant& result);
    bool Confirmed() const;
    std::string Value() const;                  // ReturnValue
    std::string Field(const char* name) const;  // of ReturnObject
    automation::Variant Record() const;         // ReturnObject

  private:
    automation::ObjectRef result_;
};

// What a choice writes into its row: columns and texts.
using ChosenTexts = std::vector<std::pair<int, std::string>>;

// A record that was chosen for a column, whether from a dialog or from a typing name list.
struct Choice {
    std::string id;      // explanation: the account bound to it, "0" or empty when none
    std::string number;  // explanation: not used
    std::string name;    // explanation: its text
};
// The id as the grid holds it, whatever type the host's object answers: a whole number that the account set
// takes, or the empty text. Nothing for what is none: no row keeps the old id beside a new code.
std::optional<std::string> PlainId(std::string_view answered);
// The choice with its id in that form; nothing, and the user has been told, when it has none.
std::optional<Choice> WithPlainId(Choice choice, int gridColumn);
// Never replaces an account that the row already has by the one of an explanation. Throws when that cannot
// be read.
ChosenTexts TextsOfChoice(const EntryGrid& grid, int row, int gridColumn, const Choice& choice);
// Writes them as one step of undo and colours the row.
void WriteChosen(WindowState& state, int row, const ChosenTexts& texts);
// The unit group of an account, empty when it has none. Throws when it cannot be read.
automation::Variant UnitGroupOf(const std::string& accountId);

class CellLookUps {
  public:
    explicit CellLookUps(WindowState& state) : state_(state) {}

    // The look-up of the active cell; true when a choice was written. Throws what the host's components
    // throw.
    bool Open();

  private:
    std::optional<Choice> Explanation();
    std::optional<Choice> Account(int row);
    std::optional<Choice> Settlement();
    std::optional<Choice> Currency();
    std::optional<Choice> Unit(const std::string& accountId);

    WindowState& state_;
};

}  // namespace vicenter::center
