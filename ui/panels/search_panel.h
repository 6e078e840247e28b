#pragma once

// The search over all templates, below the window: what to look for above, the lines that fit below. A line
// that is chosen is opened in its template; the panel stays. Hidden until it is asked for. User-interface
// thread only.

#include <QDockWidget>
#include <QLabel>
#include <QLineEdit>
#include <QTableWidget>

#include "center/search/search_actions.h"

namespace vicenter::ui {

class SearchPanel : public QDockWidget {
    Q_OBJECT

  public:
    SearchPanel(center::SearchActions& actions, QWidget* parent);

    // Shows the panel and gives it the keyboard.
    void TakeKeyboard();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QLayout* Fields();
    QLineEdit* AddField(QLayout& row, const QString& label, const char* name, const QString& hint);
    void Find();
    void ShowHits();
    void Open(int row);

    center::SearchActions& actions_;
    QTableWidget* hits_;
    QLabel* note_;
    QLineEdit* text_ = nullptr;
    QLineEdit* account_ = nullptr;
    QLineEdit* item_ = nullptr;
    QLineEdit* amount_ = nullptr;
};

}  // namespace vicenter::ui
