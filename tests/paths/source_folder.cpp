#include "tests/paths/source_folder.h"

namespace vicenter::testing_paths {

std::filesystem::path SourceFolder() {
    return VICENTER_SOURCE_DIR;
}

}  // namespace vicenter::testing_paths
