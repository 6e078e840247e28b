#pragma once

// Variants of the C interface and those of the inside, both ways. User-interface thread.

#include <string>
#include <string_view>

#include "automation/variant.h"
#include "front/include/vicenter/vicenter.h"

namespace vicenter::front {

// Reads a variant of a caller. Error 5 for a type that does not exist, 13 for a decimal that is none.
automation::Variant FromC(const vic_variant& variant);
// Fills a variant, whatever it held before; it owns its content.
void ToC(const automation::Variant& value, vic_variant& variant);
// Gives back what it owns and leaves it empty.
void Clear(vic_variant& variant);

void SetText(vic_variant& variant, vic_type type, std::string_view text);
void SetArray(vic_variant& variant, std::size_t count);

// A text of a caller as UTF-8.
std::string CleanText(std::string_view text);

}  // namespace vicenter::front
