#include "entry/single_line.h"

#include <algorithm>

namespace vicenter::entry {

std::string_view WithoutLineEnd(std::string_view text) {
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r'))
        text.remove_suffix(1);
    return text;
}

bool HasControlCharacter(std::string_view text) {
    return std::any_of(text.begin(), text.end(), [](char c) {
        const auto byte = static_cast<unsigned char>(c);
        return byte < 0x20 || byte == 0x7F;
    });
}

}  // namespace vicenter::entry
