#include "host/window/look_up_window.h"

#include <QApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "ui/look/dialog_frame.h"
#include "ui/look/qt_text.h"
#include "ui/look/theme.h"
#include "ui/run/single_line.h"
#include "ui/run/slot_guard.h"

namespace vicenter::host {

using ui::FromQt;
using ui::Guarded;
using ui::SingleLine;
using ui::ToQt;

namespace {

constexpr int kWidth = 640;
constexpr int kHeight = 420;
constexpr int kNumberWidth = 150;
constexpr int kNameWidth = 220;
constexpr int kRecordRole = Qt::UserRole;

}  // namespace

LookUpWindow::LookUpWindow(const LookUpRequest& request, QWidget* parent)
    : QDialog(parent),
      request_(request),
      filter_(request.records),
      text_(new QLineEdit(this)),
      list_(new QTreeWidget(this)),
      take_(new QPushButton(QStringLiteral("确定"), this)) {
    setObjectName(QStringLiteral("LookUpDialog"));
    setWindowTitle(ToQt(request.title));
    text_->setObjectName(QStringLiteral("txtFilter"));
    text_->setPlaceholderText(QStringLiteral("按代码、名称或拼音首字母筛选"));
    text_->setAccessibleName(QStringLiteral("筛选"));
    text_->setClearButtonEnabled(true);
    text_->installEventFilter(this);
    list_->setObjectName(QStringLiteral("lstRecords"));
    list_->setAccessibleName(ToQt(request.title));
    list_->setRootIsDecorated(request.tree);
    list_->setUniformRowHeights(true);
    list_->setAlternatingRowColors(true);
    list_->setAllColumnsShowFocus(true);
    QStringList headers;
    for (const std::string& header : request.headers)
        headers << ToQt(header);
    list_->setHeaderLabels(headers);
    list_->header()->resizeSection(0, kNumberWidth);
    if (headers.size() > 1) list_->header()->resizeSection(1, kNameWidth);
    take_->setObjectName(QStringLiteral("cmdOK"));
    take_->setDefault(true);
    auto* cancel = new QPushButton(QStringLiteral("取消"), this);
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    cancel->setAutoDefault(false);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(take_);
    buttons->addWidget(cancel);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(text_);
    layout->addWidget(list_);
    layout->addLayout(buttons);
    ui::FrameDialog(*this, QSize(kWidth, kHeight));

    AddRecords();
    SetCurrent(request.selected ? request.selected : filter_.Best({}));
    new SingleLine(*text_);
    text_->setFocus();
    connect(text_, &QLineEdit::textChanged, this,
            [this](const QString& text) { Guarded([&] { Narrow(text); }); });
    connect(list_, &QTreeWidget::currentItemChanged, this, [this] { RefreshTake(); });
    connect(list_, &QTreeWidget::itemActivated, this, [this] { Take(); });
    connect(take_, &QPushButton::clicked, this, [this] { Take(); });
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    RefreshTake();
}

void LookUpWindow::AddRecords() {
    std::vector<QTreeWidgetItem*> path;  // the item and its parents, by level
    QList<QTreeWidgetItem*> tops;
    items_.reserve(request_.records.size());
    for (std::size_t i = 0; i < request_.records.size(); ++i) {
        const LookUpRecord& record = request_.records[i];
        const auto level = request_.tree ? static_cast<std::size_t>(std::max(0, record.level)) : 0;
        path.resize(std::min(path.size(), level));
        auto* item = path.empty() ? new QTreeWidgetItem : new QTreeWidgetItem(path.back());
        if (path.empty()) tops << item;
        item->setText(0, ToQt(record.number));
        item->setText(1, ToQt(record.name));
        for (std::size_t c = 0; c < record.details.size(); ++c)
            item->setText(static_cast<int>(c) + 2, ToQt(record.details[c]));
        item->setData(0, kRecordRole, static_cast<qulonglong>(i));
        if (!record.selectable) {
            for (int c = 0; c < list_->columnCount(); ++c)
                item->setForeground(c, ui::colors::kFaintInk());
        }
        path.push_back(item);
        items_.push_back(item);
    }
    list_->addTopLevelItems(tops);
    list_->expandAll();
}

void LookUpWindow::Narrow(const QString& text) {
    const std::string wanted = FromQt(text);
    std::vector<bool> shown(items_.size());
    for (const LookUpFilter::Shown& entry : filter_.Narrow(wanted))
        shown[entry.record] = true;
    list_->setUpdatesEnabled(false);
    for (std::size_t i = 0; i < items_.size(); ++i)
        items_[i]->setHidden(!shown[i]);
    list_->setUpdatesEnabled(true);
    SetCurrent(filter_.Best(wanted));
    RefreshTake();
}

void LookUpWindow::SetCurrent(std::optional<std::size_t> record) {
    list_->setCurrentItem(record && *record < items_.size() ? items_[*record] : nullptr);
    if (list_->currentItem() != nullptr) list_->scrollToItem(list_->currentItem());
}

std::optional<std::size_t> LookUpWindow::Current() const {
    const QTreeWidgetItem* item = list_->currentItem();
    if (item == nullptr || item->isHidden()) return std::nullopt;
    const auto record = static_cast<std::size_t>(item->data(0, kRecordRole).toULongLong());
    return request_.records[record].selectable ? std::optional(record) : std::nullopt;
}

void LookUpWindow::RefreshTake() {
    take_->setEnabled(Current().has_value());
}

void LookUpWindow::Take() {
    chosen_ = Current();
    if (chosen_) accept();
}

// The arrows move in the list while the filter box keeps the focus.
bool LookUpWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == text_ && event->type() == QEvent::KeyPress) {
        switch (static_cast<QKeyEvent*>(event)->key()) {
            case Qt::Key_Up:
            case Qt::Key_Down:
            case Qt::Key_PageUp:
            case Qt::Key_PageDown:
                QApplication::sendEvent(list_, event);
                return true;
            case Qt::Key_Return:
            case Qt::Key_Enter:
                Take();
                return true;
            default:
                break;
        }
    }
    return QDialog::eventFilter(watched, event);
}

std::optional<std::size_t> QtLookUpDialog::Choose(const LookUpRequest& request) {
    LookUpWindow dialog(request, QApplication::activeWindow());
    return dialog.exec() == QDialog::Accepted ? dialog.Chosen() : std::nullopt;
}

}  // namespace vicenter::host
