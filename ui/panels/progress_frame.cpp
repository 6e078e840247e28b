#include "ui/panels/progress_frame.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>
#include <algorithm>
#include <limits>
#include <vector>

#include "ui/look/qt_text.h"
#include "ui/run/keyboard_home.h"

namespace vicenter::ui {

namespace {

// The one key that is taken while the rest of a window is shut.
class EscapeWatch : public QObject {
  public:
    explicit EscapeWatch(const QWidget& window) : window_(window) { qApp->installEventFilter(this); }
    bool Pressed() const { return pressed_; }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::KeyPress || !watched->isWidgetType() ||
            static_cast<QWidget*>(watched)->window() != &window_ ||
            static_cast<QKeyEvent*>(event)->key() != Qt::Key_Escape) {
            return false;
        }
        pressed_ = true;
        return true;
    }

  private:
    const QWidget& window_;
    bool pressed_ = false;
};

}  // namespace

ProgressFrame::ProgressFrame(QWidget* parent)
    : QFrame(parent),
      label_(new QLabel(this)),
      bar_(new QProgressBar(this)),
      cancel_(new QPushButton(QStringLiteral("取消"), this)) {
    setObjectName(QStringLiteral("progress"));
    setFrameShape(QFrame::Box);
    setAutoFillBackground(true);
    label_->setObjectName(QStringLiteral("lblprogress"));
    label_->setAlignment(Qt::AlignCenter);
    label_->setTextFormat(Qt::PlainText);
    label_->setWordWrap(true);
    bar_->setTextVisible(false);
    bar_->setFixedHeight(6);
    cancel_->setObjectName(QStringLiteral("cmdCancelProgress"));
    cancel_->setFocusPolicy(Qt::NoFocus);  // no key that was meant for something else presses it
    connect(cancel_, &QPushButton::clicked, this, [this] { cancelled_ = true; });
    auto* row = new QHBoxLayout;
    row->addWidget(bar_, 1);
    row->addWidget(cancel_);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(label_, 1);
    layout->addLayout(row);
    hide();
}

void ProgressFrame::SetState(const center::ProgressState& state) {
    const bool appears = state.visible && !isVisible();
    if (appears) cancelled_ = false;
    QString text = ToQtLines(state.label);
    if (state.all > 0) text += QStringLiteral("\n%1 / %2").arg(state.done).arg(state.all);
    label_->setText(text);
    constexpr std::int64_t kLargest = std::numeric_limits<int>::max();
    bar_->setRange(0, static_cast<int>(std::min(state.all, kLargest)));  // 0 to 0 is a bar that only moves
    bar_->setValue(static_cast<int>(std::min(state.done, kLargest)));
    cancel_->setVisible(state.all > 0);
    if (state.visible) Fit();
    setVisible(state.visible);
    if (state.visible) raise();
}

void ProgressFrame::SetPlace(const QRect& place) {
    place_ = place;
    Fit();
}

void ProgressFrame::Fit() {
    const QSize room = parentWidget()->size();
    const int width = std::min(std::max(place_.width(), sizeHint().width()), room.width());
    const int needed =
        layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(width) : sizeHint().height();
    const int height = std::max(place_.height(), needed);
    setGeometry(std::clamp(place_.left(), 0, std::max(0, room.width() - width)),
                std::clamp(place_.top(), 0, std::max(0, room.height() - height)), width, height);
}

bool ProgressFrame::PollCancelled() {
    if (polling_ || !isVisible()) return cancelled_;
    const QPointer<QWidget> before = LastingHolder(window()->focusWidget());
    // Everything beside the panel is shut for the moment in which events run.
    std::vector<QWidget*> shut;
    for (QObject* child : parentWidget()->children()) {
        auto* widget = qobject_cast<QWidget*>(child);
        if (widget == nullptr || widget == this || widget->isWindow() || !widget->isEnabled()) continue;
        widget->setEnabled(false);
        shut.push_back(widget);
    }
    polling_ = true;
    {
        EscapeWatch escape(*window());
        QCoreApplication::processEvents();
        cancelled_ = cancelled_ || (escape.Pressed() && cancel_->isVisible());
    }
    polling_ = false;
    for (QWidget* widget : shut)
        widget->setEnabled(true);
    if (before != nullptr && before != window()->focusWidget()) GiveKeyboardTo(before);
    return cancelled_;
}

}  // namespace vicenter::ui
