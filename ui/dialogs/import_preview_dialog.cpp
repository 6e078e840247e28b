#include "ui/dialogs/import_preview_dialog.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "exchange/template_columns.h"
#include "store/cell_rules.h"
#include "ui/look/dialog_frame.h"
#include "ui/look/list_table.h"
#include "ui/look/one_line.h"
#include "ui/look/qt_text.h"
#include "ui/look/theme.h"

namespace vicenter::ui {

namespace {

// More rows than anybody reads in a dialog: the rest is told by its number.
constexpr std::size_t kMostRows = 5000;

void Put(QTableWidget& table, int row, const QStringList& texts, bool warned = false) {
    for (int column = 0; column < texts.size(); ++column) {
        auto* item = new QTableWidgetItem(InOneLine(texts[column]));
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
        item->setToolTip(ToolTipText(texts[column]));
        if (warned) item->setForeground(QColor(colors::kRefusal));
        table.setItem(row, column, item);
    }
}

QString FieldText(int column) {
    return column == 0 ? QStringLiteral("整行") : ToQt(store::Column(column).Title());
}

QString FromTo(const QString& before, const QString& after) {
    return before == after ? after : before + QStringLiteral(" → ") + after;
}

QString AmountText(const std::string& amount) {
    return ToQt(store::DisplayText(store::column::kAmount, amount));
}

QLabel* MakeLabel(const QString& text, const char* name, QWidget* parent) {
    auto* label = new QLabel(text, parent);
    label->setObjectName(QString::fromLatin1(name));
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

}  // namespace

ImportPreviewDialog::ImportPreviewDialog(const exchange::ImportPreview& preview, QWidget* parent)
    : QDialog(parent), preview_(preview), pages_(new QTabWidget(this)) {
    setObjectName(QStringLiteral("frmImportPreview"));
    setWindowTitle(QStringLiteral("引入前后对比 - ") + ToQt(preview.destination.name));
    pages_->setObjectName(QStringLiteral("pages"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(14, 14, 14, 14);
    layout->setSpacing(8);
    layout->addWidget(MakeLabel(ToQt(preview.Summary()), "summary", this));
    QStringList warnings;
    for (const std::string& warning : preview.warnings)
        warnings << QStringLiteral("注意：") + ToQt(warning);
    auto* warned = MakeLabel(warnings.join(u'\n'), "warnings", this);
    SetInk(*warned, colors::kRefusal);
    QFont bold = warned->font();
    bold.setBold(true);
    warned->setFont(bold);
    warned->setVisible(!warnings.isEmpty());
    layout->addWidget(warned);
    AddChanges();
    AddTotals();
    AddFaults();
    if (!preview.faults.empty()) pages_->setCurrentIndex(pages_->count() - 1);
    layout->addWidget(pages_, 1);
    layout->addLayout(Buttons());
    FrameDialog(*this, QSize(820, 540));
}

QTableWidget* ImportPreviewDialog::MakeTable(const char* name, const QString& spoken,
                                             const QStringList& headings) {
    auto* table = new QTableWidget(0, static_cast<int>(headings.size()), this);
    table->setObjectName(QString::fromLatin1(name));
    table->setHorizontalHeaderLabels(headings);
    SetUpList(*table, spoken);
    return table;
}

void ImportPreviewDialog::AddChanges() {
    auto* table = MakeTable("changes", QStringLiteral("引入前后的变化"),
                            {QStringLiteral("变化"), QStringLiteral("模板编号"), QStringLiteral("行"),
                             QStringLiteral("字段"), QStringLiteral("现有"), QStringLiteral("引入后")});
    const std::vector<store::LineChange> changes = preview_.Changes();
    const auto shown = static_cast<int>(std::min(changes.size(), kMostRows));
    table->setRowCount(shown);
    for (int row = 0; row < shown; ++row) {
        const store::LineChange& change = changes[static_cast<std::size_t>(row)];
        Put(*table, row,
            {ToQt(change.kind), ToQt(change.number), QString::number(change.row), FieldText(change.column),
             ToQt(change.before), ToQt(change.after)});
    }
    FitColumns(*table);
    QString title = QStringLiteral("变化（%1）").arg(changes.size());
    if (changes.size() > kMostRows)
        title = QStringLiteral("变化（%1，列出前 %2）").arg(changes.size()).arg(shown);
    pages_->addTab(table, title);
}

void ImportPreviewDialog::AddTotals() {
    auto* table = MakeTable("totals", QStringLiteral("按编号合计"),
                            {QStringLiteral("模板编号"), QStringLiteral("行数"), QStringLiteral("借方合计"),
                             QStringLiteral("贷方合计"), QStringLiteral("说明")});
    table->setRowCount(static_cast<int>(preview_.totals.size()));
    int row = 0;
    for (const exchange::NumberTotals& total : preview_.totals) {
        const QString note = total.Unbalanced() ? QStringLiteral("引入后借贷不平") : QString();
        Put(*table, row++,
            {ToQt(total.number),
             FromTo(QString::number(total.before.lines), QString::number(total.after.lines)),
             FromTo(AmountText(total.before.debit), AmountText(total.after.debit)),
             FromTo(AmountText(total.before.credit), AmountText(total.after.credit)), note},
            total.Unbalanced());
    }
    FitColumns(*table);
    pages_->addTab(table, QStringLiteral("按编号合计（%1）").arg(preview_.totals.size()));
}

void ImportPreviewDialog::AddFaults() {
    if (preview_.faults.empty()) return;
    auto* table = MakeTable(
        "faults", QStringLiteral("工作簿中的异常"),
        {QStringLiteral("行"), QStringLiteral("列"), QStringLiteral("内容"), QStringLiteral("原因")});
    const auto shown = static_cast<int>(std::min(preview_.faults.size(), kMostRows));
    table->setRowCount(shown);
    for (int row = 0; row < shown; ++row) {
        const exchange::LineFault& fault = preview_.faults[static_cast<std::size_t>(row)];
        QString column = ToQt(fault.header);
        if (fault.column > 0)
            column += QStringLiteral("（%1 列）").arg(ToQt(exchange::ColumnLetter(fault.column)));
        Put(*table, row,
            {fault.row > 0 ? QString::number(fault.row) : QString(), column, ToQt(fault.value),
             ToSentence(fault.reason)});
    }
    FitColumns(*table);
    pages_->addTab(table, QStringLiteral("异常（%1）").arg(preview_.faults.size()));
}

QLayout* ImportPreviewDialog::Buttons() {
    const auto button = [this](const QString& text, const char* name) {
        auto* made = new QPushButton(text, this);
        made->setObjectName(QString::fromLatin1(name));
        made->setAutoDefault(false);
        return made;
    };
    auto* goOn = button(QStringLiteral("继续引入(&O)"), "cmdOK");
    auto* cancel = button(QStringLiteral("取消(&C)"), "cmdCancel");
    // What stands out is not passed by with Enter alone.
    const bool plain = preview_.warnings.empty() && preview_.refusal.empty();
    (plain ? goOn : cancel)->setDefault(true);
    connect(goOn, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addStretch(1);
    buttons->addWidget(goOn);
    buttons->addWidget(cancel);
    return buttons;
}

}  // namespace vicenter::ui
