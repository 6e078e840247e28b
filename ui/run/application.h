#pragma once

// Set-up of the QApplication that the windows live in: style, palette, Chinese fonts and Chinese texts of
// Qt's own widgets. Called once, before the first window; several calls do no harm. User-interface thread
// only.

#include <QApplication>
#include <QFont>
#include <QIcon>
#include <QStringList>

namespace vicenter::ui {

void SetUpApplication(QApplication& application);

// The family that shows Chinese best among those given; empty when none of them is known to.
QString ChooseChineseFamily(const QStringList& families);
// "宋体" itself where it is installed, else what replaces it here.
QString BillFontFamily();
QFont BillFont(double pointSize);

// The windows' own icons, by file stem ("tool_save", "tree_root", "app").
QIcon NamedIcon(const QString& stem);

}  // namespace vicenter::ui
