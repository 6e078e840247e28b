#pragma once

// The characters of a PDF file, for whoever searches it or copies from it. Stateless; needs a
// QGuiApplication.

#include <QByteArray>
#include <QFont>
#include <QString>

namespace vicenter::ui {

// Fonts draw 用 and the sign for its radical, ⽤, alike, and Qt names the sign in the file: it would be found
// by nobody who types the character. Those that the text holds are named again as they are. The file keeps
// its length.
QByteArray WithItsOwnCharacters(QByteArray pdf, const QString& text, const QFont& font);

}  // namespace vicenter::ui
