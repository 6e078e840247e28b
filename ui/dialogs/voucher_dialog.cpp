#include "ui/dialogs/voucher_dialog.h"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include "ui/look/dialog_frame.h"
#include "ui/look/one_line.h"
#include "ui/look/qt_text.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {

VoucherDialog::VoucherDialog(const center::VoucherPreview& preview, center::VICenterView& view,
                             QWidget* parent)
    : QDialog(parent), preview_(preview) {
    setObjectName(QStringLiteral("frmVoucher"));
    setWindowTitle(ToQt(preview_.Caption()));
    auto* lines = new QTableWidget(this);
    lines->setObjectName(QStringLiteral("voucherLines"));
    lines->setAccessibleName(QStringLiteral("凭证分录"));
    FillLines(*lines);

    const std::vector<std::string>& questions = preview_.Questions();
    auto* state = new QLabel(questions.empty() ? QStringLiteral("没有待定的内容。")
                                               : QStringLiteral("待定的内容（%1）：").arg(questions.size()),
                             this);
    state->setObjectName(QStringLiteral("voucherState"));
    auto* open = new QListWidget(this);
    open->setObjectName(QStringLiteral("voucherQuestions"));
    open->setAccessibleName(QStringLiteral("待定的内容"));
    for (const std::string& question : questions)
        open->addItem(ToSentence(question));
    open->setWordWrap(true);
    open->setVisible(!questions.empty());

    auto* buttons = new QDialogButtonBox(this);
    auto* print = buttons->addButton(QStringLiteral("打印(&P)…"), QDialogButtonBox::ActionRole);
    print->setObjectName(QStringLiteral("cmdPrint"));
    auto* pdf = buttons->addButton(QStringLiteral("另存为 PDF(&F)…"), QDialogButtonBox::ActionRole);
    pdf->setObjectName(QStringLiteral("cmdPdf"));
    auto* close = buttons->addButton(QStringLiteral("关闭"), QDialogButtonBox::RejectRole);
    close->setObjectName(QStringLiteral("cmdClose"));
    close->setDefault(true);
    connect(print, &QPushButton::clicked, this,
            [this, &view] { Guarded([&] { center::PrintOut(view, preview_.Sheet()); }); });
    connect(pdf, &QPushButton::clicked, this, [this, &view] {
        Guarded([&] { center::SaveAsPdf(view, preview_.Sheet(), preview_.ProposedName()); });
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lines, 3);
    layout->addWidget(state);
    layout->addWidget(open, 2);
    layout->addWidget(buttons);
    FrameDialog(*this, QSize(820, 460));
    lines->setFocus();
}

void VoucherDialog::FillLines(QTableWidget& table) const {
    const center::PrintBlock& voucher = preview_.Voucher();
    const std::vector<center::PrintColumn>& columns = preview_.Columns();
    std::vector<std::vector<std::string>> rows = voucher.rows;
    rows.push_back(voucher.foot);
    table.setColumnCount(static_cast<int>(columns.size()));
    table.setRowCount(static_cast<int>(rows.size()));
    table.setEditTriggers(QAbstractItemView::NoEditTriggers);
    table.setSelectionBehavior(QAbstractItemView::SelectRows);
    table.setTabKeyNavigation(false);
    // Everything is to be read at once: what is longer than its column goes on below.
    QHeaderView& heights = *table.verticalHeader();
    heights.setMinimumSectionSize(heights.defaultSectionSize());
    heights.setSectionResizeMode(QHeaderView::ResizeToContents);
    heights.hide();
    table.horizontalHeader()->setHighlightSections(false);
    for (int c = 0; c < table.columnCount(); ++c) {
        const center::PrintColumn& column = columns[static_cast<std::size_t>(c)];
        table.setHorizontalHeaderItem(c, new QTableWidgetItem(ToQt(column.header)));
        for (int row = 0; row < table.rowCount(); ++row) {
            auto* item = new QTableWidgetItem(
                ToQtLine(rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(c)]));
            item->setTextAlignment((column.figures ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
            item->setToolTip(ToolTipText(item->text()));
            if (row + 1 == table.rowCount()) {
                QFont bold = table.font();
                bold.setBold(true);
                item->setFont(bold);
            }
            table.setItem(row, c, item);
        }
        table.horizontalHeader()->setSectionResizeMode(
            c, column.figures ? QHeaderView::ResizeToContents : QHeaderView::Stretch);
    }
    table.setCurrentCell(0, 0);
}

}  // namespace vicenter::ui
