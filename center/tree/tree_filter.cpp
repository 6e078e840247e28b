#include "center/tree/tree_filter.h"

#include "platform/system/collation.h"
#include "platform/system/utf8.h"

namespace vicenter::center {

namespace {

bool IsAscii(const std::string& text) {
    for (const char c : text) {
        if (static_cast<unsigned char>(c) > 0x7f) return false;
    }
    return true;
}

}  // namespace

bool FitsFilter(const std::string& name, const std::string& filter) {
    const system::Collator& collator = system::Collator::Chinese();
    const std::string wanted = collator.Fold(system::TrimBlanks(filter));
    if (collator.Fold(name).find(wanted) != std::string::npos) return true;
    // Initials are letters.
    return IsAscii(wanted) && collator.PinyinInitials(name).find(wanted) != std::string::npos;
}

}  // namespace vicenter::center
