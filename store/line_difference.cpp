// The comparison is a patience diff: lines that are there once in either reading are tied together along the
// longest chain that keeps the order of both; what lies between two ties is compared by itself. It needs no
// more than n log n steps, however little the readings have in common.

#include "store/line_difference.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

namespace vicenter::store {

namespace {

struct Tie {
    std::size_t before;
    std::size_t after;
};

struct Range {
    std::size_t first;
    std::size_t last;  // behind it
    bool Empty() const { return first == last; }
};

// A line as one text, ids left out.
std::string KeyOf(const LineTexts& line) {
    std::string key;
    for (const ColumnSpec& spec : Columns()) {
        if (spec.kind != CellKind::Id) key.append(line[static_cast<std::size_t>(spec.column - 1)]);
        key += '\0';
    }
    return key;
}

std::vector<std::string> KeysOf(const std::vector<LineTexts>& lines) {
    std::vector<std::string> keys;
    keys.reserve(lines.size());
    for (const LineTexts& line : lines)
        keys.push_back(KeyOf(line));
    return keys;
}

// Of ties in the order of the earlier reading the longest chain that rises in the later one.
std::vector<Tie> LongestRising(const std::vector<Tie>& ties) {
    std::vector<std::size_t> ends;  // of the chains of each length, the tie that ends lowest
    std::vector<std::size_t> previous(ties.size());
    for (std::size_t i = 0; i < ties.size(); ++i) {
        const auto place = std::lower_bound(ends.begin(), ends.end(), i, [&](std::size_t a, std::size_t b) {
            return ties[a].after < ties[b].after;
        });
        previous[i] = place == ends.begin() ? i : *(place - 1);
        if (place == ends.end()) {
            ends.push_back(i);
        } else {
            *place = i;
        }
    }
    std::vector<Tie> chain(ends.size());
    for (std::size_t length = ends.size(), at = ends.empty() ? 0 : ends.back(); length > 0; at = previous[at])
        chain[--length] = ties[at];
    return chain;
}

class Comparison {
  public:
    Comparison(const std::vector<LineTexts>& before, const std::vector<LineTexts>& after)
        : before_(before), after_(after), keysBefore_(KeysOf(before)), keysAfter_(KeysOf(after)) {}

    std::vector<LineDifference> Run() {
        Compare({0, before_.size()}, {0, after_.size()});
        return std::move(found_);
    }

  private:
    // Lines that are there once in either range, tied along the longest chain.
    std::vector<Tie> Ties(Range before, Range after) const {
        struct Count {
            std::size_t before = 0;
            std::size_t after = 0;
            std::size_t place = 0;
        };
        std::unordered_map<std::string_view, Count> counts;
        for (std::size_t i = before.first; i < before.last; ++i)
            ++counts[keysBefore_[i]].before;
        for (std::size_t i = after.first; i < after.last; ++i) {
            Count& count = counts[keysAfter_[i]];
            ++count.after;
            count.place = i;
        }
        std::vector<Tie> ties;
        for (std::size_t i = before.first; i < before.last; ++i) {
            const Count& count = counts[keysBefore_[i]];
            if (count.before == 1 && count.after == 1) ties.push_back({i, count.place});
        }
        return LongestRising(ties);
    }

    // Ranges without a common first or last line.
    void Compare(Range before, Range after) {
        while (!before.Empty() && !after.Empty() && keysBefore_[before.first] == keysAfter_[after.first]) {
            ++before.first;
            ++after.first;
        }
        while (!before.Empty() && !after.Empty() &&
               keysBefore_[before.last - 1] == keysAfter_[after.last - 1]) {
            --before.last;
            --after.last;
        }
        const std::vector<Tie> ties =
            before.Empty() || after.Empty() ? std::vector<Tie>() : Ties(before, after);
        if (ties.empty()) {
            TakeInTurn(before, after);
            return;
        }
        // Between two ties no line is tied a second time at this depth, and every depth ties one at least:
        // the ranges shrink.
        for (const Tie& tie : ties) {
            Compare({before.first, tie.before}, {after.first, tie.after});
            before.first = tie.before + 1;
            after.first = tie.after + 1;
        }
        Compare(before, after);
    }

    const std::string& NumberOf(const LineTexts& line) const { return line[column::kNo - 1]; }

    // Lines of one number belong to each other in the order in which they stand, as long as no two such pairs
    // cross.
    std::vector<Tie> PairsOfNumbers(Range before, Range after) const {
        std::unordered_map<std::string_view, std::vector<std::size_t>> open;  // the first one last
        for (std::size_t i = after.last; i > after.first; --i)
            open[NumberOf(after_[i - 1])].push_back(i - 1);
        std::vector<Tie> pairs;
        for (std::size_t i = before.first; i < before.last; ++i) {
            const auto found = open.find(NumberOf(before_[i]));
            if (found == open.end() || found->second.empty()) continue;
            pairs.push_back({i, found->second.back()});
            found->second.pop_back();
        }
        return LongestRising(pairs);
    }

    void TakeInTurn(Range before, Range after) {
        using Kind = LineDifference::Kind;
        const auto tellUpTo = [&](const Tie& end) {
            for (; before.first < end.before; ++before.first)
                found_.push_back({Kind::Removed, NumberOf(before_[before.first]), before.first, {}, {}});
            for (; after.first < end.after; ++after.first)
                found_.push_back({Kind::Added, NumberOf(after_[after.first]), {}, after.first, {}});
        };
        for (const Tie& pair : PairsOfNumbers(before, after)) {
            tellUpTo(pair);
            TellChanged(pair.before, pair.after);
            ++before.first;
            ++after.first;
        }
        tellUpTo({before.last, after.last});
    }

    void TellChanged(std::size_t before, std::size_t after) {
        LineDifference difference{LineDifference::Kind::Changed, NumberOf(after_[after]), before, after, {}};
        for (const ColumnSpec& spec : Columns()) {
            const auto at = static_cast<std::size_t>(spec.column - 1);
            if (spec.kind == CellKind::Id || before_[before][at] == after_[after][at]) continue;
            difference.cells.push_back({spec.column, before_[before][at], after_[after][at]});
        }
        if (!difference.cells.empty()) found_.push_back(std::move(difference));
    }

    const std::vector<LineTexts>& before_;
    const std::vector<LineTexts>& after_;
    const std::vector<std::string> keysBefore_;
    const std::vector<std::string> keysAfter_;
    std::vector<LineDifference> found_;
};

}  // namespace

std::string KindText(LineDifference::Kind kind) {
    switch (kind) {
        case LineDifference::Kind::Added:
            return "新增";
        case LineDifference::Kind::Removed:
            return "删除";
        case LineDifference::Kind::Changed:
            break;
    }
    return "修改";
}

DifferenceCounts CountsOf(const std::vector<LineDifference>& differences) {
    DifferenceCounts counts;
    for (const LineDifference& difference : differences) {
        counts.added += difference.kind == LineDifference::Kind::Added;
        counts.removed += difference.kind == LineDifference::Kind::Removed;
        counts.changed += difference.kind == LineDifference::Kind::Changed;
    }
    return counts;
}

std::vector<LineDifference> Differences(const std::vector<LineTexts>& before,
                                        const std::vector<LineTexts>& after) {
    return Comparison(before, after).Run();
}

std::vector<LineTexts> TextsOfLines(const ado::Recordset& records) {
    std::vector<LineTexts> lines;
    LineReader reader(records);
    for (std::size_t record = 0; record < static_cast<std::size_t>(records.RecordCount()); ++record)
        lines.push_back(reader.Read(record));
    return lines;
}

}  // namespace vicenter::store
