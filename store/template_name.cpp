#include "store/template_name.h"

#include "entry/single_line.h"
#include "platform/system/utf8.h"
#include "store/number_text.h"

namespace vicenter::store {

NameFault FaultOfName(std::string_view name) {
    if (TrimmedOfAnyBlanks(name).empty()) return NameFault::Blank;
    if (entry::HasControlCharacter(name)) return NameFault::ControlCharacter;
    return system::CodeUnitCount(name) > kLongestTemplateName ? NameFault::TooLong : NameFault::None;
}

std::string WhyNotName(std::string_view name) {
    switch (FaultOfName(name)) {
        case NameFault::Blank:
            return "凭证模板名称不允许为空！";
        case NameFault::ControlCharacter:
            return "凭证模板名称不能包含制表符、换行等控制字符！";
        case NameFault::TooLong:
            return "凭证模板名称长度不能超过" + std::to_string(kLongestTemplateName) + "个字符！";
        case NameFault::None:
            break;
    }
    return {};
}

}  // namespace vicenter::store
