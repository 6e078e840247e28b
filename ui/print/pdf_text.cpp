#include "ui/print/pdf_text.h"

#include <QHash>
#include <QRawFont>

namespace vicenter::ui {

namespace {

// The blocks of radicals: CJK supplement and Kangxi.
constexpr char16_t kFirstRadical = 0x2E80;
constexpr char16_t kLastRadical = 0x2FDF;
constexpr const char* kTableBegin = "beginbfrange";
constexpr const char* kTableEnd = "endbfrange";

quint32 GlyphOf(const QRawFont& font, char16_t c) {
    const QList<quint32> glyphs = font.glyphIndexesForString(QString(QChar(c)));
    return glyphs.isEmpty() ? 0 : glyphs.front();
}

// As the file names a character.
QByteArray NameOf(char16_t c) {
    return '<' + QByteArray::number(c, 16).rightJustified(4, '0').toUpper() + '>';
}

// The names of signs that are drawn as characters of the text are.
QHash<QByteArray, QByteArray> Renamed(const QString& text, const QFont& font) {
    const QRawFont raw = QRawFont::fromFont(font);
    QHash<quint32, QByteArray> radicals;
    for (char16_t c = kFirstRadical; c <= kLastRadical; ++c) {
        if (const quint32 glyph = GlyphOf(raw, c); glyph != 0) radicals.insert(glyph, NameOf(c));
    }
    QHash<QByteArray, QByteArray> renamed;
    for (const QChar c : text) {
        if (c.unicode() <= kLastRadical) continue;
        const auto found = radicals.constFind(GlyphOf(raw, c.unicode()));
        if (found != radicals.constEnd()) renamed.insert(*found, NameOf(c.unicode()));
    }
    return renamed;
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
        for (auto name = renamed.constBegin(); name != renamed.constEnd(); ++name)
            table.replace(name.key(), name.value());
        pdf.replace(begin, table.size(), table);
    }
    return pdf;
}

}  // namespace vicenter::ui
