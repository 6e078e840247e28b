#include "ui/grid/cell_delegate.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolTip>
#include <algorithm>

#include "ui/grid/cell_editor.h"
#include "ui/grid/figures.h"
#include "ui/grid/grid_view.h"
#include "ui/look/qt_text.h"
#include "ui/look/theme.h"
#include "ui/run/long_work.h"

namespace vicenter::ui {

namespace {

constexpr int kTextMargin = 4;
constexpr int kButtonWidth = 18;
constexpr int kFaultMark = 7;
constexpr int kTotalsGap = 12;
constexpr int kRuleWidth = 1;

void DrawButton(QPainter& painter, const QRect& rect, bool dropDown) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(colors::kCellButtonLine);
    painter.setBrush(colors::kCellButton());
    painter.drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colors::kInk());
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
void DrawCornerMark(QPainter& painter, const QRect& cell, const QColor& color) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
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
        const center::CellAddress cell = view_.Model().AddressOf(index);
        QString text = index.data().toString();
        int room = TextRect(option.rect, index).width();
        if (IsIndented(cell)) room -= CreditIndent(view_.fontMetrics());
        if (const QString totals = TotalsText(index); !totals.isEmpty()) {
            room -= FiguresWidth(view_.fontMetrics(), totals) + kTotalsGap;
            text += (text.isEmpty() ? QString() : QStringLiteral("　")) + totals;
        }
        if (view_.fontMetrics().horizontalAdvance(index.data().toString()) > room) {
            QToolTip::showText(event->globalPos(), QStringLiteral("<p>%1</p>").arg(text.toHtmlEscaped()),
                               view->viewport(), option.rect);
            return true;
        }
    }
    return QStyledItemDelegate::helpEvent(event, view, option, index);
}

QColor CellDelegate::Paper(const center::CellAddress& cell, const center::CellLook& look) const {
    if (look.backColor != center::color::kWhite) return FromGridColor(look.backColor);
    if (look.foreColor == center::color::kRed) return colors::kFaultyPaper;
    return view_.Model().Bands().IsShaded(cell.row) ? colors::kPaperAlternate : colors::kPaper;
}

// A number that stands in the row above already steps back: the eye finds where the next one begins.
QColor CellDelegate::Ink(const center::CellAddress& cell, const center::CellLook& look) const {
    // What others coloured is light paper whatever the theme.
    const bool themed = look.backColor == center::color::kWhite;
    if (look.foreColor == center::color::kRed) return themed ? colors::kFaulty() : colors::kFaulty.OnLight();
    if (look.foreColor != center::color::kBlack) return FromGridColor(look.foreColor);
    const bool repeats = cell.column == center::column::kNo && view_.Model().Bands().Repeats(cell.row);
    const ThemeColor& ink = repeats ? colors::kFaintInk : colors::kInk;
    return themed ? ink() : ink.OnLight();
}

void CellDelegate::DrawCellText(QPainter& painter, const QRect& room, const center::CellAddress& cell) const {
    const std::string_view plain = view_.Model().Grid().Text(cell.row, cell.column);
    const QString text =
        plain.empty() ? view_.Model().ProposedText(cell) : ToQt(center::DisplayText(cell.column, plain));
    if (text.isEmpty()) return;
    const center::CellLook look = view_.Model().Grid().Look(cell.row, cell.column);
    painter.setPen(plain.empty() ? colors::kFaintInk() : Ink(cell, look));
    // A number that is repeated is grey as well: what is only proposed leans.
    QFont font = painter.font();
    font.setItalic(plain.empty());
    painter.setFont(font);
    QRect inner = room;
    // As in a voucher: what is credited stands one step in.
    if (IsIndented(cell)) inner.setLeft(inner.left() + CreditIndent(painter.fontMetrics()));
    const Qt::Alignment side = center::Column(cell.column).rightAligned ? Qt::AlignRight : Qt::AlignLeft;
    const bool figures = center::Column(cell.column).rightAligned || cell.column == center::column::kNo;
    if (figures && FiguresWidth(painter.fontMetrics(), text) <= inner.width()) {
        DrawFigures(painter, inner, side, text);
        return;
    }
    painter.drawText(inner, static_cast<int>(Qt::AlignVCenter | side) | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(text, Qt::ElideRight, inner.width()));
}

bool CellDelegate::IsIndented(const center::CellAddress& cell) const {
    return cell.column == center::column::kAccountName &&
           view_.Model().Grid().Text(cell.row, center::column::kDirection) == center::kCredit;
}

int CellDelegate::CreditIndent(const QFontMetrics& metrics) {
    return metrics.height() * 4 / 3;
}

QString CellDelegate::TotalsText(const QModelIndex& index) const {
    if (index.column() != view_.LastShownColumn()) return {};
    const std::optional<center::NumberTotals> totals = view_.TotalsEndingAt(index.row() + 1);
    if (!totals) return {};
    QString text = QStringLiteral("借 %1　贷 %2").arg(ToQt(totals->debit), ToQt(totals->credit));
    if (!totals->difference.empty()) text += QStringLiteral("　差额 %1").arg(ToQt(totals->difference));
    return text;
}

// At the right end of the row, where the cell's own text makes room. What was left of the room comes back.
QRect CellDelegate::DrawTotals(QPainter& painter, const QRect& room, const QModelIndex& index) const {
    const QString text = TotalsText(index);
    if (text.isEmpty()) return room;
    const bool balanced = !text.contains(QStringLiteral("差额"));
    const int width = std::min(FiguresWidth(painter.fontMetrics(), text), room.width());
    const QRect place(room.right() + 1 - width, room.top(), width, room.height());
    painter.setPen(balanced ? colors::kFaintInk : colors::kCaution);
    if (width < room.width()) {
        DrawFigures(painter, place, Qt::AlignRight, text);
    } else {
        painter.drawText(place, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                         painter.fontMetrics().elidedText(text, Qt::ElideRight, width));
    }
    return room.adjusted(0, 0, -std::min(width + kTotalsGap, room.width()), 0);
}

void CellDelegate::DrawCursor(QPainter& painter, const QRect& cell) const {
    const bool focused = view_.HasFocusWithin();
    painter.setPen(QPen((focused ? colors::kAccent : colors::kFaintInk)(), focused ? 2 : 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(focused ? cell.adjusted(1, 1, -1, -1) : cell.adjusted(0, 0, -1, -1));
}

void CellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
    // Straight from the grid: a screen of cells is painted on every scrolled line.
    const center::CellAddress cell = view_.Model().AddressOf(index);
    const center::CellLook look = view_.Model().Grid().Look(cell.row, cell.column);
    const bool active = index == view_.currentIndex();
    const bool selected = option.state & QStyle::State_Selected;
    const bool button = active && view_.IsInteractive() && HasButton(cell.column);

    painter->fillRect(option.rect, selected && !active ? colors::kSelection : Paper(cell, look));
    if (view_.Model().Bands().IsFirst(cell.row)) {
        painter->fillRect(QRect(option.rect.topLeft(), QSize(option.rect.width(), kRuleWidth)),
                          colors::kNumberRule);
    }
    if (look.foreColor == center::color::kRed) {
        DrawCornerMark(*painter, option.rect, colors::kFaulty);
    } else if (view_.Model().IsHint(cell)) {
        DrawCornerMark(*painter, option.rect, colors::kCaution);
    }
    painter->setFont(option.font);
    const QRect room = DrawTotals(*painter, TextRect(option.rect, index), index);
    DrawCellText(*painter, room, cell);
    if (button) DrawButton(*painter, ButtonRect(option.rect), cell.column == center::column::kDirection);
    if (active) DrawCursor(*painter, option.rect);
}

QSize CellDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const QString text = index.data().toString();
    int width = option.fontMetrics.horizontalAdvance(text) + 2 * kTextMargin + 2;
    if (IsIndented(view_.Model().AddressOf(index))) width += CreditIndent(option.fontMetrics);
    return {width, option.fontMetrics.height()};
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
    // The box over a command that typing itself has begun comes and goes: the editor is still at work there.
    if (event->type() == QEvent::FocusOut &&
        qobject_cast<LongWorkBox*>(QApplication::activeModalWidget()) != nullptr)
        return false;
    return QStyledItemDelegate::eventFilter(watched, event);
}

}  // namespace vicenter::ui
