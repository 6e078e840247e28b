// vicenter window

#include <ostream>

#include "host/account_set_choice.h"
#include "host/cli/context.h"
#include "platform/ado/account_set/account_set_copies.h"
#include "platform/system/surroundings.h"

namespace vicenter::host {

int RunWindow(const CliContext& context) {
    const std::string& folder = context.options.sessionFolder;
    if (folder.empty() ? !context.hooks.openWindow : !context.hooks.driveWindow)
        Refuse("此版本不含窗口，请使用 list、show、save 等命令（vicenter --help）。");
    context.session->ReadNames();
    if (const auto file = ado::AccountSetFile(context.session->Settings().connectString))
        AccountSetChoice::Remember(system::Surroundings::Current().folders->UserData(), *file);
    if (folder.empty()) return context.hooks.openWindow();
    const int code = context.hooks.driveWindow(folder);
    context.streams.out << "账套在 "
                        << ado::ConnectString(context.session->Settings().connectString).Value("Data Source")
                        << "\n";
    return code;
}

}  // namespace vicenter::host
