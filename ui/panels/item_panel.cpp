#include "ui/panels/item_panel.h"

#include <QApplication>
#include <QGridLayout>
#include <QKeyEvent>
#include <QVBoxLayout>
#include <algorithm>

#include "center/editing/cell_rules.h"
#include "center/grid/columns.h"
#include "ui/look/qt_text.h"
#include "ui/look/theme.h"
#include "ui/run/composition.h"
#include "ui/run/single_line.h"

namespace vicenter::ui {

namespace {

constexpr std::size_t kRowsThatFit = 4;
constexpr int kPictureWidth = 400;
constexpr int kRowHeight = 26;
constexpr int kPictureMargin = 6;

// Holds the panel's text to what the column takes: it has no red cell to show a refused one in.
class ItemsValidator : public SingleLine {
  public:
    using SingleLine::SingleLine;

  protected:
    State Judge(const QString& text) const override {
        const auto verdict = center::CheckTypedText(center::column::kItems, FromQt(text));
        return verdict == center::TextVerdict::Taken ? Acceptable : Invalid;
    }
};

// One number of an items text: what would end it or be refused by its column is no part of it.
const QRegularExpression& OneNumber() {
    static const QRegularExpression pattern(QStringLiteral("[^',|]*"));
    return pattern;
}

void SetFaulty(QLineEdit& field, bool faulty) {
    QPalette own;
    if (faulty) own.setColor(QPalette::Text, colors::kFaulty);
    field.setPalette(own);
}

}  // namespace

ItemPanel::ItemPanel(QWidget* parent)
    : QObject(parent),
      parent_(parent),
      text_(new QLineEdit(parent)),
      button_(new QToolButton(parent)),
      picture_(new QFrame(parent)),
      scroll_(new QScrollArea(picture_)) {
    text_->setObjectName(QStringLiteral("txtItem"));
    text_->setFrame(false);
    text_->setTextMargins(2, 0, 1, 0);
    text_->setFocusPolicy(Qt::ClickFocus);
    new ItemsValidator(*text_);
    text_->installEventFilter(this);
    new Composition(*text_);
    button_->setObjectName(QStringLiteral("cmdItem"));
    button_->setFocusPolicy(Qt::NoFocus);
    button_->setArrowType(Qt::DownArrow);
    button_->setAutoFillBackground(true);
    button_->setToolTip(QStringLiteral("核算项目 (F4)"));
    text_->setAccessibleName(QStringLiteral("核算项目"));
    button_->setAccessibleName(QStringLiteral("打开或关闭核算项目面板"));
    picture_->setObjectName(QStringLiteral("picItem"));
    picture_->setFrameShape(QFrame::StyledPanel);
    picture_->setAutoFillBackground(true);
    auto* layout = new QVBoxLayout(picture_);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(scroll_);
    scroll_->setFrameShape(QFrame::NoFrame);
    scroll_->setWidgetResizable(true);
    scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);

    connect(button_, &QToolButton::clicked, this, &ItemPanel::toggled);
    connect(text_, &QLineEdit::editingFinished, this, [this] { Commit(*text_); });
    connect(&Theme::Process(), &Theme::changed, this, &ItemPanel::ShowFaults);
    BuildRows(0);
    Refresh();
}

// Hands a changed text over, once.
void ItemPanel::Commit(QLineEdit& field) {
    Composition::Finish(field);
    if (!field.isModified()) return;
    field.setModified(false);
    if (&field == text_) emit textCommitted(field.text());
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (rows_[i].number != &field) continue;
        emit numberCommitted(static_cast<int>(i), field.text());
        return;  // the rows may have been built anew
    }
}

void ItemPanel::CommitTyping() {
    Commit(*text_);
    // By index: a number that is handed over may build the rows anew.
    for (std::size_t i = 0; i < rows_.size(); ++i)
        Commit(*rows_[i].number);
}

void ItemPanel::BuildRows(std::size_t count) {
    rows_.clear();
    content_ = new QWidget;
    auto* grid = new QGridLayout(content_);
    grid->setContentsMargins(kPictureMargin, kPictureMargin, kPictureMargin, kPictureMargin);
    grid->setHorizontalSpacing(4);
    grid->setVerticalSpacing(2);
    grid->setColumnStretch(1, 2);
    grid->setColumnStretch(3, 3);
    for (std::size_t i = 0; i < count; ++i) {
        const int row = static_cast<int>(i);
        const QString suffix = QString::number(row + 1);
        Row widgets{new QLabel(content_), new QLabel(content_), new QLineEdit(content_),
                    new QToolButton(content_), new QLabel(content_)};
        widgets.name->setObjectName(QStringLiteral("lblItem") + suffix);
        widgets.id->setObjectName(QStringLiteral("lblID") + suffix);
        widgets.id->hide();
        widgets.number->setObjectName(QStringLiteral("txtItemNumber") + suffix);
        widgets.number->installEventFilter(this);
        new SingleLine(*widgets.number, OneNumber());
        new Composition(*widgets.number);
        widgets.lookUp->setObjectName(QStringLiteral("cmdItemLookUp") + suffix);
        widgets.lookUp->setText(QStringLiteral("…"));
        widgets.lookUp->setFocusPolicy(Qt::NoFocus);
        widgets.lookUp->setToolTip(QStringLiteral("查看资料 (F7)"));
        widgets.known->setObjectName(QStringLiteral("lblItemName") + suffix);
        widgets.known->setTextFormat(Qt::PlainText);
        // A long one is cut off, and whole when the mouse is over it.
        widgets.known->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        for (QWidget* widget :
             std::initializer_list<QWidget*>{widgets.name, widgets.number, widgets.lookUp, widgets.known}) {
            widget->setFixedHeight(kRowHeight - 2);
        }
        grid->addWidget(widgets.name, row, 0);
        grid->addWidget(widgets.number, row, 1);
        grid->addWidget(widgets.lookUp, row, 2);
        grid->addWidget(widgets.known, row, 3);
        connect(widgets.number, &QLineEdit::editingFinished, this,
                [this, field = widgets.number] { Commit(*field); });
        connect(widgets.lookUp, &QToolButton::clicked, this, [this, row, field = widgets.number] {
            Commit(*field);  // the look-up starts at what has been typed
            emit lookUpRequested(row);
        });
        rows_.push_back(widgets);
    }
    empty_ = new QLabel(QStringLiteral("该分录的科目没有核算项目"), content_);
    empty_->setObjectName(QStringLiteral("lblNoItems"));
    empty_->setVisible(count == 0);
    if (count == 0) grid->addWidget(empty_, 0, 0, 1, 4);
    grid->setRowStretch(static_cast<int>(std::max<std::size_t>(count, 1)), 1);
    scroll_->setWidget(content_);  // deletes the rows before
}

void ItemPanel::SetState(const center::ItemPanelState& state) {
    const bool opened = state.expanded && !state_.expanded && state.visible;
    state_ = state;
    if (rows_.size() != state.rows.size()) BuildRows(state.rows.size());
    if (!text_->isModified()) text_->setText(ToQt(state.text));
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const auto& from = state.rows[i];
        rows_[i].name->setText(ToQt(from.className) + u'：');
        rows_[i].id->setText(QString::number(from.classId));
        if (!rows_[i].number->isModified()) rows_[i].number->setText(ToQt(from.number));
        const QString name = ToQt(from.className);
        rows_[i].number->setAccessibleName(name);
        rows_[i].lookUp->setAccessibleName(QStringLiteral("查看资料：") + name);
    }
    ShowFaults();
    if (!state.visible) {
        text_->setModified(false);
        for (Row& row : rows_)
            row.number->setModified(false);
    }
    Refresh();
    if (opened && !rows_.empty() && picture_->isVisible()) {
        rows_.front().number->setFocus(Qt::OtherFocusReason);
        rows_.front().number->selectAll();
    }
}

// As the cell behind it, which it hides.
void ItemPanel::ShowFaults() {
    SetFaulty(*text_, state_.faulty);
    if (state_.faulty) {
        QPalette own = text_->palette();
        own.setColor(QPalette::Base, colors::kFaultyPaper);
        text_->setPalette(own);
    }
    for (std::size_t i = 0; i < rows_.size() && i < state_.rows.size(); ++i) {
        const bool faulty = state_.rows[i].faulty;
        SetFaulty(*rows_[i].number, faulty);
        rows_[i].number->setToolTip(faulty ? QStringLiteral("该核算类别下没有此编号") : QString());
    }
}

// What has been typed there and not been handed over is gone.
void ItemPanel::GiveUp(QLineEdit& field) {
    field.setModified(false);
    if (&field == text_) text_->setText(ToQt(state_.text));
    if (&field != text_ && state_.expanded) emit toggled();
    emit leaveRequested();
}

void ItemPanel::SetNames(const std::vector<std::string>& names) {
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const QString name = i < names.size() ? ToQt(names[i]) : QString();
        rows_[i].known->setText(name);
        rows_[i].known->setToolTip(ToolTipText(name));
        rows_[i].number->setAccessibleDescription(name);
    }
}

void ItemPanel::PlaceAt(const QRect& cell) {
    cell_ = cell;
    Refresh();
}

void ItemPanel::SetCellEditing(bool editing) {
    cellEditing_ = editing;
    Refresh();
}

void ItemPanel::SetInteractive(bool interactive) {
    interactive_ = interactive;
    Refresh();
}

void ItemPanel::SetFont(const QFont& font) {
    text_->setFont(font);
}

bool ItemPanel::Contains(const QWidget* widget) const {
    return widget &&
           (widget == text_ || widget == button_ || widget == picture_ || picture_->isAncestorOf(widget));
}

bool ItemPanel::HasFocusWithin() const {
    return Contains(QApplication::focusWidget());
}

void ItemPanel::Refresh() {
    const auto isOver = [this] { return state_.visible && interactive_ && !cell_.isEmpty(); };
    // What hides gives the keyboard back before; what was typed is handed over by it, and the state is
    // another.
    const bool closes = !isOver() || cellEditing_;
    const QWidget* focused = parent_->window()->focusWidget();
    if (focused != nullptr &&
        ((closes && Contains(focused)) || (!state_.expanded && picture_->isAncestorOf(focused))))
        emit leaveRequested();
    const bool over = isOver();
    const bool strip = over && !cellEditing_;
    if (over) {
        const int side = std::min(18, cell_.width() / 2);
        const QRect inner = cell_.adjusted(2, 2, -2, -2);
        text_->setGeometry(inner.left(), inner.top(), std::max(0, inner.width() - side), inner.height());
        button_->setGeometry(inner.right() - side + 1, inner.top(), side, inner.height());
        const std::size_t shown = std::clamp<std::size_t>(rows_.size(), 1, kRowsThatFit);
        const int height =
            static_cast<int>(shown) * kRowHeight + 2 * kPictureMargin + 2 * picture_->frameWidth();
        const int width = std::max(kPictureWidth, cell_.width());
        const QRect room = parent_->rect();
        const int left = std::clamp(cell_.left(), 0, std::max(0, room.width() - width));
        const bool above = cell_.bottom() + 1 + height > room.height() && cell_.top() - height >= 0;
        picture_->setGeometry(left, above ? cell_.top() - height : cell_.bottom() + 1, width, height);
    }
    text_->setVisible(strip);
    button_->setVisible(strip);
    picture_->setVisible(strip && state_.expanded);
    for (QWidget* widget : std::initializer_list<QWidget*>{text_, button_, picture_}) {
        if (strip) widget->raise();
    }
}

bool ItemPanel::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const auto& key = static_cast<QKeyEvent&>(*event);
        auto* field = qobject_cast<QLineEdit*>(watched);
        if (key.key() == Qt::Key_Escape && field) {
            GiveUp(*field);
            return true;
        }
        const bool insert =
            key.key() == Qt::Key_Insert && !(key.modifiers() & (Qt::ShiftModifier | Qt::ControlModifier));
        if ((key.key() == Qt::Key_F7 || insert) && field) {
            for (std::size_t i = 0; i < rows_.size(); ++i) {
                if (rows_[i].number != field) continue;
                Commit(*field);
                emit lookUpRequested(static_cast<int>(i));
                return true;
            }
        }
        if ((key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter) && field) {
            // Enter goes down the rows and from the last back to the grid.
            std::size_t next = 0;
            for (std::size_t i = 0; i < rows_.size(); ++i) {
                if (rows_[i].number == field) next = i + 1;
            }
            Commit(*field);
            if (next > 0 && next < rows_.size()) {
                rows_[next].number->setFocus(Qt::TabFocusReason);
                rows_[next].number->selectAll();
                return true;
            }
            if (next > 0 && state_.expanded) emit toggled();
            emit leaveRequested();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace vicenter::ui
