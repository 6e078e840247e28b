#pragma once

// Differences between two readings of a template's lines, as the commands print them.

#include <iosfwd>
#include <vector>

#include "host/cli/json.h"
#include "store/line_difference.h"

namespace vicenter::host {

// {"kind","FNo","rowBefore","rowAfter","cells":[{"field","before","after"}]}
VariantArray DifferenceObjects(const std::vector<store::LineDifference>& differences);

// A line each.
void PrintDifferences(std::ostream& out, const std::vector<store::LineDifference>& differences,
                      const std::vector<store::LineTexts>& before,
                      const std::vector<store::LineTexts>& after);

}  // namespace vicenter::host
