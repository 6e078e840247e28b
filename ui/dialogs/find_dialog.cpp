#include "ui/dialogs/find_dialog.h"

#include <QGridLayout>
#include <QPushButton>
#include <QScreen>
#include <QToolButton>

#include "ui/look/dialog_frame.h"
#include "ui/look/qt_text.h"
#include "ui/run/single_line.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {

namespace {

constexpr int kBoxWidth = 240;

}  // namespace

FindDialog::FindDialog(dialogs::FrmSearch& search, std::function<QRect()> foundRow, QWidget* parent)
    : QDialog(parent),
      search_(search),
      foundRow_(std::move(foundRow)),
      txtExp_(new QLineEdit(this)),
      txtAcct_(new QLineEdit(this)),
      txtBZ_(new QLineEdit(this)),
      hits_(new QLabel(this)) {
    setObjectName(QStringLiteral("FrmSearch"));
    setWindowTitle(QStringLiteral("查找"));
    txtExp_->setObjectName(QStringLiteral("txtExp"));
    txtAcct_->setObjectName(QStringLiteral("txtAcct"));
    txtBZ_->setObjectName(QStringLiteral("txtBZ"));
    auto* account = new QToolButton(this);
    account->setObjectName(QStringLiteral("cmdAcct"));
    account->setText(QStringLiteral("…"));
    account->setToolTip(QStringLiteral("选择科目"));
    auto* next = new QPushButton(QStringLiteral("查找下一个(&F)"), this);
    next->setObjectName(QStringLiteral("cmdOK"));
    next->setDefault(true);
    auto* cancel = new QPushButton(QStringLiteral("关闭(&C)"), this);
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    cancel->setAutoDefault(false);

    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(14, 14, 14, 14);
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(8);
    const auto addRow = [&](int row, const QString& text, QLineEdit* box) {
        auto* label = new QLabel(text, this);
        label->setBuddy(box);
        box->setMinimumWidth(kBoxWidth);
        new SingleLine(*box);
        grid->addWidget(label, row, 0);
        grid->addWidget(box, row, 1);
        // How many there are is told once they have been looked for.
        connect(box, &QLineEdit::textChanged, hits_, &QLabel::clear);
    };
    addRow(0, QStringLiteral("摘要(&E)："), txtExp_);
    addRow(1, QStringLiteral("科目(&A)："), txtAcct_);
    addRow(2, QStringLiteral("备注(&B)："), txtBZ_);
    hits_->setObjectName(QStringLiteral("lblHits"));
    grid->addWidget(hits_, 2, 3, Qt::AlignCenter);
    grid->addWidget(account, 1, 2);
    grid->addWidget(next, 0, 3);
    grid->addWidget(cancel, 1, 3);
    grid->setColumnMinimumWidth(3, 110);
    FrameDialog(*this);
    // Down the fields first.
    setTabOrder(txtExp_, txtAcct_);
    setTabOrder(txtAcct_, account);
    setTabOrder(account, txtBZ_);
    setTabOrder(txtBZ_, next);
    setTabOrder(next, cancel);
    layout()->setSizeConstraint(QLayout::SetFixedSize);

    connect(next, &QPushButton::clicked, this, &FindDialog::FindNext);
    connect(account, &QToolButton::clicked, this, [this] { Guarded([this] { search_.cmdAcct_Click(); }); });
    connect(cancel, &QPushButton::clicked, this, [this] { Guarded([this] { search_.cmdCancel_Click(); }); });
    Guarded([this] { search_.Load(*this); });
}

dialogs::SearchFields FindDialog::Fields() const {
    return {FromQt(txtExp_->text()), FromQt(txtAcct_->text()), FromQt(txtBZ_->text())};
}

void FindDialog::SetAccount(const std::string& number) {
    txtAcct_->setText(ToQt(number));
}

void FindDialog::Unload() {
    reject();
}

void FindDialog::FindNext() {
    Guarded([this] { search_.cmdOK_Click(); });
    ShowHits();
    KeepOffFoundRow();
}

void FindDialog::ShowHits() {
    if (!hits_->text().isEmpty()) return;  // as they were counted
    const std::int32_t count = GuardedOr(std::int32_t{0}, [this] { return search_.HitCount(); });
    if (count > 0) hits_->setText(QStringLiteral("共 %1 条").arg(count));
}

void FindDialog::KeepOffFoundRow() {
    if (!foundRow_ || search_.LastRow() <= 0) return;
    const QRect row = foundRow_();
    const QRect own = frameGeometry();
    if (!row.isValid() || !own.intersects(row)) return;
    const QRect desk = screen()->availableGeometry();
    const int below = row.bottom() + row.height();
    const int above = row.top() - row.height() - own.height();
    move(own.left(), below + own.height() <= desk.bottom() || above < desk.top() ? below : above);
}

}  // namespace vicenter::ui
