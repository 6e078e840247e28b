#include "ui/grid/key_codes.h"

namespace vicenter::ui {

namespace {

constexpr int kFirstKeypadDigit = 96;
constexpr int kFirstFunctionKey = 112;

struct KeyPair {
    int key;
    int code;
};

constexpr KeyPair kPairs[] = {
    {Qt::Key_Backspace, 8},      {Qt::Key_Tab, 9},
    {Qt::Key_Backtab, 9},        {Qt::Key_Return, 13},
    {Qt::Key_Enter, 13},         {Qt::Key_Shift, 16},
    {Qt::Key_Control, 17},       {Qt::Key_Alt, 18},
    {Qt::Key_Pause, 19},         {Qt::Key_CapsLock, 20},
    {Qt::Key_Escape, 27},        {Qt::Key_Space, 32},
    {Qt::Key_PageUp, 33},        {Qt::Key_PageDown, 34},
    {Qt::Key_End, 35},           {Qt::Key_Home, 36},
    {Qt::Key_Left, 37},          {Qt::Key_Up, 38},
    {Qt::Key_Right, 39},         {Qt::Key_Down, 40},
    {Qt::Key_Print, 44},         {Qt::Key_Insert, 45},
    {Qt::Key_Delete, 46},        {Qt::Key_NumLock, 144},
    {Qt::Key_ScrollLock, 145},   {Qt::Key_Semicolon, 186},
    {Qt::Key_Equal, 187},        {Qt::Key_Comma, 188},
    {Qt::Key_Minus, 189},        {Qt::Key_Period, 190},
    {Qt::Key_Slash, 191},        {Qt::Key_QuoteLeft, 192},
    {Qt::Key_BracketLeft, 219},  {Qt::Key_Backslash, 220},
    {Qt::Key_BracketRight, 221}, {Qt::Key_Apostrophe, 222},
};

constexpr KeyPair kKeypadPairs[] = {
    {Qt::Key_Asterisk, 106}, {Qt::Key_Plus, 107},  {Qt::Key_Minus, 109},
    {Qt::Key_Period, 110},   {Qt::Key_Comma, 110}, {Qt::Key_Slash, 111},
};

// The character that the key has; 0 for none.
char32_t Printable(const QKeyEvent& event) {
    const auto characters = event.text().toUcs4();
    if (characters.isEmpty() || characters.constFirst() < U' ' || characters.constFirst() == 0x7F) return 0;
    return characters.constFirst();
}

}  // namespace

int KeyCodeOf(const QKeyEvent& event) {
    const int key = event.key();
    const bool keypad = event.modifiers() & Qt::KeypadModifier;
    if (keypad) {
        if (key >= Qt::Key_0 && key <= Qt::Key_9) return kFirstKeypadDigit + (key - Qt::Key_0);
        for (const KeyPair& pair : kKeypadPairs) {
            if (pair.key == key) return pair.code;
        }
    }
    if ((key >= Qt::Key_0 && key <= Qt::Key_9) || (key >= Qt::Key_A && key <= Qt::Key_Z)) return key;
    if (key >= Qt::Key_F1 && key <= Qt::Key_F24) return kFirstFunctionKey + (key - Qt::Key_F1);
    for (const KeyPair& pair : kPairs) {
        if (pair.key == key) return pair.code;
    }
    return 0;
}

char32_t TypedCharacter(const QKeyEvent& event) {
    const Qt::KeyboardModifiers held =
        event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    // Both together are AltGr, which types.
    if (held != Qt::NoModifier && held != (Qt::ControlModifier | Qt::AltModifier)) return 0;
    return Printable(event);
}

bool TypesNothing(const QKeyEvent& event) {
    const bool held = event.modifiers() & (Qt::AltModifier | Qt::MetaModifier);
    return held && !(event.modifiers() & Qt::ControlModifier) && Printable(event) != 0;
}

}  // namespace vicenter::ui
