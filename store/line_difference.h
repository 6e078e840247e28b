#pragma once

// What differs between two readings of a template's lines: which lines came, which went, which cells of the
// others changed. Lines have no names: those alike in both, in the order of both, hold the comparison
// together, and between two such the lines of one number are taken in turn. Pure functions of texts.

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "platform/ado/recordset.h"
#include "store/template_reading.h"

namespace vicenter::store {

struct LineDifference {
    enum class Kind { Added, Removed, Changed };
    struct Cell {
        int column = 0;
        std::string before;
        std::string after;
    };

    Kind kind = Kind::Changed;
    std::string number;                 // the line's template number: the later one
    std::optional<std::size_t> before;  // where it stands, from 0
    std::optional<std::size_t> after;
    std::vector<Cell> cells;  // of a changed line, by column; ids, which nobody sees, are not among them
};

// For users: 新增, 删除, 修改.
std::string KindText(LineDifference::Kind kind);

struct DifferenceCounts {
    int added = 0;
    int removed = 0;
    int changed = 0;
};
DifferenceCounts CountsOf(const std::vector<LineDifference>& differences);

// In the order of the later reading; what went stands where it stood.
std::vector<LineDifference> Differences(const std::vector<LineTexts>& before,
                                        const std::vector<LineTexts>& after);

// Errors pass.
std::vector<LineTexts> TextsOfLines(const ado::Recordset& records);

}  // namespace vicenter::store
