#include "center/template/new_name.h"

#include "platform/system/collation.h"
#include "platform/system/utf8.h"
#include "store/cls_vi_data.h"
#include "store/template_name.h"
#include "store/template_rows.h"

namespace vicenter::center {

std::string WhyNotNewName(const std::string& name, const std::string& userId, const std::string& failed) {
    if (std::string why = store::WhyNotName(name); !why.empty()) return why;
    const std::string duplicate = "模板名称不允许重复，" + failed;
    if (system::Collator::Chinese().Compare(name, store::kStandardTemplateName) == 0) return duplicate;
    const std::optional<bool> taken = store::UserHasTemplate(name, userId);
    if (!taken) return "模板 " + name + " " + failed;
    return *taken ? duplicate : std::string();
}

std::optional<std::string> FreeName(const std::string& name, const std::string& mark,
                                    const std::string& userId, bool marked) {
    for (int number = marked ? 1 : 0;; ++number) {
        const std::string behind =
            number == 0 ? std::string() : "(" + mark + (number == 1 ? "" : std::to_string(number)) + ")";
        const std::size_t room = store::kLongestTemplateName - system::CodeUnitCount(behind);
        std::string_view head = system::Head(name, room);
        while (system::CodeUnitCount(head) > room)
            head = system::Head(head, system::CharacterCount(head) - 1);
        const std::string free = std::string(head) + behind;
        if (system::Collator::Chinese().Compare(free, store::kStandardTemplateName) == 0) continue;
        const std::optional<bool> taken = store::UserHasTemplate(free, userId);
        if (!taken) return std::nullopt;
        if (!*taken) return free;
    }
}

}  // namespace vicenter::center
