#pragma once

// Candidates timed in turn within one run by processor time, so that what else the machine does counts as
// little as can be. The median counts; the spread is printed beside it.

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "bench/median.h"

namespace vicenter::bench {

struct Candidate {
    std::string name;
    std::function<void()> run;
    std::vector<double> milliseconds = {};

    double Median() const { return bench::Median(milliseconds); }
};

inline void TimeInTurn(std::vector<Candidate>& candidates, int rounds) {
    for (int round = 0; round < rounds; ++round) {
        for (Candidate& candidate : candidates) {
            const std::clock_t begin = std::clock();
            candidate.run();
            const double taken = 1000.0 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
            candidate.milliseconds.push_back(taken);
        }
    }
}

// One line a candidate; ratios to the one at `base`.
inline void PrintRatios(const std::string& title, const std::vector<Candidate>& candidates,
                        std::size_t base) {
    std::printf("%s\n", title.c_str());
    for (const Candidate& candidate : candidates) {
        const auto [least, most] =
            std::minmax_element(candidate.milliseconds.begin(), candidate.milliseconds.end());
        std::printf("  %-44s %10.3f ms  (%.3f to %.3f)  %7.2f x\n", candidate.name.c_str(),
                    candidate.Median(), *least, *most, candidate.Median() / candidates[base].Median());
    }
}

}  // namespace vicenter::bench
