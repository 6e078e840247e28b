#pragma once

// What the program needs of the machine and of the account set, looked at piece by piece: for an
// administrator before he asks for help. Reads only; says nothing of any password.

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vicenter::host {

enum class DoctorState {
    Good,
    Note,     // works, but not all of it
    Missing,  // does not work
};

struct DoctorFinding {
    std::string area;
    DoctorState state = DoctorState::Good;
    std::string text;
    std::string advice;  // what to do; empty where there is nothing
};

struct DoctorQuestions {
    std::string version;
    bool hasWindows = false;
    // The family that Chinese is shown in, empty when none is installed; none without windows.
    std::function<std::string()> chineseFont;
    std::string connectString;        // of the account set
    std::optional<std::string> file;  // of it, when it is a file of this machine
    std::int32_t userId = 0;
};

std::vector<DoctorFinding> Examine(const DoctorQuestions& questions);

}  // namespace vicenter::host
