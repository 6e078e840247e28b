#pragma once

// The list of choices below the cell that is being typed in. It never takes the keyboard: keys stay with the
// cell's editor, which sends the list's share here through the presenter. Child of the window, not a window
// of its own. User-interface thread only.

#include <QFrame>
#include <QListView>

#include "center/frame/vicenter_view.h"

namespace vicenter::ui {

class NameListModel;

class NameListPopup : public QFrame {
    Q_OBJECT

  public:
    explicit NameListPopup(QWidget* parent);

    void SetState(const center::NameListState& state);
    const center::NameListState& State() const { return state_; }
    // Below the cell, above it where there is no room; the rectangle is in the parent's coordinates.
    void PlaceAt(const QRect& cell);

  signals:
    void chosen(int index);

  private:
    NameListModel* model_;
    QListView* list_;
    center::NameListState state_;
};

}  // namespace vicenter::ui
