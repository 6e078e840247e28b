#pragma once

// Values as the lists of the window show them: in one line, and nothing of them unseen. Stateless.

#include <QString>
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

}  // namespace vicenter::ui
