#pragma once

// Attributes of the tree's lines.

#include <string>
#include <string_view>
#include <vector>

#include "tsql/syntax/ast.h"

namespace vicenter::tsql {

inline std::string NameText(const Name& name) {
    return name.quoted ? "[" + name.text + "]" : name.text;
}

inline std::string NamesText(const std::vector<Name>& names) {
    std::string text;
    for (const Name& name : names)
        text += (text.empty() ? "" : ", ") + NameText(name);
    return text;
}

inline std::string Joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words)
        text += (text.empty() ? "" : ", ") + word;
    return text;
}

inline std::string Attribute(std::string_view name, const std::string& value) {
    return value.empty() ? std::string() : " " + std::string(name) + "=" + value;
}

inline std::string Flag(bool on, std::string_view name) {
    return on ? " " + std::string(name) : std::string();
}

}  // namespace vicenter::tsql
