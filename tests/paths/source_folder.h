// Where the tests find the project's own files: data, goldens, documents.
#pragma once

#include <filesystem>

namespace vicenter::testing_paths {

// The project's root. Only source_folder.cpp is compiled with it, so that every other test compiles alike in
// any checkout.
std::filesystem::path SourceFolder();

}  // namespace vicenter::testing_paths
