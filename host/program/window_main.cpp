// The program vicenter-window: `vicenter window` with the same arguments, for shortcuts and for files that
// are opened with it. No console comes up; what would be read there of a failure is shown in a box.

#include <string>
#include <vector>

#include "platform/system/program.h"
#include "platform/system/quiet_program.h"

int main(int argc, char** argv) {
    namespace system = vicenter::system;
    constexpr const char* kTitle = "凭证模板中心";
    std::vector<std::string> arguments = system::ProgramArguments(argc, argv);
    arguments.insert(arguments.begin(), "window");
    const auto run = system::RunQuietly("vicenter.exe", arguments);
    if (!run) {
        system::ShowProblem(kTitle, "vicenter.exe 不能启动，请重新安装。");
        return 1;
    }
    if (run->code != 0 && !run->said.empty()) system::ShowProblem(kTitle, run->said);
    return run->code;
}
