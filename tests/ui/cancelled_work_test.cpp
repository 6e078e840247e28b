// Commands that are cancelled while they wait for a server, by real events: whichever step it is that the
// user stops, another process finds all of the command or nothing, and that is what the user is told.

#include <QComboBox>
#include <QMimeData>
#include <QScopeGuard>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <utility>

#include "exchange/template_columns.h"
#include "platform/ado/odbc/odbc_provider.h"
#include "platform/office/workbook_file.h"
#include "platform/system/files.h"
#include "tests/host/program_run.h"
#include "tests/tds_server/server.h"
#include "tests/ui/tree_menu_fixture.h"
#include "tests/ui/work_at_once.h"
#include "ui/grid/rows_format.h"

namespace vicenter::ui {
namespace {

using system::MessageResult;
using ::testing::HasSubstr;
using ::testing::Not;

// Clicks Cancel as soon as the box is shown, once.
class Impatient final : public QObject {
  public:
    Impatient() { qApp->installEventFilter(this); }
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::Show || watched->objectName() != QStringLiteral("longWork"))
            return false;
        if (clicks_++ == 0) {
            auto* button = watched->findChild<QPushButton*>(QStringLiteral("cmdCancelLongWork"));
            QMetaObject::invokeMethod(
                button, [button] { QTest::mouseClick(button, Qt::LeftButton); }, Qt::QueuedConnection);
        }
        return false;
    }
    bool HasClicked() const { return clicks_ > 0; }

  private:
    int clicks_ = 0;
};

class CancelledWork : public TreeMenuTest {
  protected:
    CancelledWork() {
        ado::RegisterOdbcProviders();
        system::Surroundings::Current().longWork = work_;
    }
    ~CancelledWork() override { Leave(); }

    void Leave() {
        Close();
        session.reset();
        ado::CloseIdleOdbcConnections();
        ado::CloseIdleAccountSets();
    }
    // A window on an account set of the server that nobody has touched.
    void Begin() {
        Leave();
        const std::string name = "books" + std::to_string(++sets_);
        file = folder.Path(name + ".vas");
        std::filesystem::copy_file(system::PathFromUtf8(host::test::OriginalSet(true)),
                                   system::PathFromUtf8(file));
        server_.AddDatabase(name, system::PathFromUtf8(file));
        session = host::RegisterHostComponents({server_.ConnectText(name), 1});
        Open();
        TakeMessages();
    }

    // What the program finds in a process of its own.
    struct Books {
        std::string templates;  // rows, lines, control rows and versions, but for their times
        std::string log;
    };
    std::string Ask(const std::string& sql) {
        const std::string script = folder.Path("script.sql");
        const std::string answer = folder.Path("answer.txt");
        std::ofstream(script) << sql;
        host::test::RunningProgram other(VICENTER_PROGRAM, {"--account-set", file, "sql"}, script, answer);
        EXPECT_EQ(other.Wait().code, 0);
        std::ostringstream text;
        text << std::ifstream(answer).rdbuf();
        return text.str();
    }
    Books Look() {
        std::string all =
            Ask("select FID,FName,FUserID from t_VchTemplate order by FID\ngo\n"
                "select * from t_VchTemplateEntry order by FID,FEntryID\ngo\n"
                "select * from t_VchTpControl order by FID,FNo\ngo\n"
                "select FHistoryID,FID,FName,FOwnerID,FCommand,FKeptBy,FLines from t_VchTpHistory order by "
                "FHistoryID\ngo\n"
                "select * from t_VchTpHistoryEntry order by FHistoryID,FEntryID\ngo\n"
                "select * from t_VchTpHistoryControl order by FHistoryID,FNo\ngo\n"
                "select FKind,FDescription from t_Log order by FLogID\ngo\n");
        const std::size_t log = all.find("FKind\tFDescription");
        EXPECT_NE(log, std::string::npos);
        return {all.substr(0, log), all.substr(log)};
    }
    // The lines of one that the other does not have.
    static std::string Beyond(const std::string& one, const std::string& other) {
        std::istringstream lines(one);
        std::string beyond;
        for (std::string line; std::getline(lines, line);) {
            if (("\n" + other).find("\n" + line + "\n") == std::string::npos) beyond += line + "\n";
        }
        return beyond;
    }
    static bool Tells(const std::vector<std::string>& said, const char* what) {
        for (const std::string& text : said) {
            if (text.find(what) != std::string::npos) return true;
        }
        return false;
    }
    static std::size_t Count(const std::string& text, const std::string& part) {
        std::size_t count = 0;
        for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
            ++count;
        return count;
    }

    // Runs the command as it is, then once more for each step that may be stopped from where `hang` is called
    // on, each time on an untouched account set. `steps`: of how many at least nothing is written.
    void StopEach(
        int steps, const std::function<void()>& prepare,
        const std::function<void(const std::function<void()>& hang)>& run,
        const std::function<void()>& whenUndone = [] {}) {
        Begin();
        prepare();
        const Books before = Look();
        run([] {});
        const Books all = Look();
        EXPECT_NE(Beyond(all.templates, before.templates), "") << ::testing::PrintToString(TakeMessages());
        int undone = 0;
        int done = 0;
        for (int n = 1; n < 100 && !HasFailure(); ++n) {
            SCOPED_TRACE("batch " + std::to_string(n));
            Begin();
            prepare();
            TakeMessages();
            work_->stall = std::make_shared<tds_server::StallAtBatch>(n);
            {
                const Impatient user;
                run([&] { server_.Behave(work_->stall); });
                server_.BehaveWell();
                const bool came = std::exchange(work_->stall, nullptr)->HasCome();
                EXPECT_EQ(user.HasClicked(), came);
                if (!came) break;
            }
            const Books after = Look();
            const std::vector<std::string> said = TakeMessages();
            const std::string told = ::testing::PrintToString(said);
            // A commit that hangs cannot be stopped, and nobody knows.
            const bool known = !Tells(said, "无法确定");
            if (after.templates == before.templates) {
                ++undone;
                EXPECT_FALSE(known && Tells(said, "成功！")) << told;
                EXPECT_TRUE(!known || Count(after.log, "成功") == Count(before.log, "成功")) << after.log;
                window->activateWindow();
                ASSERT_TRUE(QTest::qWaitForWindowActive(window));
                whenUndone();
            } else {
                EXPECT_TRUE(after.templates == all.templates)
                    << Beyond(after.templates, all.templates) << "instead of\n"
                    << Beyond(all.templates, after.templates) << told;
                for (const char* denial : {"没有保存", "账套保持原样", "失败"})
                    EXPECT_FALSE(known && Tells(said, denial)) << told;
                // Whatever comes now reads what is stored.
                if (++done > 1) break;
            }
            surroundings.messageBoxes->answers.clear();
        }
        EXPECT_GE(undone, steps);
    }

    // What was typed is there to be stored after all.
    void ExpectTyped(const std::string& text) {
        EXPECT_EQ(Text(1, column::kExplanation), text);
        EXPECT_TRUE(window->Presenter().IsDirty());
        EXPECT_TRUE(window->windowTitle().startsWith(QStringLiteral("凭证模板 * - ")));
    }

    std::string MakeWorkbook(const std::string& name) const {
        office::Workbook workbook;
        office::Sheet& sheet = workbook.AddSheet(exchange::kSheetName);
        const std::vector<std::string> values = {"1", "提现", "借", "1001", "库存现金", "0"};
        for (std::uint32_t row = 0; row <= 3; ++row) {
            for (std::uint32_t column = 0; column < values.size(); ++column) {
                office::Cell& cell = sheet.At(row, column);
                cell.kind = office::CellKind::Text;
                cell.text =
                    workbook.Texts().Intern(row == 0 ? exchange::kColumns[column].header : values[column]);
            }
        }
        std::string path = folder.Path(name);
        office::WriteWorkbook(workbook, path, office::FileKind::Xlsx);
        return path;
    }
    void DropOn(QWidget& target, const QPoint& at, const QMimeData& mime) {
        QDragEnterEvent enter(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&target, &enter);
        QDropEvent drop(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&target, &drop);
        QApplication::processEvents();
    }
    void DropFile(const std::string& path) {
        QMimeData mime;
        mime.setUrls({QUrl::fromLocalFile(QString::fromStdString(path))});
        DropOn(*window, QPoint(200, 200), mime);
    }
    void DeleteNode(
        const std::string& name, const std::function<void()>& hang = [] {}) {
        ClickNode(KeyOf(name));
        hang();
        Answer(MessageResult::Yes);
        QTest::keyClick(&window->Tree(), Qt::Key_Delete);
    }
    // October's vouchers.
    void Generate(const char* name, const std::function<void()>& hang) {
        WithDialog(
            {}, "frmAutoVch",
            [&](QDialog& dialog) {
                const auto type = [&](const char* box, const char* text) {
                    auto* edit = dialog.findChild<QLineEdit*>(QString::fromLatin1(box));
                    edit->setFocus();
                    edit->selectAll();
                    QInputMethodEvent typed;
                    typed.setCommitString(QString::fromUtf8(text));
                    QApplication::sendEvent(edit, &typed);
                };
                type("txtPeriod0", "2026");
                type("txtPeriod1", "10");
                type("txtPeriod2", "1");
                type("txtPeriod3", "2");
                type("txtVchTpName", name);
                hang();
                Press(dialog, "Command0");
                if (dialog.isVisible()) dialog.reject();
            },
            [&] { ClickTool("mnuAutoVch"); });
    }
    void ReplaceCodes(const std::function<void(QDialog&)>& inDialog) {
        ChooseInMenu("ROOT", "mnuReplaceCodes", inDialog, "frmReplaceCodes");
    }
    static void ListCodes(QDialog& dialog) {
        dialog.findChild<QLineEdit*>("from")->setText("1001");
        dialog.findChild<QLineEdit*>("to")->setText("1002.05");
        QTest::keyClick(dialog.findChild<QLineEdit*>("to"), Qt::Key_Return);
    }

    tds_server::Server server_;
    std::shared_ptr<WorkAtOnce> work_ = std::make_shared<WorkAtOnce>();
    int sets_ = 0;
};

TEST_F(CancelledWork, SavingMineAsNewLeavesNothingBehindAndLosesNothing) {
    StopEach(
        3,
        [this] {
            OpenTemplate("日常费用");
            TypeInto(1, column::kExplanation, "mine");
            Ask("update t_VchTemplateEntry set FExp = 'theirs' where FID = 1 and FEntryID = 1\n");
        },
        [this](const auto& hang) {
            hang();
            Answer(MessageResult::Yes);
            ClickTool("mnuSave");
        },
        [this] {
            ExpectTyped("mine");
            EXPECT_EQ(KeyOf("自定义模板(1)"), "");
            Answer(MessageResult::Yes);
            ClickTool("mnuSave");
            EXPECT_EQ(Number("select count(*) from t_VchTemplateEntry where FExp = 'mine'"), 1);
            TakeMessages();
        });
}

TEST_F(CancelledWork, ANewTemplateIsThereOrNot) {
    StopEach(
        1, [this] { window->Tree().setFocus(); },
        [this](const auto& hang) {
            hang();
            ClickTool("mnuNew");
            if (auto* editor = window->Tree().findChild<QLineEdit*>())
                QTest::keyClick(editor, Qt::Key_Escape);
        });
}

TEST_F(CancelledWork, ASaveUnderAnotherNameIsThereOrNot) {
    StopEach(
        2,
        [this] {
            OpenTemplate("日常费用");
            TypeInto(1, column::kExplanation, "mine");
        },
        [this](const auto& hang) {
            QTimer::singleShot(0, window, [&] {
                QWidget* dialog = QApplication::activeModalWidget();
                ASSERT_NE(dialog, nullptr);
                hang();
                QTest::mouseClick(dialog->findChild<QPushButton*>("cmdOK"), Qt::LeftButton);
            });
            QTest::keyClick(&window->Grid(), Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
        },
        [this] { ExpectTyped("mine"); });
}

TEST_F(CancelledWork, ACopyIsThereOrNot) {
    StopEach(
        2, [this] { OpenTemplate("日常费用"); },
        [this](const auto& hang) {
            hang();
            ChooseInMenu(KeyOf("日常费用"), "mnuDuplicate", [](QDialog&) {});
        });
}

TEST_F(CancelledWork, ANameIsTheOldOneOrTheNew) {
    StopEach(
        3, [this] { OpenTemplate("日常费用"); },
        [this](const auto& hang) {
            QTest::keyClick(&window->Tree(), Qt::Key_F2);
            auto* editor = window->Tree().findChild<QLineEdit*>();
            ASSERT_NE(editor, nullptr);
            editor->setText("renamed");
            hang();
            QTest::keyClick(editor, Qt::Key_Return);
            QApplication::processEvents();
        });
}

TEST_F(CancelledWork, ADeletionHasHappenedOrNot) {
    StopEach(
        3, [this] { OpenTemplate("日常费用"); }, [this](const auto& hang) { DeleteNode("日常费用", hang); });
}

TEST_F(CancelledWork, AnImportHasHappenedOrNot) {
    StopEach(
        3, [this] { OpenTemplate("日常费用"); },
        [this](const auto& hang) {
            hang();
            DropFile(MakeWorkbook("new.xlsx"));
        });
}

TEST_F(CancelledWork, AnImportOverATemplateHasHappenedOrNot) {
    StopEach(
        3, [this] { OpenTemplate("销售与收款"); },
        [this](const auto& hang) {
            Answer(MessageResult::Ok);
            WithDialog(
                {}, "frmImportPreview",
                [&](QDialog& dialog) {
                    hang();
                    Press(dialog, "cmdOK");
                },
                [&] { DropFile(MakeWorkbook("日常费用.xlsx")); });
        });
}

TEST_F(CancelledWork, AGenerationHasHappenedOrNot) {
    StopEach(
        3, [] {}, [this](const auto& hang) { Generate("October", hang); });
}

TEST_F(CancelledWork, AGenerationOverATemplateHasHappenedOrNot) {
    StopEach(
        3, [this] { OpenTemplate("销售与收款"); },
        [this](const auto& hang) {
            Answer(MessageResult::Yes);
            Generate("日常费用", hang);
        });
}

TEST_F(CancelledWork, ARestorationHasHappenedOrNot) {
    StopEach(
        3,
        [this] {
            OpenTemplate("日常费用");
            TypeInto(1, column::kExplanation, "typed over");
            ClickTool("mnuSave");
        },
        [this](const auto& hang) {
            ChooseInMenu(KeyOf("日常费用"), "mnuHistory", [&](QDialog& dialog) {
                hang();
                Answer(MessageResult::Yes);
                Press(dialog, "cmdRestore");
            });
        });
}

TEST_F(CancelledWork, ADeletedTemplateComesBackOrNot) {
    StopEach(
        2,
        [this] {
            OpenTemplate("日常费用");
            DeleteNode("日常费用");
        },
        [this](const auto& hang) {
            ChooseInMenu("ROOT", "mnuDeletedTemplates", [&](QDialog& dialog) {
                hang();
                Press(dialog, "cmdRestoreAsNew");
            });
        });
}

TEST_F(CancelledWork, AReplacementHasHappenedInAllTemplatesOrInNone) {
    StopEach(
        3, [this] { OpenTemplate("日常费用"); },
        [this](const auto& hang) {
            ReplaceCodes([&](QDialog& dialog) {
                ListCodes(dialog);
                hang();
                Answer(MessageResult::Yes);
                Press(dialog, "cmdReplace");
            });
        });
}

TEST_F(CancelledWork, AReplacementIsTakenBackInAllTemplatesOrInNone) {
    StopEach(
        3,
        [this] {
            OpenTemplate("日常费用");
            ReplaceCodes([&](QDialog& dialog) {
                ListCodes(dialog);
                Answer(MessageResult::Yes);
                Press(dialog, "cmdReplace");
            });
        },
        [this](const auto& hang) {
            ReplaceCodes([&](QDialog& dialog) {
                hang();
                Answer(MessageResult::Yes);
                Press(dialog, "cmdUndo");
            });
        });
}

TEST_F(CancelledWork, RowsThatAreDroppedOnANodeAreThereOrNot) {
    StopEach(
        3, [this] { OpenTemplate("日常费用"); },
        [this](const auto& hang) {
            const auto rows = window->Presenter().Cells().CopyBlock(center::CellSelection::Rows({{1, 2}}));
            ASSERT_TRUE(rows.has_value());
            QMimeData mime;
            mime.setText(QString::fromStdString(rows->text));
            mime.setData(RowsFormat(), QByteArray::fromStdString(rows->rows));
            TemplateTree& tree = window->Tree();
            hang();
            Answer(MessageResult::Yes);
            DropOn(*tree.viewport(), tree.visualItemRect(tree.FindNode(KeyOf("销售与收款"))).center(), mime);
        });
}

}  // namespace
}  // namespace vicenter::ui
