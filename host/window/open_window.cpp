#include "host/window/open_window.h"

#include <QApplication>
#include <filesystem>
#include <system_error>

#include "automation/class_registry.h"
#include "automation/error.h"
#include "host/window/look_up_window.h"
#include "host/window/offscreen_session.h"
#include "platform/system/files.h"
#include "ui/run/display.h"
#include "ui/run/run_window.h"
#include "ui/window/center_commands.h"

namespace vicenter::host {

using automation::Error;

namespace {

QtMessageHandler defaultHandler = nullptr;

// Without a window manager the platform notes at every window that it cannot pass hints on.
void LeaveOutPlatformNotes(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (!text.startsWith(QLatin1String("This plugin does not support"))) defaultHandler(type, context, text);
}

ui::WindowRun Run() {
    LookUpDialog::SetProcess(std::make_shared<QtLookUpDialog>());
    ui::WindowRun run;
    run.commands = std::make_shared<ui::CenterCommands>();
    run.open = [] { automation::CreateObject("VelaVICenter.aplication")->Call("ShowVICenter"); };
    return run;
}

}  // namespace

int OpenWindow(int argc, char** argv) {
    if (!ui::HasDisplay())
        throw Error(
            automation::error_number::kCannotCreateObject,
            "没有可用的显示器，请改用 window --offscreen-session 文件夹，或 list、show、save 等命令。");
    return ui::RunWindow(argc, argv, Run());
}

int DriveWindow(int argc, char** argv, const std::string& folder, std::ostream& out) {
    std::error_code failed;
    std::filesystem::create_directories(system::PathFromUtf8(folder), failed);
    if (failed) throw Error(automation::error_number::kPathNotFound, failed.message() + "：" + folder);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    defaultHandler = qInstallMessageHandler(LeaveOutPlatformNotes);
    ui::WindowRun run = Run();
    run.drive = [&] {
        QApplication::setQuitOnLastWindowClosed(false);
        OffscreenSession session(run.open, folder, out);
        return session.Run() ? 0 : 1;
    };
    return ui::RunWindow(argc, argv, run);
}

}  // namespace vicenter::host
