// The window and others on one account set: a real file dialog that lists its folder, the program in a
// process of its own that writes meanwhile, a copy of its file, a log that somebody keeps locked.

#include <QElapsedTimer>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QPushButton>
#include <QTimer>
#include <QTreeView>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>

#include "platform/ado/account_set/account_set_copies.h"
#include "platform/system/files.h"
#include "tests/fakes/held_log.h"
#include "tests/host/program_run.h"
#include "tests/ui/demo_set_fixture.h"
#include "tests/ui/rest.h"
#include "tests/ui/watched_folder.h"
#include "ui/run/long_work.h"
#include "ui/run/qt_surroundings.h"

namespace vicenter::ui {
namespace {

namespace fs = std::filesystem;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr int kLongestListing = 10000;  // milliseconds

class SecondProcessTest : public DemoSetTest {
  protected:
    void SetUp() override {
        system::Surroundings::Current().fileDialogs = std::make_shared<QtFileDialogs>();
        Open();
    }

    // Clicks the tool and does the work while its file dialog is open, which is then cancelled.
    void AtDialog(const char* tool, const std::function<void(QFileDialog&)>& work) {
        bool met = false;
        QTimer::singleShot(0, window, [&] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            met = true;
            work(*dialog);
            dialog->reject();
        });
        ClickTool(tool);
        EXPECT_TRUE(met) << tool;
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    }
    // A new file in the folder has the dialog read it anew; comes back when it knows what the file is.
    void List(QFileDialog& dialog, const std::string& name) {
        std::ofstream(folder.Path(name)) << "listed";
        dialog.setDirectory(QString::fromStdString(folder.Path()));
        auto* model = dialog.findChild<QFileSystemModel*>();
        ASSERT_NE(model, nullptr);
        const auto isKnown = [&] {
            const QModelIndex kind = model->index(QString::fromStdString(folder.Path(name)), 2);
            return kind.isValid() && !kind.data().toString().isEmpty();
        };
        EXPECT_TRUE(QTest::qWaitFor(isKnown, kLongestListing)) << name;
        dialog.selectFile(QStringLiteral("set.vas"));
        QApplication::processEvents();
    }
    // A template with one line, typed and saved.
    void SaveTemplate() {
        window->Tree().setFocus();
        ClickTool("mnuNew");
        Key(Qt::Key_Escape);
        TypeLine(1, "7", "mine", "j", "1001");
        ClickTool("mnuSave");
        EXPECT_THAT(TakeMessages(), Contains(HasSubstr("保存成功")));
    }
    static std::string Mine() { return "select count(*) from t_VchTemplateEntry where FExp = 'mine'"; }
    // What somebody finds who copies the file and nothing else.
    std::int64_t MineInCopy() const {
        const std::string copy = folder.Path("copy.vas");
        fs::copy_file(system::PathFromUtf8(file), system::PathFromUtf8(copy),
                      fs::copy_options::overwrite_existing);
        return ado::OpenConnection(host::FileConnectString(copy) + ";Pooling=no")
            ->Execute(Mine())
            ->Value(std::size_t{0})
            .ToInt64();
    }
    std::uintmax_t LogBytes() const {
        std::error_code none;
        const std::uintmax_t bytes = fs::file_size(system::PathFromUtf8(file + "-wal"), none);
        return none ? 0 : bytes;
    }
};

TEST_F(SecondProcessTest, AFileDialogOpensNoFileOfTheAccountSetWhoseFolderItLists) {
    SaveTemplate();
    ASSERT_GT(LogBytes(), 0U);
    for (const char* tool : {"mnuExp", "mnuImp"}) {
        AtDialog(tool, [&](QFileDialog& dialog) {
            const WatchedFolder watched(folder.Path());
            List(dialog, std::string(tool) + ".xlsx");
            std::vector<std::string> opened = watched.Opened();
            std::erase(opened, std::string(tool) + ".xlsx");  // by this test, to write it
            EXPECT_THAT(opened, IsEmpty()) << tool;
        });
    }
}

// A list of files whose every column is read, at its first size.
TEST_F(SecondProcessTest, TheDateOfAFileIsReadWhole) {
    for (const char* tool : {"mnuExp", "mnuImp"}) {
        AtDialog(tool, [&](QFileDialog& dialog) {
            List(dialog, std::string(tool) + ".xlsx");
            auto* list = dialog.findChild<QTreeView*>(QStringLiteral("treeView"));
            ASSERT_NE(list, nullptr);
            constexpr int kDate = 3;
            ASSERT_TRUE(list->isVisible());
            const QModelIndex listed = list->model()->index(0, kDate, list->rootIndex());
            ASSERT_TRUE(listed.isValid());
            EXPECT_GE(list->columnWidth(kDate),
                      list->fontMetrics().horizontalAdvance(listed.data().toString()) + 6);
            EXPECT_LE(list->visualRect(listed).right(), list->viewport()->width());
        });
    }
}

// Opened and closed besides are the three files themselves, as by a dialog that looks into what it lists.
TEST_F(SecondProcessTest, WhatBothAreToldIsStoredIsThereWhileADialogListsTheFolder) {
    const int rounds = std::getenv("VICENTER_LONG") != nullptr ? 1000 : 12;
    constexpr int kEach = 5;
    const auto mine = ado::OpenConnection(host::FileConnectString(file));
    mine->Execute("create table t_Told(FID int not null primary key, FWho int not null)");
    int next = 0;
    AtDialog("mnuExp", [&](QFileDialog& dialog) {
        for (int round = 0; round < rounds; ++round) {
            const std::string script = folder.Path("script.sql");
            std::ofstream out(script);
            for (int i = 0; i < kEach; ++i)
                out << "insert into t_Told values(" << ++next << ", 2)\ngo\n";
            out.close();
            host::test::RunningProgram other(VICENTER_PROGRAM, {"--account-set", file, "sql"}, script);
            for (int i = 0; i < kEach; ++i) {
                for (const char* end : {"", "-wal", "-shm"})
                    std::ifstream(file + end).get();
                EXPECT_NO_THROW(
                    mine->Execute("insert into t_Told values(" + std::to_string(++next) + ", 1)"));
            }
            List(dialog, "r" + std::to_string(round) + ".xlsx");
            EXPECT_EQ(other.Wait().code, 0);
        }
    });
    SaveTemplate();
    mine->Close();
    Close();
    ado::CloseIdleAccountSets();
    EXPECT_EQ(Number("select count(*) from t_Told where FWho = 1"), rounds * kEach);
    EXPECT_EQ(Number("select count(*) from t_Told where FWho = 2"), rounds * kEach);
    EXPECT_EQ(Number(Mine()), 1);
    EXPECT_THAT(ado::FindAccountSetDamage(file), IsEmpty());
}

TEST_F(SecondProcessTest, WhatWasSavedComesHomeWhileTheWindowRests) {
    SaveTemplate();
    ASSERT_EQ(MineInCopy(), 0);
    EXPECT_LE(window->findChild<QTimer*>(QStringLiteral("homeTimer"))->interval(), 10000);
    for (int time = 0; time < 2; ++time)
        Rest(*window, "homeTimer");
    EXPECT_EQ(LogBytes(), 0U);
    EXPECT_EQ(MineInCopy(), 1);
}

TEST_F(SecondProcessTest, WhatWasSavedComesHomeWhenTheWindowCloses) {
    SaveTemplate();
    ASSERT_EQ(MineInCopy(), 0);
    Close();
    EXPECT_EQ(LogBytes(), 0U);
    EXPECT_EQ(MineInCopy(), 1);
}

// What somebody does who tidies up files that he does not know.
TEST_F(SecondProcessTest, WhatIsDeletedBesideTheAccountSetCostsNothingThatWasSaved) {
    SaveTemplate();
    ClickCell(1, column::kExplanation);
    Type("other");
    Key(Qt::Key_Return);
    ASSERT_GT(LogBytes(), 0U);
    for (const char* end : {"-wal", "-shm"})
        ASSERT_TRUE(fs::remove(system::PathFromUtf8(file + end)));
    const std::string script = folder.Path("script.sql");
    std::ofstream(script) << "create table t_Early(a int)\n";
    host::test::RunningProgram early(VICENTER_PROGRAM, {"--account-set", file, "sql"}, script);
    EXPECT_NE(early.Wait().code, 0);
    // Whichever question of the window is first lets the lost log go, which brings it home.
    ClickTool("mnuSave");
    EXPECT_THAT(TakeMessages(), Contains(HasSubstr("保存成功")));
    Close();
    ado::CloseIdleAccountSets();
    EXPECT_EQ(Number(Mine()), 0);
    EXPECT_EQ(Number("select count(*) from t_VchTemplateEntry where FExp = 'other'"), 1);
    EXPECT_THAT(ado::FindAccountSetDamage(file), IsEmpty());
}

// --- what another process does while the window asks

class WhileItAsks : public SecondProcessTest {
  protected:
    // The template was saved elsewhere and is deleted while the second question stands.
    void SaveWhatIsDeletedMeanwhile(system::MessageResult overwrite) {
        SaveTemplate();
        ClickCell(1, column::kExplanation);
        Type("other");
        Key(Qt::Key_Return);
        session->Execute("update t_VchTemplateEntry set FExp = 'theirs' where FExp = 'mine'");
        surroundings.messageBoxes->meanwhile = {
            {}, [this] {
                host::test::RunningProgram program(
                    VICENTER_PROGRAM, {"--account-set", file, "--yes", "delete", "自定义模板(1)"});
                EXPECT_EQ(program.Wait().code, 0);
            }};
        surroundings.messageBoxes->answers = {system::MessageResult::No, overwrite,
                                              system::MessageResult::No};
        ClickTool("mnuSave");
        EXPECT_EQ(TakeMessages().back(), "模板 自定义模板(1) 已在别处被删除，是否将当前分录另存为新模板？");
        EXPECT_EQ(Text(1, column::kExplanation), "other");
        EXPECT_EQ(window->Presenter().TemplateName(), "自定义模板(1)");
        EXPECT_TRUE(window->windowTitle().startsWith(QStringLiteral("凭证模板 * - ")));
        EXPECT_EQ(Number("select count(*) from t_VchTemplateEntry where FExp in ('other','theirs')"), 0);
        // Undoing fills no other template with it, and there is a way to keep it.
        surroundings.messageBoxes->answers = {system::MessageResult::Yes};
        ClickTool("mnuSave");
        EXPECT_EQ(Number("select count(*) from t_VchTemplateEntry where FExp = 'other' and FID > 0"), 1);
        EXPECT_FALSE(window->windowTitle().startsWith(QStringLiteral("凭证模板 * - ")));
    }
};

TEST_F(WhileItAsks, OverwritingReachesNoTemplateThatIsGone) {
    SaveWhatIsDeletedMeanwhile(system::MessageResult::Yes);
}

TEST_F(WhileItAsks, LookingAtWhatIsGoneOpensNoOther) {
    SaveWhatIsDeletedMeanwhile(system::MessageResult::No);
}

// Presses Cancel as soon as the panel is shown.
class Impatient : public QObject {
  public:
    Impatient() {
        qApp->installEventFilter(this);
        waiting_.start();
    }
    int met = 0;
    qint64 untilMet = 0;  // milliseconds

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Show && watched->objectName() == QStringLiteral("longWork")) {
            if (++met == 1) untilMet = waiting_.elapsed();
            QMetaObject::invokeMethod(watched->findChild<QPushButton*>(QStringLiteral("cmdCancelLongWork")),
                                      "click", Qt::QueuedConnection);
        }
        return false;
    }

  private:
    QElapsedTimer waiting_;
};

TEST_F(WhileItAsks, WhatCannotBeReadLeavesTreeAndLinesAsTheyAre) {
    system::Surroundings::Current().longWork = std::make_shared<QtLongWork>();
    SaveTemplate();
    ClickCell(1, column::kExplanation);
    Type("other");
    Key(Qt::Key_Return);
    session->Execute("update t_VchTemplateEntry set FExp = 'theirs' where FExp = 'mine'");
    const std::size_t nodes = window->Presenter().Nodes().size();
    std::optional<fakes::HeldLog> held;
    std::optional<Impatient> user;
    surroundings.messageBoxes->meanwhile = {{}, [&] {
                                                held.emplace(file);
                                                user.emplace();
                                            }};
    surroundings.messageBoxes->answers = {system::MessageResult::No, system::MessageResult::No};
    ClickTool("mnuSave");
    EXPECT_EQ(TakeMessages().back(), "模板 自定义模板(1) 无法读取，窗口中的分录保持不变，请稍后再试！");
    user.reset();
    held.reset();
    EXPECT_EQ(window->Presenter().Nodes().size(), nodes);
    EXPECT_EQ(Text(1, column::kExplanation), "other");
    EXPECT_TRUE(window->windowTitle().startsWith(QStringLiteral("凭证模板 * - ")));
    surroundings.messageBoxes->answers = {system::MessageResult::No, system::MessageResult::Yes};
    ClickTool("mnuSave");
    EXPECT_EQ(TakeMessages().back(), "模板 自定义模板(1) 保存成功！");
    EXPECT_EQ(Number("select count(*) from t_VchTemplateEntry where FExp = 'other'"), 1);
}

TEST_F(SecondProcessTest, ALogThatIsLockedForGoodShowsThePanelAndTheSaveCanBeStopped) {
    system::Surroundings::Current().longWork = std::make_shared<QtLongWork>();
    SaveTemplate();
    ClickCell(1, column::kExplanation);
    Type("other");
    Key(Qt::Key_Return);
    {
        const fakes::HeldLog held(file);
        const Impatient user;
        ClickTool("mnuSave");
        EXPECT_GT(user.met, 0);
        EXPECT_LT(user.untilMet, 8000);  // by itself SQLite asks nobody for ten seconds
        EXPECT_THAT(
            TakeMessages(),
            ElementsAre(
                "模板 自定义模板(1) 保存失败！\r\n\r\n操作已取消，没有保存任何内容，录入的分录保持不变。"));
        EXPECT_EQ(user.met, 1) << "what would follow is not begun";
        EXPECT_EQ(Text(1, column::kExplanation), "other");
        EXPECT_TRUE(window->windowTitle().startsWith(QStringLiteral("凭证模板 * - ")));
        // Resting waits for nothing.
        Rest(*window, "homeTimer");
    }
    ClickTool("mnuSave");
    EXPECT_THAT(TakeMessages(), Contains(HasSubstr("保存成功")));
    EXPECT_EQ(Number(Mine()), 0);
    EXPECT_EQ(Number("select count(*) from t_VchTemplateEntry where FExp = 'other'"), 1);
}

}  // namespace
}  // namespace vicenter::ui
