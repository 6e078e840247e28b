#pragma once

// What an argument of the command line must be; each answers what is wrong in both languages, or nothing.

#include <algorithm>
#include <chrono>
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

// A file by its name. Commands have no stream in the place of one: whoever writes - means a pipe, and would
// find a file of that name.
inline const CLI::Validator kFileName(
    [](const std::string& given) {
        if (given.empty()) return kNotEmpty(given);
        return given == "-" ? std::string(
                                  "不能用标准输入或输出代替文件，名为 - 的文件请写作 ./- / no stream in "
                                  "place of a file; one named - is ./-")
                            : std::string();
    },
    "");

inline const CLI::Validator kDigits(
    [](const std::string& given) {
        const bool isNumber = !given.empty() && std::all_of(given.begin(), given.end(), text::IsDigit);
        return isNumber ? std::string() : "应为数字 / must be a number：" + given;
    },
    "");

// As Application.Version says it, or none and the system's own.
inline const CLI::Validator kExcelVersion(
    [](const std::string& given) {
        const bool isVersion = !given.empty() && text::IsDigit(given.front()) &&
                               given.find_first_not_of("0123456789.") == std::string::npos;
        return isVersion || given == "none" || given == "installed"
                   ? std::string()
                   : "应为版本号、none 或 installed / must be a version, none or installed：" + given;
    },
    "");

inline const CLI::Validator kDay(
    [](const std::string& given) {
        std::string form = given;
        std::replace_if(form.begin(), form.end(), text::IsDigit, '9');
        if (form != "9999-99-99") return "应为 yyyy-mm-dd / must be yyyy-mm-dd：" + given;
        const auto part = [&](std::size_t at, std::size_t length) {
            return std::stoi(given.substr(at, length));
        };
        constexpr int kFirstYear = 1753;  // that an account set's dates know
        const std::chrono::year_month_day day(std::chrono::year(part(0, 4)),
                                              std::chrono::month(static_cast<unsigned>(part(5, 2))),
                                              std::chrono::day(static_cast<unsigned>(part(8, 2))));
        const bool exists = day.ok() && static_cast<int>(day.year()) >= kFirstYear;
        return exists ? std::string() : "没有这一天 / no such day：" + given;
    },
    "");

}  // namespace vicenter::host
