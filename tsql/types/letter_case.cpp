#include "tsql/types/letter_case.h"

#include <cstdint>

#include "text/ascii.h"
#include "text/utf8.h"
#include "tsql/base/text_units.h"

namespace vicenter::tsql::engine {

namespace {

// Pairs whose capital letters stand at even places, or at odd ones.
std::uint32_t PairedWithCase(std::uint32_t code, bool upper) {
    const auto within = [code](std::uint32_t low, std::uint32_t high) { return code >= low && code <= high; };
    const bool even = within(0x100, 0x12F) || within(0x132, 0x137) || within(0x14A, 0x177);
    const bool odd = within(0x139, 0x148) || within(0x179, 0x17E);
    if (!even && !odd) return code;
    const bool isCapital = (code % 2 == 0) == even;
    if (upper) return isCapital ? code : code - 1;
    return isCapital ? code + 1 : code;
}

// Letters of full width and Roman numerals.
std::uint32_t WideWithCase(std::uint32_t code, bool upper) {
    struct Block {
        std::uint32_t capital;
        std::uint32_t small;
        std::uint32_t count;
    };
    static constexpr Block kBlocks[] = {{0xFF21, 0xFF41, 26}, {0x2160, 0x2170, 16}, {0x24B6, 0x24D0, 26}};
    for (const Block& block : kBlocks) {
        const std::uint32_t from = upper ? block.small : block.capital;
        if (code >= from && code < from + block.count)
            return (upper ? block.capital : block.small) + code - from;
    }
    return code;
}

}  // namespace

std::string WithCase(std::string_view text, bool upper) {
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t bytes = CharacterBytes(text, at);
        if (bytes == 2) {
            std::uint32_t code = text::ReadUtf8(text, at).code;
            const auto within = [&code](std::uint32_t low, std::uint32_t high) {
                return code >= low && code <= high;
            };
            if (within(0x100, 0x17F)) {
                code = PairedWithCase(code, upper);
            } else if (upper) {
                if ((within(0xE0, 0xFE) && code != 0xF7) || (within(0x3B1, 0x3C9) && code != 0x3C2) ||
                    within(0x430, 0x44F))
                    code -= 32;
                else if (within(0x450, 0x45F))
                    code -= 80;
            } else {
                if ((within(0xC0, 0xDE) && code != 0xD7) || within(0x391, 0x3A9) || within(0x410, 0x42F))
                    code += 32;
                else if (within(0x400, 0x40F))
                    code += 80;
            }
            text::AppendUtf8(result, code);
        } else if (bytes == 1) {
            result += upper ? text::UpperAscii(text[at]) : LowerAscii(text[at]);
        } else if (bytes == 3) {
            text::AppendUtf8(result, WideWithCase(text::ReadUtf8(text, at).code, upper));
        } else {
            result += text.substr(at, bytes);
        }
        at += bytes;
    }
    return result;
}

}  // namespace vicenter::tsql::engine
