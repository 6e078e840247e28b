#pragma once

// The program within the test's own process.

#include <sstream>
#include <string>
#include <vector>

#include "automation/class_registry.h"
#include "host/cli/cli.h"

namespace vicenter::host::test {

struct CliAnswer {
    int exitCode = 0;
    std::string output;
    std::string errors;
};

inline CliAnswer RunVicenter(const std::vector<std::string>& arguments, const std::string& input = {}) {
    std::istringstream in(input);
    std::ostringstream out;
    std::ostringstream err;
    const int exitCode = RunCli(arguments, {in, out, err});
    return {exitCode, out.str(), err.str()};
}

// As a process of its own would: what it registers is gone afterwards.
inline CliAnswer RunVicenterApart(const std::vector<std::string>& arguments, const std::string& input = {}) {
    const automation::ClassRegistry::Restore registry;
    return RunVicenter(arguments, input);
}

}  // namespace vicenter::host::test
