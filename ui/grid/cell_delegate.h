#pragma once

// Paints the cells of the entry grid and makes their editors. Owned by the grid view. User-interface thread
// only.

#include <QStyledItemDelegate>

#include "center/grid/entry_grid.h"

namespace vicenter::ui {

class GridView;

class CellDelegate : public QStyledItemDelegate {
    Q_OBJECT

  public:
    explicit CellDelegate(GridView& view);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    // What is wrong with a cell, else its text when the column is too narrow for it.
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

    // The button at the right end of the active cell: look-ups, the items panel, the direction list.
    static bool HasButton(int gridColumn);
    static QRect ButtonRect(const QRect& cell);

    // How far the account names of credit lines stand in.
    static int CreditIndent(const QFontMetrics& metrics);

  private:
    // The room for a cell's text.
    QRect TextRect(const QRect& cell, const QModelIndex& index) const;
    QColor Paper(const center::CellAddress& cell, const center::CellLook& look) const;
    QColor Ink(const center::CellAddress& cell, const center::CellLook& look) const;
    bool IsIndented(const center::CellAddress& cell) const;
    QString TotalsText(const QModelIndex& index) const;
    QRect DrawTotals(QPainter& painter, const QRect& room, const QModelIndex& index) const;
    void DrawCellText(QPainter& painter, const QRect& room, const center::CellAddress& cell) const;
    void DrawCursor(QPainter& painter, const QRect& cell) const;

    GridView& view_;
};

}  // namespace vicenter::ui
