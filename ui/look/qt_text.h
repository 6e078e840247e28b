#pragma once

// Text between the component (UTF-8 std::string, line breaks CR LF) and Qt (QString). Stateless.

#include <QString>
#include <QTextDocument>
#include <string>
#include <string_view>

namespace vicenter::ui {

inline QString ToQt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline std::string FromQt(const QString& text) {
    return text.toStdString();
}

// A message of several lines as Qt's widgets want it: LF alone.
inline QString ToQtLines(std::string_view text) {
    return ToQt(text).replace(QLatin1String("\r\n"), QLatin1String("\n"));
}

// A name or a text of the user's for a tooltip, which would read mark-up in it.
inline QString ToolTipText(const QString& text) {
    return Qt::mightBeRichText(text) ? QStringLiteral("<p>%1</p>").arg(text.toHtmlEscaped()) : text;
}

}  // namespace vicenter::ui
