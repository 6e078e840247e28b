#include <cstdlib>
#include <iostream>

#include "platform/system/program.h"

namespace vicenter::system {

std::vector<std::string> ProgramArguments(int count, char** arguments) {
    if (count <= 1) return {};
    return std::vector<std::string>(arguments + 1, arguments + count);
}

std::optional<std::string> EnvironmentVariable(const std::string& name) {
    const char* value = std::getenv(name.c_str());
    return value == nullptr ? std::nullopt : std::optional<std::string>(value);
}

class StandardStreams::Consoles {};

StandardStreams::StandardStreams() {
    std::ios::sync_with_stdio(false);
}

StandardStreams::~StandardStreams() = default;

}  // namespace vicenter::system
