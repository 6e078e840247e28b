#pragma once

// Keys of Qt as the key codes that the component's key tables know (13 Enter, 45 Insert, 118 F7 ...).
// Stateless.

#include <QKeyEvent>

namespace vicenter::ui {

// 0 for a key that has no code there.
int KeyCodeOf(const QKeyEvent& event);
// The first character that the key types; 0 for a key that types none (control characters included).
char32_t TypedCharacter(const QKeyEvent& event);
// A character with a key held that makes a command of it: no text, though a text field would take it.
bool TypesNothing(const QKeyEvent& event);

}  // namespace vicenter::ui
