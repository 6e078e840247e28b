#include "ui/run/long_work.h"

#include <QApplication>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTimerEvent>
#include <QVBoxLayout>
#include <algorithm>

#include "store/stoppable_command.h"
#include "ui/look/dialog_frame.h"

namespace vicenter::ui {

namespace {

// Whatever is over sooner needs no box.
constexpr std::chrono::milliseconds kUntilShown{1000};

// Somebody looks at a window of ours.
bool IsAnyWindowShown() {
    const QWidgetList windows = QApplication::topLevelWidgets();
    return std::any_of(windows.begin(), windows.end(), [](QWidget* window) { return window->isVisible(); });
}

}  // namespace

LongWorkBox::LongWorkBox(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("longWork"));
    setWindowTitle(QStringLiteral("信息提示"));
    setWindowModality(Qt::ApplicationModal);
    FrameTitleBar(*this);
    auto* label = new QLabel(QStringLiteral("正在执行，请稍后..."), this);
    auto* bar = new QProgressBar(this);
    bar->setRange(0, 0);  // a bar that only moves
    bar->setTextVisible(false);
    auto* cancel = new QPushButton(QStringLiteral("取消"), this);
    cancel->setObjectName(QStringLiteral("cmdCancelLongWork"));
    // Enter and the space bar are pressed ahead for the message that is expected: they cancel nothing.
    cancel->setAutoDefault(false);
    cancel->setFocusPolicy(Qt::NoFocus);
    connect(cancel, &QPushButton::clicked, this, [this, cancel, label] {
        cancelled_ = true;
        cancel->setEnabled(false);
        label->setText(QStringLiteral("正在取消，请稍后..."));
    });
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label, 0, Qt::AlignCenter);
    layout->addWidget(bar);
    layout->addWidget(cancel, 0, Qt::AlignCenter);
    setMinimumWidth(fontMetrics().averageCharWidth() * 40);
}

void LongWorkBox::Poll() {
    qApp->installEventFilter(this);
    QCoreApplication::processEvents(QEventLoop::ExcludeSocketNotifiers);
    qApp->removeEventFilter(this);
}

// A timer whose event is taken away runs out once more: it waits. Those of windows paint them, those of the
// box itself move its bar.
bool LongWorkBox::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Timer || watched->isWindowType())
        return QDialog::eventFilter(watched, event);
    for (const QObject* owner = watched; owner != nullptr; owner = owner->parent()) {
        if (owner == this) return false;
    }
    return true;
}

QtLongWork::QtLongWork() = default;

QtLongWork::~QtLongWork() = default;

bool QtLongWork::GoOn(std::chrono::milliseconds taken) {
    if (polling_) return true;
    // What would follow in a command that has been stopped is not waited for.
    if (store::StoppableCommand::IsStopped()) return false;
    if (taken < kUntilShown) return true;
    if (!box_) {
        if (!IsAnyWindowShown()) return true;
        QWidget* parent = QApplication::activeModalWidget();
        if (parent == nullptr) parent = QApplication::activeWindow();
        box_ = std::make_unique<LongWorkBox>(parent);
        box_->show();
    }
    polling_ = true;
    box_->Poll();
    polling_ = false;
    if (box_->IsCancelled()) store::StoppableCommand::Stop();
    return !box_->IsCancelled();
}

void QtLongWork::Done() noexcept {
    if (!polling_) box_.reset();
}

}  // namespace vicenter::ui
