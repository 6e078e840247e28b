#pragma once

// The characters of a PDF file, for whoever searches it or copies from it. Stateless; needs a
// QGuiApplication.

#include <QByteArray>
#include <QFont>
#include <QString>

namespace vicenter::ui {

// Fonts draw several characters alike: 用 and the sign for its radical ⽤, 胶 and 㬵, blank and tab. Qt names
// the first of them in the file: it would be found by nobody who types another. Those that the text holds are
// named again as they are. The file keeps its length. Beyond the first 65,536 characters (𠮷) none has a
// name.
QByteArray WithItsOwnCharacters(QByteArray pdf, const QString& text, const QFont& font);

}  // namespace vicenter::ui
