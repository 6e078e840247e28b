#pragma once

// Names for templates that commands make: which one the user may take, and which one to propose. Asks the
// account set. User-interface thread.

#include <optional>
#include <string>

namespace vicenter::center {

// Why the user can have no new template of that name, ended by what failed for it ("恢复失败！"); empty when
// there is no reason.
std::string WhyNotNewName(const std::string& name, const std::string& userId, const std::string& failed);

// A name under which the user has no template: that one when it is free, else with the mark behind it,
// "(恢复)", "(恢复2)" and so on; always with it when marked is set. Nothing when the account set does not
// answer.
std::optional<std::string> FreeName(const std::string& name, const std::string& mark,
                                    const std::string& userId, bool marked = false);

}  // namespace vicenter::center
