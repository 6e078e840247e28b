// Process start to first paint: the template center on the demo account set beside an empty Qt window.
//
// Both are processes of this program, started in turn; the clock runs from before the process is started
// until the first window has painted itself and the event loop has gone round once. The center's child goes
// the whole way of `vicenter window`. Prints medians, spread and the ratio; fails when a child did not show
// what it should.
//
//     window_start_bench [runs]

#include <QApplication>
#include <QDir>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "automation/class_registry.h"
#include "host/account_set.h"
#include "host/cli/cli.h"
#include "ui/run/run_window.h"
#include "ui/window/vicenter_window.h"

namespace {

using vicenter::ui::VICenterWindow;

constexpr int kDefaultRuns = 21;
constexpr double kGoal = 15;
constexpr int kChildMilliseconds = 60000;

// Steady on one machine across its processes.
long long NowMicroseconds() {
    return std::chrono::duration_cast<std::chrono::microseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

// Prints the time of the first paint of the widget that `isIt` knows, and ends the event loop.
class FirstPaint : public QObject {
  public:
    explicit FirstPaint(bool (*isIt)(const QObject&)) : isIt_(isIt) {}

    bool eventFilter(QObject* watched, QEvent* event) override {
        if (!seen_ && event->type() == QEvent::Paint && isIt_(*watched)) {
            seen_ = true;
            QTimer::singleShot(0, qApp, [] {
                std::printf("%lld %d\n", NowMicroseconds(), RowsShown());
                std::fflush(stdout);
                QApplication::exit(0);
            });
        }
        return false;
    }

  private:
    static int RowsShown() {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* window = qobject_cast<VICenterWindow*>(widget)) return window->Presenter().RowCount();
        }
        return 0;
    }

    bool (*isIt_)(const QObject&);
    bool seen_ = false;
};

int EmptyChild(int argc, char** argv) {
    QApplication application(argc, argv);
    FirstPaint watch([](const QObject& object) { return object.isWidgetType(); });
    application.installEventFilter(&watch);
    QWidget window;
    window.resize(1180, 700);
    window.show();
    return QApplication::exec();
}

int CenterChild(int argc, char** argv, const std::string& file) {
    vicenter::host::CliHooks hooks;
    hooks.openWindow = [argc, argv] {
        FirstPaint watch([](const QObject& object) {
            return object.parent() && object.parent()->objectName() == QLatin1String("vsEntrys") &&
                   object.objectName() == QLatin1String("qt_scrollarea_viewport");
        });
        vicenter::ui::WindowRun run;
        run.prepare = [&watch] { qApp->installEventFilter(&watch); };
        run.open = [] {
            vicenter::automation::CreateObject("VelaVICenter.aplication")->Call("ShowVICenter");
        };
        return vicenter::ui::RunWindow(argc, argv, run);
    };
    return vicenter::host::RunCli({"--account-set", file, "window"}, {std::cin, std::cout, std::cerr}, hooks);
}

struct Sample {
    double milliseconds = -1;
    int rows = 0;
};

Sample RunChild(const QStringList& arguments) {
    QProcess child;
    child.setProcessChannelMode(QProcess::SeparateChannels);
    const long long started = NowMicroseconds();
    child.start(QCoreApplication::applicationFilePath(), arguments);
    Sample sample;
    if (!child.waitForFinished(kChildMilliseconds)) {
        child.kill();
        return sample;
    }
    const QList<QByteArray> answer = child.readAllStandardOutput().trimmed().split(' ');
    if (answer.size() != 2) {
        std::fprintf(stderr, "%s", child.readAllStandardError().constData());
        return sample;
    }
    sample.milliseconds = static_cast<double>(answer[0].toLongLong() - started) / 1000.0;
    sample.rows = answer[1].toInt();
    return sample;
}

double Median(std::vector<double>& values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

int Parent(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : kDefaultRuns;
    const QTemporaryDir folder;
    const std::string file = folder.filePath("demo.vela").toStdString();
    vicenter::host::RegisterProviders();
    vicenter::host::CreateAccountSetFile(file, {true, 0});

    std::vector<double> empty;
    std::vector<double> center;
    for (int i = 0; i < runs; ++i) {
        const Sample base = RunChild({"--empty"});
        const Sample own = RunChild({"--center", QString::fromStdString(file)});
        if (base.milliseconds < 0 || own.milliseconds < 0 || own.rows == 0) {
            std::fprintf(stderr, "run %d: a window did not paint or shows no lines\n", i + 1);
            return 1;
        }
        empty.push_back(base.milliseconds);
        center.push_back(own.milliseconds);
    }
    const double emptyMedian = Median(empty);
    const double centerMedian = Median(center);
    std::printf("process start to first paint, %d runs in turn, platform %s\n", runs,
                qEnvironmentVariable("QT_QPA_PLATFORM", "default").toUtf8().constData());
    std::printf("  empty Qt window   %7.1f ms  (%.1f to %.1f)\n", emptyMedian, empty.front(), empty.back());
    std::printf("  template center   %7.1f ms  (%.1f to %.1f)\n", centerMedian, center.front(),
                center.back());
    std::printf("  ratio             %7.2f     goal %.0f: %s\n", centerMedian / emptyMedian, kGoal,
                centerMedian <= kGoal * emptyMedian ? "met" : "MISSED");
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const std::string kind = argc > 1 ? argv[1] : "";
        if (kind == "--empty") return EmptyChild(argc, argv);
        if (kind == "--center" && argc > 2) return CenterChild(argc, argv, argv[2]);
        return Parent(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
