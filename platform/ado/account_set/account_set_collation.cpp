#include "platform/ado/account_set/account_set_collation.h"

#include "platform/system/collation.h"

namespace vicenter::ado {

namespace {

class ChineseCollation final : public tsql::engine::TextCollation {
  public:
    int Compare(std::string_view a, std::string_view b) const override {
        return system::Collator::Chinese().Compare(a, b);
    }
    std::string Fold(std::string_view text) const override { return system::Collator::Chinese().Fold(text); }
};

}  // namespace

const tsql::engine::TextCollation& AccountSetCollation() {
    static const ChineseCollation collation;
    return collation;
}

}  // namespace vicenter::ado
