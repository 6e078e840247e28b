#include "automation/object.h"

#include "text/ascii.h"

namespace vicenter::automation {

bool SameName(std::string_view a, std::string_view b) {
    return text::SameAscii(a, b);
}

}  // namespace vicenter::automation
