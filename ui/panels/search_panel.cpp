#include "ui/panels/search_panel.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "store/cell_rules.h"
#include "store/template_columns.h"
#include "ui/look/list_table.h"
#include "ui/look/one_line.h"
#include "ui/look/qt_text.h"
#include "ui/run/single_line.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {

namespace {

namespace column = store::column;

// What is shown of a line, behind its template and row.
constexpr int kShown[] = {
    column::kNo,          column::kExplanation, column::kDirection, column::kAccountNumber,
    column::kAccountName, column::kItems,       column::kAmount,    column::kRemark};
constexpr int kBefore = 2;
constexpr int kMostRows = 1000;  // whoever has more narrows the search

QStringList Headings() {
    QStringList headings = {QStringLiteral("模板"), QStringLiteral("行")};
    for (const int c : kShown)
        headings << ToQt(store::Column(c).Title());
    return headings;
}

}  // namespace

SearchPanel::SearchPanel(center::SearchActions& actions, QWidget* parent)
    : QDockWidget(QStringLiteral("在全部模板中查找"), parent),
      actions_(actions),
      hits_(new QTableWidget(0, kBefore + static_cast<int>(std::size(kShown)), this)),
      note_(new QLabel(this)) {
    setObjectName(QStringLiteral("searchPanel"));
    setFeatures(DockWidgetClosable);
    setAllowedAreas(Qt::BottomDockWidgetArea);
    hits_->setObjectName(QStringLiteral("lstHits"));
    hits_->setHorizontalHeaderLabels(Headings());
    SetUpList(*hits_, QStringLiteral("查找到的分录"));
    hits_->setSelectionMode(QAbstractItemView::SingleSelection);
    hits_->setWordWrap(false);
    hits_->verticalHeader()->setDefaultSectionSize(hits_->fontMetrics().height() + 6);
    hits_->setMinimumHeight(HeightOfOneRow(*hits_));
    hits_->installEventFilter(this);
    note_->setObjectName(QStringLiteral("lblHits"));
    connect(hits_, &QTableWidget::cellClicked, this, [this](int row, int) { Open(row); });

    auto* inner = new QWidget(this);
    auto* layout = new QVBoxLayout(inner);
    layout->setContentsMargins(6, 4, 6, 4);
    layout->setSpacing(4);
    layout->addLayout(Fields());
    layout->addWidget(hits_, 1);
    setWidget(inner);
    setFocusProxy(text_);
    hide();
}

QLayout* SearchPanel::Fields() {
    auto* row = new QHBoxLayout;
    row->setSpacing(6);
    text_ = AddField(*row, QStringLiteral("文字(&E)："), "searchText",
                     QStringLiteral("摘要、名称、备注等所含文字"));
    account_ =
        AddField(*row, QStringLiteral("科目(&A)："), "searchAccount", QStringLiteral("代码（含下级）或名称"));
    item_ = AddField(*row, QStringLiteral("核算项目(&I)："), "searchItem", QStringLiteral("项目代码"));
    amount_ = AddField(*row, QStringLiteral("金额(&M)："), "searchAmount", QStringLiteral("860 或 100-200"));
    auto* find = new QPushButton(QStringLiteral("查找(&F)"), this);
    find->setObjectName(QStringLiteral("cmdSearch"));
    connect(find, &QPushButton::clicked, this, &SearchPanel::Find);
    row->addWidget(find);
    row->addWidget(note_);
    return row;
}

QLineEdit* SearchPanel::AddField(QLayout& row, const QString& label, const char* name, const QString& hint) {
    auto* field = new QLineEdit(this);
    field->setObjectName(QString::fromLatin1(name));
    field->setPlaceholderText(hint);
    field->setClearButtonEnabled(true);
    field->installEventFilter(this);
    new SingleLine(*field);
    auto* words = new QLabel(label, this);
    words->setBuddy(field);
    row.addWidget(words);
    row.addWidget(field);
    connect(field, &QLineEdit::returnPressed, this, &SearchPanel::Find);
    return field;
}

void SearchPanel::TakeKeyboard() {
    show();
    raise();
    text_->setFocus(Qt::ShortcutFocusReason);
    text_->selectAll();
}

void SearchPanel::Find() {
    const center::SearchWish wish{FromQt(text_->text()), FromQt(account_->text()), FromQt(item_->text()),
                                  FromQt(amount_->text())};
    const bool found = GuardedOr(false, [&] { return actions_.Find(wish); });
    ShowHits();
    if (!found) return;
    hits_->setCurrentCell(0, 0);
    hits_->setFocus(Qt::OtherFocusReason);
}

void SearchPanel::ShowHits() {
    const auto& hits = actions_.Hits();
    const int shown = std::min(static_cast<int>(hits.size()), kMostRows);
    hits_->setRowCount(shown);
    for (int row = 0; row < shown; ++row) {
        const center::SearchHit& hit = hits[static_cast<std::size_t>(row)];
        QStringList texts = {ToQt(hit.templateName), QString::number(hit.row)};
        for (const int c : kShown)
            texts << ToQt(store::DisplayText(c, hit.line[static_cast<std::size_t>(c - 1)]));
        for (int field = 0; field < texts.size(); ++field) {
            auto* item = new QTableWidgetItem(InOneLine(texts[field]));
            item->setToolTip(ToolTipText(texts[field]));
            const bool number = field >= kBefore && store::Column(kShown[field - kBefore]).rightAligned;
            if (number) item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
            hits_->setItem(row, field, item);
        }
    }
    if (hits_->rowCount() > 0) FitColumns(*hits_);
    setFocusProxy(hits_->rowCount() > 0 ? static_cast<QWidget*>(hits_) : text_);
    QString note = ToQt(GuardedOr(std::string(), [this] { return actions_.Note(); }));
    if (shown == kMostRows) note += QStringLiteral("，列出前 %1 行").arg(kMostRows);
    note_->setText(note);
}

void SearchPanel::Open(int row) {
    if (row >= 0) Guarded([&] { actions_.Open(static_cast<std::size_t>(row)); });
}

bool SearchPanel::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Escape) {
            hide();
            return true;
        }
        if (watched == hits_ && (key == Qt::Key_Return || key == Qt::Key_Enter)) {
            Open(hits_->currentRow());
            return true;
        }
    }
    return QDockWidget::eventFilter(watched, event);
}

}  // namespace vicenter::ui
