#pragma once

// Whole rows of the grid on the clipboard and on the way to a node of the tree, for windows of this process:
// ids of another account set would mean others.

#include <QCoreApplication>
#include <QString>

namespace vicenter::ui {

inline QString RowsFormat() {
    return QStringLiteral("application/x-vicenter-rows;pid=%1").arg(QCoreApplication::applicationPid());
}

}  // namespace vicenter::ui
