#pragma once

// Files that exist only while this process works on them, and what a killed process has left of them.
//
// Beside such a file stands a mark, `.vicenter-NAME.mark`, which its process holds. Whoever finds a mark that
// nobody holds knows that its file is nobody's any more, and removes both. Nothing else is ever touched.

#include <memory>
#include <string>

namespace vicenter::system {

namespace os {
class HeldFile;
}

class UnfinishedFile {
  public:
    // The file itself need not exist yet. Where no mark can be made there is none: the file is then merely
    // not tidied up after a kill.
    explicit UnfinishedFile(std::string path);
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;
    // Removes the file, if it still has this name, with what a database leaves beside it.
    ~UnfinishedFile();

    const std::string& Path() const { return path_; }

    // A path in that folder that no file has, for a file of ours alone: `.vicenter-<unique>.part`.
    static std::string NewPath(const std::string& folder);

  private:
    std::string path_;
    std::string mark_;
    std::unique_ptr<os::HeldFile> held_;
};

// Removes what processes that no longer run have left in the folder. Never throws.
void RemoveLeftBehind(const std::string& folder);

}  // namespace vicenter::system
