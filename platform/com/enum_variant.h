#pragma once

// For Each in both directions.

#include <memory>

#include "automation/object.h"
#include "platform/com/com_headers.h"
#include "platform/com/com_pointer.h"

namespace vicenter::com {

// A new share in an IEnumVARIANT over a collection of ours.
IEnumVARIANT* NewEnumVariant(automation::ObjectRef collection);

// Goes through somebody else's.
std::unique_ptr<automation::Enumerator> Over(ComPointer<IEnumVARIANT> values);

}  // namespace vicenter::com
