#pragma once

// What the parts of frmVICenter share, and the two small services they all use. Owned by the presenter.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "center/editing/grid_journal.h"
#include "center/frame/vicenter_view.h"
#include "center/grid/entry_grid.h"
#include "center/template/line_loader.h"
#include "platform/system/surroundings.h"

namespace vicenter::center {

// Whether what is in the grid differs from what was read or saved last; the view shows it.
class ModifiedFlag {
  public:
    ModifiedFlag(VICenterView& view, const std::string& templateId) : view_(view), templateId_(templateId) {}
    ModifiedFlag(const ModifiedFlag&) = delete;
    ModifiedFlag& operator=(const ModifiedFlag&) = delete;
    ModifiedFlag& operator=(bool modified) {
        if (std::exchange(modified_, modified) != modified)
            view_.SetModified(std::string(kTemplateKeyHead) + templateId_, modified);
        return *this;
    }
    operator bool() const {
        return modified_;
    }  // NOLINT(google-explicit-constructor): read as the flag it is

  private:
    VICenterView& view_;
    const std::string& templateId_;
    bool modified_ = false;
};

struct WindowState {
    explicit WindowState(VICenterView& theView) : view(theView), journal(*grid) { tools.fill(true); }

    VICenterView& view;
    const std::shared_ptr<EntryGrid> grid = std::make_shared<EntryGrid>();  // vsEntrys
    GridJournal journal;

    std::string userId;
    std::string templateId;       // FID of the open template, empty when none
    std::string templateName;     // itName
    std::int32_t entryCount = 0;  // lines of the open template as last read
    int rowCount = 0;             // rows of the grid in use
    bool linesKnown = true;       // false: the open template's lines could not be read
    LinesDigest loaded;           // the open template's lines as read
    std::string notice;           // in the status line until something changes
    ModifiedFlag dirty{view, templateId};
    bool hasRight = false;
    ToolStates tools{};
    automation::ObjectRef security;  // held until the window is unloaded

    bool IsOpen() const { return !templateId.empty(); }
    JournalMark Mark() const { return {rowCount, grid->ActiveCell(), dirty}; }

    bool IsEnabled(Tool tool) const { return tools[static_cast<std::size_t>(tool)]; }
    void Enable(std::initializer_list<Tool> which, bool enabled) {
        for (const Tool tool : which)
            tools[static_cast<std::size_t>(tool)] = enabled;
        view.SetToolStates(tools);
    }
    void SetTemplateName(const std::string& name) {
        templateName = name;
        view.SetTemplateName(name);
    }
};

// Everything that is changed while one of these lives is one step of undo.
class UndoStep {
  public:
    explicit UndoStep(WindowState& state, bool join = false) : state_(state) {
        state_.journal.Open(state_.Mark(), join);
    }
    UndoStep(const UndoStep&) = delete;
    UndoStep& operator=(const UndoStep&) = delete;
    ~UndoStep() { state_.journal.Close(state_.Mark()); }

  private:
    WindowState& state_;
};

// Modal boxes with the information icon and the title 信息提示.
void Tell(const std::string& text);
system::MessageResult Ask(const std::string& text, system::MessageButtons buttons);

}  // namespace vicenter::center
