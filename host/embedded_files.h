#pragma once

// Text files that travel inside the program: the account set's scripts and the demo ledger's tables.
// The source behind this header is written by embed_files.cmake. Immutable, safe from any thread.

#include <string_view>
#include <vector>

namespace vicenter::host {

struct EmbeddedFile {
    std::string_view path;  // below host/, for instance "accountset/schema.sql"
    std::string_view text;
};

const std::vector<EmbeddedFile>& EmbeddedFiles();

// The text of one file; throws automation::Error (53) for an unknown path.
std::string_view EmbeddedText(std::string_view path);

}  // namespace vicenter::host
