#pragma once

// What the panel over the items column can be asked. No error of the component comes out of any of these: it
// has been told to the user. User-interface thread only.

#include <cstddef>
#include <string>
#include <vector>

namespace vicenter::center {

class ItemActions {
  public:
    virtual ~ItemActions() = default;

    virtual void Toggle() = 0;                             // cmdItem
    virtual void CommitText(const std::string& text) = 0;  // txtItem
    virtual void CommitNumber(std::size_t row, const std::string& number) = 0;
    virtual void LookUp(std::size_t row) = 0;
    // The names behind the numbers, row by row; empty texts where there are none.
    virtual std::vector<std::string> Names() { return {}; }
};

}  // namespace vicenter::center
