#pragma once

// The command line of vicenter: the component without a window.
//
// RunCli() is the whole program but for main(): the tests call it with streams of their own. Answers of the
// commands go to `out`, errors to `err`; messages that a window would box are printed, questions are asked on
// `out` and answered from `in` unless --yes or --no answers them.

#include <chrono>
#include <functional>
#include <istream>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace vicenter::center {
struct PrintSheet;
}

namespace vicenter::host {

struct CliStreams {
    std::istream& in;
    std::ostream& out;
    std::ostream& err;
};

// What a build with windows adds; none of them in a build without.
struct CliHooks {
    // Opens the template center window and runs until it is closed; returns the exit code.
    std::function<int()> openWindow;
    // Drives it without a display and leaves pictures in the folder.
    std::function<int(const std::string& folder)> driveWindow;
    // Writes a PDF file. Throws automation::Error.
    std::function<void(const center::PrintSheet& sheet, const std::string& file)> writePdf;
    // From when on the user is told that a command waits; never without one.
    std::optional<std::chrono::milliseconds> untilTold;
    // The font family that Chinese is shown in; empty when none is installed.
    std::function<std::string()> chineseFont;
};

// Exit codes.
inline constexpr int kExitDone = 0;
inline constexpr int kExitFailed = 1;
inline constexpr int kExitWrongUse = 2;
inline constexpr int kExitCancelled = 130;  // Ctrl+C ended a batch, as shells number it

// arguments: without the program's name. Returns the exit code; never throws.
int RunCli(const std::vector<std::string>& arguments, const CliStreams& streams, const CliHooks& hooks = {});

}  // namespace vicenter::host
