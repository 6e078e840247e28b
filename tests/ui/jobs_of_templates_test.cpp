// Jobs that go through many templates or many workbooks, and the generation, counted.

#include <QComboBox>
#include <QListWidget>
#include <QTableView>
#include <set>

#include "exchange/template_columns.h"
#include "platform/office/workbook_file.h"
#include "tests/ui/jobs_fixture.h"

namespace vicenter::ui {
namespace {

constexpr std::size_t kManyTemplates = 30;
constexpr int kManyWorkbooks = 30;

using ::testing::ElementsAre;

class SeveralFileDialogs : public fakes::ScriptedFileDialogs {
  public:
    std::vector<std::string> ChooseFilesToOpen(const system::FileRequest& request) override {
        requests.push_back(request);
        return several;
    }
    std::vector<std::string> several;
};

class JobsOfTemplatesTest : public JobsTest {
  protected:
    void SetUp() override { Show({1, 2, 3, 5, 6, 9, 11, 20}); }

    int LinesWith(const char* account) {
        return static_cast<int>(Number(
            "select count(*) from t_VchTemplateEntry e inner join t_VchTemplate t on t.FID = e.FID where "
            "t.FUserID = 1 and e.FAccountNumber = '" +
            std::string(account) + "'"));
    }
    // A workbook of the open template in which four cells are other ones.
    std::string ChangedWorkbook() {
        std::string path = folder.Path("日常费用.xlsx");
        surroundings.fileDialogs->choices = {path};
        ClickTool("mnuExp");
        const auto workbook = office::ReadWorkbook(path);
        office::Sheet& sheet = *workbook->FindSheet(exchange::kSheetName);
        for (const auto& [row, text] : {std::pair(1U, "报销办公用品费"), std::pair(3U, "报销差旅费（市内）"),
                                        std::pair(5U, "支付房租"), std::pair(8U, "招待费")}) {
            office::Cell& cell = sheet.At(row, 1);
            cell.kind = office::CellKind::Text;
            cell.text = workbook->Texts().Intern(text);
        }
        office::WriteWorkbook(*workbook, path, office::FileKind::Xlsx);
        TakeMessages();
        surroundings.fileDialogs->requests.clear();
        return path;
    }
    // Takes the steps in a modal window of that name as soon as it is up.
    void WhenModal(const char* name, const std::function<void(QDialog&)>& inDialog) {
        auto* watch = new QTimer(window);
        QObject::connect(watch, &QTimer::timeout, watch, [watch, name, inDialog] {
            const QPointer<QDialog> dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            if (!dialog || dialog->objectName() != QLatin1String(name)) return;
            watch->stop();
            watch->deleteLater();
            EXPECT_TRUE(QTest::qWaitForWindowActive(dialog));
            inDialog(*dialog);
            if (dialog && dialog->isVisible()) dialog->reject();
        });
        watch->start(1);
    }
    std::set<std::string> Numbers() {
        std::set<std::string> numbers;
        for (int row = 1; row <= window->Presenter().RowCount(); ++row)
            numbers.insert(Text(row, column::kNo));
        return numbers;
    }
};

TEST_F(JobsOfTemplatesTest, AnAccountIsReplacedInAllTemplates) {
    Multiply("日常费用", kManyTemplates);
    const int lines = LinesWith("5602.04");
    ASSERT_EQ(lines, 56);
    Answer(system::MessageResult::Yes);
    InDialog(
        "frmReplaceCodes",
        [&](QDialog& dialog) {
            Write("5602.04");
            Press(Qt::Key_Tab);
            Write("5602.03");
            Press(Qt::Key_Return);
            ASSERT_EQ(dialog.findChild<QTableWidget*>("lines")->rowCount(), lines);
            Click(dialog, "cmdReplace");
            EXPECT_EQ(LinesWith("5602.04"), 0);
            Click(dialog, "cmdClose");
        },
        [&] { Press(Qt::Key_H, Qt::ControlModifier | Qt::ShiftModifier); });
    ASSERT_TRUE(dialogShown_);
    const int after = Counted();
    // Back again, and by hand.
    Answer(system::MessageResult::Yes);
    InDialog(
        "frmReplaceCodes", [&](QDialog& dialog) { Click(dialog, "cmdUndo"); },
        [&] { Press(Qt::Key_H, Qt::ControlModifier | Qt::ShiftModifier); });
    ASSERT_EQ(LinesWith("5602.04"), lines);
    ClickNode("detail-0");
    Counted();
    for (const std::string& key : OwnKeys()) {
        // Whoever knows the templates that have it goes to these alone.
        if (window->Tree().FindNode(key)->text(0).startsWith("日常费用")) Node(key);
        bool changed = false;
        for (int row = 1; row <= window->Presenter().RowCount(); ++row) {
            if (Text(row, column::kAccountNumber) != "5602.04") continue;
            Cell(row, column::kAccountNumber);
            Write("5602.03");
            Press(Qt::Key_Tab);
            changed = true;
        }
        if (changed) Save();
    }
    EXPECT_EQ(LinesWith("5602.04"), 0);
    IsInTable(3, Counted(), after);
}

TEST_F(JobsOfTemplatesTest, WhereAnItemIsUsed) {
    Multiply("日常费用", kManyTemplates);
    int found = 0;
    for (const std::string& key : OwnKeys()) {
        Node(key);
        for (int row = 1; row <= window->Presenter().RowCount(); ++row) {
            if (Text(row, column::kItems).find("E005") == std::string::npos) continue;
            EXPECT_TRUE(InSight(row, column::kItems)) << "there would be pages to turn";
            ++found;
        }
    }
    const int before = Counted();
    Press(Qt::Key_F, Qt::ControlModifier | Qt::ShiftModifier);
    Press(Qt::Key_Tab);
    Press(Qt::Key_Tab);
    Write("E005");
    Press(Qt::Key_Return);
    EXPECT_EQ(window->findChild<QTableWidget*>("lstHits")->rowCount(), found);
    EXPECT_EQ(found, 28);
    IsInTable(6, before, Counted());
}

TEST_F(JobsOfTemplatesTest, AllTemplatesAreCheckedAndAFaultIsMended) {
    Multiply("日常费用", kManyTemplates - 1);
    const std::string broken = OwnKeys()[kManyTemplates - 5];
    const std::string id = broken.substr(std::string("detail-").size());
    const auto breakIt = [&] {
        Close();
        session->Execute("delete from t_VchTemplateEntry where FID = 3");  // has faults of its own
        session->Execute("delete from t_VchTemplate where FID = 3");
        session->Execute(
            "update t_VchTemplateEntry set FAccountNumber = '5602.93', FAccountID = 0 where "
            "FEntryID = 5 and FID = " +
            id);
        Open();
        SetUp();
        steps = 0;
    };
    const auto check = [&] {
        EXPECT_EQ(Number("select count(*) from t_VchTemplateEntry where FAccountNumber = '5602.93'"), 0);
        EXPECT_EQ(window->Presenter().TemplateId(), id);
    };
    breakIt();
    std::string at;
    for (const std::string& key : OwnKeys()) {
        Node(key);
        if (!window->Presenter().Faults().Cells().empty()) at = key;
    }
    ASSERT_EQ(at, broken);
    Node(at);
    Cell(5, column::kAccountNumber);
    Write("5602.04");
    Press(Qt::Key_Tab);
    Save();
    check();
    const int before = Counted();
    breakIt();
    OfNode("ROOT", "mnuCheckTemplates", "none", [](QDialog&) {});
    EXPECT_THAT(Boxes(), ElementsAre(::testing::StartsWith("检查了 ")));
    auto* list = window->findChild<QTableView*>("lstFaults");
    ASSERT_TRUE(QTest::qWaitFor([&] { return list->model()->rowCount() > 0; }));
    ASSERT_EQ(list->model()->index(0, 2).data().toString(), "5602.93");
    Click(*list->viewport(), list->visualRect(list->model()->index(0, 3)).center());
    ASSERT_EQ(Active(), (center::CellAddress{5, column::kAccountNumber}));
    Write("5602.04");
    Press(Qt::Key_Tab);
    Save();
    check();
    IsInTable(10, before, Counted());
}

TEST_F(JobsOfTemplatesTest, AColleaguesWorkbookComesBack) {
    OpenTemplate("日常费用");
    const std::string changed = ChangedWorkbook();
    // What is there is exported first, so that the two can be compared elsewhere.
    surroundings.fileDialogs->choices = {folder.Path("old.xlsx")};
    Tool("mnuExp");
    const int exported = Counted();
    surroundings.fileDialogs->choices = {changed};
    Answer(system::MessageResult::Ok);
    InDialog(
        "frmImportPreview",
        [&](QDialog& dialog) {
            EXPECT_EQ(dialog.findChild<QTableWidget*>("changes")->rowCount(), 4);
            Click(dialog, "cmdOK");
        },
        [&] { Tool("mnuImp"); });
    ASSERT_TRUE(dialogShown_);
    EXPECT_EQ(Text(5, column::kExplanation), "支付房租");
    const int imported = Counted();
    // Then without a look at what changes.
    IsInTable(4, exported + imported - 1, imported);
}

TEST_F(JobsOfTemplatesTest, ThirtyWorkbooksOfBranches) {
    OpenTemplate("日常费用");
    std::vector<std::string> once;
    std::vector<std::string> together;
    for (int branch = 1; branch <= kManyWorkbooks; ++branch) {
        for (const auto& [files, name] : {std::pair(&once, "A"), std::pair(&together, "B")}) {
            files->push_back(folder.Path(name + std::to_string(branch) + ".xlsx"));
            surroundings.fileDialogs->choices = {files->back()};
            ClickTool("mnuExp");
        }
    }
    TakeMessages();
    surroundings.fileDialogs->requests.clear();
    const std::int64_t templates = Number("select count(*) from t_VchTemplate");
    for (const std::string& workbook : once) {
        surroundings.fileDialogs->choices = {workbook};
        Tool("mnuImp");
        Boxes();
    }
    EXPECT_EQ(Number("select count(*) from t_VchTemplate"), templates + kManyWorkbooks);
    const int before = Counted();
    const auto dialogs = std::make_shared<SeveralFileDialogs>();
    dialogs->several = together;
    system::Surroundings replaced = system::Surroundings::Current();
    replaced.fileDialogs = dialogs;
    const system::SurroundingsScope scope(replaced);
    InDialog(
        "frmImportReport",
        [&](QDialog& dialog) {
            EXPECT_EQ(dialog.findChild<QTableWidget*>("files")->rowCount(), kManyWorkbooks);
            Click(dialog, "cmdClose");
        },
        [&] { Tool("mnuImp"); });
    ASSERT_TRUE(dialogShown_);
    EXPECT_EQ(dialogs->requests.size(), 1U);
    EXPECT_EQ(Number("select count(*) from t_VchTemplate"), templates + 2 * kManyWorkbooks);
    steps += 2;  // all files of the folder, and the button
    IsInTable(11, before, Counted());
}

TEST_F(JobsOfTemplatesTest, AGenerationWithoutTwoPatterns) {
    // Rents and wages are in templates already.
    const std::set<std::string> unwanted = {"2", "4"};
    const auto generate = [&](const char* name, const std::function<void(QDialog&)>& preview) {
        WhenModal("frmAutoVch", [&, name](QDialog& dialog) {
            // To the group by its place in the list.
            auto* groups = dialog.findChild<QComboBox*>("cmbCheckState");
            groups->setFocus();
            ++steps;
            while (groups->currentText() != "付" && groups->currentIndex() + 1 < groups->count())
                Press(Qt::Key_Down);
            Click(dialog, "txtVchTpName");
            Write(name);
            preview(dialog);
            Click(dialog, "Command0");
        });
        Press(Qt::Key_F5);
        TakeBack();
        EXPECT_EQ(Boxes().size(), 1U);
        EXPECT_EQ(window->Presenter().TemplateName(), name);
    };
    generate("Before", [](QDialog&) {});
    std::set<std::string> all = Numbers();
    ASSERT_TRUE(std::includes(all.begin(), all.end(), unwanted.begin(), unwanted.end()));
    for (const std::string& number : unwanted) {
        int first = 1;
        while (Text(first, column::kNo) != number)
            ++first;
        int last = first;
        while (Text(last + 1, column::kNo) == number)
            ++last;
        Rows(first, last);
        Press(Qt::Key_Minus, Qt::ControlModifier);
    }
    Save();
    for (const std::string& number : unwanted)
        all.erase(number);
    EXPECT_EQ(Numbers(), all);
    const std::vector<std::string> contents = Contents();
    const int before = Counted();
    generate("After", [&](QDialog& dialog) {
        WhenModal("frmPatterns", [&](QDialog& patterns) {
            auto* table = patterns.findChild<QTableWidget*>("patterns");
            for (int row = 0; row < table->rowCount(); ++row) {
                if (!unwanted.contains(table->item(row, 1)->text().toStdString())) continue;
                const QRect box = table->visualItemRect(table->item(row, 0));
                Click(*table->viewport(), QPoint(box.left() + 10, box.center().y()));
                EXPECT_EQ(table->item(row, 0)->checkState(), Qt::Unchecked);
            }
            Click(patterns, "cmdOK");
        });
        Click(dialog, "cmdPatterns");
    });
    EXPECT_EQ(Contents(), contents);
    IsInTable(12, before, Counted());
}

}  // namespace
}  // namespace vicenter::ui
