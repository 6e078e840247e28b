// Workbooks and the window by real events on the embedded demo account set: a file dropped on it, and imports
// and exports cancelled on the progress panel.

#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "automation/class_registry.h"
#include "exchange/template_columns.h"
#include "host/components/components.h"
#include "platform/office/excel_server.h"
#include "platform/office/workbook_file.h"
#include "store/component_classes.h"
#include "tests/fakes/fake_surroundings.h"
#include "tests/host/demo_set.h"
#include "ui/center_commands.h"
#include "ui/vicenter_window.h"
#include "ui/window_factory.h"

namespace vicenter::ui {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ExchangeWayTest : public ::testing::Test {
  protected:
    ExchangeWayTest() {
        store::RegisterComponentClasses();
        office::RegisterExcelServer();
        entry::WindowFactory::SetProcess(
            std::make_shared<QtWindowFactory>(std::make_shared<CenterCommands>()));
    }
    ~ExchangeWayTest() override {
        if (window_) window_->close();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        entry::WindowFactory::SetProcess(nullptr);
    }

    void SetUp() override {
        const QWidgetList before = QApplication::topLevelWidgets();
        automation::CreateObject("VelaVICenter.aplication")->Call("ShowVICenter");
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            auto* candidate = qobject_cast<VICenterWindow*>(widget);
            if (candidate != nullptr && !before.contains(widget)) window_ = candidate;
        }
        ASSERT_FALSE(window_.isNull());
        ASSERT_TRUE(QTest::qWaitForWindowActive(window_));
    }

    // A template workbook of so many lines, all of one template number.
    std::string MakeWorkbook(const std::string& name, std::uint32_t lines) const {
        office::Workbook workbook;
        office::Sheet& sheet = workbook.AddSheet(exchange::kSheetName);
        const auto setText = [&](std::uint32_t row, std::uint32_t column, std::string_view text) {
            office::Cell& cell = sheet.At(row, column);
            cell.kind = office::CellKind::Text;
            cell.text = workbook.Texts().Intern(text);
        };
        const std::vector<std::string> values = {"1", "提现", "借", "1001", "库存现金", "0"};
        for (std::uint32_t row = 0; row <= lines; ++row) {
            for (std::uint32_t column = 0; column < values.size(); ++column)
                setText(row, column, row == 0 ? exchange::kColumns[column].header : values[column]);
        }
        const std::string file = folder_.Path(name);
        office::WriteWorkbook(workbook, file, office::FileKind::Xlsx);
        return file;
    }
    void Drop(const std::vector<std::string>& files) {
        QMimeData data;
        QList<QUrl> urls;
        for (const std::string& file : files)
            urls.append(QUrl::fromLocalFile(QString::fromStdString(file)));
        data.setUrls(urls);
        QDragEnterEvent enter(QPoint(200, 200), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window_, &enter);
        accepted_ = enter.isAccepted();
        QDropEvent drop(QPointF(200, 200), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(window_, &drop);
        QApplication::processEvents();
    }
    // Clicks Cancel as soon as the progress panel shows it.
    void CancelWhenPossible() {
        auto* watch = new QTimer(window_);
        auto* button = window_->findChild<QPushButton*>(QStringLiteral("cmdCancelProgress"));
        ASSERT_NE(button, nullptr);
        QObject::connect(watch, &QTimer::timeout, watch, [this, watch, button] {
            if (!button->isVisible()) return;
            cancelled_ = true;
            watch->stop();
            QTest::mouseClick(button, Qt::LeftButton);
        });
        watch->start(0);
    }
    void Click(const char* name) {
        QTest::mouseClick(window_->findChild<QToolButton*>(QString::fromLatin1(name)), Qt::LeftButton);
    }
    std::vector<std::string> TakeMessages() {
        const std::vector<std::string> texts = surroundings_.messageBoxes->Texts();
        surroundings_.messageBoxes->shown.clear();
        return texts;
    }
    std::int64_t Number(const std::string& query) {
        return ado::OpenConnection(host::FileConnectString(file_))
            ->Execute(query)
            ->Value(std::size_t{0})
            .ToInt64();
    }
    std::int64_t Templates() { return Number("select count(*) from t_VchTemplate"); }
    bool PanelVisible() const {
        return window_->findChild<QWidget*>(QStringLiteral("progress"))->isVisible();
    }

    fakes::FakeSurroundings surroundings_;
    automation::ClassRegistry::Restore restore_;
    host::test::TestFolder folder_;
    std::string file_ = host::test::CopySet(folder_);
    host::HostSessionRef session_ = host::RegisterHostComponents({host::FileConnectString(file_), 1});
    QPointer<VICenterWindow> window_;
    bool accepted_ = false;
    bool cancelled_ = false;
};

TEST_F(ExchangeWayTest, AWorkbookDroppedOnTheWindowIsImportedAndSelected) {
    const std::string file = MakeWorkbook("Dropped.xlsx", 3);
    Drop({file});
    EXPECT_TRUE(accepted_);
    EXPECT_THAT(TakeMessages(), ElementsAre("引入模板 Dropped 成功！"));
    EXPECT_EQ(window_->Presenter().TemplateName(), "Dropped");
    EXPECT_EQ(window_->Presenter().RowCount(), 3);
    // A second time it asks, and Cancel leaves everything.
    Drop({file});
    EXPECT_THAT(TakeMessages(),
                ElementsAre("模板[Dropped]已存在，引入将覆盖所有凭证模板，建议先引出原模板备份。"
                            "请确认是否引入？"));
}

TEST_F(ExchangeWayTest, OtherFilesAndSeveralAtOnceAreNotTaken) {
    const std::string file = MakeWorkbook("a.xlsx", 1);
    const std::int64_t before = Templates();
    Drop({file, file});
    EXPECT_FALSE(accepted_);
    Drop({folder_.Path("a.txt")});
    EXPECT_FALSE(accepted_);
    EXPECT_THAT(TakeMessages(), IsEmpty());
    EXPECT_EQ(Templates(), before);
}

TEST_F(ExchangeWayTest, ACancelledImportWritesNothingAndTheNextOneRuns) {
    const std::string file = MakeWorkbook("Long.xlsx", 1000);
    const std::int64_t before = Templates();
    CancelWhenPossible();
    Drop({file});
    EXPECT_TRUE(cancelled_);
    EXPECT_THAT(TakeMessages(), IsEmpty());
    EXPECT_EQ(Templates(), before);
    EXPECT_FALSE(PanelVisible());
    Drop({file});
    EXPECT_THAT(TakeMessages(), ElementsAre("引入模板 Long 成功！"));
    EXPECT_EQ(Templates(), before + 1);
    EXPECT_FALSE(PanelVisible());
}

TEST_F(ExchangeWayTest, ACancelledExportLeavesNoFile) {
    Drop({MakeWorkbook("Long.xlsx", 1000)});
    EXPECT_THAT(TakeMessages(), ElementsAre("引入模板 Long 成功！"));
    const std::string target = folder_.Path("out.xlsx");
    surroundings_.fileDialogs->choices = {target, target};
    CancelWhenPossible();
    Click("mnuExpButton");
    EXPECT_TRUE(cancelled_);
    EXPECT_THAT(TakeMessages(), IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(system::PathFromUtf8(target)));
    EXPECT_FALSE(PanelVisible());
    Click("mnuExpButton");
    EXPECT_THAT(TakeMessages(), ElementsAre("模板引出成功！"));
    EXPECT_TRUE(std::filesystem::exists(system::PathFromUtf8(target)));
}

}  // namespace
}  // namespace vicenter::ui
