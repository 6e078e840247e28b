#include "ui/run/application.h"

#include <QFontDatabase>

#include "ui/look/center_style.h"
#include "ui/look/chinese_texts.h"
#include "ui/look/themed_icon.h"

// Outside any namespace, as the macro wants it: a static library's resources are linked in by name.
static void InitResources() {
    Q_INIT_RESOURCE(vicenter_ui);
}

namespace vicenter::ui {

namespace {

constexpr double kApplicationPointSize = 9;

}  // namespace

QString ChooseChineseFamily(const QStringList& families) {
    static const QStringList wanted = {
        QStringLiteral("Noto Sans CJK SC"),     QStringLiteral("Source Han Sans SC"),
        QStringLiteral("Source Han Sans CN"),   QStringLiteral("Noto Sans SC"),
        QStringLiteral("WenQuanYi Micro Hei"),  QStringLiteral("WenQuanYi Zen Hei"),
        QStringLiteral("Microsoft YaHei"),      QStringLiteral("微软雅黑"),
        QStringLiteral("PingFang SC"),          QStringLiteral("SimSun"),
        QStringLiteral("Droid Sans Fallback"),  QStringLiteral("AR PL UMing CN"),
        QStringLiteral("AR PL UKai CN"),        QStringLiteral("Noto Serif CJK SC"),
        QStringLiteral("Noto Sans Mono CJK SC")};
    for (const QString& family : wanted) {
        if (families.contains(family, Qt::CaseInsensitive)) return family;
    }
    return {};
}

QString BillFontFamily() {
    static const QString family = [] {
        const QStringList families = QFontDatabase::families(QFontDatabase::SimplifiedChinese);
        QString song = QStringLiteral("宋体");
        if (families.contains(song)) return song;
        if (families.contains(QStringLiteral("SimSun"))) return QStringLiteral("SimSun");
        QString chosen = ChooseChineseFamily(families);
        if (!chosen.isEmpty()) return chosen;
        return families.isEmpty() ? song : families.constFirst();
    }();
    return family;
}

QFont BillFont(double pointSize) {
    QFont font(BillFontFamily());
    font.setPointSizeF(pointSize);
    return font;
}

QIcon NamedIcon(const QString& stem) {
    return QIcon(new ThemedIconEngine(QStringLiteral(":/vicenter/icons/%1.svg").arg(stem)));
}

void SetUpApplication(QApplication& application) {
    if (application.property("vicenterSetUp").toBool()) return;
    application.setProperty("vicenterSetUp", true);
    InitResources();
    application.setStyle(new CenterStyle);  // owned by the application
    Theme::Process().FollowDesktop(application);
    application.installTranslator(new ChineseTexts(&application));
    QFont font(BillFontFamily());
    font.setPointSizeF(kApplicationPointSize);
    QApplication::setFont(font);
    QApplication::setWindowIcon(NamedIcon(QStringLiteral("app")));
    // No display name: platforms would hang it behind the titles of dialogs, which are exactly as they are
    // set.
}

}  // namespace vicenter::ui
