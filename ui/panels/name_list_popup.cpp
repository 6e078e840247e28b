#include "ui/panels/name_list_popup.h"

#include <QAbstractListModel>
#include <QPainter>
#include <QStyledItemDelegate>
#include <QVBoxLayout>
#include <algorithm>

#include "ui/look/qt_text.h"
#include "ui/look/theme.h"

namespace vicenter::ui {

namespace {

constexpr int kShownEntries = 10;
constexpr int kMinimumWidth = 240;
constexpr int kMaximumWidth = 420;
constexpr int kMargin = 6;
constexpr int kRowPadding = 5;
constexpr int kEntriesMeasured = 200;

enum Role { kNumberRole = Qt::UserRole, kNameRole, kTakeableRole };

// Two columns in one row: the code, then the name.
class EntryDelegate : public QStyledItemDelegate {
  public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const bool current = option.state & QStyle::State_Selected;
        const bool takeable = index.data(kTakeableRole).toBool();
        painter->fillRect(option.rect, current ? colors::kSelection : colors::kPaper);
        const QString number = index.data(kNumberRole).toString();
        const QString name = index.data(kNameRole).toString();
        const QRect inner = option.rect.adjusted(kMargin, 0, -kMargin, 0);
        painter->setFont(option.font);
        int left = inner.left();
        if (!number.isEmpty()) {
            painter->setPen(takeable ? colors::kAccentInk : colors::kFaintInk);
            const int width = std::max(option.fontMetrics.horizontalAdvance(QStringLiteral("0000.00.00")),
                                       option.fontMetrics.horizontalAdvance(number));
            painter->drawText(QRect(left, inner.top(), width, inner.height()), Qt::AlignVCenter, number);
            left += width + kMargin;
        }
        painter->setPen(takeable ? colors::kInk : colors::kFaintInk);
        const int room = inner.right() - left;
        painter->drawText(QRect(left, inner.top(), room, inner.height()), Qt::AlignVCenter,
                          option.fontMetrics.elidedText(name, Qt::ElideRight, room));
    }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& /*index*/) const override {
        return {kMinimumWidth, option.fontMetrics.height() + kRowPadding};
    }
};

}  // namespace

class NameListModel : public QAbstractListModel {
  public:
    explicit NameListModel(const center::NameListState& state, QObject* parent)
        : QAbstractListModel(parent), state_(state) {}

    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(state_.entries.size());
    }
    QVariant data(const QModelIndex& index, int role) const override {
        if (!checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
        const auto& entry = state_.entries[static_cast<std::size_t>(index.row())];
        if (role == kNumberRole) return ToQt(entry.number);
        if (role == kNameRole) return ToQt(entry.name);
        if (role == kTakeableRole) return entry.selectable;
        if (role == Qt::DisplayRole) return ToQt(entry.number + " " + entry.name);
        return {};
    }
    void Begin() { beginResetModel(); }
    void End() { endResetModel(); }

  private:
    const center::NameListState& state_;
};

NameListPopup::NameListPopup(QWidget* parent)
    : QFrame(parent), model_(new NameListModel(state_, this)), list_(new QListView(this)) {
    setObjectName(QStringLiteral("nameList"));
    setFrameShape(QFrame::StyledPanel);
    setFocusPolicy(Qt::NoFocus);
    setAutoFillBackground(true);
    list_->setFrameShape(QFrame::NoFrame);
    list_->setFocusPolicy(Qt::NoFocus);
    list_->setUniformItemSizes(true);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setItemDelegate(new EntryDelegate(list_));
    list_->setModel(model_);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(list_);
    connect(list_, &QListView::clicked, this, [this](const QModelIndex& index) { emit chosen(index.row()); });
    hide();
}

void NameListPopup::SetState(const center::NameListState& state) {
    model_->Begin();
    state_ = state;
    model_->End();
    if (state_.selected >= 0 && state_.selected < model_->rowCount()) {
        const QModelIndex index = model_->index(state_.selected);
        list_->setCurrentIndex(index);
        list_->scrollTo(index);
    } else {
        list_->setCurrentIndex({});
    }
}

void NameListPopup::PlaceAt(const QRect& cell) {
    const QFontMetrics metrics(list_->font());
    int wanted = std::max(kMinimumWidth, cell.width());
    const std::size_t measured = std::min<std::size_t>(state_.entries.size(), kEntriesMeasured);
    for (std::size_t i = 0; i < measured; ++i) {
        const QString text = ToQt(state_.entries[i].name);
        const int code = metrics.horizontalAdvance(QStringLiteral("0000.00.00"));
        wanted = std::max(wanted, metrics.horizontalAdvance(text) + code + 5 * kMargin + 14);
    }
    const int width = std::min(wanted, kMaximumWidth);
    const int rows = std::min(model_->rowCount(), kShownEntries);
    const int height = rows * (metrics.height() + kRowPadding) + 2 * frameWidth();
    const QRect room = parentWidget()->rect();
    const int left = std::clamp(cell.left(), 0, std::max(0, room.width() - width));
    const bool above = cell.bottom() + 1 + height > room.height() && cell.top() - height >= 0;
    setGeometry(left, above ? cell.top() - height : cell.bottom() + 1, width, height);
}

}  // namespace vicenter::ui
