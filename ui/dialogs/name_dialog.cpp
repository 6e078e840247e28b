#include "ui/dialogs/name_dialog.h"

#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/look/dialog_frame.h"
#include "ui/look/qt_text.h"
#include "ui/run/single_line.h"

namespace vicenter::ui {

namespace {

constexpr int kBoxWidth = 320;

}  // namespace

std::optional<std::string> AskForName(const std::string& caption, const std::string& proposed,
                                      QWidget* parent) {
    QDialog dialog(parent);
    dialog.setObjectName(QStringLiteral("frmName"));
    dialog.setWindowTitle(ToQt(caption));
    auto* name = new QLineEdit(ToQt(proposed), &dialog);
    name->setObjectName(QStringLiteral("name"));
    name->setMinimumWidth(kBoxWidth);
    name->selectAll();
    new SingleLine(*name);
    auto* label = new QLabel(QStringLiteral("模板名称(&N)："), &dialog);
    label->setBuddy(name);
    auto* ok = new QPushButton(QStringLiteral("确定(&O)"), &dialog);
    ok->setObjectName(QStringLiteral("cmdOK"));
    ok->setDefault(true);
    auto* cancel = new QPushButton(QStringLiteral("取消(&C)"), &dialog);
    cancel->setObjectName(QStringLiteral("cmdClose"));
    cancel->setAutoDefault(false);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    auto* layout = new QVBoxLayout(&dialog);
    layout->setContentsMargins(14, 14, 14, 14);
    layout->setSpacing(8);
    layout->addWidget(label);
    layout->addWidget(name);
    layout->addLayout(buttons);
    FrameDialog(dialog);
    QObject::connect(ok, &QPushButton::clicked, &dialog, &QDialog::accept);
    QObject::connect(cancel, &QPushButton::clicked, &dialog, &QDialog::reject);
    if (dialog.exec() != QDialog::Accepted) return std::nullopt;
    return FromQt(name->text());
}

}  // namespace vicenter::ui
