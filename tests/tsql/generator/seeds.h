#pragma once

// How much is generated, and from where on.

#include <cstdint>
#include <cstdlib>

namespace vicenter::tsql_test {

inline std::uint32_t FromEnvironment(const char* name, std::uint32_t otherwise) {
    const char* text = std::getenv(name);
    return text != nullptr ? static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10)) : otherwise;
}

}  // namespace vicenter::tsql_test
