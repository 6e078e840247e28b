// The window tests run in one process with one QApplication, offscreen unless the environment names a
// display.

#include <gtest/gtest.h>

#include "tests/ui/rest.h"
#include "ui/run/application.h"
#include "ui/run/display.h"

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    vicenter::ui::PrepareDisplay();
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setEffectEnabled(Qt::UI_AnimateCombo, false);
    vicenter::ui::SetUpApplication(application);
    vicenter::ui::NobodyRests nobody;
    application.installEventFilter(&nobody);
    return RUN_ALL_TESTS();
}
