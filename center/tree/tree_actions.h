#pragma once

// What the template tree's view asks of the rules behind it. No error of the component comes out of any of
// these: it has been told to the user. User-interface thread only.

#include <functional>
#include <string>
#include <vector>

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
    virtual bool EditsLabels() = 0;  // a click on the selected node edits its label
    // The Delete key: the command of the bar, while it is enabled.
    virtual void DeleteSelected() = 0;
    // What the tree's menu offers beside the commands of the band; nothing: no menu.
    virtual std::vector<TreeMenuItem> MenuItems() = 0;
};

}  // namespace vicenter::center
