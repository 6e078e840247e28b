#pragma once

#include "tsql/types/collation.h"

namespace vicenter::tsql::engine {

// ASCII without case; enough for what is not about Chinese order.
class PlainCollation final : public TextCollation {
  public:
    int Compare(std::string_view a, std::string_view b) const override { return Fold(a).compare(Fold(b)); }
    std::string Fold(std::string_view text) const override {
        std::string folded(text);
        for (char& c : folded) {
            if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        }
        return folded;
    }
};

}  // namespace vicenter::tsql::engine
