#pragma once

// The one way in which this program writes a file that may exist already.
//
// The new content is made beside the target under a hidden name, brought to the disk and moved over the
// target in one step: at every moment, also after a kill, a full disk or a power cut, the target's name holds
// either the old content or the new one. A target that is a link stays one; what it leads to is replaced. Any
// thread; failures are automation::Error with a text for users.

#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "platform/system/unfinished_file.h"

namespace vicenter::system {

enum class Durable { Yes, No };

class FileReplacement {
  public:
    // Throws when the target's folder is missing or the target is no regular file.
    explicit FileReplacement(const std::string& target);

    // Where to write the content. What is still there at the end of the scope is removed.
    const std::string& Path() const { return part_.Path(); }
    // The end: the content takes the target's name and, of an old file, its permissions. Throws Error 70 when
    // it is a database whose log still holds a part of it.
    void PutInPlace(Durable durable = Durable::Yes);
    // The same for a target that must not exist: throws Error 58 when there is one by now.
    void PutInPlaceAsNew();

  private:
    void Finish(Durable durable, bool replace);

    std::string target_;
    UnfinishedFile part_;
};

// How every database of the embedded account sets' kind begins.
inline constexpr std::string_view kDatabaseHead{"SQLite format 3\0", 16};

// Which files a writer may write over.
struct Replaceable {
    std::string what;                          // as in "不是工作簿"
    std::vector<std::string_view> heads;       // how their content begins
    std::vector<std::string_view> extensions;  // names by which the user has said enough: "xlsx"
};

// Why the file cannot be written under that name, for users; empty when it can. A folder, a device, a pipe,
// also behind a link, is never written over, nor is a database that is not asked for, a file that this
// process has open, or a file of another kind.
std::string WhyNotWritable(const std::string& target, const Replaceable& replaceable);

// Why a database that is made elsewhere cannot be moved to that name, for users; empty when it can. A log
// that another database has left there would be taken for the new one's and mixed into it; and its own must
// find room for their names. What is moved into place is asked for this at the end in any case.
std::string WhyNoPlaceForDatabase(const std::string& target);

// Copies a file over another, or to a new name; why it could not be done, or what is thrown above.
std::error_code CopyOver(const std::string& source, const std::string& target, Durable durable);
// The same for users: every failure is thrown with a text.
void ReplaceWithCopy(const std::string& source, const std::string& target, Durable durable = Durable::Yes);

}  // namespace vicenter::system
