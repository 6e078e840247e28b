#pragma once

// The entry grid as an item model.
//
// It keeps nothing of its own: every answer comes from the EntryGrid, so 100,000 rows cost what the grid
// costs. Model columns count from 0, the grid's from 1. Shares the grid; the actions must outlive the model.
// User-interface thread only.

#include <QAbstractTableModel>
#include <QColor>
#include <memory>
#include <string>

#include "center/editing/grid_actions.h"
#include "center/grid/entry_grid.h"
#include "center/grid/number_bands.h"

namespace vicenter::ui {

// A colour of the grid (0x00BBGGRR) as Qt's.
QColor FromGridColor(std::int32_t value);

class GridModel : public QAbstractTableModel, private center::GridObserver {
    Q_OBJECT

  public:
    GridModel(std::shared_ptr<center::EntryGrid> grid, center::GridActions& actions,
              QObject* parent = nullptr);
    ~GridModel() override;

    center::EntryGrid& Grid() const { return *grid_; }
    const center::NumberBands& Bands() const { return bands_; }
    center::CellAddress AddressOf(const QModelIndex& index) const {
        return {index.row() + 1, index.column() + 1};
    }
    // It should be looked at.
    bool IsHint(const center::CellAddress& cell) const { return actions_.IsHint(cell); }
    // What is proposed for an empty cell; no text of the grid's.
    QString ProposedText(const center::CellAddress& cell) const;
    // An invalid index for an address outside the grid.
    QModelIndex IndexOf(const center::CellAddress& cell) const;
    // True from before rows come or go until after it: cursor moves meanwhile are not the user's.
    bool IsChangingRows() const { return changingRows_; }
    bool IsInteractive() const { return interactive_; }
    void SetInteractive(bool interactive) { interactive_ = interactive; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

  signals:
    void columnLayoutChanged(int firstColumn, int lastColumn);  // grid columns, from 1
    void columnOrderChanged();
    void rowHeightsChanged();
    void gridFontChanged();
    void activeCellChanged();
    void scrolledIntoView(int row, int column);  // grid row and column, from 1
    void textRefused(const QString& reason);

  private:
    void TextsChanged(const center::CellRange& range) override;
    void LooksChanged(const center::CellRange& range) override;
    void RowsAboutToBeInserted(int firstRow, int count) override;
    void RowsInserted(int firstRow, int count) override;
    void RowsAboutToBeRemoved(int firstRow, int count) override;
    void RowsRemoved(int firstRow, int count) override;
    void AboutToReset() override;
    void WasReset() override;
    void ColumnsChanged(int firstColumn, int lastColumn) override;
    void ColumnsMoved() override;
    void RowHeightsChanged() override;
    void FontChanged() override;
    void ActiveCellChanged(const center::CellAddress& cell) override;
    void ScrolledIntoView(const center::CellAddress& cell) override;

    QVariant ToolTipOfSound(const center::CellAddress& cell) const;
    QVariant ProposalToolTip(const center::CellAddress& cell) const;
    QString SpokenText(const center::CellAddress& cell) const;
    QString SpokenState(const center::CellAddress& cell) const;
    void EmitChanged(const center::CellRange& range, const QList<int>& roles);

    std::shared_ptr<center::EntryGrid> grid_;
    center::NumberBands bands_;
    center::GridActions& actions_;
    bool changingRows_ = false;
    bool interactive_ = true;
};

}  // namespace vicenter::ui
