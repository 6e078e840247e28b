#include "ui/dialogs/log_dialog.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QPushButton>
#include <QVBoxLayout>

#include "ui/look/dialog_frame.h"
#include "ui/look/list_table.h"
#include "ui/look/one_line.h"
#include "ui/look/qt_text.h"
#include "ui/run/single_line.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {

namespace {

enum Field { kDate, kUser, kKind, kText, kCounts, kFieldCount };
constexpr int kKinds = 4;
constexpr int kFieldRoom = 24;  // beside a hint

}  // namespace

LogDialog::LogDialog(center::OperationLog& log, QWidget* parent)
    : QDialog(parent),
      log_(log),
      entries_(new QTableWidget(0, kFieldCount, this)),
      note_(new QLabel(this)),
      kind_(new QComboBox(this)) {
    setObjectName(QStringLiteral("frmLog"));
    setWindowTitle(QStringLiteral("操作日志"));
    note_->setObjectName(QStringLiteral("note"));
    entries_->setObjectName(QStringLiteral("entries"));
    entries_->setHorizontalHeaderLabels({QStringLiteral("时间"), QStringLiteral("用户"),
                                         QStringLiteral("结果"), QStringLiteral("操作"),
                                         QStringLiteral("数量")});
    SetUpList(*entries_, QStringLiteral("操作日志"));
    entries_->setWordWrap(false);
    auto* close = new QPushButton(QStringLiteral("关闭(&C)"), this);
    close->setObjectName(QStringLiteral("cmdClose"));
    close->setAutoDefault(false);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);

    auto* bottom = new QHBoxLayout;
    bottom->addWidget(note_, 1);
    bottom->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(14, 14, 14, 14);
    layout->setSpacing(8);
    layout->addLayout(Filter());
    layout->addWidget(entries_, 1);
    layout->addLayout(bottom);
    FrameDialog(*this, QSize(820, 520));
    ShowEntries();
    template_->setFocus();
}

QLineEdit* LogDialog::AddField(QLayout& row, const QString& label, const char* name, const QString& hint) {
    auto* field = new QLineEdit(this);
    field->setObjectName(QString::fromLatin1(name));
    field->setPlaceholderText(hint);
    field->setMinimumWidth(fontMetrics().horizontalAdvance(hint) + kFieldRoom);
    new SingleLine(*field);
    auto* words = new QLabel(label, this);
    words->setBuddy(field);
    row.addWidget(words);
    row.addWidget(field);
    return field;
}

// On two lines: one of them all would be wider than a small screen.
QLayout* LogDialog::Filter() {
    auto* when = new QHBoxLayout;
    auto* what = new QHBoxLayout;
    from_ = AddField(*when, QStringLiteral("起(&S)："), "from", QStringLiteral("yyyy-mm-dd"));
    to_ = AddField(*when, QStringLiteral("止(&E)："), "to", QStringLiteral("yyyy-mm-dd"));
    user_ = AddField(*when, QStringLiteral("用户(&U)："), "user", QStringLiteral("编号或姓名"));
    auto* words = new QLabel(QStringLiteral("结果(&K)："), this);
    words->setBuddy(kind_);
    kind_->setObjectName(QStringLiteral("kind"));
    kind_->addItem(QStringLiteral("全部"), 0);
    for (int kind = 1; kind <= kKinds; ++kind)
        kind_->addItem(ToQt(center::LogKindText(kind)), kind);
    what->addWidget(words);
    what->addWidget(kind_);
    template_ = AddField(*what, QStringLiteral("模板(&T)："), "template", QStringLiteral("名称"));
    auto* narrow = new QPushButton(QStringLiteral("筛选(&F)"), this);
    narrow->setObjectName(QStringLiteral("cmdNarrow"));
    narrow->setDefault(true);
    connect(narrow, &QPushButton::clicked, this, &LogDialog::Narrow);
    what->addWidget(narrow);
    // The user's name gets what the dates leave.
    for (QLineEdit* field : {from_, to_})
        field->setMaximumWidth(field->minimumWidth());
    auto* rows = new QVBoxLayout;
    for (QHBoxLayout* row : {when, what}) {
        row->setSpacing(6);
        rows->addLayout(row);
    }
    return rows;
}

void LogDialog::Narrow() {
    store::LogFilter filter{
        FromQt(from_->text()), FromQt(to_->text()), FromQt(user_->text()), {}, FromQt(template_->text())};
    if (const int kind = kind_->currentData().toInt(); kind > 0) filter.kind = std::to_string(kind);
    Guarded([&] { log_.Narrow(filter); });
    ShowEntries();
}

void LogDialog::ShowEntries() {
    const auto& entries = log_.Entries();
    entries_->setRowCount(static_cast<int>(entries.size()));
    int row = 0;
    for (const store::LogEntry& entry : entries) {
        const QStringList texts = {ToQt(entry.date), ToQt(log_.UserText(entry)),
                                   ToQt(center::LogKindText(entry.kind)), ToQt(entry.text),
                                   ToQt(entry.counts)};
        for (int field = 0; field < kFieldCount; ++field) {
            auto* item = new QTableWidgetItem(ToSentence(texts[field]));
            item->setToolTip(ToolTipText(texts[field]));
            entries_->setItem(row, field, item);
        }
        ++row;
    }
    FitColumns(*entries_);
    note_->setText(ToQt(log_.Note()));
}

}  // namespace vicenter::ui
