#pragma once

// Spreadsheet letters of a column number: 1 is "A", 26 is "Z", 27 is "AA".

#include <cstdint>
#include <string>

namespace vicenter::office {

inline std::string ColumnLetters(std::uint32_t column) {
    std::string letters;
    for (; column > 0; column = (column - 1) / 26) {
        letters.insert(letters.begin(), static_cast<char>('A' + (column - 1) % 26));
    }
    return letters;
}

}  // namespace vicenter::office
