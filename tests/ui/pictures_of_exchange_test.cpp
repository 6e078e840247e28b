// The pictures of imports and of generations: what is seen before the question, and what is told after it.

#include <QAbstractButton>
#include <QComboBox>
#include <QTabWidget>
#include <QTableWidget>

#include "exchange/template_columns.h"
#include "platform/office/workbook_file.h"
#include "tests/ui/pictures_fixture.h"
#include "tests/ui/rest.h"

namespace vicenter::ui {
namespace {

class SeveralFileDialogs : public fakes::ScriptedFileDialogs {
  public:
    std::vector<std::string> ChooseFilesToOpen(const system::FileRequest&) override { return several; }
    std::vector<std::string> several;
};

class ExchangePicturesTest : public PicturesTest {
  protected:
    // The open template as a workbook of that name.
    std::string Export(const std::string& name) {
        std::string path = folder.Path(name);
        surroundings.fileDialogs->choices = {path};
        ClickTool("mnuExp");
        TakeMessages();
        return path;
    }
    // By the heading of the column; rows from 1, below the headings.
    static void SetCell(office::Workbook& workbook, std::uint32_t row, std::string_view header,
                        std::string_view text) {
        office::Sheet& sheet = *workbook.FindSheet(exchange::kSheetName);
        for (std::uint32_t column = 0; column < center::kColumnCount; ++column) {
            if (exchange::kColumns[column].header != header) continue;
            office::Cell& cell = sheet.At(row, column);
            cell.kind = office::CellKind::Text;
            cell.text = workbook.Texts().Intern(text);
            return;
        }
        ADD_FAILURE() << header;
    }
    void Import(const std::vector<std::string>& files) {
        const auto dialogs = std::make_shared<SeveralFileDialogs>();
        dialogs->several = files;
        system::Surroundings replaced = system::Surroundings::Current();
        replaced.fileDialogs = dialogs;
        const system::SurroundingsScope scope(replaced);
        ClickTool("mnuImp");
    }
    static void Click(QWidget& parent, const char* name) {
        QTest::mouseClick(parent.findChild<QAbstractButton*>(QString::fromLatin1(name)), Qt::LeftButton);
    }
    static void Fill(QWidget& parent, const char* name, const char* text) {
        auto* box = parent.findChild<QLineEdit*>(QString::fromLatin1(name));
        QTest::mouseClick(box, Qt::LeftButton);
        QTest::keyClick(box, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(box, QString::fromLatin1(text));
        QApplication::processEvents();
    }
};

TEST_F(ExchangePicturesTest, WhatAnImportWouldChange) {
    const std::string path = Export("日常费用.xlsx");
    const auto workbook = office::ReadWorkbook(path);
    SetCell(*workbook, 1, "摘要(*)", "报销办公用品费");
    SetCell(*workbook, 2, "科目代码(*)", "1002.05");
    SetCell(*workbook, 2, "科目名称(*)", "建设银行一般户");
    SetCell(*workbook, 5, "金额", "18600");
    SetCell(*workbook, 8, "备注", "附菜单");
    SetCell(*workbook, 8, "核算项目", "D04,E006");
    office::WriteWorkbook(*workbook, path, office::FileKind::Xlsx);
    Dialog(
        "import-preview", [&] { Import({path}); },
        [](QWidget& dialog) {
            EXPECT_EQ(dialog.findChild<QTabWidget*>("pages")->count(), 2);
            EXPECT_GT(dialog.findChild<QTableWidget*>("changes")->rowCount(), 4);
        });
}

TEST_F(ExchangePicturesTest, TheReportOfSeveralFiles) {
    std::vector<std::string> files;
    for (const char* name : {"杭州分公司.xlsx", "上海分公司.xlsx", "北京分公司.xlsx", "广州分公司.xlsx"})
        files.push_back(Export(name));
    const auto faulty = office::ReadWorkbook(files[2]);
    SetCell(*faulty, 1, "金额", "八百六");
    SetCell(*faulty, 3, "附件数", "6张");
    office::WriteWorkbook(*faulty, files[2], office::FileKind::Xlsx);
    Dialog(
        "import-report", [&] { Import(files); },
        [](QWidget& dialog) { EXPECT_EQ(dialog.findChild<QTableWidget*>("files")->rowCount(), 4); });
}

TEST_F(ExchangePicturesTest, PatternsOfAGeneration) {
    Dialog(
        "", [this] { QTest::keyClick(&window->Grid(), Qt::Key_F5); },
        [&](QWidget& dialog) {
            Fill(dialog, "txtPeriod0", "2026");
            Fill(dialog, "txtPeriod1", "10");
            Fill(dialog, "txtPeriod2", "1");
            Fill(dialog, "txtPeriod3", "12");
            auto* warning = dialog.findChild<QLabel*>("lblMerged");
            Rest(dialog, "settledTimer");
            EXPECT_TRUE(warning->isVisible());
            QApplication::processEvents();
            Picture("generation-warning", dialog);
            // One group, all of its vouchers.
            auto* groups = dialog.findChild<QComboBox*>("cmbCheckState");
            groups->setFocus();
            while (groups->currentText() != "付" && groups->currentIndex() + 1 < groups->count())
                QTest::keyClick(groups, Qt::Key_Down);
            Fill(dialog, "txtPeriod3", "40");
            Rest(dialog, "settledTimer");
            EXPECT_FALSE(warning->isVisible());
            QApplication::processEvents();
            Dialog(
                "generation-preview", [&] { Click(dialog, "cmdPatterns"); },
                [](QWidget& patterns) {
                    auto* table = patterns.findChild<QTableWidget*>("patterns");
                    ASSERT_GT(table->rowCount(), 4);
                    table->item(2, 0)->setCheckState(Qt::Unchecked);
                });
        });
}

}  // namespace
}  // namespace vicenter::ui
