#include "ui/dialogs/grid_replace_dialog.h"

#include <QGridLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "center/grid/columns.h"
#include "ui/look/dialog_frame.h"
#include "ui/look/qt_text.h"
#include "ui/run/single_line.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {

namespace {

constexpr int kBoxWidth = 240;

}  // namespace

GridReplaceDialog::GridReplaceDialog(center::GridReplace& replace, QWidget* parent)
    : QDialog(parent),
      replace_(replace),
      column_(new QComboBox(this)),
      text_(new QLineEdit(this)),
      with_(new QLineEdit(this)),
      whole_(new QCheckBox(QStringLiteral("单元格内容完全相同(&W)"), this)),
      count_(new QLabel(this)) {
    setObjectName(QStringLiteral("frmReplace"));
    setWindowTitle(QStringLiteral("替换"));
    column_->setObjectName(QStringLiteral("column"));
    text_->setObjectName(QStringLiteral("text"));
    with_->setObjectName(QStringLiteral("with"));
    whole_->setObjectName(QStringLiteral("whole"));
    count_->setObjectName(QStringLiteral("count"));
    column_->addItem(QStringLiteral("全部显示的列"), 0);
    for (const int c : replace_.Columns())
        column_->addItem(ToQt(center::Column(c).Title()), c);

    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(14, 14, 14, 14);
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(8);
    const auto addRow = [&](int row, const QString& words, QWidget* field) {
        auto* label = new QLabel(words, this);
        label->setBuddy(field);
        field->setMinimumWidth(kBoxWidth);
        grid->addWidget(label, row, 0);
        grid->addWidget(field, row, 1);
    };
    addRow(0, QStringLiteral("查找内容(&E)："), text_);
    addRow(1, QStringLiteral("替换为(&T)："), with_);
    addRow(2, QStringLiteral("列(&K)："), column_);
    for (QLineEdit* field : {text_, with_})
        new SingleLine(*field);
    grid->addWidget(whole_, 3, 1);
    grid->addWidget(count_, 4, 0, 1, 2);
    grid->addLayout(Buttons(), 0, 2, 5, 1);
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    FrameDialog(*this);
    for (QLineEdit* field : {text_, with_})
        connect(field, &QLineEdit::textChanged, this, &GridReplaceDialog::ShowCount);
    connect(column_, &QComboBox::currentIndexChanged, this, &GridReplaceDialog::ShowCount);
    connect(whole_, &QCheckBox::toggled, this, &GridReplaceDialog::ShowCount);
    text_->setFocus();
    ShowCount();
}

QLayout* GridReplaceDialog::Buttons() {
    auto* buttons = new QVBoxLayout;
    const auto add = [&](const QString& words, const char* name) {
        auto* button = new QPushButton(words, this);
        button->setObjectName(QString::fromLatin1(name));
        button->setAutoDefault(false);
        buttons->addWidget(button);
        return button;
    };
    auto* next = add(QStringLiteral("查找下一个(&F)"), "cmdNext");
    next->setDefault(true);
    auto* one = add(QStringLiteral("替换(&R)"), "cmdReplace");
    auto* all = add(QStringLiteral("全部替换(&A)"), "cmdReplaceAll");
    auto* close = add(QStringLiteral("关闭(&C)"), "cmdClose");
    buttons->addStretch(1);
    connect(next, &QPushButton::clicked, this, [this] { Do([this] { replace_.Next(); }); });
    connect(one, &QPushButton::clicked, this, [this] { Do([this] { replace_.ReplaceOne(); }); });
    connect(all, &QPushButton::clicked, this, [this] { Do([this] { replace_.ReplaceAll(); }); });
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    return buttons;
}

void GridReplaceDialog::ShowCount() {
    Guarded([this] {
        replace_.Wish({column_->currentData().toInt(), FromQt(text_->text()), FromQt(with_->text()),
                       whole_->isChecked()});
        count_->setText(ToQt(replace_.Note()));
    });
}

void GridReplaceDialog::Do(const std::function<void()>& step) {
    Guarded(step);
    ShowCount();
}

}  // namespace vicenter::ui
