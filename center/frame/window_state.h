#pragma once

// What the parts of frmVICenter share, and the two small services they all use. Owned by the presenter.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "center/frame/vicenter_view.h"
#include "center/grid/entry_grid.h"
#include "center/lookups/account_cells.h"
#include "center/lookups/account_uses.h"
#include "center/template/open_template.h"
#include "platform/system/surroundings.h"

namespace vicenter::center {

struct WindowState {
    explicit WindowState(VICenterView& theView)
        : view(theView), open(*grid, [this](const std::string& id, bool modified) {
              view.SetModified(std::string(kTemplateKeyHead) + id, modified);
          }) {
        tools.fill(true);
    }

    VICenterView& view;
    const std::shared_ptr<EntryGrid> grid = std::make_shared<EntryGrid>();  // vsEntrys
    OpenTemplate open;
    AccountCells accounts;
    AccountUses uses;

    std::string userId;
    std::string propsString;  // the host's when the window was opened
    bool hasRight = false;
    bool closing = false;       // the window is closed: what is under way ends, and nothing begins
    std::string rightsFailure;  // why the rights could not be asked for; then there are none
    ToolStates tools{};
    automation::ObjectRef security;  // held until the window is unloaded

    bool IsEnabled(Tool tool) const { return tools[static_cast<std::size_t>(tool)]; }
    void Enable(std::initializer_list<Tool> which, bool enabled) {
        for (const Tool tool : which)
            tools[static_cast<std::size_t>(tool)] = enabled;
        view.SetToolStates(tools);
    }
};

// Modal boxes with the information icon and the title 信息提示.
void Tell(const std::string& text);
system::MessageResult Ask(const std::string& text, system::MessageButtons buttons);

}  // namespace vicenter::center
