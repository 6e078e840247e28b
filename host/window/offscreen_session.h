#pragma once

// A person's session with the template center, without a person and without a display.
//
// Drives the real window by key and mouse events through its main job and keeps pictures of it. Message boxes
// are answered as that person would and reported; none is ever shown. Needs a QApplication, offscreen. One
// use.

#include <QString>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>

#include "platform/system/surroundings.h"

class QWidget;

namespace vicenter::ui {
class VICenterWindow;
}

namespace vicenter::host {

class OffscreenSession {
  public:
    OffscreenSession(std::function<void()> open, std::string folder, std::ostream& out);
    ~OffscreenSession();

    // False when a step did not do what it should; what and why has been told.
    bool Run();

  private:
    class Boxes;

    void Step(const std::string& text);
    void Expect(bool condition, const std::string& what);
    // Of the window, or of a dialog over it.
    void Picture(const std::string& stem, QWidget* of = nullptr);

    ui::VICenterWindow* OpenWindow();
    void Settle();
    void Activate();
    void CloseWindow();
    void MakeTemplate();
    void ChooseColumns();
    void TypeLines();
    void SaveTemplate();
    void ReopenAndCompare();

    void Click(QWidget& widget, int x, int y);
    void ClickTool(const QString& key);
    // Where keys go.
    QWidget* Keyboard();
    void Key(int key, int modifiers = 0);
    void Type(const QString& text);
    // Types into the active cell and takes it with Tab.
    void Enter(const QString& text);
    void SelectCell(int row, int column);
    std::string CellText(int row, int column) const;

    std::function<void()> open_;
    std::string folder_;
    std::ostream& out_;
    std::shared_ptr<Boxes> boxes_;
    std::unique_ptr<system::SurroundingsScope> scope_;
    ui::VICenterWindow* window_ = nullptr;
    std::string newKey_;
    std::string name_;
    int steps_ = 0;
    int failures_ = 0;
};

}  // namespace vicenter::host
