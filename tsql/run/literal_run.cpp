#include "tsql/run/literal_run.h"

#include <algorithm>

namespace vicenter::tsql::engine {

int LiteralRun::OrdinalOf(const LiteralExpr& literal) const {
    if (offsets_ == nullptr) return -1;
    const auto found = std::find(offsets_->begin(), offsets_->end(), literal.position.offset);
    return found == offsets_->end() ? -1 : static_cast<int>(found - offsets_->begin());
}

bool LiteralRun::Pin(const LiteralExpr& literal) const {
    const int ordinal = OrdinalOf(literal);
    if (ordinal < 0) return false;
    if (pinned_ == nullptr) return true;
    const bool known = std::any_of(pinned_->begin(), pinned_->end(),
                                   [ordinal](const auto& pin) { return pin.first == ordinal; });
    if (!known) pinned_->emplace_back(ordinal, literal.text);
    return true;
}

}  // namespace vicenter::tsql::engine
