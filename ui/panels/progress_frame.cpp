#include "ui/panels/progress_frame.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QVBoxLayout>
#include <algorithm>
#include <limits>
#include <vector>

#include "ui/look/qt_text.h"

namespace vicenter::ui {

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
    // Everything beside the panel is shut for the moment in which events run.
    std::vector<QWidget*> shut;
    for (QObject* child : parentWidget()->children()) {
        auto* widget = qobject_cast<QWidget*>(child);
        if (widget == nullptr || widget == this || widget->isWindow() || !widget->isEnabled()) continue;
        widget->setEnabled(false);
        shut.push_back(widget);
    }
    polling_ = true;
    QCoreApplication::processEvents();
    polling_ = false;
    for (QWidget* widget : shut)
        widget->setEnabled(true);
    return cancelled_;
}

}  // namespace vicenter::ui
