#pragma once

// Asks for the name of a template. Modal. User-interface thread only.

#include <QWidget>
#include <optional>
#include <string>

namespace vicenter::ui {

// Nothing when the user gives it up.
std::optional<std::string> AskForName(const std::string& caption, const std::string& proposed,
                                      QWidget* parent);

}  // namespace vicenter::ui
