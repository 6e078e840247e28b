#pragma once

#include <algorithm>
#include <vector>

namespace vicenter::bench {

// Of at least one; of an even number the upper one in the middle.
inline double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

}  // namespace vicenter::bench
