// The program vicenter.

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "host/cli/cli.h"
#include "platform/ado/passwords.h"
#include "platform/system/program.h"

#ifdef VICENTER_HAS_WINDOWS
#include "host/window/open_window.h"
#endif

namespace {

[[noreturn]] void EndWithoutMemory() {
    std::fputs("vicenter: 内存不足。\n", stderr);
    std::_Exit(vicenter::host::kExitFailed);
}

// Where all memory is refused no message can be made and no handler entered any more: an end that says so and
// leaves the account set as its last transaction left it.
void OnTerminate() {
    try {
        if (const std::exception_ptr error = std::current_exception()) std::rethrow_exception(error);
        // Not even the exception could be made.
        if (void* probe = std::malloc(1024); probe == nullptr) EndWithoutMemory();
    } catch (const std::bad_alloc&) {
        EndWithoutMemory();
    } catch (...) {
        // As ever.
    }
    std::abort();
}

// Whoever may list processes sees their arguments: passwords among them are written over.
void HideFromProcessList(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        for (const vicenter::ado::TextRange& range : vicenter::ado::PasswordsIn(argv[i]))
            std::fill(argv[i] + range.begin, argv[i] + range.end, '*');
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::set_terminate(OnTerminate);
    vicenter::host::CliHooks hooks;
    hooks.untilTold = std::chrono::seconds(1);
#ifdef VICENTER_HAS_WINDOWS
    hooks.openWindow = [argc, argv] { return vicenter::host::OpenWindow(argc, argv); };
    hooks.driveWindow = [argc, argv](const std::string& folder) {
        return vicenter::host::DriveWindow(argc, argv, folder, std::cout);
    };
    hooks.writePdf = [argc, argv](const vicenter::center::PrintSheet& sheet, const std::string& file) {
        vicenter::host::WritePdf(argc, argv, sheet, file);
    };
    hooks.chineseFont = [argc, argv] { return vicenter::host::ChineseFont(argc, argv); };
#endif
    const vicenter::system::StandardStreams streams;
    const std::vector<std::string> arguments = vicenter::system::ProgramArguments(argc, argv);
    HideFromProcessList(argc, argv);
    return vicenter::host::RunCli(arguments, {std::cin, std::cout, std::cerr}, hooks);
}
