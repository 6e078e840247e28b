#include "ui/run/single_line.h"

#include <algorithm>

namespace vicenter::ui {

namespace {

bool IsLineEnd(QChar c) {
    return c == u'\n' || c == u'\r' || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
}

// Takes the line ends before a place away; how many there were.
int DropLineEndsBefore(QString& text, int place) {
    int count = 0;
    while (count < place && IsLineEnd(text[place - count - 1]))
        ++count;
    text.remove(place - count, count);
    return count;
}

}  // namespace

SingleLine::SingleLine(QLineEdit& field, const QRegularExpression& pattern)
    : QValidator(&field),
      pattern_(pattern.pattern().isEmpty()
                   ? pattern
                   : QRegularExpression(QRegularExpression::anchoredPattern(pattern.pattern()))) {
    field.setValidator(this);
}

QValidator::State SingleLine::validate(QString& text, int& position) const {
    // What was inserted ends at the cursor.
    position = std::clamp(position, 0, static_cast<int>(text.size()));
    position -= DropLineEndsBefore(text, position);
    DropLineEndsBefore(text, static_cast<int>(text.size()));
    position = std::min(position, static_cast<int>(text.size()));
    const bool control = std::any_of(text.begin(), text.end(), [](QChar c) {
        return c.unicode() < 0x20 || c.unicode() == 0x7F || IsLineEnd(c);
    });
    if (!control) return Judge(text);
    ControlCharacterRefused();
    return Invalid;
}

QValidator::State SingleLine::Judge(const QString& text) const {
    if (pattern_.pattern().isEmpty()) return Acceptable;
    return pattern_.match(text).hasMatch() ? Acceptable : Invalid;
}

}  // namespace vicenter::ui
