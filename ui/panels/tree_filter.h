#pragma once

// The box over the template tree in which a part of a name is typed: the tree then shows the templates that
// fit. Enter opens the first of them, Esc ends it, in the tree as well. There from ten templates on; what
// fits is TreeActions' to say. User-interface thread only.

#include <QLineEdit>

#include "center/tree/tree_actions.h"
#include "ui/panels/template_tree.h"

namespace vicenter::ui {

class TreeFilter : public QLineEdit {
    Q_OBJECT

  public:
    TreeFilter(center::TreeActions& actions, TemplateTree& tree, QWidget* parent);

    // Nodes came, went or were named otherwise, or another one is lit.
    void NodesChanged();
    // False when there is no box to take it.
    bool TakeKeyboard();

  signals:
    void offeredChanged();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void Apply();
    void OpenFirst();

    center::TreeActions& actions_;
    TemplateTree& tree_;
};

}  // namespace vicenter::ui
