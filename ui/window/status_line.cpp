#include "ui/window/status_line.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

#include "ui/look/center_style.h"
#include "ui/look/one_line.h"
#include "ui/look/qt_text.h"
#include "ui/look/theme.h"

namespace vicenter::ui {

namespace {

constexpr int kFlashMilliseconds = 4000;
constexpr int kDoneMilliseconds = 30000;
constexpr std::size_t kNumbersNamed = 5;

// A text that says by a sign where there is no room for all of it, and tells all of it then.
class StatusText : public QLabel {
  public:
    using QLabel::QLabel;

    QSize minimumSizeHint() const override {
        const QMargins margins = contentsMargins();
        return {fontMetrics().horizontalAdvance(QChar(0x2026)) + margins.left() + margins.right(),
                QLabel::minimumSizeHint().height()};
    }

  protected:
    void paintEvent(QPaintEvent* event) override {
        if (!IsCut()) return QLabel::paintEvent(event);
        QPainter painter(this);
        const QString shortened = fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width());
        const auto aligned =
            static_cast<int>(QStyle::visualAlignment(layoutDirection(), alignment()).toInt());
        style()->drawItemText(&painter, contentsRect(), aligned, palette(), isEnabled(), shortened,
                              foregroundRole());
    }
    bool event(QEvent* event) override {
        if (event->type() != QEvent::ToolTip) return QLabel::event(event);
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                           IsCut() ? ToolTipText(text()) : QString(), this);
        return true;
    }

  private:
    bool IsCut() const { return fontMetrics().horizontalAdvance(text()) > contentsRect().width(); }
};

QString Join(const std::vector<std::string>& numbers) {
    QStringList named;
    for (std::size_t i = 0; i < numbers.size() && i < kNumbersNamed; ++i)
        named << ToQt(numbers[i]);
    QString text = named.join(QStringLiteral("、"));
    if (numbers.size() > kNumbersNamed) text += QStringLiteral(" 等 %1 个").arg(numbers.size());
    return text;
}

}  // namespace

StatusLine::StatusLine(QWidget* parent)
    : QStatusBar(parent),
      hint_(new QLabel(this)),
      faults_(new QToolButton(this)),
      unbalanced_(new StatusText(this)),
      selection_(new StatusText(this)),
      sums_(new StatusText(this)),
      counts_(new StatusText(this)),
      flash_(QStringLiteral("flashTimer"), kFlashMilliseconds, this),
      done_(QStringLiteral("doneTimer"), kDoneMilliseconds, this) {
    setObjectName(QStringLiteral("statusLine"));
    setSizeGripEnabled(false);
    setContentsMargins(4, 0, 4, 0);
    hint_->setObjectName(QStringLiteral("lblHint"));
    unbalanced_->setObjectName(QStringLiteral("lblUnbalanced"));
    selection_->setObjectName(QStringLiteral("lblSelection"));
    sums_->setObjectName(QStringLiteral("lblSums"));
    counts_->setObjectName(QStringLiteral("lblCounts"));
    for (QLabel* label : {hint_, unbalanced_, selection_, sums_, counts_})
        label->setTextFormat(Qt::PlainText);
    hint_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    addWidget(hint_, 1);
    faults_->setObjectName(QStringLiteral("cmdFaults"));
    faults_->setFocusPolicy(Qt::NoFocus);
    faults_->setAutoRaise(true);
    faults_->setToolTip(QStringLiteral("显示或隐藏异常列表 (Ctrl+F8)，按 F8 逐个查看"));
    addPermanentWidget(faults_);
    connect(faults_, &QToolButton::clicked, this, &StatusLine::faultsClicked);
    for (QLabel* label : {unbalanced_, selection_, sums_, counts_}) {
        label->setContentsMargins(6, 0, 6, 0);
        addPermanentWidget(label);
    }
    hint_->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    hint_->setFocusPolicy(Qt::NoFocus);
    connect(hint_, &QLabel::linkActivated, this, [this] { emit fileClicked(doneFile_); });
    connect(&flash_, &QTimer::timeout, this, &StatusLine::EndFlash);
    connect(&done_, &QTimer::timeout, this, &StatusLine::EndDone);
    connect(&Theme::Process(), &Theme::changed, this, &StatusLine::ApplyColors);
    SetState({});
    ApplyColors();
}

void StatusLine::ApplyColors() {
    QPalette faulty;
    faulty.setColor(QPalette::ButtonText, colors::kRefusal);
    faults_->setPalette(faulty);
    QPalette quiet;
    quiet.setColor(QPalette::WindowText, colors::kCaution);
    unbalanced_->setPalette(quiet);
    ShowHint();
}

void StatusLine::SetState(const center::StatusState& state) {
    hintText_ = ToSentence(state.hint);
    unbalanced_->setText(
        state.unbalanced.empty() ? QString() : QStringLiteral("借贷不平：%1").arg(Join(state.unbalanced)));
    unbalanced_->setVisible(!state.unbalanced.empty());
    selection_->setText(QStringLiteral("选中合计 %1").arg(ToQt(state.selectionSum)));
    selection_->setVisible(!state.selectionSum.empty());
    if (!state.number.empty()) {
        QString text = QStringLiteral("编号 %1：借 %2　贷 %3")
                           .arg(ToQt(state.number), ToQt(state.debit), ToQt(state.credit));
        if (!state.difference.empty()) text += QStringLiteral("　差额 %1").arg(ToQt(state.difference));
        if (state.amountHidden) text += QStringLiteral("（金额列已隐藏）");
        sums_->setText(text);
    }
    sums_->setVisible(!state.number.empty());
    QStringList found;
    if (state.faults > 0) found << QStringLiteral("异常 %1 处").arg(state.faults);
    if (state.hints > 0) found << QStringLiteral("提示 %1 处").arg(state.hints);
    faults_->setText(found.join(u'　'));
    faults_->setVisible(!found.isEmpty());
    counts_->setText(QStringLiteral("%1 行分录　%2 个编号").arg(state.lines).arg(state.numbers));
    ShowHint();
}

void StatusLine::Flash(const QString& text) {
    if (text.isEmpty()) return;
    flashText_ = ToSentence(text);
    flash_.start();
    ShowHint();
}

void StatusLine::EndFlash() {
    flash_.stop();
    if (flashText_.isEmpty()) return;
    flashText_.clear();
    ShowHint();
}

void StatusLine::TellDone(const QString& text, const QString& file) {
    if (text.isEmpty()) {
        if (!doneText_.isEmpty()) EndDone();
        return;
    }
    doneText_ = ToSentence(text);
    doneFile_ = file;
    done_.start();
    ShowHint();
}

void StatusLine::EndDone() {
    done_.stop();
    doneText_.clear();
    doneFile_.clear();
    ShowHint();
}

QString StatusLine::DoneText() const {
    QString text = QStringLiteral("✓ ") + doneText_.toHtmlEscaped();
    if (!doneFile_.isEmpty())
        text += QStringLiteral("　<a href=\"file\">%1</a>").arg(doneFile_.toHtmlEscaped());
    return text;
}

void StatusLine::ShowHint() {
    const QString trouble = flashText_.isEmpty() ? hintText_ : flashText_;
    const bool done = trouble.isEmpty() && !doneText_.isEmpty();
    QPalette palette;
    palette.setColor(QPalette::WindowText, done                ? colors::kDone
                                           : trouble.isEmpty() ? colors::kInk
                                                               : colors::kRefusal);
    hint_->setPalette(palette);
    hint_->setTextFormat(done ? Qt::RichText : Qt::PlainText);
    hint_->setText(done ? DoneText() : trouble);
    hint_->setToolTip(ToolTipText(done ? doneFile_ : trouble));
    const QString spoken = doneFile_.isEmpty() ? doneText_ : doneText_ + QStringLiteral("　") + doneFile_;
    hint_->setAccessibleName(done ? spoken : trouble);
}

}  // namespace vicenter::ui
