#include "host/window/open_window.h"

#include <QApplication>
#include <QFontDatabase>
#include <filesystem>
#include <memory>
#include <system_error>

#include "automation/class_registry.h"
#include "automation/error.h"
#include "host/window/account_set_dialog.h"
#include "host/window/look_up_window.h"
#include "host/window/offscreen_session.h"
#include "platform/system/files.h"
#include "ui/print/sheet_painter.h"
#include "ui/run/application.h"
#include "ui/run/display.h"
#include "ui/run/run_window.h"
#include "ui/window/center_commands.h"

namespace vicenter::host {

using automation::Error;

namespace {

QtMessageHandler defaultHandler = nullptr;

// Without a window manager the platform notes at every window that it cannot pass hints on; without a session
// it notes what that would have given.
void LeaveOutPlatformNotes(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    const bool note = text.startsWith(QLatin1String("This plugin does not support")) ||
                      text.startsWith(QLatin1String("QStandardPaths: "));
    if (!note) defaultHandler(type, context, text);
}

// The window's commands, with what this host offers beside them.
class HostCommands : public ui::CenterCommands {
  public:
    std::vector<center::TreeMenuItem> MenuItems() override {
        return {{"mnuOpenAccountSet", "打开其他账套(&O)…\tCtrl+O", [] { ChooseAccountSet(); }}};
    }
};

ui::WindowRun Run() {
    LookUpDialog::SetProcess(std::make_shared<QtLookUpDialog>());
    ui::WindowRun run;
    run.commands = std::make_shared<HostCommands>();
    run.open = [] { automation::CreateObject("VelaVICenter.aplication")->Call("ShowVICenter"); };
    return run;
}

// The fonts without a display.
class FontsAlone {
  public:
    FontsAlone(int argc, char** argv) : argc_(argc) {
        ui::ChooseUnseenDisplay();
        defaultHandler = qInstallMessageHandler(LeaveOutPlatformNotes);
        application_ = std::make_unique<QGuiApplication>(argc_, argv);
    }

  private:
    int argc_;  // the application keeps it
    std::unique_ptr<QGuiApplication> application_;
};

}  // namespace

int OpenWindow(int argc, char** argv) {
    if (!ui::HasDisplay())
        throw Error(
            automation::error_number::kCannotCreateObject,
            "没有可用的显示器，请改用 window --offscreen-session 文件夹，或 list、show、save 等命令。");
    return ui::RunWindow(argc, argv, Run());
}

void WritePdf(int argc, char** argv, const center::PrintSheet& sheet, const std::string& file) {
    const FontsAlone fonts(argc, argv);
    ui::WriteSheetAsPdf(sheet, file);
}

std::string ChineseFont(int argc, char** argv) {
    const FontsAlone fonts(argc, argv);
    return ui::ChooseChineseFamily(QFontDatabase::families(QFontDatabase::SimplifiedChinese)).toStdString();
}

int DriveWindow(int argc, char** argv, const std::string& folder, std::ostream& out) {
    std::error_code failed;
    std::filesystem::create_directories(system::PathFromUtf8(folder), failed);
    if (failed) throw Error(automation::error_number::kPathNotFound, failed.message() + "：" + folder);
    ui::ChooseUnseenDisplay();
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
