#include "platform/ado/account_set/account_set_collation.h"

#include "platform/system/code_page.h"
#include "platform/system/collation.h"

namespace vicenter::ado {

namespace {

class ChineseCollation final : public tsql::engine::TextCollation {
  public:
    int Compare(std::string_view a, std::string_view b) const override {
        return system::Collator::Chinese().Compare(a, b);
    }
    std::string Fold(std::string_view text) const override { return system::Collator::Chinese().Fold(text); }
    std::uint8_t LeadByte(std::string_view character) const override {
        constexpr int kChinese = 936;
        const auto page = system::CodePage::Open(kChinese);
        const std::string bytes = page ? page->Encode(character) : std::string();
        return bytes.empty() ? std::uint8_t{'?'} : static_cast<std::uint8_t>(bytes.front());
    }
};

}  // namespace

const tsql::engine::TextCollation& AccountSetCollation() {
    static const ChineseCollation collation;
    return collation;
}

}  // namespace vicenter::ado
