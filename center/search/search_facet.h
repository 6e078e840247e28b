#pragma once

// The side of the main window that searches and replaces. Part of frmVICenter.

#include "center/search/search_actions.h"

namespace vicenter::center {

struct WindowParts;

class SearchFacet final : public SearchActions {
  public:
    explicit SearchFacet(WindowParts& parts) : parts_(parts) {}

    void ShowPanel() override;
    bool Find(const SearchWish& wish) override;
    const std::vector<SearchHit>& Hits() override { return hits_; }
    std::string Note() override;
    void Open(std::size_t hit) override;
    void ReplaceInGrid() override;
    void ReplaceCodes() override;
    void ShowLog() override;

  private:
    void OpenHit(const SearchHit& hit);

    WindowParts& parts_;
    std::vector<SearchHit> hits_;
};

}  // namespace vicenter::center
