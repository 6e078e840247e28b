#pragma once

// Paths between Qt, which has slashes everywhere, and the component. Stateless.

#include <QDir>
#include <QString>
#include <string>

#include "ui/look/qt_text.h"

namespace vicenter::ui {

// As the system writes it: that is what users read and hosts take.
inline std::string PathFromQt(const QString& path) {
    return FromQt(QDir::toNativeSeparators(path));
}

}  // namespace vicenter::ui
