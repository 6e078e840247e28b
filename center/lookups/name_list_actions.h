#pragma once

// What the list of choices below the cell that is being typed in can be asked. No error of the component
// comes out of any of these. User-interface thread only.

#include <string>

namespace vicenter::center {

class NameListActions {
  public:
    virtual ~NameListActions() = default;

    virtual void Prepare() = 0;                                // for the window's idle moments
    virtual void TextTyped(const std::string& typedText) = 0;  // the editor's text changed
    virtual void Select(int index) = 0;
    virtual void Move(int steps) = 0;
    virtual bool Take() = 0;  // false when nothing can be taken; the list then closes
    virtual void Close() = 0;
    virtual bool IsOpen() const = 0;
};

}  // namespace vicenter::center
