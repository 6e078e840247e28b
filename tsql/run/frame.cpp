#include "tsql/run/frame.h"

#include "tsql/base/error_table.h"
#include "tsql/base/text_units.h"

namespace vicenter::tsql::engine {

Frame::Frame(Frame& calledFrom, Position where)
    : caller(&calledFrom), options(calledFrom.options), level(calledFrom.level + 1) {
    if (level > kNestingLevels) throw MakeError(217, where, {kNestingLevels});
}

Variable& Frame::FindVariable(std::string_view name, Position where) {
    const auto found = variables.find(LowerAscii(name));
    if (found == variables.end()) throw MakeError(137, where, {name});
    return found->second;
}

const TableInfo* Frame::FindTable(const Catalog& catalog, std::string_view name) const {
    if (name.empty() || name.front() != '@') return catalog.FindTable(name);
    const auto found = variables.find(LowerAscii(name));
    if (found == variables.end() || found->second.table.empty()) return nullptr;
    return catalog.FindTable(found->second.table);
}

}  // namespace vicenter::tsql::engine
