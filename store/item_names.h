#pragma once

// What codes stand for, and the codes behind names. Read only.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vicenter::store {

// One class of an account's items and what an items text holds of it.
struct NamedItem {
    std::string className;
    std::string code;  // empty: none is entered
    std::string name;  // empty: nobody knows the code
};

// One for each class of the account, in their order; none when the account carries no items or nothing could
// be read.
std::vector<NamedItem> NamedItems(std::string_view accountNumber, std::string_view items);
// Class, code and name of each item that is entered, a line for each; a code that nobody knows stands alone.
std::string ItemNames(std::string_view accountNumber, std::string_view items);
// The code of what a cell of that column shows by its name: of a settlement type, a currency or a unit, the
// unit among those of the account. Empty for other columns, for names that nobody knows and for those that
// several have; nothing when it could not be read.
std::optional<std::string> CodeOfName(int gridColumn, std::string_view name, std::string_view accountNumber);
// Whether the unit of that id bears that name; nothing when it could not be read.
std::optional<bool> IsUnit(std::string_view id, std::string_view name);

}  // namespace vicenter::store
