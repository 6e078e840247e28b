#pragma once

// The item panel of column 11: the text box `txtItem` and the button `cmdItem` over the active cell, and
// below it `picItem` with one labelled row per item class of the row's account (`lblItem1`.. the class names,
// `lblID1`.. the hidden class ids). Four rows fit, more scroll. Children of the window. User-interface thread
// only.

#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QScrollArea>
#include <QToolButton>

#include "center/frame/vicenter_view.h"

namespace vicenter::ui {

class ItemPanel : public QObject {
    Q_OBJECT

  public:
    // The widgets become children of `parent`, hidden at first.
    explicit ItemPanel(QWidget* parent);

    void SetState(const center::ItemPanelState& state);
    // What the numbers of the rows stand for.
    void SetNames(const std::vector<std::string>& names);
    const center::ItemPanelState& State() const { return state_; }
    // The active cell in the parent's coordinates; an empty rectangle hides everything.
    void PlaceAt(const QRect& cell);
    // While the cell itself is being edited its editor has the place.
    void SetCellEditing(bool editing);
    void SetInteractive(bool interactive);
    void SetFont(const QFont& font);
    // Hands over what has been typed and not been left yet: a command does not wait for the focus to move.
    void CommitTyping();
    bool HasFocusWithin() const;
    bool Contains(const QWidget* widget) const;

  signals:
    void toggled();
    void textCommitted(const QString& text);
    void numberCommitted(int row, const QString& number);
    void lookUpRequested(int row);
    void leaveRequested();  // Escape: the keyboard goes back to the grid

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    struct Row {
        QLabel* name;
        QLabel* id;
        QLineEdit* number;
        QToolButton* lookUp;
        QLabel* known;  // the name behind the number
    };

    void Commit(QLineEdit& field);
    void BuildRows(std::size_t count);
    void ShowFaults();
    void GiveUp(QLineEdit& field);
    void Refresh();

    QWidget* parent_;
    QLineEdit* text_;
    QToolButton* button_;
    QFrame* picture_;
    QScrollArea* scroll_;
    QWidget* content_ = nullptr;
    QLabel* empty_ = nullptr;
    std::vector<Row> rows_;
    center::ItemPanelState state_;
    QRect cell_;
    bool cellEditing_ = false;
    bool interactive_ = true;
};

}  // namespace vicenter::ui
