#include "host/cli/differences.h"

#include <ostream>

#include "host/cli/one_line.h"

namespace vicenter::host {

using store::LineDifference;
using store::LineTexts;

namespace {

Variant PlaceValue(const std::optional<std::size_t>& place) {
    return place ? Variant(static_cast<std::int32_t>(*place + 1)) : Variant::Null();
}

Variant DifferenceObject(const LineDifference& difference) {
    VariantArray cells;
    for (const LineDifference::Cell& cell : difference.cells) {
        cells.push_back(JsonObject({{"field", std::string(store::Column(cell.column).field)},
                                    {"before", cell.before},
                                    {"after", cell.after}}));
    }
    return JsonObject({{"kind", store::KindText(difference.kind)},
                       {"FNo", difference.number},
                       {"rowBefore", PlaceValue(difference.before)},
                       {"rowAfter", PlaceValue(difference.after)},
                       {"cells", cells}});
}

void PrintDifference(std::ostream& out, const LineDifference& difference, const LineTexts& line) {
    const std::size_t place = difference.after ? *difference.after : *difference.before;
    out << store::KindText(difference.kind) << "\t" << difference.number << " 号\t行" << place + 1 << "\t";
    if (difference.kind == LineDifference::Kind::Changed) {
        std::string separator;
        for (const LineDifference::Cell& cell : difference.cells) {
            out << separator << store::Column(cell.column).header << "：" << OneLine(cell.before) << " → "
                << OneLine(cell.after);
            separator = "；";
        }
    } else {
        for (const int column :
             {store::column::kExplanation, store::column::kDirection, store::column::kAccountNumber,
              store::column::kAccountName, store::column::kAmount})
            out << OneLine(line[static_cast<std::size_t>(column - 1)]) << " ";
    }
    out << "\n";
}

}  // namespace

VariantArray DifferenceObjects(const std::vector<LineDifference>& differences) {
    VariantArray list;
    for (const LineDifference& difference : differences)
        list.push_back(DifferenceObject(difference));
    return list;
}

void PrintDifferences(std::ostream& out, const std::vector<LineDifference>& differences,
                      const std::vector<LineTexts>& before, const std::vector<LineTexts>& after) {
    for (const LineDifference& difference : differences) {
        PrintDifference(out, difference,
                        difference.after ? after[*difference.after] : before[*difference.before]);
    }
}

}  // namespace vicenter::host
