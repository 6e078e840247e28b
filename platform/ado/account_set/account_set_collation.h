#pragma once

// The order in which embedded account sets keep their texts: the machine's Chinese one.

#include "tsql/types/collation.h"

namespace vicenter::ado {

const tsql::engine::TextCollation& AccountSetCollation();

}  // namespace vicenter::ado
