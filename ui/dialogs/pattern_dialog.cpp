#include "ui/dialogs/pattern_dialog.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>
#include <algorithm>

#include "ui/look/dialog_frame.h"
#include "ui/look/list_table.h"
#include "ui/look/one_line.h"
#include "ui/look/qt_text.h"

namespace vicenter::ui {

PatternDialog::PatternDialog(const autovch::GenerationPreview& preview, const autovch::LeftOut& without,
                             QWidget* parent)
    : QDialog(parent), preview_(preview), patterns_(new QTableWidget(this)), note_(new QLabel(this)) {
    setObjectName(QStringLiteral("frmPatterns"));
    setWindowTitle(QStringLiteral("将生成的凭证模板"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    note_->setObjectName(QStringLiteral("note"));
    patterns_->setObjectName(QStringLiteral("patterns"));
    Fill(without);
    connect(patterns_, &QTableWidget::itemChanged, this, [this] { ShowCount(); });
    const auto button = [this](const QString& text, const char* name) {
        auto* made = new QPushButton(text, this);
        made->setObjectName(QString::fromLatin1(name));
        made->setAutoDefault(false);
        return made;
    };
    auto* all = button(QStringLiteral("全选(&A)"), "cmdAll");
    auto* none = button(QStringLiteral("全清(&N)"), "cmdNone");
    auto* ok = button(QStringLiteral("确定(&O)"), "cmdOK");
    auto* cancel = button(QStringLiteral("取消(&C)"), "cmdCancel");
    ok->setDefault(true);
    connect(all, &QPushButton::clicked, this, [this] { TickAll(true); });
    connect(none, &QPushButton::clicked, this, [this] { TickAll(false); });
    connect(ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addWidget(all);
    buttons->addWidget(none);
    buttons->addStretch(1);
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(14, 14, 14, 14);
    layout->setSpacing(8);
    layout->addWidget(patterns_, 1);
    layout->addWidget(note_);
    layout->addLayout(buttons);
    FrameDialog(*this, QSize(860, 480));
    ShowCount();
    patterns_->setFocus();
}

void PatternDialog::Fill(const autovch::LeftOut& without) {
    const QStringList headings = {QStringLiteral("次数"), QStringLiteral("模板编号"), QStringLiteral("摘要"),
                                  QStringLiteral("现有模板"), QStringLiteral("分录")};
    patterns_->setColumnCount(static_cast<int>(headings.size()));
    patterns_->setRowCount(static_cast<int>(preview_.patterns.size()));
    patterns_->setHorizontalHeaderLabels(headings);
    SetUpList(*patterns_, QStringLiteral("凭证的种类"));
    int row = 0;
    for (const autovch::VoucherPattern& pattern : preview_.patterns) {
        const QStringList texts = {
            QString::number(pattern.Occurrences()), ToQt(autovch::ListOfNumbers(pattern.numbers)),
            ToQtLine(pattern.explanation), ToQtLine(pattern.alike), ToQtLine(pattern.words)};
        for (int column = 0; column < texts.size(); ++column) {
            auto* item = new QTableWidgetItem(texts[column]);
            item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
            item->setToolTip(ToolTipText(texts[column]));
            if (column == 0) {
                item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
                const bool left =
                    std::all_of(pattern.numbers.begin(), pattern.numbers.end(),
                                [&](const std::string& number) { return without.contains(number); });
                item->setCheckState(left ? Qt::Unchecked : Qt::Checked);
            }
            patterns_->setItem(row, column, item);
        }
        ++row;
    }
    FitColumns(*patterns_);
}

void PatternDialog::TickAll(bool ticked) {
    {
        // Counted once, not for every row anew.
        const QSignalBlocker quiet(patterns_);
        for (int row = 0; row < patterns_->rowCount(); ++row)
            patterns_->item(row, 0)->setCheckState(ticked ? Qt::Checked : Qt::Unchecked);
    }
    ShowCount();
}

autovch::LeftOut PatternDialog::Without() const {
    autovch::LeftOut without;
    for (int row = 0; row < patterns_->rowCount(); ++row) {
        if (patterns_->item(row, 0)->checkState() == Qt::Checked) continue;
        const auto& numbers = preview_.patterns[static_cast<std::size_t>(row)].numbers;
        without.insert(numbers.begin(), numbers.end());
    }
    return without;
}

void PatternDialog::ShowCount() {
    std::size_t all = 0;
    for (const autovch::VoucherPattern& pattern : preview_.patterns)
        all += pattern.numbers.size();
    const std::size_t left = Without().size();
    note_->setText(
        QStringLiteral("%1 种凭证，将生成 %2 个编号").arg(preview_.patterns.size()).arg(all - left) +
        (left > 0 ? QStringLiteral("，%1 个不生成").arg(left) : QString()));
}

}  // namespace vicenter::ui
