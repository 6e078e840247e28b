#include "tsql/run/frame_context.h"

#include "automation/object.h"

namespace vicenter::tsql::engine {

std::optional<SqlType> FrameContext::VariableType(std::string_view name) const {
    const auto found = frame_.variables.find(std::string(name));
    if (found == frame_.variables.end() || found->second.isCursor || !found->second.table.empty())
        return std::nullopt;
    return found->second.type;
}

const CreateViewStatement* FrameContext::ViewDefinition(std::string_view name) {
    const ModuleInfo* view = catalog_.FindView(name);
    return view != nullptr ? programs_.ForView(*view) : nullptr;
}

bool FrameContext::TakesIdentity(const TableInfo& table) const {
    return automation::SameName(frame_.options.identityInsert, table.name);
}

}  // namespace vicenter::tsql::engine
