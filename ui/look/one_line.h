#pragma once

// Values as the lists of the window show them: in one line, and nothing of them unseen; and as paper has
// them, where a line end is one. Stateless.

#include <QString>
#include <QStringList>
#include <string_view>

#include "entry/single_line.h"
#include "ui/look/qt_text.h"

namespace vicenter::ui {

inline QString ToQtLine(std::string_view text) {
    return ToQt(entry::InOneLine(text));
}
inline QString InOneLine(const QString& text) {
    return ToQtLine(FromQt(text));
}
// Names and sentences: what breaks or widens them is one blank, and nothing stands at their ends.
inline QString ToSentence(const QString& text) {
    return InOneLine(text.simplified());
}
inline QString ToSentence(std::string_view text) {
    return ToSentence(ToQt(text));
}

// Lines parted for a text layout.
inline QString ToPrintedLines(std::string_view text) {
    QString all = ToQtLines(text);
    for (QChar& c : all) {
        if (c == u'\r' || c == QChar(0x85) || c == QChar::LineSeparator || c == QChar::ParagraphSeparator)
            c = u'\n';
    }
    QStringList lines = all.split(u'\n');
    for (QString& line : lines)
        line = InOneLine(line);
    return lines.join(QChar(QChar::LineSeparator));
}

}  // namespace vicenter::ui
