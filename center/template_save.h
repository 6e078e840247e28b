#pragma once

// Validation and save of a template's lines. The functions need no window: the command line uses them on a
// grid of its own; TemplateSave is the part of frmVICenter that adds the dirty flag and the reload.

#include <functional>
#include <optional>
#include <string>

#include "center/window_state.h"

namespace vicenter::center {

// The first row that keeps a template from being saved.
struct Finding {
    int row = 0;
    int column = 0;
    std::string text;
};
std::optional<Finding> ValidateLines(const EntryGrid& grid, int rowCount);

// The batch that replaces the template's lines and brings its control rows up to date.
std::string BuildSaveBatch(const EntryGrid& grid, int rowCount, const std::string& templateId);

// Sends the batch and tells the user and the operation log how it went; false after an error.
bool SendTemplate(const EntryGrid& grid, int rowCount, const std::string& templateId,
                  const std::string& name);

// What the user and the operation log learn of a save that failed.
void TellSaveFailed(const std::string& name);

// An empty template is saved only when the user agrees.
bool ConfirmEmptyTemplate();

class TemplateSave {
  public:
    // reopen: reads the open template into the window again.
    TemplateSave(WindowState& state, std::function<void()> reopen);

    bool Save();
    bool Validate();
    bool ConfirmUnsavedChanges();
    void GoToCell(const CellAddress& cell);

  private:
    WindowState& state_;
    std::function<void()> reopen_;
};

}  // namespace vicenter::center
