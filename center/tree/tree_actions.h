#pragma once

// What the template tree's view asks of the rules behind it. No error of the component comes out of any of
// these: it has been told to the user. User-interface thread only.

#include <functional>
#include <string>
#include <vector>

#include "center/editing/copied_block.h"

namespace vicenter::center {

struct TreeMenuItem {
    std::string name;  // of the action
    std::string text;
    std::function<void()> run;
};

class TreeActions {
  public:
    virtual ~TreeActions() = default;

    virtual void GotFocus() = 0;
    virtual void LostFocus() = 0;
    virtual void NodeClick(const std::string& key) = 0;
    virtual void DoubleClick() = 0;
    virtual bool BeforeLabelEdit() = 0;                           // false: no edit
    virtual bool AfterLabelEdit(const std::string& newText) = 0;  // false: the old label comes back
    virtual void LabelEditGivenUp() = 0;                          // it has ended without a new text
    virtual bool EditsLabels() = 0;  // a click on the selected node edits its label
    // The Delete key: the command of the bar, while it is enabled.
    virtual void DeleteSelected() = 0;
    // The lines in the grid as a new template, under a name that is asked for.
    virtual void SaveAs() = 0;
    // Whole rows of the grid, as they are copied, were dropped on that node.
    virtual void DropRows(const std::string& key, const CopiedBlock& rows) = 0;
    // From ten templates on a filter pays.
    virtual bool OffersFilter() = 0;
    // The keys of the nodes that stay: the root, the lit one and those that fit.
    virtual std::vector<std::string> Fitting(const std::string& filter) = 0;
    // The open template as it stands in the grid, on paper.
    virtual void PrintTemplate() {}
    // What the tree's menu offers beside the commands of the band; nothing: no menu.
    virtual std::vector<TreeMenuItem> MenuItems() = 0;
};

}  // namespace vicenter::center
