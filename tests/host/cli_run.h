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

// What it registers is gone afterwards.
inline CliAnswer RunVicenter(const std::vector<std::string>& arguments, const std::string& input = {}) {
    const automation::ClassRegistry::Restore registry;
    std::istringstream in(input);
    std::ostringstream out;
    std::ostringstream err;
    const int exitCode = RunCli(arguments, {in, out, err});
    return {exitCode, out.str(), err.str()};
}

}  // namespace vicenter::host::test
