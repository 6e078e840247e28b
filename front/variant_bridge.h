#pragma once

// Variants of the C interface and those of the inside, both ways. User-interface thread.

#include <string>
#include <string_view>

#include "automation/variant.h"
#include "front/include/vicenter/vicenter.h"

namespace vicenter::front {

// Arrays within arrays; deeper ones are refused with error 28, since each level takes a piece of the stack.
inline constexpr int kDeepestArray = 1000;

// Reads a variant of a caller. Error 5 for a type that does not exist, 13 for a decimal that is none,
// VIC_ERROR_RELEASED for an object that has been given back.
automation::Variant FromC(const vic_variant& variant);
// Fills a variant, whatever it held before; it owns its content.
void ToC(const automation::Variant& value, vic_variant& variant);
// Gives back what it owns and leaves it empty, however deep its arrays are. False when it owned a share of an
// object that had been given back already.
bool Clear(vic_variant& variant) noexcept;

void SetText(vic_variant& variant, vic_type type, std::string_view text);
void SetArray(vic_variant& variant, std::size_t count);

// A text of a caller as UTF-8.
std::string CleanText(std::string_view text);

}  // namespace vicenter::front
