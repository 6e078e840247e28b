#pragma once

// What goes through the lines of one template or of all: search, replacement, the operation log. Views ask
// it; no error of the component comes out of any of these. User-interface thread only.

#include <cstddef>
#include <string>
#include <vector>

#include "center/search/template_search.h"

namespace vicenter::center {

class SearchActions {
  public:
    virtual ~SearchActions() = default;

    // The panel of the search over all templates, with the keyboard.
    virtual void ShowPanel() = 0;
    // False: the user has been told why there are no hits.
    virtual bool Find(const SearchWish& wish) = 0;
    virtual const std::vector<SearchHit>& Hits() = 0;
    virtual std::string Note() = 0;
    // Opens the template at the line; place in Hits().
    virtual void Open(std::size_t hit) = 0;

    // Texts of the open template's cells.
    virtual void ReplaceInGrid() = 0;
    // One code for another in all of the user's templates.
    virtual void ReplaceCodes() = 0;
    virtual void ShowLog() = 0;
};

}  // namespace vicenter::center
