#include "ui/grid/cell_delegate.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>
#include <algorithm>

#include "ui/grid/cell_editor.h"
#include "ui/grid/grid_view.h"
#include "ui/look/center_style.h"
#include "ui/look/qt_text.h"

namespace vicenter::ui {

namespace {

constexpr int kTextMargin = 4;
constexpr int kButtonWidth = 18;
constexpr int kFaultMark = 7;
constexpr QColor kFaultyPaper{0xfd, 0xec, 0xea};

void DrawButton(QPainter& painter, const QRect& rect, bool dropDown) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(colors::kCellButtonLine);
    painter.setBrush(colors::kCellButton);
    painter.drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colors::kInk);
    const QPointF middle = QRectF(rect).center();
    if (dropDown) {
        QPainterPath arrow;
        arrow.moveTo(middle + QPointF(-3.5, -1.5));
        arrow.lineTo(middle + QPointF(3.5, -1.5));
        arrow.lineTo(middle + QPointF(0, 2.5));
        arrow.closeSubpath();
        painter.drawPath(arrow);
    } else {
        for (const double x : {-4.0, 0.0, 4.0})
            painter.drawEllipse(middle + QPointF(x, 0.5), 1.1, 1.1);
    }
    painter.restore();
}

// In the upper right corner, as spreadsheets mark a note: red letters alone are not seen by everybody.
void DrawFaultMark(QPainter& painter, const QRect& cell) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colors::kFaulty);
    const QPoint corner(cell.right() + 1, cell.top());
    painter.drawPolygon(QPolygon({corner - QPoint(kFaultMark, 0), corner, corner + QPoint(0, kFaultMark)}));
    painter.restore();
}

}  // namespace

CellDelegate::CellDelegate(GridView& view) : QStyledItemDelegate(&view), view_(view) {}

bool CellDelegate::HasButton(int gridColumn) {
    return gridColumn == center::column::kDirection || store::LookUpOf(gridColumn) != store::LookUp::None;
}

QRect CellDelegate::ButtonRect(const QRect& cell) {
    const int width = std::min(kButtonWidth, cell.width() / 2);
    return QRect(cell.right() - width - 1, cell.top() + 2, width, cell.height() - 4);
}

QRect CellDelegate::TextRect(const QRect& cell, const QModelIndex& index) const {
    QRect inner = cell.adjusted(kTextMargin, 0, -kTextMargin, 0);
    const bool active = index == view_.currentIndex();
    if (active && view_.IsInteractive() && HasButton(view_.Model().AddressOf(index).column)) {
        inner.setRight(ButtonRect(cell).left() - 2);
    }
    return inner;
}

bool CellDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                             const QModelIndex& index) {
    if (event->type() == QEvent::ToolTip && index.isValid() && !index.data(Qt::ToolTipRole).isValid()) {
        const QString text = index.data().toString();
        const int room = TextRect(option.rect, index).width();
        if (view_.fontMetrics().horizontalAdvance(text) > room) {
            QToolTip::showText(event->globalPos(), QStringLiteral("<p>%1</p>").arg(text.toHtmlEscaped()),
                               view->viewport(), option.rect);
            return true;
        }
    }
    return QStyledItemDelegate::helpEvent(event, view, option, index);
}

void CellDelegate::DrawText(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index,
                            const QString& text, const QColor& ink) const {
    const QRect inner = TextRect(option.rect, index);
    const bool right = center::Column(view_.Model().AddressOf(index).column).rightAligned;
    painter.setFont(option.font);
    painter.setPen(ink);
    painter.drawText(inner, Qt::AlignVCenter | Qt::TextSingleLine | (right ? Qt::AlignRight : Qt::AlignLeft),
                     option.fontMetrics.elidedText(text, Qt::ElideRight, inner.width()));
}

void CellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    // Straight from the grid: a screen of cells is painted on every scrolled line.
    const center::EntryGrid& grid = view_.Model().Grid();
    const center::CellAddress cell = view_.Model().AddressOf(index);
    const center::CellLook look = grid.Look(cell.row, cell.column);
    const bool active = index == view_.currentIndex();
    const bool selected = option.state & QStyle::State_Selected;

    QColor background = index.row() % 2 == 0 ? colors::kPaper : colors::kPaperAlternate;
    if (look.backColor != center::color::kWhite) background = FromGridColor(look.backColor);
    const bool faulty = look.foreColor == center::color::kRed;
    if (faulty && look.backColor == center::color::kWhite) background = kFaultyPaper;
    if (selected && !active) background = colors::kSelection;
    painter->fillRect(option.rect, background);

    if (faulty) DrawFaultMark(*painter, option.rect);

    const std::string_view plain = grid.Text(cell.row, cell.column);
    const bool button = active && view_.IsInteractive() && HasButton(cell.column);
    if (!plain.empty()) {
        const QColor ink =
            look.foreColor == center::color::kBlack ? colors::kInk : FromGridColor(look.foreColor);
        DrawText(*painter, option, index, ToQt(center::DisplayText(cell.column, plain)), ink);
    } else if (const QString proposed = view_.Model().ProposedText(cell); !proposed.isEmpty()) {
        DrawText(*painter, option, index, proposed, colors::kFaintInk);
    }
    if (button) DrawButton(*painter, ButtonRect(option.rect), cell.column == center::column::kDirection);
    if (active) {
        const bool focused = view_.HasFocusWithin();
        painter->setPen(QPen(focused ? colors::kAccent : colors::kFaintInk, focused ? 2 : 1));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(focused ? option.rect.adjusted(1, 1, -1, -1) : option.rect.adjusted(0, 0, -1, -1));
    }
}

QSize CellDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const QString text = index.data().toString();
    return {option.fontMetrics.horizontalAdvance(text) + 2 * kTextMargin + 2, option.fontMetrics.height()};
}

QWidget* CellDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                                    const QModelIndex& index) const {
    const int column = view_.Model().AddressOf(index).column;
    if (center::Column(column).kind == center::CellKind::Direction) {
        auto* editor = new DirectionEditor(parent);
        connect(editor, &QComboBox::activated, this, [this, editor] { view_.FinishEditing(editor); });
        return editor;
    }
    auto* editor = new CellEditor(column, parent);
    editor->SetOpenedByTyping(view_.IsOpeningByTyping());
    connect(editor, &CellEditor::textRejected, &view_, &GridView::textRefused);
    connect(editor, &QLineEdit::textEdited, &view_, &GridView::EditorTextEdited);
    return editor;
}

void CellDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
    const QString text = index.data(Qt::EditRole).toString();
    if (auto* list = qobject_cast<DirectionEditor*>(editor)) {
        list->setCurrentIndex(std::max(0, list->findText(text)));
    } else if (auto* field = qobject_cast<CellEditor*>(editor); field && field->text() != text) {
        field->setText(text);
    }
}

void CellDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const {
    if (const auto* list = qobject_cast<DirectionEditor*>(editor)) {
        const QString before = index.data(Qt::EditRole).toString();
        // A text from elsewhere that is none of the choices stays as it is until a choice is made.
        if (list->currentIndex() == 0 && list->findText(before) < 0) return;
        model->setData(index, list->currentText());
    } else if (const auto* field = qobject_cast<CellEditor*>(editor)) {
        model->setData(index, field->text());
    }
}

void CellDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                        const QModelIndex& /*index*/) const {
    QRect rect = option.rect.adjusted(1, 1, -1, -1);
    if (qobject_cast<DirectionEditor*>(editor)) rect = option.rect;
    editor->setGeometry(rect);
}

bool CellDelegate::eventFilter(QObject* watched, QEvent* event) {
    auto* editor = qobject_cast<QWidget*>(watched);
    if (editor && event->type() == QEvent::KeyPress &&
        view_.EditorKeyPressed(*editor, static_cast<QKeyEvent&>(*event))) {
        return true;
    }
    return QStyledItemDelegate::eventFilter(watched, event);
}

}  // namespace vicenter::ui
