#pragma once

// Passwords in connect strings, and texts without them. Plain functions of texts.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vicenter::ado {

struct TextRange {
    std::size_t begin = 0;
    std::size_t end = 0;
};

// What stands behind "Password=" and "PWD=" in any text, quotes included: up to the end of the quotes or
// braces, else to the next ";" or the end of the line.
std::vector<TextRange> PasswordsIn(std::string_view text);
// The same text for people: three stars for each of them.
std::string PasswordsHidden(std::string_view text);

// A connect string of which nothing but the password is missing: the same for whoever gives it elsewhere.
std::string WithoutPassword(std::string_view connectString);

}  // namespace vicenter::ado
