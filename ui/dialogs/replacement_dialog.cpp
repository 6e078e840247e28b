#include "ui/dialogs/replacement_dialog.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "store/template_columns.h"
#include "ui/look/dialog_frame.h"
#include "ui/look/list_table.h"
#include "ui/look/one_line.h"
#include "ui/look/qt_text.h"
#include "ui/look/theme.h"
#include "ui/run/single_line.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {

namespace {

using State = center::ReplacementLine::State;

enum Field { kTick, kTemplate, kNumber, kRow, kExplanation, kBefore, kAfter, kNote, kFieldCount };

QStringList Headings() {
    return {QString(),
            QStringLiteral("模板"),
            QStringLiteral("模板编号"),
            QStringLiteral("行"),
            QStringLiteral("摘要"),
            QStringLiteral("替换前"),
            QStringLiteral("替换后"),
            QStringLiteral("说明")};
}

QPushButton* MakeButton(const QString& text, const char* name, QWidget* parent) {
    auto* button = new QPushButton(text, parent);
    button->setObjectName(QString::fromLatin1(name));
    button->setAutoDefault(false);
    return button;
}

}  // namespace

ReplacementDialog::ReplacementDialog(center::CodeReplacement& replacement, QWidget* parent)
    : QDialog(parent),
      replacement_(replacement),
      column_(new QComboBox(this)),
      from_(new QLineEdit(this)),
      to_(new QLineEdit(this)),
      lines_(new QTableWidget(0, kFieldCount, this)),
      note_(new QLabel(this)) {
    setObjectName(QStringLiteral("frmReplaceCodes"));
    setWindowTitle(QStringLiteral("在全部模板中替换代码"));
    note_->setObjectName(QStringLiteral("note"));
    lines_->setObjectName(QStringLiteral("lines"));
    lines_->setHorizontalHeaderLabels(Headings());
    SetUpList(*lines_, QStringLiteral("将要替换的分录"));
    connect(lines_, &QTableWidget::itemChanged, this, [this](QTableWidgetItem* item) { TickChanged(*item); });

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(14, 14, 14, 14);
    layout->setSpacing(8);
    layout->addLayout(Wish());
    layout->addWidget(lines_, 1);
    layout->addWidget(note_);
    layout->addLayout(Buttons());
    FrameDialog(*this, QSize(860, 520));
    ShowLines();
    from_->setFocus();
}

QLayout* ReplacementDialog::Wish() {
    column_->setObjectName(QStringLiteral("column"));
    for (const int column : center::CodeColumns())
        column_->addItem(ToQt(store::Column(column).Title()), column);
    from_->setObjectName(QStringLiteral("from"));
    to_->setObjectName(QStringLiteral("to"));
    auto* list = MakeButton(QStringLiteral("列出(&L)"), "cmdList", this);
    list->setDefault(true);
    connect(list, &QPushButton::clicked, this, &ReplacementDialog::ListLines);

    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    const auto add = [&](const QString& text, QWidget* field, int stretch) {
        auto* label = new QLabel(text, this);
        label->setBuddy(field);
        row->addWidget(label);
        row->addWidget(field, stretch);
    };
    add(QStringLiteral("列(&K)："), column_, 0);
    add(QStringLiteral("原代码(&F)："), from_, 1);
    add(QStringLiteral("新代码(&T)："), to_, 1);
    for (QLineEdit* field : {from_, to_})
        new SingleLine(*field);
    row->addWidget(list);
    return row;
}

QLayout* ReplacementDialog::Buttons() {
    auto* all = MakeButton(QStringLiteral("全选(&A)"), "cmdAll", this);
    auto* none = MakeButton(QStringLiteral("全不选(&N)"), "cmdNone", this);
    auto* undo = MakeButton(QStringLiteral("撤消上次替换(&U)"), "cmdUndo", this);
    replace_ = MakeButton(QStringLiteral("替换(&R)"), "cmdReplace", this);
    auto* close = MakeButton(QStringLiteral("关闭(&C)"), "cmdClose", this);
    for (const auto& [button, chosen] : {std::pair(all, true), std::pair(none, false)}) {
        connect(button, &QPushButton::clicked, this, [this, chosen = chosen] {
            replacement_.ChooseAll(chosen);
            ShowLines();
        });
    }
    connect(replace_, &QPushButton::clicked, this, [this] {
        Guarded([this] { replacement_.Replace(); });
        ShowLines();
    });
    connect(undo, &QPushButton::clicked, this, [this] {
        Guarded([this] { replacement_.Undo(); });
        ShowLines();
    });
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(all);
    row->addWidget(none);
    row->addStretch(1);
    row->addWidget(undo);
    row->addWidget(replace_);
    row->addWidget(close);
    return row;
}

void ReplacementDialog::ListLines() {
    Guarded([this] {
        replacement_.List({column_->currentData().toInt(), FromQt(from_->text()), FromQt(to_->text())});
    });
    ShowLines();
    if (lines_->rowCount() > 0) {
        lines_->setCurrentCell(0, kTick);
        lines_->setFocus();
    }
}

void ReplacementDialog::ShowLines() {
    const bool before = std::exchange(showing_, true);
    const auto& lines = replacement_.Lines();
    lines_->setRowCount(static_cast<int>(lines.size()));
    int row = 0;
    for (const center::ReplacementLine& line : lines) {
        const QStringList texts = {QString(),
                                   ToQt(line.templateName),
                                   ToQt(line.number),
                                   QString::number(line.row),
                                   ToQt(line.explanation),
                                   ToQt(line.before),
                                   ToQt(line.after),
                                   ToQt(line.note)};
        const bool possible = line.state != State::Impossible;
        for (int field = 0; field < kFieldCount; ++field) {
            auto* item = new QTableWidgetItem(InOneLine(texts[field]));
            item->setToolTip(ToolTipText(texts[field]));
            item->setFlags(Qt::ItemIsSelectable | (possible ? Qt::ItemIsEnabled : Qt::NoItemFlags));
            if (field == kNote) item->setForeground(QColor(possible ? colors::kCaution : colors::kRefusal));
            if (field == kTick && possible) {
                item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
                item->setCheckState(line.chosen ? Qt::Checked : Qt::Unchecked);
            }
            lines_->setItem(row, field, item);
        }
        ++row;
    }
    FitColumns(*lines_);
    showing_ = before;
    ShowChosen();
}

void ReplacementDialog::ShowChosen() {
    const auto& lines = replacement_.Lines();
    note_->setText(lines.empty() ? QStringLiteral("只替换您自己的模板；标准模板中的行请自行勾选。")
                                 : ToQt(replacement_.Note()));
    replace_->setEnabled(
        std::any_of(lines.begin(), lines.end(), [](const auto& line) { return line.chosen; }));
}

void ReplacementDialog::TickChanged(const QTableWidgetItem& item) {
    if (showing_ || item.column() != kTick) return;
    replacement_.Choose(static_cast<std::size_t>(item.row()), item.checkState() == Qt::Checked);
    ShowChosen();
}

}  // namespace vicenter::ui
