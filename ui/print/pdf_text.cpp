#include "ui/print/pdf_text.h"

#include <QHash>
#include <QRawFont>
#include <QSet>
#include <algorithm>

namespace vicenter::ui {

namespace {

constexpr const char* kTableBegin = "beginbfrange";
constexpr const char* kTableEnd = "endbfrange";
constexpr qsizetype kNameLength = 6;  // <XXXX>

// As the file names a character.
QByteArray NameOf(char16_t c) {
    return '<' + QByteArray::number(c, 16).rightJustified(4, '0').toUpper() + '>';
}

bool IsSurrogate(char16_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}

// By glyph the first character that is drawn with it, which is what Qt calls it in the file.
QHash<quint32, char16_t> FirstCharacters(const QRawFont& font) {
    QString all;
    for (int c = 1; c <= 0xFFFF; ++c) {
        if (!IsSurrogate(static_cast<char16_t>(c))) all += QChar(c);
    }
    const QList<quint32> glyphs = font.glyphIndexesForString(all);
    QHash<quint32, char16_t> first;
    for (qsizetype i = 0; i < std::min(glyphs.size(), all.size()); ++i) {
        if (glyphs[i] != 0 && !first.contains(glyphs[i])) first.insert(glyphs[i], all[i].unicode());
    }
    return first;
}

// The names in the file that stand for other characters of the text. One that the text holds itself stays:
// nobody can tell the two apart by then.
QHash<QByteArray, QByteArray> Renamed(const QString& text, const QFont& font) {
    const QRawFont raw = QRawFont::fromFont(font);
    const QHash<quint32, char16_t> first = FirstCharacters(raw);
    QSet<QChar> characters(text.begin(), text.end());
    QHash<QByteArray, QByteArray> renamed;
    for (const QChar c : characters) {
        if (c.isSurrogate()) continue;
        const QList<quint32> glyphs = raw.glyphIndexesForString(QString(c));
        const auto found = glyphs.isEmpty() ? first.constEnd() : first.constFind(glyphs.front());
        if (found != first.constEnd() && *found != c.unicode() && !characters.contains(QChar(*found)))
            renamed.insert(NameOf(*found), NameOf(c.unicode()));
    }
    return renamed;
}

// Each list of names in a table stands in brackets, behind the numbers of its glyphs.
void RenameIn(QByteArray& table, const QHash<QByteArray, QByteArray>& renamed) {
    for (qsizetype at = table.indexOf('['); at >= 0; at = table.indexOf('[', at)) {
        const qsizetype end = table.indexOf(']', at);
        for (; at < end; ++at) {
            if (table[at] != '<') continue;
            const auto name = renamed.constFind(table.mid(at, kNameLength));
            if (name != renamed.constEnd()) table.replace(at, kNameLength, *name);
        }
        if (end < 0) return;
    }
}

}  // namespace

QByteArray WithItsOwnCharacters(QByteArray pdf, const QString& text, const QFont& font) {
    const QHash<QByteArray, QByteArray> renamed = Renamed(text, font);
    if (renamed.isEmpty()) return pdf;
    for (qsizetype begin = pdf.indexOf(kTableBegin); begin >= 0;
         begin = pdf.indexOf(kTableBegin, begin + 1)) {
        const qsizetype end = pdf.indexOf(kTableEnd, begin);
        if (end < 0) break;
        QByteArray table = pdf.mid(begin, end - begin);
        RenameIn(table, renamed);
        pdf.replace(begin, table.size(), table);
    }
    return pdf;
}

}  // namespace vicenter::ui
