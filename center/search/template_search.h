#pragma once

// A search over all templates that the user's tree lists, by text, account, item and amount. Needs no window.
// User-interface thread.

#include <optional>
#include <string>
#include <vector>

#include "store/stored_templates.h"

namespace vicenter::center {

// Whatever is given has to fit the same line.
struct SearchWish {
    std::string text;     // part of a text that is shown, whatever its case and width
    std::string account;  // the code of an account or of one above it, or part of the name
    std::string item;     // the code of one of the line's items
    std::string amount;   // of the amount or the amount in currency; "100-200" for a range
};

struct SearchHit {
    std::string templateId;
    std::string templateName;
    int row = 0;  // from 1
    int column = 0;
    store::LineTexts line;
};

// Why that wish cannot be searched for; empty when it can.
std::string WhyNotSearched(const SearchWish& wish);
// By templates and rows.
std::vector<SearchHit> SearchTemplates(const std::vector<store::StoredTemplate>& templates,
                                       const SearchWish& wish);
// The row of that line: the place where it was, else the nearest; nothing when it is there no more.
std::optional<int> RowOfLine(const std::vector<store::LineTexts>& lines, const store::LineTexts& line,
                             int before);

}  // namespace vicenter::center
