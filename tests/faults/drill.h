#pragma once

// One command of the program and what its interruption may leave: the account set as it was or as the command
// makes it, and the file that it writes likewise.

#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "tests/faults/program.h"
#include "tests/faults/set_content.h"

namespace vicenter::faults {

struct Drill {
    std::string name;
    std::vector<std::string> arguments;  // "@" at the front stands for the working folder
    std::string input = {};              // kept file for the standard input
    // Kept files and the names that they get in the working folder.
    std::vector<std::pair<std::string, std::string>> files = {};
    std::string target = {};   // file in the working folder that the command writes
    bool makesSet = false;     // there is no account set before
    bool targetIsSet = false;  // target is an account set, compared by its templates
};

// For the names of the tests.
inline std::ostream& operator<<(std::ostream& out, const Drill& drill) {
    return out << drill.name;
}

// The commands that write.
const std::vector<Drill>& Drills();

// What a working folder holds, as far as a drill is about it.
struct State {
    SetContent set;
    bool hasTarget = false;
    std::string target;       // its bytes; the templates of a target that is an account set
    std::string targetFault;  // of a target that is an account set
    bool operator==(const State& other) const {
        return set.templates == other.set.templates && hasTarget == other.hasTarget && target == other.target;
    }
};

// Makes the kept files that the drills start from, once per program.
class DrillGround {
  public:
    DrillGround();

    Workshop& Shop() { return shop_; }
    void Prepare(const Drill& drill) const;
    Call CallOf(const Drill& drill) const;
    State Look(const Drill& drill) const;
    std::filesystem::path SetFile() const { return shop_.File("账套.vas"); }

  private:
    void Keep(const std::string& name) const;

    Workshop shop_;
};

}  // namespace vicenter::faults
