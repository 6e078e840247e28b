#pragma once

// Whether windows can be shown here. To be asked before the application object is made: where its platform
// cannot be reached, Qt ends the process, which is not for a library to do to its host. Any thread.

namespace vicenter::ui {

// True when one of the platforms that the application would try is installed and its display answers.
bool HasDisplay();
// It is one that nobody looks at: "offscreen" and its like.
bool IsDisplayUnseen();
// What the display of the application to come needs: on Windows one that nobody looks at reads its fonts from
// a folder, which is the system's unless QT_QPA_FONTDIR names another one.
void PrepareDisplay();
// Chooses one that nobody looks at, and prepares it.
void ChooseUnseenDisplay();

}  // namespace vicenter::ui
