// vicenter window

#include "host/cli/context.h"

namespace vicenter::host {

int RunWindow(const CliContext& context) {
    const std::string& folder = context.options.sessionFolder;
    if (folder.empty() ? !context.hooks.openWindow : !context.hooks.driveWindow)
        return Fail(context, "此版本不含窗口，请使用 list、show、save 等命令（vicenter --help）。");
    return folder.empty() ? context.hooks.openWindow() : context.hooks.driveWindow(folder);
}

}  // namespace vicenter::host
