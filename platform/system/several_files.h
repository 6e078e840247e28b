#pragma once

// What the file dialogs of a window system can besides: choose several files at once. An object that has it
// is asked in the place of FileDialogs::ChooseFileToOpen(). User-interface thread only.

#include <string>
#include <vector>

#include "platform/system/surroundings.h"

namespace vicenter::system {

class SeveralFiles {
  public:
    virtual ~SeveralFiles() = default;
    // Modal; none when the user cancelled.
    virtual std::vector<std::string> ChooseFilesToOpen(const FileRequest& request) = 0;
};

}  // namespace vicenter::system
