#pragma once

// The command `window` in a build with windows. Called once, from main's thread.

#include <iosfwd>
#include <string>

namespace vicenter::center {
struct PrintSheet;
}

namespace vicenter::host {

// Opens the template center by the component's public class, as any host does, and runs until the last window
// is closed. Throws automation::Error where there is no display.
int OpenWindow(int argc, char** argv);

// Drives the same window without a display through its main job: pictures into the folder, what was done to
// `out`.
int DriveWindow(int argc, char** argv, const std::string& folder, std::ostream& out);

// Without a display. Throws automation::Error.
void WritePdf(int argc, char** argv, const center::PrintSheet& sheet, const std::string& file);

// The family that Chinese is shown in; empty when none is installed.
std::string ChineseFont(int argc, char** argv);

}  // namespace vicenter::host
