#pragma once

// Type information that tells a class's name and nothing else: what a client's TypeName() asks for.

#include <string>

#include "platform/com/com_headers.h"

namespace vicenter::com {

// A new share.
ITypeInfo* NewNamedType(const std::string& name);

}  // namespace vicenter::com
