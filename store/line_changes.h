#pragma once

// Differences between two readings of a template's lines as lists show them: a row for each cell that
// changed, one for each whole line that came or went; numbers as the grid shows them. Pure functions.

#include <string>
#include <vector>

#include "store/line_difference.h"

namespace vicenter::store {

struct LineChange {
    std::string kind;    // 新增, 删除, 修改
    std::string number;  // template number
    int row = 0;         // in the later reading; of a line that went, in the earlier one; from 1
    int column = 0;      // 0: the whole line
    std::string before;
    std::string after;
};

std::vector<LineChange> ChangesOf(const std::vector<LineDifference>& differences,
                                  const std::vector<LineTexts>& before, const std::vector<LineTexts>& after);

// What tells a whole line from others: explanation, side, account, items, amount.
std::string WordsOfLine(const LineTexts& line);

}  // namespace vicenter::store
