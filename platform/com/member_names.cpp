#include "platform/com/member_names.h"

#include <map>
#include <mutex>
#include <vector>

#include "text/ascii.h"

namespace vicenter::com {

namespace {

struct Names {
    std::mutex lock;
    std::map<std::string, DISPID> numbers;  // by the name in lower case
    std::vector<std::string> names;         // number 1 first
};

Names& All() {
    static Names names;
    return names;
}

}  // namespace

DISPID MemberNumber(std::string_view name) {
    if (name.empty()) return DISPID_VALUE;
    std::string key(name);
    for (char& c : key)
        c = text::LowerAscii(c);
    Names& all = All();
    const std::lock_guard guard(all.lock);
    const auto [found, fresh] = all.numbers.try_emplace(key, static_cast<DISPID>(all.names.size() + 1));
    if (fresh) all.names.emplace_back(name);
    return found->second;
}

void ReserveMemberNumbers(std::span<const char* const> names) {
    static const bool reserved = [names] {
        for (const char* name : names)
            MemberNumber(name);
        return true;
    }();
    static_cast<void>(reserved);
}

std::string MemberNameOf(DISPID number) {
    Names& all = All();
    const std::lock_guard guard(all.lock);
    if (number < 1 || static_cast<std::size_t>(number) > all.names.size()) return {};
    return all.names[static_cast<std::size_t>(number) - 1];
}

}  // namespace vicenter::com
