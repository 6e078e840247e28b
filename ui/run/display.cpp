#include "ui/run/display.h"

#include <QByteArrayList>
#include <QCoreApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonObject>
#include <QLibrary>
#include <QPluginLoader>
#include <QSet>

namespace vicenter::ui {

namespace {

// The platforms to try, as the application will: those of QT_QPA_PLATFORM, else what the session offers.
QByteArrayList Candidates() {
    const QByteArray asked = qgetenv("QT_QPA_PLATFORM");
    if (!asked.isEmpty()) return asked.split(';');
#ifdef Q_OS_WIN
    return {"windows"};
#else
    QByteArrayList names;
    if (qEnvironmentVariableIsSet("WAYLAND_DISPLAY") || qgetenv("XDG_SESSION_TYPE") == "wayland")
        names << "wayland";
    names << "xcb";
    return names;
#endif
}

// The names that a platform plugin answers to.
QSet<QString> NamesOf(const QJsonObject& plugin) {
    QSet<QString> names;
    for (const auto& key : plugin[QStringLiteral("MetaData")][QStringLiteral("Keys")].toArray())
        names.insert(key.toString().toLower());
    return names;
}

// Those of the plugins that are installed, or linked in.
QSet<QString> InstalledPlatforms() {
    QStringList folders;
    const QString own = qEnvironmentVariable("QT_QPA_PLATFORM_PLUGIN_PATH");
    if (!own.isEmpty()) folders << own;
    for (const QString& path : QCoreApplication::libraryPaths())
        folders << path + QStringLiteral("/platforms");
    QSet<QString> names;
    for (const QString& folder : folders) {
        for (const QFileInfo& file : QDir(folder).entryInfoList(QDir::Files)) {
            if (!QLibrary::isLibrary(file.fileName())) continue;
            names += NamesOf(QPluginLoader(file.absoluteFilePath()).metaData());
        }
    }
    for (const QStaticPlugin& plugin : QPluginLoader::staticPlugins()) {
        const QString kind = plugin.metaData()[QStringLiteral("IID")].toString();
        if (kind.contains(QLatin1String("QPlatformIntegrationFactoryInterface")))
            names += NamesOf(plugin.metaData());
    }
    return names;
}

#ifndef Q_OS_WIN

// The client libraries themselves say whether their display can be reached, with everything that this takes:
// sockets, hosts, permissions. They are there whenever the plugins are, which link them.
bool XServerAnswers() {
    QLibrary library(QStringLiteral("xcb"), 1);
    const auto connect = reinterpret_cast<void* (*)(const char*, int*)>(library.resolve("xcb_connect"));
    const auto hasError = reinterpret_cast<int (*)(void*)>(library.resolve("xcb_connection_has_error"));
    const auto disconnect = reinterpret_cast<void (*)(void*)>(library.resolve("xcb_disconnect"));
    if (connect == nullptr || hasError == nullptr || disconnect == nullptr) return false;
    void* connection = connect(nullptr, nullptr);  // never null: an error is a connection, too
    const bool answers = hasError(connection) == 0;
    disconnect(connection);
    return answers;
}

bool WaylandServerAnswers() {
    QLibrary library(QStringLiteral("wayland-client"), 0);
    const auto connect = reinterpret_cast<void* (*)(const char*)>(library.resolve("wl_display_connect"));
    const auto disconnect = reinterpret_cast<void (*)(void*)>(library.resolve("wl_display_disconnect"));
    if (connect == nullptr || disconnect == nullptr) return false;
    void* display = connect(nullptr);
    if (display == nullptr) return false;
    disconnect(display);
    return true;
}

#endif

bool Answers([[maybe_unused]] const QByteArray& platform) {
#ifndef Q_OS_WIN
    if (platform == "xcb") return XServerAnswers();
    if (platform.startsWith("wayland")) return WaylandServerAnswers();
#endif
    return true;  // draws into memory, on hardware of its own, or belongs to the system
}

}  // namespace

bool HasDisplay() {
    const QSet<QString> installed = InstalledPlatforms();
    for (const QByteArray& candidate : Candidates()) {
        const QByteArray name = candidate.split(':').first().trimmed().toLower();
        if (installed.contains(QString::fromLatin1(name)) && Answers(name)) return true;
    }
    return false;
}

bool IsDisplayUnseen() {
    const QByteArray name = Candidates().constFirst().split(':').first().trimmed().toLower();
    return name == "offscreen" || name.startsWith("minimal");
}

void PrepareDisplay() {
#ifdef Q_OS_WIN
    if (IsDisplayUnseen() && !qEnvironmentVariableIsSet("QT_QPA_FONTDIR"))
        qputenv("QT_QPA_FONTDIR",
                QDir::fromNativeSeparators(qEnvironmentVariable("SystemRoot")).toUtf8() + "/Fonts");
#endif
}

void ChooseUnseenDisplay() {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    PrepareDisplay();
}

}  // namespace vicenter::ui
