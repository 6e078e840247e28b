#pragma once

// Message boxes, file choices and the screen, on Qt.
//
// QtSurroundings() takes the system's services and replaces those three; it owns nothing but the small
// objects that it puts in. Needs a QApplication while they are used. User-interface thread only.

#include <QFileDialog>
#include <QFontMetrics>
#include <QMessageBox>

#include "platform/system/surroundings.h"

namespace vicenter::ui {

class QtMessageBoxes : public system::MessageBoxes {
  public:
    system::MessageResult Show(const std::string& text, system::MessageButtons buttons,
                               system::MessageIcon icon, const std::string& title) override;
};

class QtFileDialogs : public system::FileDialogs {
  public:
    std::optional<std::string> ChooseFileToOpen(const system::FileRequest& request) override;
    std::optional<std::string> ChooseFileToSave(const system::FileRequest& request) override;
    std::vector<std::string> ChooseFilesToOpen(const system::FileRequest& request) override;
};

class QtScreen : public system::Screen {
  public:
    ~QtScreen() override;
    void SetMousePointer(system::MousePointer pointer) override;
    void Repaint() override;

  private:
    bool busy_ = false;
};

system::Surroundings QtSurroundings(system::Surroundings base);

// What the dialogs look like, apart from showing them.
void FillMessageBox(QMessageBox& box, const std::string& text, system::MessageButtons buttons,
                    system::MessageIcon icon, const std::string& title);
// The room for a text that scrolls in its box, on a screen of that size.
QSize ScrollingTextSize(const QFontMetrics& metrics, const QSize& screen);
void FillFileDialog(QFileDialog& dialog, const system::FileRequest& request, bool saving);
// The name filters of a request as Qt writes them, "description (pattern)", the pattern named once.
QStringList NameFilters(const system::FileRequest& request);

}  // namespace vicenter::ui
