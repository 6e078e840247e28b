#include "ui/dialogs/column_dialog.h"

#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/look/dialog_frame.h"
#include "ui/look/qt_text.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {

ColumnDialog::ColumnDialog(dialogs::frmSetColume& columns, QWidget* parent)
    : QDialog(parent), columns_(columns), list_(new QListWidget(this)) {
    setObjectName(QStringLiteral("frmSetColume"));
    list_->setObjectName(QStringLiteral("ColList"));
    list_->setAccessibleName(QStringLiteral("显示的列"));
    Guarded([this] { columns_.Load(*this); });
    setWindowTitle(ToQt(columns_.Caption()));

    for (const dialogs::ColumnChoice& choice : columns_.ColList()) {
        auto* item = new QListWidgetItem(ToQt(choice.caption), list_);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
        item->setCheckState(choice.ticked ? Qt::Checked : Qt::Unchecked);
        item->setData(Qt::UserRole, choice.column);
    }
    list_->setCurrentRow(0);
    connect(list_, &QListWidget::itemChanged, this, [this](const QListWidgetItem* item) {
        const auto row = static_cast<std::size_t>(list_->row(item));
        Guarded([&] { columns_.SetTick(row, item->checkState() == Qt::Checked); });
    });

    auto* buttons = new QVBoxLayout;
    buttons->setSpacing(8);
    const QString captions[] = {QStringLiteral("确定(&O)"), QStringLiteral("应用(&A)"),
                                QStringLiteral("取消(&C)")};
    for (int index = 0; index < 3; ++index) {
        if (index == 1 && !columns_.ShowsApply()) continue;  // Cancel moves up to its place
        auto* button = new QPushButton(captions[index], this);
        button->setObjectName(QStringLiteral("Command%1").arg(index));
        button->setDefault(index == 0);
        button->setAutoDefault(index == 0);
        connect(button, &QPushButton::clicked, this, [this, index] { RunCommand(index); });
        buttons->addWidget(button);
    }
    buttons->addStretch();
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(14, 14, 14, 14);
    layout->setSpacing(12);
    layout->addWidget(list_, 1);
    layout->addLayout(buttons);
    FrameDialog(*this, QSize(320, 330));
    list_->setFocus();
}

void ColumnDialog::Unload() {
    accept();
}

void ColumnDialog::RunCommand(int index) {
    Guarded([&] { columns_.Command(index); });
}

}  // namespace vicenter::ui
