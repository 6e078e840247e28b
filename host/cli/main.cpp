// The program vicenter.

#include <iostream>
#include <string>
#include <vector>

#include "host/cli/cli.h"

#ifdef VICENTER_HAS_WINDOWS
#include "host/window/open_window.h"
#endif

int main(int argc, char** argv) {
    vicenter::host::CliHooks hooks;
#ifdef VICENTER_HAS_WINDOWS
    hooks.openWindow = [argc, argv] { return vicenter::host::OpenWindow(argc, argv); };
    hooks.driveWindow = [argc, argv](const std::string& folder) {
        return vicenter::host::DriveWindow(argc, argv, folder, std::cout);
    };
#endif
    std::ios::sync_with_stdio(false);
    return vicenter::host::RunCli(std::vector<std::string>(argv + 1, argv + argc),
                                  {std::cin, std::cout, std::cerr}, hooks);
}
