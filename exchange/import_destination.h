#pragma once

// The template that a workbook's file would become: named as the file, new or in another's place. Asked
// before an import and before a look at what it would change. User-interface thread only.

#include <cstdint>
#include <optional>
#include <string>

#include "store/template_guard.h"

namespace vicenter::exchange {

struct ImportDestination {
    std::string name = {};
    std::int32_t existingId = -1;                  // of the template that it would replace; -1: a new one
    std::optional<store::SeenTemplate> seen = {};  // that template, as the user is asked about it
    std::string refusal = {};                      // why it can become none, as an import says it

    bool Replaces() const { return existingId >= 0; }
};

// Throws automation::Error when the account set does not answer.
ImportDestination FindImportDestination(const std::string& fileName);

}  // namespace vicenter::exchange
