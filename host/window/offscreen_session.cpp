#include "host/window/offscreen_session.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QPixmap>
#include <QPushButton>
#include <QTimer>
#include <QToolButton>
#include <algorithm>
#include <ostream>
#include <utility>

#include "automation/error.h"
#include "platform/system/file_replacement.h"
#include "ui/look/qt_text.h"
#include "ui/run/qt_surroundings.h"
#include "ui/window/vicenter_window.h"

namespace vicenter::host {

using ui::FromQt;
using ui::GridView;
using ui::TemplateTree;
using ui::ToQt;
using ui::VICenterWindow;

namespace {

constexpr int kActivationMilliseconds = 2000;
constexpr int kLineCount = 4;

// One pattern, as the session types it: number, explanation, direction key, account code, amount.
struct Line {
    const char* number;
    const char* explanation;
    const char* direction;
    const char* account;
    const char* amount;
};

constexpr Line kLines[kLineCount] = {
    {"1", "支付本月水电费", "借", "5602.04", "8000"},
    {"1", "支付本月水电费", "贷", "1002.01", "8000"},
    {"2", "报销市内交通费", "借", "1001", "2500.5"},
    {"2", "报销市内交通费", "贷", "9999", "2500.5"},
};

}  // namespace

// Answers questions with yes and tells what was said.
class OffscreenSession::Boxes : public system::MessageBoxes {
  public:
    explicit Boxes(std::ostream& out) : out_(out) {}

    system::MessageResult Show(const std::string& text, system::MessageButtons buttons, system::MessageIcon,
                               const std::string& title) override {
        std::string line = text;
        for (std::size_t at = 0; (at = line.find("\r\n", at)) != std::string::npos;)
            line.replace(at, 2, " ");
        out_ << "     〔" << title << "〕" << line << "\n";
        last = text;
        ++count;
        if (buttons == system::MessageButtons::YesNo) return system::MessageResult::Yes;
        return system::MessageResult::Ok;
    }

    std::string last;
    int count = 0;

  private:
    std::ostream& out_;
};

OffscreenSession::OffscreenSession(std::function<void()> open, std::string folder, std::ostream& out)
    : open_(std::move(open)), folder_(std::move(folder)), out_(out), boxes_(std::make_shared<Boxes>(out)) {
    system::Surroundings surroundings = ui::QtSurroundings(system::Surroundings::Current());
    surroundings.messageBoxes = boxes_;
    surroundings.fileDialogs = system::Surroundings::OfSystem().fileDialogs;  // cancel
    scope_ = std::make_unique<system::SurroundingsScope>(std::move(surroundings));
}

OffscreenSession::~OffscreenSession() = default;

void OffscreenSession::Step(const std::string& text) {
    out_ << " " << ++steps_ << ". " << text << "\n";
}

void OffscreenSession::Expect(bool condition, const std::string& what) {
    if (condition) return;
    ++failures_;
    out_ << "    !! " << what << "\n";
}

void OffscreenSession::Picture(const std::string& stem, QWidget* of) {
    Settle();
    const std::string path = FromQt(QDir(ToQt(folder_)).filePath(ToQt(stem) + QStringLiteral(".png")));
    std::string refusal = system::WhyNotWritable(path, {"图片", {"\x89PNG"}, {}});
    if (refusal.empty()) {
        try {
            system::FileReplacement file(path);
            if ((of ? of : window_)->grab().save(ToQt(file.Path()), "PNG")) {
                file.PutInPlace();
                out_ << "     -> " << path << "\n";
                return;
            }
        } catch (const automation::Error& error) {
            refusal = error.Text();
        }
    }
    Expect(false, "cannot write " + path + " " + refusal);
}

VICenterWindow* OffscreenSession::OpenWindow() {
    open_();
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (auto* window = qobject_cast<VICenterWindow*>(widget); window && window->isVisible())
            window_ = window;
    }
    if (window_) Settle();
    return window_;
}

// Without a window manager nobody gives the focus back when a dialog has closed, or the box over a command
// that took long.
void OffscreenSession::Settle() {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    if (window_ && !window_->isActiveWindow() && !QApplication::activeModalWidget()) Activate();
}

void OffscreenSession::Activate() {
    window_->activateWindow();
    QElapsedTimer waited;
    waited.start();
    while (!window_->isActiveWindow() && waited.elapsed() < kActivationMilliseconds) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
}

void OffscreenSession::CloseWindow() {
    std::exchange(window_, nullptr)->close();
    Settle();
}

void OffscreenSession::Click(QWidget& widget, int x, int y) {
    const QPointF at(x, y);
    const QPointF global = widget.mapToGlobal(at);
    QMouseEvent press(QEvent::MouseButtonPress, at, global, Qt::LeftButton, Qt::LeftButton, {});
    QMouseEvent release(QEvent::MouseButtonRelease, at, global, Qt::LeftButton, Qt::NoButton, {});
    if (widget.focusPolicy() & Qt::ClickFocus) widget.setFocus(Qt::MouseFocusReason);
    if (auto* area = qobject_cast<QAbstractScrollArea*>(widget.parentWidget());
        area && area->viewport() == &widget) {
        area->setFocus(Qt::MouseFocusReason);
    }
    QApplication::sendEvent(&widget, &press);
    QApplication::sendEvent(&widget, &release);
    Settle();
}

void OffscreenSession::ClickTool(const QString& key) {
    auto* button = window_->findChild<QToolButton*>(key + QStringLiteral("Button"));
    if (!button || !button->isEnabled()) {
        Expect(false, "the tool " + FromQt(key) + " is not there to be clicked");
        return;
    }
    Click(*button, button->width() / 2, button->height() / 2);
}

QWidget* OffscreenSession::Keyboard() {
    if (!QApplication::focusWidget()) Settle();
    return QApplication::focusWidget() ? QApplication::focusWidget() : window_;
}

void OffscreenSession::Key(int key, int modifiers) {
    QWidget* target = Keyboard();
    const auto keys = static_cast<Qt::KeyboardModifiers>(modifiers);
    QKeyEvent press(QEvent::KeyPress, key, keys);
    QKeyEvent release(QEvent::KeyRelease, key, keys);
    QApplication::sendEvent(target, &press);
    QApplication::sendEvent(target, &release);
    Settle();
}

void OffscreenSession::Type(const QString& text) {
    for (const QChar character : text) {
        QWidget* target = Keyboard();
        if (character.unicode() > 0x7F) {
            // Chinese comes from an input method.
            QInputMethodEvent commit;
            commit.setCommitString(QString(character));
            QApplication::sendEvent(target, &commit);
            continue;
        }
        QKeyEvent press(QEvent::KeyPress, character.toUpper().unicode(), {}, QString(character));
        QKeyEvent release(QEvent::KeyRelease, character.toUpper().unicode(), {}, QString(character));
        QApplication::sendEvent(target, &press);
        QApplication::sendEvent(target, &release);
    }
    Settle();
}

void OffscreenSession::Enter(const QString& text) {
    Type(text);
    Key(Qt::Key_Tab);
}

void OffscreenSession::SelectCell(int row, int column) {
    GridView& grid = window_->Grid();
    const QModelIndex index = grid.Model().IndexOf({row, column});
    grid.scrollTo(index);
    const QPoint at = grid.visualRect(index).center();
    Click(*grid.viewport(), at.x(), at.y());
}

std::string OffscreenSession::CellText(int row, int column) const {
    return std::string(window_->Presenter().Grid().Text(row, column));
}

void OffscreenSession::MakeTemplate() {
    TemplateTree& tree = window_->Tree();
    Step("打开窗口：模板树有 " + std::to_string(window_->Presenter().Nodes().size() - 1) +
         " 个模板，当前打开“" + window_->Presenter().TemplateName() + "”，" +
         std::to_string(window_->Presenter().RowCount()) + " 行分录");
    Picture("1-opened");

    const auto& nodes = window_->Presenter().Nodes();
    const auto custom = std::find_if(nodes.begin(), nodes.end(), [](const center::TreeNode& node) {
        return node.key != center::kRootKey && node.key != "detail-0";
    });
    if (custom != nodes.end()) {
        Step("单击模板“" + custom->text + "”");
        const QPoint at = tree.visualItemRect(tree.FindNode(custom->key)).center();
        const std::string id = custom->key.substr(center::kTemplateKeyHead.size());
        Click(*tree.viewport(), at.x(), at.y());
        Expect(window_->Presenter().TemplateId() == id, "the clicked template is not open");
        out_ << "     " << window_->Presenter().RowCount() << " 行分录\n";
        Picture("2-selected");
    }

    Step("单击“新增”，改名后回车");
    tree.setFocus();
    Settle();
    ClickTool(QStringLiteral("mnuNew"));
    newKey_ = window_->Presenter().SelectedNode();
    name_ = "练习模板 " + window_->Presenter().TemplateId();
    if (auto* editor = tree.findChild<QLineEdit*>(QStringLiteral("labelEditor"))) {
        editor->selectAll();
        Type(ToQt(name_));
        Key(Qt::Key_Return);
    } else {
        Expect(false, "the new template's label is not being edited");
    }
    Expect(window_->Presenter().TemplateName() == name_, "the template was not renamed to " + name_);
    Expect(window_->Presenter().RowCount() == 0, "a new template has lines");
}

void OffscreenSession::ChooseColumns() {
    Step("单击“显示隐藏列”，取消“附件数”，确定");
    QTimer::singleShot(0, window_, [this] {
        auto* dialog = window_->findChild<QDialog*>(QStringLiteral("frmSetColume"));
        auto* list = dialog ? dialog->findChild<QListWidget*>(QStringLiteral("ColList")) : nullptr;
        auto* ok = dialog ? dialog->findChild<QPushButton*>(QStringLiteral("Command0")) : nullptr;
        if (!list || !ok) {
            Expect(false, "the column dialog did not open");
            if (dialog) dialog->reject();
            return;
        }
        for (int row = 0; row < list->count(); ++row) {
            if (list->item(row)->data(Qt::UserRole).toInt() != center::column::kFileCount) continue;
            list->setCurrentRow(row);
            QKeyEvent space(QEvent::KeyPress, Qt::Key_Space, {}, QStringLiteral(" "));
            QApplication::sendEvent(list, &space);
        }
        Picture("3-columns", dialog);
        Click(*ok, ok->width() / 2, ok->height() / 2);
    });
    ClickTool(QStringLiteral("mnuShowCol"));
    Expect(window_->Presenter().Grid().Layout(center::column::kFileCount).hidden,
           "the column of attachments is still shown");
}

void OffscreenSession::TypeLines() {
    Step("录入 4 行分录（键盘、输入法），其中一行的科目代码不存在");
    using namespace center::column;
    for (int row = 1; row <= kLineCount; ++row) {
        const Line& line = kLines[row - 1];
        SelectCell(row, kNo);
        Enter(QString::fromUtf8(line.number));
        Enter(QString::fromUtf8(line.explanation));
        Type(QString::fromUtf8(line.direction));
        SelectCell(row, kAccountNumber);
        Type(QString::fromUtf8(line.account));
        Key(Qt::Key_Escape);  // a name list that opened; what was typed stays
        if (CellText(row, kAccountNumber).empty() && !window_->Grid().IsEditing()) {
            Type(QString::fromUtf8(line.account));
        }
        Key(Qt::Key_Tab);
        if (CellText(row, kAccountName).empty()) {
            SelectCell(row, kAccountName);
            Enter(QStringLiteral("不存在的科目"));
        }
        if (!window_->Presenter().Grid().Layout(kAmount).hidden) {
            SelectCell(row, kAmount);
            Enter(QString::fromUtf8(line.amount));
        }
    }
    Expect(window_->Presenter().RowCount() == kLineCount, "not every typed line is in use");
    Expect(window_->Presenter().IsDirty(), "typing did not mark the template as changed");
    SelectCell(kLineCount, kAccountNumber);
    Picture("4-typed");
}

void OffscreenSession::SaveTemplate() {
    Step("单击“保存”");
    boxes_->last.clear();
    ClickTool(QStringLiteral("mnuSave"));
    Expect(boxes_->last.find("保存成功") != std::string::npos, "no message of a successful save");
    Expect(!window_->Presenter().IsDirty(), "the template still counts as changed");
    Expect(window_->Presenter().Grid().FaultyCheck(kLineCount, center::column::kAccountNumber) == 1,
           "the unknown account is not red");
    Picture("5-saved");
}

void OffscreenSession::ReopenAndCompare() {
    Step("关闭窗口，重新打开，单击“" + name_ + "”");
    std::vector<std::string> before;
    for (int row = 1; row <= kLineCount; ++row) {
        for (int column = 1; column <= center::kColumnCount; ++column)
            before.push_back(CellText(row, column));
    }
    CloseWindow();
    if (!OpenWindow()) {
        Expect(false, "the window does not open again");
        return;
    }
    TemplateTree& tree = window_->Tree();
    QTreeWidgetItem* node = tree.FindNode(newKey_);
    Expect(node != nullptr, "the new template is not in the tree");
    if (!node) return;
    tree.scrollToItem(node);
    const QPoint at = tree.visualItemRect(node).center();
    Click(*tree.viewport(), at.x(), at.y());
    std::size_t next = 0;
    int differences = 0;
    for (int row = 1; row <= kLineCount; ++row) {
        for (int column = 1; column <= center::kColumnCount; ++column) {
            if (CellText(row, column) != before[next++]) ++differences;
        }
    }
    Expect(window_->Presenter().RowCount() == kLineCount, "the lines did not come back");
    Expect(differences == 0, std::to_string(differences) + " cells differ from what was saved");
    out_ << "     " << window_->Presenter().RowCount() << " 行分录，与保存前逐格一致\n";
    window_->Grid().setFocus();
    SelectCell(1, center::column::kAccountNumber);
    Picture("6-reopened");
}

bool OffscreenSession::Run() {
    QDir().mkpath(ToQt(folder_));
    if (!OpenWindow()) {
        Expect(false, "the window did not open");
        return false;
    }
    MakeTemplate();
    ChooseColumns();
    TypeLines();
    SaveTemplate();
    ReopenAndCompare();
    if (window_) CloseWindow();
    out_ << (failures_ == 0 ? "全部步骤完成。" : "有步骤没有达到预期。") << "图片在 " << folder_ << "\n";
    return failures_ == 0;
}

}  // namespace vicenter::host
