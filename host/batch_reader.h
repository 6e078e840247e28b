#pragma once

// Reads a T-SQL script batch by batch. A line that holds only GO, with a repeat count at most, ends a batch,
// but not inside a comment, a string or a quoted name that runs over several lines. Holds one batch at a
// time, so that scripts of any size can be run from a stream. The stream outlives the reader.

#include <istream>
#include <optional>
#include <string>
#include <string_view>

namespace vicenter::host {

struct ScriptBatch {
    std::string text;   // without the GO line
    int firstLine = 1;  // of the script
    int repeat = 1;     // GO n
};

class BatchReader {
  public:
    explicit BatchReader(std::istream& script) : script_(script) {}

    // The next batch that holds more than blanks and line breaks; nothing at the end of the script.
    // Throws Error 70 when the script could not be read to its end: half a batch is none.
    std::optional<ScriptBatch> Next();

  private:
    enum class State { Plain, BlockComment, Text, QuotedName, BracketName };

    void Scan(std::string_view line);

    std::istream& script_;
    State state_ = State::Plain;
    int commentDepth_ = 0;
    int line_ = 0;
};

}  // namespace vicenter::host
