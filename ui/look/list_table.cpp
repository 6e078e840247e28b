#include "ui/look/list_table.h"

#include <QHeaderView>

namespace vicenter::ui {

void SetUpList(QTableWidget& table) {
    table.setSelectionBehavior(QAbstractItemView::SelectRows);
    table.setEditTriggers(QAbstractItemView::NoEditTriggers);
    table.setTabKeyNavigation(false);
    table.verticalHeader()->hide();
    table.horizontalHeader()->setStretchLastSection(true);
}

}  // namespace vicenter::ui
