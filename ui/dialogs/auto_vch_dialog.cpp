#include "ui/dialogs/auto_vch_dialog.h"

#include <QCoreApplication>
#include <QFocusEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QToolButton>
#include <QVBoxLayout>

#include "ui/dialogs/column_dialog.h"
#include "ui/dialogs/pattern_dialog.h"
#include "ui/look/dialog_frame.h"
#include "ui/look/qt_text.h"
#include "ui/look/theme.h"
#include "ui/run/single_line.h"
#include "ui/run/slot_guard.h"

namespace vicenter::ui {

namespace {

constexpr int kSettleMilliseconds = 300;
constexpr int kGenerate = 0;
constexpr int kCancel = 2;

constexpr const char* kUpDownNames[] = {"updBYear", "updBPeriod", "updEYear", "updEPeriod"};

}  // namespace

AutoVchDialog::AutoVchDialog(QWidget* parent)
    : QDialog(parent), settled_(QStringLiteral("settledTimer"), kSettleMilliseconds, this) {
    setObjectName(QStringLiteral("frmAutoVch"));
    setWindowTitle(QString::fromUtf8(autovch::kAutoVchCaption));

    filter_ = BuildFilter();
    auto* nameLabel = new QLabel(QStringLiteral("模板名称："), this);
    name_ = new QLineEdit(this);
    name_->setObjectName(QStringLiteral("txtVchTpName"));
    new SingleLine(*name_);
    nameLabel->setBuddy(name_);
    columns_ = new QPushButton(QStringLiteral("模板字段设置"), this);
    columns_->setObjectName(QStringLiteral("cmdCols"));
    columns_->setAutoDefault(false);
    selected_ = new QLabel(this);
    selected_->setObjectName(QStringLiteral("lblSelected"));
    selected_->setWordWrap(true);
    progress_ = new QProgressBar(this);
    progress_->setObjectName(QStringLiteral("progress"));
    progress_->hide();
    generate_ = new QPushButton(QStringLiteral("生成(&O)"), this);
    generate_->setObjectName(QStringLiteral("Command0"));
    generate_->setDefault(true);
    patterns_ = new QPushButton(QStringLiteral("预览(&P)…"), this);
    patterns_->setObjectName(QStringLiteral("cmdPatterns"));
    patterns_->setAutoDefault(false);
    auto* cancel = new QPushButton(QStringLiteral("取消(&C)"), this);
    cancel->setObjectName(QStringLiteral("Command2"));
    cancel->setAutoDefault(false);

    auto* nameRow = new QHBoxLayout;
    nameRow->addWidget(nameLabel);
    nameRow->addWidget(name_, 1);
    nameRow->addWidget(columns_);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(progress_, 1);
    buttons->addStretch();
    buttons->addWidget(patterns_);
    buttons->addWidget(generate_);
    buttons->addWidget(cancel);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(14, 14, 14, 14);
    layout->setSpacing(12);
    layout->addWidget(filter_);
    layout->addLayout(nameRow);
    layout->addWidget(selected_);
    layout->addLayout(BuildWarning());
    layout->addLayout(buttons);
    setMinimumWidth(460);
    FrameDialog(*this);

    connect(&settled_, &QTimer::timeout, this, [this] { Guarded([this] { form_.FilterSettled(); }); });
    connect(name_, &QLineEdit::textEdited, this,
            [this](const QString& text) { Guarded([&] { form_.SetTemplateName(FromQt(text)); }); });
    connect(columns_, &QPushButton::clicked, this, [this] { Guarded([this] { form_.ChooseColumns(); }); });
    connect(patterns_, &QPushButton::clicked, this, [this] { Guarded([this] { form_.ChoosePatterns(); }); });
    connect(generate_, &QPushButton::clicked, this, [this] { RunCommand(kGenerate); });
    connect(cancel, &QPushButton::clicked, this, &AutoVchDialog::reject);
    Guarded([this] { form_.Load(); });
    boxes_[autovch::kYear]->setFocus();
}

QWidget* AutoVchDialog::BuildFilter() {
    auto* frame = new QGroupBox(QStringLiteral("凭证过滤"), this);
    for (std::size_t i = 0; i < autovch::kBoxCount; ++i) {
        auto* box = new QLineEdit(frame);
        box->setObjectName(QStringLiteral("txtPeriod%1").arg(i));
        box->setAlignment(Qt::AlignRight);
        box->setMaxLength(static_cast<int>(form_.State().maxLengths[i]));
        new SingleLine(*box, QRegularExpression(QStringLiteral("[0-9]*")));
        box->installEventFilter(this);
        connect(box, &QLineEdit::textEdited, this, [this, i] { BoxEdited(static_cast<autovch::Box>(i)); });
        boxes_[i] = box;
    }
    groups_ = new QComboBox(frame);
    groups_->setObjectName(QStringLiteral("cmbCheckState"));
    system_ = new QCheckBox(QStringLiteral("包括机制凭证"), frame);
    system_->setObjectName(QStringLiteral("chkJZVch"));

    const auto withUpDown = [&](autovch::Box box) {
        auto* row = new QHBoxLayout;
        row->setSpacing(0);
        row->addWidget(boxes_[box], 1);
        row->addWidget(BuildUpDown(box, kUpDownNames[box]));
        return row;
    };
    auto* grid = new QGridLayout(frame);
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(10);
    grid->addWidget(new QLabel(QStringLiteral("期间："), frame), 0, 0);
    grid->addLayout(withUpDown(autovch::kYear), 0, 1);
    grid->addWidget(new QLabel(QStringLiteral("年"), frame), 0, 2);
    grid->addLayout(withUpDown(autovch::kPeriod), 0, 3);
    grid->addWidget(new QLabel(QStringLiteral("期"), frame), 0, 4);
    grid->addWidget(new QLabel(QStringLiteral("凭证号从"), frame), 1, 0);
    grid->addLayout(withUpDown(autovch::kFirstNumber), 1, 1);
    grid->addWidget(new QLabel(QStringLiteral("到"), frame), 1, 2);
    grid->addLayout(withUpDown(autovch::kLastNumber), 1, 3);
    grid->addWidget(new QLabel(QStringLiteral("凭证类别"), frame), 2, 0);
    grid->addWidget(groups_, 2, 1);
    grid->addWidget(system_, 2, 3);
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(3, 1);

    connect(groups_, &QComboBox::activated, this, [this](int index) {
        Guarded([&] { form_.SelectGroup(static_cast<std::size_t>(index)); });
        FilterChanged();
    });
    connect(system_, &QCheckBox::toggled, this, [this](bool on) {
        Guarded([&] { form_.SetIncludeSystem(on); });
        FilterChanged();
    });
    return frame;
}

// Seen only while vouchers of several groups would be merged.
QLayout* AutoVchDialog::BuildWarning() {
    warning_ = new QLabel(this);
    warning_->setObjectName(QStringLiteral("lblMerged"));
    warning_->setWordWrap(true);
    warning_->setTextFormat(Qt::PlainText);
    SetInk(*warning_, colors::kRefusal);
    warning_->hide();
    oneGroup_ = new QPushButton(this);
    oneGroup_->setObjectName(QStringLiteral("cmdOneGroup"));
    oneGroup_->setAutoDefault(false);
    oneGroup_->hide();
    connect(oneGroup_, &QPushButton::clicked, this, [this] { Guarded([this] { form_.TakeOneGroup(); }); });
    auto* row = new QHBoxLayout;
    row->addWidget(warning_, 1);
    row->addWidget(oneGroup_);
    return row;
}

QWidget* AutoVchDialog::BuildUpDown(autovch::Box box, const char* name) {
    auto* upDown = new QWidget(this);
    upDown->setObjectName(QString::fromLatin1(name));
    auto* layout = new QVBoxLayout(upDown);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    for (const bool up : {true, false}) {
        auto* button = new QToolButton(upDown);
        button->setObjectName(up ? QStringLiteral("up") : QStringLiteral("down"));
        button->setArrowType(up ? Qt::UpArrow : Qt::DownArrow);
        button->setFixedSize(18, boxes_[box]->sizeHint().height() / 2);
        button->setAutoRepeat(true);
        button->setFocusPolicy(Qt::NoFocus);
        connect(button, &QToolButton::clicked, this, [this, box, up] {
            Guarded([&] { form_.Spin(box, up); });
            FilterChanged();
        });
        layout->addWidget(button);
    }
    return upDown;
}

bool AutoVchDialog::eventFilter(QObject* watched, QEvent* event) {
    for (std::size_t i = 0; i < autovch::kBoxCount; ++i) {
        if (watched != boxes_[i]) continue;
        if (event->type() == QEvent::FocusIn) {
            // After the click that gave the focus has placed its cursor.
            QTimer::singleShot(0, boxes_[i], [box = boxes_[i]] { box->selectAll(); });
        } else if (event->type() == QEvent::KeyPress) {
            const int key = static_cast<QKeyEvent*>(event)->key();
            if (key == Qt::Key_Up || key == Qt::Key_Down) {
                Guarded([&] { form_.Spin(static_cast<autovch::Box>(i), key == Qt::Key_Up); });
                FilterChanged();
                return true;
            }
        }
    }
    return QDialog::eventFilter(watched, event);
}

void AutoVchDialog::BoxEdited(autovch::Box box) {
    if (showing_) return;
    Guarded([&] {
        if (!form_.SetBox(box, FromQt(boxes_[box]->text()))) Show(form_.State());
    });
    FilterChanged();
}

void AutoVchDialog::FilterChanged() {
    settled_.start();
}

void AutoVchDialog::Show(const autovch::AutoVchState& state) {
    showing_ = true;
    for (std::size_t i = 0; i < autovch::kBoxCount; ++i) {
        // A text that has not changed keeps the cursor where the user has it.
        if (boxes_[i]->text() != ToQt(state.boxes[i])) boxes_[i]->setText(ToQt(state.boxes[i]));
    }
    if (groups_->count() != static_cast<int>(state.groups.size())) {
        groups_->clear();
        for (const std::string& group : state.groups)
            groups_->addItem(ToQt(group));
    }
    groups_->setCurrentIndex(static_cast<int>(state.group));
    system_->setChecked(state.includeSystem);
    selected_->setText(ToQt(state.selected));
    warning_->setText(ToQt(state.warning));
    warning_->setVisible(!state.warning.empty());
    oneGroup_->setText(QStringLiteral("只选“%1”(&G)").arg(ToQt(state.oneGroup)));
    oneGroup_->setVisible(!state.oneGroup.empty());
    showing_ = false;
}

void AutoVchDialog::RunCommand(int index) {
    settled_.stop();
    generating_ = index == kGenerate;
    cancelled_ = false;
    Guarded([&] { form_.Command(index); });
    generating_ = false;
    HideProgress();
}

bool AutoVchDialog::ShowProgress(std::int64_t done, std::int64_t all) {
    EnableInputs(false);
    progress_->setRange(0, static_cast<int>(all));
    progress_->setValue(static_cast<int>(done));
    progress_->setFormat(QStringLiteral("已读取 %m 行，已生成 %v 行"));
    progress_->show();
    // The dialog is modal: what is taken here can only be a click on Cancel, or Esc.
    QCoreApplication::processEvents();
    return !cancelled_;
}

void AutoVchDialog::HideProgress() {
    progress_->hide();
    EnableInputs(true);
}

void AutoVchDialog::EnableInputs(bool enabled) {
    for (QWidget* input :
         std::initializer_list<QWidget*>{filter_, name_, columns_, patterns_, oneGroup_, generate_})
        input->setEnabled(enabled);
}

void AutoVchDialog::ShowColumnDialog(dialogs::frmSetColume& dialog) {
    ColumnDialog window(dialog, this);
    window.exec();
}

bool AutoVchDialog::ShowPatterns(const autovch::GenerationPreview& preview, autovch::LeftOut& without) {
    PatternDialog window(preview, without, this);
    if (window.exec() != QDialog::Accepted) return false;
    without = window.Without();
    return true;
}

void AutoVchDialog::reject() {
    if (generating_) {
        cancelled_ = true;
    } else {
        RunCommand(kCancel);
    }
}

void AutoVchDialog::Unload() {
    generating_ = false;
    done(form_.Result().outcome ? Accepted : Rejected);
}

}  // namespace vicenter::ui
