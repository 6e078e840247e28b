#pragma once

// The two helpers of typing in a cell, the list of choices and the item panel, as their views see them. Part
// of frmVICenter.

#include "center/lookups/item_actions.h"
#include "center/lookups/name_list_actions.h"

namespace vicenter::center {

struct WindowParts;

class NameListFacet final : public NameListActions {
  public:
    explicit NameListFacet(WindowParts& parts) : parts_(parts) {}

    void Prepare() override;
    void TextTyped(const std::string& typedText) override;
    void Select(int index) override;
    void Move(int steps) override;
    bool Take() override;
    void Close() override;
    bool IsOpen() const override;

  private:
    WindowParts& parts_;
};

class ItemFacet final : public ItemActions {
  public:
    explicit ItemFacet(WindowParts& parts) : parts_(parts) {}

    void Toggle() override;
    void CommitText(const std::string& text) override;
    void CommitNumber(std::size_t row, const std::string& number) override;
    void LookUp(std::size_t row) override;
    std::vector<std::string> Names() override;

  private:
    WindowParts& parts_;
};

}  // namespace vicenter::center
