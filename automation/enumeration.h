#pragma once

// Enumerators for the usual kinds of collections.

#include <cstdint>
#include <memory>

#include "automation/object.h"

namespace vicenter::automation {

// The values as they are now, whatever becomes of the collection meanwhile.
std::unique_ptr<Enumerator> OverValues(VariantArray values);

// By the collection's members Count and Item, the first item having that number. The collection is kept
// alive; what is added or removed meanwhile is seen.
std::unique_ptr<Enumerator> OverItems(Object& collection, std::int32_t first);

}  // namespace vicenter::automation
