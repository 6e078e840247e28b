#include "ui/grid/grid_header.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>
#include <algorithm>
#include <cstdlib>

#include "ui/look/theme.h"

namespace vicenter::ui {

namespace {

constexpr int kMinimumNumberWidth = 36;
constexpr int kTextMargin = 4;

}  // namespace

GridHeader::GridHeader(Qt::Orientation orientation, QWidget* parent) : QHeaderView(orientation, parent) {
    setSectionsClickable(true);
    setHighlightSections(false);
    setDefaultAlignment(Qt::AlignCenter);
    setMinimumSectionSize(8);
    setTextElideMode(Qt::ElideRight);
    setFirstSectionMovable(true);
}

void GridHeader::SetActiveSection(int section) {
    if (section == activeSection_) return;
    const int previous = std::exchange(activeSection_, section);
    for (const int changed : {previous, section}) {
        if (changed >= 0 && changed < count()) updateSection(changed);
    }
}

void GridHeader::paintSection(QPainter* painter, const QRect& rect, int logicalIndex) const {
    if (!rect.isValid() || !model()) return;
    const bool active = logicalIndex == activeSection_;
    painter->save();
    painter->fillRect(rect, active ? colors::kHeaderActive : colors::kHeader);
    painter->setPen(colors::kLine);
    painter->drawLine(rect.bottomLeft(), rect.bottomRight());
    painter->drawLine(rect.topRight(), rect.bottomRight());
    if (active) {
        const QRect edge = orientation() == Qt::Horizontal
                               ? QRect(rect.left(), rect.bottom() - 1, rect.width(), 2)
                               : QRect(rect.right() - 1, rect.top(), 2, rect.height());
        painter->fillRect(edge, colors::kAccent);
    }
    const QString text = model()->headerData(logicalIndex, orientation(), Qt::DisplayRole).toString();
    const QRect inner = rect.adjusted(kTextMargin, 0, -kTextMargin, 0);
    painter->setPen(orientation() == Qt::Horizontal || active ? colors::kInk : colors::kFaintInk);
    painter->drawText(inner, Qt::AlignCenter, fontMetrics().elidedText(text, Qt::ElideRight, inner.width()));
    painter->restore();
}

bool GridHeader::viewportEvent(QEvent* event) {
    if (event->type() == QEvent::ToolTip && orientation() == Qt::Horizontal && model()) {
        const auto& help = static_cast<const QHelpEvent&>(*event);
        ShowToolTip(logicalIndexAt(help.pos()), help.globalPos());
        return true;
    }
    return QHeaderView::viewportEvent(event);
}

void GridHeader::ShowToolTip(int section, const QPoint& globalAt) {
    const QString text = model()->headerData(section, Qt::Horizontal, Qt::DisplayRole).toString();
    const bool cut =
        section >= 0 && fontMetrics().horizontalAdvance(text) > sectionSize(section) - 2 * kTextMargin;
    QToolTip::showText(globalAt, cut ? text : QString(), viewport());
}

// As the header itself finds the edge that a press takes hold of.
int GridHeader::EdgeAt(int position) const {
    int visual = visualIndexAt(position);
    if (visual < 0) return -1;
    const int section = logicalIndex(visual);
    const int left = sectionViewportPosition(section);
    const int grip = style()->pixelMetric(QStyle::PM_HeaderGripMargin, nullptr, this);
    if (position > left + sectionSize(section) - grip) return section;
    if (position >= left + grip) return -1;
    while (--visual >= 0) {
        if (!isSectionHidden(logicalIndex(visual))) return logicalIndex(visual);
    }
    return -1;
}

void GridHeader::mousePressEvent(QMouseEvent* event) {
    pressed_ = true;
    held_.reset();
    const bool plain = event->button() == Qt::LeftButton && event->modifiers() == Qt::NoModifier;
    if (plain && pullable_ && pullable_(logicalIndexAt(event->pos()))) {
        held_ = event->pos();
        event->accept();
        return;
    }
    const int section = logicalIndexAt(event->position().toPoint());
    // The menu that follows is of what is selected: of this one, unless it is among others.
    if (event->button() == Qt::RightButton) {
        event->accept();
        pressed_ = section >= 0 && !IsSelected(section);
        if (pressed_) emit sectionPressed(section);
        pressed_ = false;
        return;
    }
    // A column that is selected is dragged to another place; any other press selects.
    const bool selected = orientation() == Qt::Horizontal && section >= 0 && IsSelected(section);
    setSectionsMovable(selected && event->button() == Qt::LeftButton && event->modifiers() == Qt::NoModifier);
    QHeaderView::mousePressEvent(event);
}

void GridHeader::mouseMoveEvent(QMouseEvent* event) {
    if (held_) {
        const QPoint way = event->pos() - *held_;
        if (std::abs(way.x()) >= QApplication::startDragDistance()) {
            held_.reset();
            pressed_ = false;
            emit pulledOut();
            return;
        }
        if (logicalIndexAt(event->pos()) == logicalIndexAt(*held_)) return;
        PressAfterAll();
    }
    QHeaderView::mouseMoveEvent(event);
}

void GridHeader::mouseReleaseEvent(QMouseEvent* event) {
    if (held_) PressAfterAll();
    QHeaderView::mouseReleaseEvent(event);
    pressed_ = false;
    emit released();
}

void GridHeader::contextMenuEvent(QContextMenuEvent* event) {
    emit menuRequested(event->globalPos());
}

bool GridHeader::IsSelected(int section) const {
    if (selectionModel() == nullptr) return false;
    return orientation() == Qt::Horizontal ? selectionModel()->isColumnSelected(section, {})
                                           : selectionModel()->isRowSelected(section, {});
}

void GridHeader::PressAfterAll() {
    const QPoint at = *std::exchange(held_, std::nullopt);
    QMouseEvent press(QEvent::MouseButtonPress, at, viewport()->mapToGlobal(at), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QHeaderView::mousePressEvent(&press);
}

QSize GridHeader::sizeHint() const {
    QSize hint = QHeaderView::sizeHint();
    if (orientation() == Qt::Vertical) {
        const QString widest(QString::number(std::max(count(), 1)).size(), u'8');
        hint.setWidth(
            std::max(kMinimumNumberWidth, fontMetrics().horizontalAdvance(widest) + 3 * kTextMargin));
    }
    return hint;
}

}  // namespace vicenter::ui
