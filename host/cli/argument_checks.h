#pragma once

// What an argument of the command line must be; each answers what is wrong in both languages, or nothing.

#include <algorithm>
#include <string>

#include <CLI/CLI.hpp>

#include "text/ascii.h"

namespace vicenter::host {

// A script whose variable is unset hands over an empty text, which must not come out as the demo set.
inline const CLI::Validator kNotEmpty(
    [](const std::string& given) {
        return given.empty() ? std::string("不能为空 / must not be empty") : std::string();
    },
    "");

inline const CLI::Validator kDigits(
    [](const std::string& given) {
        return given.find_first_not_of("0123456789") == std::string::npos
                   ? std::string()
                   : "应为数字 / must be a number：" + given;
    },
    "");

inline const CLI::Validator kDay(
    [](const std::string& given) {
        std::string form = given;
        std::replace_if(form.begin(), form.end(), text::IsDigit, '9');
        return form == "9999-99-99" ? std::string() : "应为 yyyy-mm-dd / must be yyyy-mm-dd：" + given;
    },
    "");

}  // namespace vicenter::host
