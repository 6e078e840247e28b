#pragma once

// Single steps of UTF-8 and UTF-16, for the loops of the readers and writers that cannot afford a text at a
// time.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "text/utf8.h"

namespace vicenter::office {

using text::AppendUtf8;
using text::CodePoint;
using text::ReadUtf8;

// UTF-16 code units that the text takes.
inline std::size_t CountCodeUnits(std::string_view text) {
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size();) {
        const CodePoint next = ReadUtf8(text, at);
        count += text::CodeUnits(next.code);
        at += next.length;
    }
    return count;
}

}  // namespace vicenter::office
