#pragma once

// The command bar "BandToolBar": thirteen tools by key, icon above caption. User-interface thread only.

#include <QAction>
#include <QToolBar>
#include <array>

#include "center/vicenter_view.h"

namespace vicenter::ui {

class ToolBand : public QToolBar {
    Q_OBJECT

  public:
    explicit ToolBand(QWidget* parent = nullptr);

    QAction& ActionOf(center::Tool tool) const { return *actions_[static_cast<std::size_t>(tool)]; }
    // Also lays the bar out anew.
    void SetStates(const center::ToolStates& states);

  signals:
    void toolClicked(const QString& key);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    std::array<QAction*, center::kToolCount> actions_{};
};

}  // namespace vicenter::ui
