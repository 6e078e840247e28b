#pragma once

// Unique names for temporary files and objects.

#include <string>
#include <string_view>

namespace vicenter::entry {

// A new GUID in registry form, "{" 8-4-4-4-12 "}"; the empty text when the system gives none.
std::string NewGuidText();

// "T_" and a new GUID with "_" for "-", with ".extension" unless that is empty. With useFolder the full path
// of a file that does not exist, in the folder or, when that is empty, in the system's temporary folder;
// errors of the file system pass.
std::string MakeTempName(bool useFolder, std::string_view extension = {}, std::string_view folder = {});

}  // namespace vicenter::entry
