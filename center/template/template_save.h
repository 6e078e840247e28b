#pragma once

// Validation and save of a template's lines. The functions need no window: the command line uses them on a
// grid of its own; TemplateSave is the part of frmVICenter that adds the dirty flag and the reload.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "center/frame/window_state.h"
#include "center/template/draft/template_drafts.h"
#include "center/template/kept_lines.h"
#include "center/template/refused_line.h"
#include "center/template/template_fate.h"
#include "store/template_outcome.h"

namespace vicenter::center {

// What keeps a template from being saved.
struct Finding {
    int row = 0;
    int column = 0;
    std::string text;    // as the user is told
    std::string reason;  // the same without the row
};
// The first of all.
std::optional<Finding> ValidateLines(const EntryGrid& grid, int rowCount);
std::vector<Finding> AllFindings(const EntryGrid& grid, int rowCount);
// What is wrong with one row in use.
std::vector<Finding> FindingsOfRow(const EntryGrid& grid, int row);

// The batch that replaces the template's lines and brings its control rows up to date.
std::string BuildSaveBatch(const EntryGrid& grid, int rowCount, const std::string& templateId);

// Sends the batch to the template that the user saw and tells the user and the operation log how it went.
// When the account set refuses the batch the message of success follows all the same; Refused tells the two
// apart. When it is not what the user saw any more nothing is sent and nothing told.
store::TemplateOutcome SendTemplate(const EntryGrid& grid, int rowCount, const SeenTemplate& seen);

// Behind the message of a save that failed: that the user himself has stopped it; else empty.
std::string StoppedNote();

// What the user and the operation log learn of a save that failed.
void TellSaveFailed(const std::string& name);

// An empty template is saved only when the user agrees.
bool ConfirmEmptyTemplate();

// What a save asks of the window around it.
struct TemplateSaveActions {
    // Reads the open template into the window again; false when its lines could not be read.
    std::function<bool()> reload;
    // Reads the tree again and opens the template of that id; false, and nothing has changed, when it cannot
    // be read or is not there.
    std::function<bool(const std::string& id)> showAgain;
    std::function<void()> undo;
    // The lines are not to be saved as they are.
    std::function<void()> refused;
    std::function<void()> refreshStatus;
};

class TemplateSave {
  public:
    TemplateSave(WindowState& state, KeptLines& kept, TemplateDrafts& drafts, RefusedLine& refused,
                 TemplateSaveActions actions);

    bool Save();
    bool Validate();
    std::optional<Finding> FindUnread();
    bool ConfirmUnsavedChanges();
    void GoToCell(const CellAddress& cell);

  private:
    // To the template that the user saw, and asks as long as it is another one by then.
    bool SendAs(SeenTemplate seen);
    // Shows what is stored after the grid was sent.
    bool ShowSent(const store::TemplateOutcome& sent, bool treeToo);
    bool SendAsNewTemplate();
    // What there is instead of what the user saw is shown, with the user's lines one step of undo away; when
    // it cannot be, the window stays as it is, and the user is asked or told.
    FoundTemplate LookAtTheirs(const SeenTemplate& theirs);
    void KeepRefused(bool reloaded, const LinesDigest& loadedBefore);

    WindowState& state_;
    KeptLines& kept_;
    TemplateDrafts& drafts_;
    RefusedLine& refused_;
    TemplateSaveActions actions_;
};

}  // namespace vicenter::center
