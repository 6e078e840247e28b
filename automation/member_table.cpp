#include "automation/member_table.h"

#include <optional>
#include <utility>

namespace vicenter::automation {

namespace {

bool IsOptional(std::string_view declared) {
    return !declared.empty() && declared.back() == '?';
}

std::string_view PlainName(std::string_view declared) {
    if (IsOptional(declared)) declared.remove_suffix(1);
    return declared;
}

std::size_t DeclaredIndex(const MemberInfo& member, std::string_view name) {
    for (std::size_t i = 0; i < member.arguments.size(); ++i) {
        if (SameName(PlainName(member.arguments[i]), name)) return i;
    }
    throw Error(error_number::kNamedArgumentNotFound);
}

}  // namespace

void ArrangeArguments(const MemberInfo& member, Arguments& arguments, std::size_t values) {
    const std::size_t declared = member.arguments.size();
    bool named = false;
    for (const Argument& argument : arguments)
        named = named || !argument.Name().empty();
    if (!named && arguments.size() == declared + values) return;  // the usual call: nothing to arrange

    if (arguments.size() > declared + values) throw Error(error_number::kWrongArgumentCount);
    if (arguments.size() < values) throw Error(error_number::kArgumentNotOptional);
    std::vector<std::optional<Argument>> slots(declared);
    const std::size_t given = arguments.size() - values;
    for (std::size_t i = 0; i < given; ++i) {
        const std::size_t slot = arguments[i].Name().empty() ? i : DeclaredIndex(member, arguments[i].Name());
        if (slots[slot].has_value()) throw Error(error_number::kWrongArgumentCount);
        slots[slot] = std::move(arguments[i]);
    }
    Arguments arranged;
    arranged.reserve(declared + values);
    for (std::size_t i = 0; i < declared; ++i) {
        if (slots[i].has_value()) {
            arranged.push_back(std::move(*slots[i]));
        } else if (IsOptional(member.arguments[i])) {
            arranged.emplace_back(Variant::Missing());
        } else {
            throw Error(error_number::kArgumentNotOptional);
        }
    }
    for (std::size_t i = given; i < arguments.size(); ++i)
        arranged.push_back(std::move(arguments[i]));
    arguments = std::move(arranged);
}

}  // namespace vicenter::automation
