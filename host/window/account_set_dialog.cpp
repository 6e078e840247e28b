#include "host/window/account_set_dialog.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "platform/system/file_dialog_flags.h"
#include "platform/system/surroundings.h"
#include "ui/look/dialog_frame.h"
#include "ui/look/one_line.h"
#include "ui/look/qt_text.h"
#include "ui/run/slot_guard.h"

namespace vicenter::host {

using ui::FromQt;
using ui::Guarded;
using ui::ToQt;

namespace {

constexpr int kFileRole = Qt::UserRole;

QLabel* Caption(const QString& text, QWidget* buddy, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setBuddy(buddy);
    return label;
}

}  // namespace

AccountSetDialog::AccountSetDialog(AccountSetChoice& choice, QWidget* parent)
    : QDialog(parent),
      choice_(choice),
      files_(new QListWidget(this)),
      users_(new QListWidget(this)),
      note_(new QLabel(this)),
      open_(new QPushButton(QStringLiteral("打开"), this)) {
    setObjectName(QStringLiteral("frmAccountSet"));
    setWindowTitle(QStringLiteral("打开其他账套"));
    files_->setObjectName(QStringLiteral("lstFiles"));
    files_->setAccessibleName(QStringLiteral("账套"));
    users_->setObjectName(QStringLiteral("lstUsers"));
    users_->setAccessibleName(QStringLiteral("用户"));
    note_->setObjectName(QStringLiteral("lblNote"));
    note_->setTextFormat(Qt::PlainText);
    note_->setWordWrap(true);
    auto* browse = new QPushButton(QStringLiteral("浏览(&B)…"), this);
    browse->setObjectName(QStringLiteral("cmdBrowse"));
    browse->setAutoDefault(false);
    auto* cancel = new QPushButton(QStringLiteral("取消"), this);
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    cancel->setAutoDefault(false);
    open_->setObjectName(QStringLiteral("cmdOK"));
    open_->setDefault(true);

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(browse);
    buttons->addStretch();
    buttons->addWidget(open_);
    buttons->addWidget(cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(Caption(QStringLiteral("最近打开的账套(&A)："), files_, this));
    layout->addWidget(files_, 2);
    layout->addWidget(Caption(QStringLiteral("用户(&U)："), users_, this));
    layout->addWidget(users_, 1);
    layout->addWidget(note_);
    layout->addLayout(buttons);
    ui::FrameDialog(*this, QSize(560, 420));

    for (const std::string& file : choice_.Recent())
        AddFile(file);
    connect(files_, &QListWidget::currentRowChanged, this, &AccountSetDialog::FileChosen);
    connect(users_, &QListWidget::currentRowChanged, this, [this](int row) { open_->setEnabled(row >= 0); });
    connect(users_, &QListWidget::itemActivated, this, &AccountSetDialog::Take);
    connect(browse, &QPushButton::clicked, this, &AccountSetDialog::Browse);
    connect(open_, &QPushButton::clicked, this, &AccountSetDialog::Take);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    files_->setCurrentRow(files_->count() > 0 ? 0 : -1);
    ShowUsers();
    files_->setFocus();
}

void AccountSetDialog::AddFile(const std::string& file) {
    auto* item = new QListWidgetItem(ui::ToSentence(file), files_);
    item->setData(kFileRole, ToQt(file));
    item->setToolTip(ui::ToolTipText(ToQt(file)));
}

void AccountSetDialog::Browse() {
    Guarded([this] {
        system::FileRequest request;
        request.title = "选择账套文件";
        request.flags = system::file_dialog::kExplorerStyle | system::file_dialog::kFileMustExist;
        request.filters = {{"账套 (*.vas)", "*.vas"}};
        const auto chosen = system::Surroundings::Current().fileDialogs->ChooseFileToOpen(request);
        if (!chosen || chosen->empty()) return;
        AddFile(*chosen);
        files_->setCurrentRow(files_->count() - 1);
        users_->setFocus();
    });
}

void AccountSetDialog::FileChosen() {
    const QListWidgetItem* item = files_->currentItem();
    if (item) Guarded([&] { choice_.Choose(FromQt(item->data(kFileRole).toString())); });
    ShowUsers();
}

void AccountSetDialog::ShowUsers() {
    users_->clear();
    for (const LedgerUser& user : choice_.Users()) {
        QString text = QStringLiteral("%1　%2").arg(user.id).arg(ui::ToSentence(user.name));
        if (!user.duty.empty()) text += QStringLiteral("（%1）").arg(ui::ToSentence(user.duty));
        users_->addItem(text);
    }
    users_->setCurrentRow(users_->count() > 0 ? 0 : -1);
    open_->setEnabled(users_->currentRow() >= 0);
    note_->setText(ToQt(choice_.Note()));
    note_->setVisible(!choice_.Note().empty());
}

void AccountSetDialog::Take() {
    if (users_->currentRow() < 0) return;
    const bool opened =
        ui::GuardedOr(false, [this] { return choice_.Open(static_cast<std::size_t>(users_->currentRow())); });
    if (opened) return accept();
    note_->setText(ToQt(choice_.Note()));
    note_->setVisible(true);
}

void ChooseAccountSet() {
    AccountSetChoice choice(system::Surroundings::Current().folders->UserData());
    AccountSetDialog(choice, QApplication::activeWindow()).exec();
}

}  // namespace vicenter::host
