#include "ui/run/qt_surroundings.h"

#include <QApplication>
#include <QFileIconProvider>
#include <QFileInfo>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QTreeView>
#include <algorithm>

#include "entry/message_box.h"
#include "platform/system/file_dialog_flags.h"
#include "platform/system/unanswered.h"
#include "ui/look/dialog_frame.h"
#include "ui/look/qt_path.h"
#include "ui/look/qt_text.h"
#include "ui/run/long_work.h"
#include "ui/run/window_call.h"

namespace vicenter::ui {

namespace {

constexpr int kMostLines = 20;  // of a text that needs no scrolling

QMessageBox::StandardButtons StandardButtons(system::MessageButtons buttons) {
    switch (buttons) {
        case system::MessageButtons::OkCancel:
            return QMessageBox::Ok | QMessageBox::Cancel;
        case system::MessageButtons::YesNo:
            return QMessageBox::Yes | QMessageBox::No;
        case system::MessageButtons::Ok:
            break;
    }
    return QMessageBox::Ok;
}

QMessageBox::Icon Icon(system::MessageIcon icon) {
    switch (icon) {
        case system::MessageIcon::Information:
            return QMessageBox::Information;
        case system::MessageIcon::Question:
            return QMessageBox::Question;
        case system::MessageIcon::Exclamation:
            return QMessageBox::Warning;
        case system::MessageIcon::Critical:
            return QMessageBox::Critical;
        case system::MessageIcon::None:
            break;
    }
    return QMessageBox::NoIcon;
}

QWidget* DialogParent() {
    if (QWidget* modal = QApplication::activeModalWidget()) return modal;
    return QApplication::activeWindow();
}

// A dialog to save with whose promise "the path must exist" holds: a name in a folder that is not there keeps
// it open.
class SavingDialog : public QFileDialog {
  public:
    SavingDialog(QWidget* parent, bool pathMustExist) : QFileDialog(parent), pathMustExist_(pathMustExist) {}

    void accept() override {
        const QStringList files = selectedFiles();
        const QString folder = files.isEmpty() ? QString() : QFileInfo(files.constFirst()).absolutePath();
        if (pathMustExist_ && !folder.isEmpty() && !QFileInfo(folder).isDir()) {
            QtMessageBoxes().Show("文件夹不存在，请重新输入文件名！\r\n\r\n" + PathFromQt(folder),
                                  system::MessageButtons::Ok, system::MessageIcon::Information,
                                  entry::kMessageTitle);
            return;
        }
        QFileDialog::accept();
    }

  private:
    bool pathMustExist_;
};

std::optional<std::string> Chosen(QFileDialog& dialog) {
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
    return PathFromQt(dialog.selectedFiles().constFirst());
}

// "xls" of "*.xls"; empty for "*.*" and for patterns of several kinds.
QString SuffixOf(const std::string& pattern) {
    const QString text = ToQt(pattern);
    if (!text.startsWith(QLatin1String("*.")) || text.contains(u';') || text.contains(u' ')) return {};
    const QString suffix = text.mid(2);
    return suffix.contains(u'*') || suffix.contains(u'?') ? QString() : suffix;
}

// Yes and No are both answers, and No is not always the harmless one: it gives unsaved changes up. As with
// the boxes that users of such programs know, neither Esc nor the frame answers for them.
class AnswerOnly : public QObject {
  public:
    explicit AnswerOnly(QMessageBox& box) : QObject(&box) {
        box.setWindowFlag(Qt::WindowCloseButtonHint, false);
        box.installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override {
        const bool escape = event->type() == QEvent::KeyPress &&
                            static_cast<const QKeyEvent*>(event)->matches(QKeySequence::Cancel);
        const bool frame = event->type() == QEvent::Close && event->spontaneous();
        if (!escape && !frame) return QObject::eventFilter(watched, event);
        event->ignore();
        return true;
    }
};

// A list of errors may be longer than the screen is high, its buttons below the edge: it is read in a box of
// its own that scrolls, and can be copied from there.
void MakeScrollable(QMessageBox& box) {
    constexpr qsizetype kMostCharacters = 1200;
    const QString text = box.text();
    if (text.size() <= kMostCharacters && text.count(u'\n') <= kMostLines) return;
    auto* label = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"));
    if (label == nullptr || box.layout() == nullptr) return;
    auto* whole = new QPlainTextEdit(text, &box);
    whole->setObjectName(QStringLiteral("messageText"));
    whole->setReadOnly(true);
    whole->setTabChangesFocus(true);
    whole->setAccessibleName(box.windowTitle());
    const QScreen* screen = box.screen();
    whole->setMinimumSize(
        ScrollingTextSize(whole->fontMetrics(), screen ? screen->availableSize() : QSize()));
    delete box.layout()->replaceWidget(label, whole);
    label->hide();
}

// Icons and kinds of files by their names alone. Qt's own look into files whose suffix they do not know;
// what a dialog lists may be an account set that somebody in this process has open, and closing it there
// would drop his locks. Asked by the thread that reads the folder.
class PlainFileIcons : public QFileIconProvider {
  public:
    PlainFileIcons() : folder_(QFileIconProvider::icon(Folder)), file_(QFileIconProvider::icon(File)) {}

    QIcon icon(IconType type) const override { return type == File ? file_ : folder_; }
    QIcon icon(const QFileInfo& info) const override { return info.isDir() ? folder_ : file_; }
    QString type(const QFileInfo& info) const override {
        if (info.isDir()) return QStringLiteral("文件夹");
        const QString suffix = info.suffix().toUpper();
        return suffix.isEmpty() ? QStringLiteral("文件") : suffix + QStringLiteral(" 文件");
    }

  private:
    QIcon folder_;
    QIcon file_;
};

// Lives as long as the dialog, which does not own its icons.
class IconsOfDialog : public QObject {
  public:
    explicit IconsOfDialog(QFileDialog& dialog) : QObject(&dialog) { dialog.setIconProvider(&icons_); }

  private:
    PlainFileIcons icons_;
};

// As wide as its texts are, and the dialog as they need it. Qt's own dialog has the list by that name.
void ShowWholeDates(QFileDialog& dialog) {
    auto* list = dialog.findChild<QTreeView*>(QStringLiteral("treeView"));
    if (list == nullptr) return;
    constexpr int kDate = 3;
    list->header()->setSectionResizeMode(kDate, QHeaderView::ResizeToContents);
}

}  // namespace

QSize ScrollingTextSize(const QFontMetrics& metrics, const QSize& screen) {
    constexpr int kCharacters = 80;
    constexpr int kBesideText = 140;  // icon, margins, frame
    constexpr int kAboveAndBelow = 180;
    // What a message box allows itself: what is wider is cut off, the scroll bar first.
    constexpr int kLeftToScreen = 480;
    constexpr int kWidest = 1000;
    constexpr int kSmallScreen = 1024;
    const int box =
        screen.width() <= kSmallScreen ? screen.width() : std::min(screen.width() - kLeftToScreen, kWidest);
    const auto within = [](int wanted, int room) { return room > 0 ? std::min(wanted, room) : wanted; };
    return {within(metrics.averageCharWidth() * kCharacters, box - kBesideText),
            within(metrics.lineSpacing() * kMostLines, screen.height() - kAboveAndBelow)};
}

void FillMessageBox(QMessageBox& box, const std::string& text, system::MessageButtons buttons,
                    system::MessageIcon icon, const std::string& title) {
    box.setObjectName(QStringLiteral("messageBox"));
    FrameTitleBar(box);
    box.setWindowTitle(ToQt(title));
    // Plain: a template's name may hold what reads as mark-up.
    box.setTextFormat(Qt::PlainText);
    box.setText(ToQtLines(text));
    box.setIcon(Icon(icon));
    box.setStandardButtons(StandardButtons(buttons));
    if (QPushButton* ok = qobject_cast<QPushButton*>(box.button(QMessageBox::Ok))) {
        ok->setText(QStringLiteral("确定"));
        box.setDefaultButton(ok);
    }
    if (QAbstractButton* cancel = box.button(QMessageBox::Cancel)) cancel->setText(QStringLiteral("取消"));
    if (QPushButton* yes = qobject_cast<QPushButton*>(box.button(QMessageBox::Yes))) {
        yes->setText(QStringLiteral("是(&Y)"));
        box.setDefaultButton(yes);
    }
    if (QAbstractButton* no = box.button(QMessageBox::No)) {
        no->setText(QStringLiteral("否(&N)"));
        new AnswerOnly(box);
    }
    MakeScrollable(box);
}

QStringList NameFilters(const system::FileRequest& request) {
    QStringList filters;
    for (const system::FileFilter& filter : request.filters) {
        const QString pattern =
            QLatin1Char('(') + ToQt(filter.pattern).replace(u';', u' ') + QLatin1Char(')');
        QString text = ToQt(filter.description);
        if (!text.endsWith(pattern)) text += QLatin1Char(' ') + pattern;
        filters << text;
    }
    return filters;
}

void FillFileDialog(QFileDialog& dialog, const system::FileRequest& request, bool saving) {
    dialog.setObjectName(QStringLiteral("fileDialog"));
    FrameTitleBar(dialog);
#ifndef Q_OS_WIN
    // A desktop's own dialog may run in this process and look into the files that it lists.
    dialog.setOption(QFileDialog::DontUseNativeDialog);
#endif
    dialog.setOption(QFileDialog::DontUseCustomDirectoryIcons);
    new IconsOfDialog(dialog);
    dialog.setWindowTitle(ToQt(request.title));
    dialog.setAcceptMode(saving ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(saving ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    dialog.setOption(QFileDialog::DontConfirmOverwrite,
                     saving && (request.flags & system::file_dialog::kOverwritePrompt) == 0);
    const QStringList filters = NameFilters(request);
    if (!filters.isEmpty()) {
        dialog.setNameFilters(filters);
        const auto selected = static_cast<qsizetype>(request.selectedFilter);
        dialog.selectNameFilter(filters.value(selected, filters.constFirst()));
        if (saving) {
            const auto takeSuffix = [&dialog, request](const QString& chosen) {
                const qsizetype index = NameFilters(request).indexOf(chosen);
                if (index >= 0)
                    dialog.setDefaultSuffix(SuffixOf(request.filters[static_cast<size_t>(index)].pattern));
            };
            takeSuffix(dialog.selectedNameFilter());
            QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, takeSuffix);
        }
    }
    ShowWholeDates(dialog);
    if (!request.proposedName.empty()) dialog.selectFile(ToQt(request.proposedName));
    dialog.setLabelText(QFileDialog::LookIn, QStringLiteral("位置："));
    dialog.setLabelText(QFileDialog::FileName, QStringLiteral("文件名(&N)："));
    dialog.setLabelText(QFileDialog::FileType, QStringLiteral("文件类型："));
    dialog.setLabelText(QFileDialog::Accept,
                        saving ? QStringLiteral("保存(&S)") : QStringLiteral("打开(&O)"));
    dialog.setLabelText(QFileDialog::Reject, QStringLiteral("取消"));
}

system::MessageResult QtMessageBoxes::Show(const std::string& text, system::MessageButtons buttons,
                                           system::MessageIcon icon, const std::string& title) {
    const WindowCall call;
    QMessageBox box(DialogParent());
    FillMessageBox(box, text, buttons, icon, title);
    switch (box.exec()) {
        case QMessageBox::Yes:
            return system::MessageResult::Yes;
        case QMessageBox::No:
            return system::MessageResult::No;
        case QMessageBox::Cancel:
            return system::MessageResult::Cancel;
        case QMessageBox::Ok:
            return system::MessageResult::Ok;
        default:
            break;
    }
    return system::UnansweredResult(buttons);
}

std::optional<std::string> QtFileDialogs::ChooseFileToOpen(const system::FileRequest& request) {
    const WindowCall call;
    QFileDialog dialog(DialogParent());
    FillFileDialog(dialog, request, false);
    return Chosen(dialog);
}

std::vector<std::string> QtFileDialogs::ChooseFilesToOpen(const system::FileRequest& request) {
    const WindowCall call;
    QFileDialog dialog(DialogParent());
    FillFileDialog(dialog, request, false);
    dialog.setFileMode(QFileDialog::ExistingFiles);
    std::vector<std::string> chosen;
    if (dialog.exec() != QDialog::Accepted) return chosen;
    for (const QString& file : dialog.selectedFiles())
        chosen.push_back(PathFromQt(file));
    return chosen;
}

std::optional<std::string> QtFileDialogs::ChooseFileToSave(const system::FileRequest& request) {
    const WindowCall call;
    SavingDialog dialog(DialogParent(), (request.flags & system::file_dialog::kPathMustExist) != 0);
    FillFileDialog(dialog, request, true);
    return Chosen(dialog);
}

QtScreen::~QtScreen() {
    if (busy_ && QApplication::instance()) QApplication::restoreOverrideCursor();
}

void QtScreen::SetMousePointer(system::MousePointer pointer) {
    // The pointer is a state, not a stack: setting it twice needs one reset only.
    const bool busy = pointer == system::MousePointer::Hourglass;
    if (busy == busy_) return;
    busy_ = busy;
    if (busy) {
        QApplication::setOverrideCursor(Qt::WaitCursor);
    } else {
        QApplication::restoreOverrideCursor();
    }
}

void QtScreen::Repaint() {
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

system::Surroundings QtSurroundings(system::Surroundings base) {
    base.messageBoxes = std::make_shared<QtMessageBoxes>();
    base.fileDialogs = std::make_shared<QtFileDialogs>();
    base.screen = std::make_shared<QtScreen>();
    base.longWork = std::make_shared<QtLongWork>();
    return base;
}

}  // namespace vicenter::ui
