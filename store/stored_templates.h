#pragma once

// Every template that a user's tree lists, with all its lines, in one question: what a search or a
// replacement over all of them looks through. User-interface thread.

#include <optional>
#include <string>
#include <vector>

#include "store/template_reading.h"

namespace vicenter::store {

struct StoredTemplate {
    std::string id;
    std::string name;
    std::vector<LineTexts> lines;  // as they are shown, row 1 first
    LinesDigest digest;
};

// The standard template first; nothing when the account set does not answer.
std::optional<std::vector<StoredTemplate>> ReadStoredTemplates(const std::string& userId);

}  // namespace vicenter::store
