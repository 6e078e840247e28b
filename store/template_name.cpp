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

}  // namespace vicenter::store
