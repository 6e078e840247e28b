#include "host/embedded_files.h"

#include <string>

#include "automation/error.h"

namespace vicenter::host {

std::string_view EmbeddedText(std::string_view path) {
    for (const EmbeddedFile& file : EmbeddedFiles()) {
        if (file.path == path) return file.text;
    }
    throw automation::Error(automation::error_number::kFileNotFound, "File not found: " + std::string(path));
}

}  // namespace vicenter::host
