#include "ui/dialogs/import_report_dialog.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include "exchange/import_several.h"
#include "ui/look/dialog_frame.h"
#include "ui/look/list_table.h"
#include "ui/look/one_line.h"
#include "ui/look/qt_text.h"
#include "ui/look/theme.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {

namespace {

constexpr int kMostTextLines = 3;  // in a cell
constexpr int kRowRoom = 8;        // above and below them

}  // namespace

ImportReportDialog::ImportReportDialog(const std::vector<exchange::ImportOutcome>& outcomes, QWidget* parent)
    : QDialog(parent), outcomes_(outcomes) {
    setObjectName(QStringLiteral("frmImportReport"));
    setWindowTitle(QStringLiteral("引入报告"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    auto* summary = new QLabel(ToQt(exchange::ReportSummary(outcomes)), this);
    summary->setObjectName(QStringLiteral("summary"));
    summary->setWordWrap(true);
    auto* save = new QPushButton(QStringLiteral("另存为工作簿(&S)…"), this);
    save->setObjectName(QStringLiteral("cmdSaveReport"));
    save->setAutoDefault(false);
    auto* close = new QPushButton(QStringLiteral("关闭(&C)"), this);
    close->setObjectName(QStringLiteral("cmdClose"));
    close->setDefault(true);
    connect(save, &QPushButton::clicked, this,
            [this] { Guarded([this] { exchange::SaveImportReport(outcomes_); }); });
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addStretch(1);
    buttons->addWidget(save);
    buttons->addWidget(close);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(14, 14, 14, 14);
    layout->setSpacing(8);
    layout->addWidget(summary);
    layout->addWidget(MakeTable(), 1);
    layout->addLayout(buttons);
    FrameDialog(*this, QSize(820, 420));
    close->setFocus();
}

QWidget* ImportReportDialog::MakeTable() {
    const QStringList headings = {QStringLiteral("文件"), QStringLiteral("模板"), QStringLiteral("结果"),
                                  QStringLiteral("分录"), QStringLiteral("异常"), QStringLiteral("说明")};
    auto* table =
        new QTableWidget(static_cast<int>(outcomes_.size()), static_cast<int>(headings.size()), this);
    table->setObjectName(QStringLiteral("files"));
    table->setHorizontalHeaderLabels(headings);
    SetUpList(*table, QStringLiteral("引入的文件"));
    int row = 0;
    for (const exchange::ImportOutcome& outcome : outcomes_) {
        const QStringList texts = {
            QFileInfo(ToQt(outcome.file)).fileName(), ToQt(outcome.templateName),
            ToQt(exchange::ReportState(outcome)),     QString::number(outcome.lines),
            QString::number(outcome.faults.size()),   ToQt(exchange::ReportText(outcome))};
        for (int column = 0; column < texts.size(); ++column) {
            auto* item = new QTableWidgetItem(ToSentence(texts[column]));
            item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
            item->setToolTip(ToolTipText(texts[column]));
            if (!outcome.written) item->setForeground(QColor(colors::kRefusal));
            table->setItem(row, column, item);
        }
        ++row;
    }
    FitColumns(*table);
    // What kept a file out is read without pointing at it, up to a length.
    QHeaderView& rows = *table->verticalHeader();
    rows.setMinimumSectionSize(rows.defaultSectionSize());
    rows.setMaximumSectionSize(kMostTextLines * table->fontMetrics().lineSpacing() + kRowRoom);
    connect(table->horizontalHeader(), &QHeaderView::sectionResized, table,
            &QTableWidget::resizeRowsToContents);
    return table;
}

}  // namespace vicenter::ui
