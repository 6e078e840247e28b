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

#if defined(_WIN32) || defined(__APPLE__)

bool HasDisplay() {
    return true;  // the platform belongs to the system
}

bool IsDisplayUnseen() {
    return false;
}

#else

namespace {

// The platforms to try, as the application will: those of QT_QPA_PLATFORM, else what the session offers.
QByteArrayList Candidates() {
    const QByteArray asked = qgetenv("QT_QPA_PLATFORM");
    if (!asked.isEmpty()) return asked.split(';');
    QByteArrayList names;
    if (qEnvironmentVariableIsSet("WAYLAND_DISPLAY") || qgetenv("XDG_SESSION_TYPE") == "wayland")
        names << "wayland";
    names << "xcb";
    return names;
}

// The names that the installed platform plugins answer to.
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
            const QJsonObject about = QPluginLoader(file.absoluteFilePath()).metaData();
            for (const auto& key : about[QStringLiteral("MetaData")][QStringLiteral("Keys")].toArray())
                names.insert(key.toString().toLower());
        }
    }
    return names;
}

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

bool Answers(const QByteArray& platform) {
    if (platform == "xcb") return XServerAnswers();
    if (platform.startsWith("wayland")) return WaylandServerAnswers();
    return true;  // draws into memory, or on hardware of its own
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

#endif

}  // namespace vicenter::ui
