#include "ui/window/tool_band.h"

#include <QApplication>
#include <QHelpEvent>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <QToolTip>

#include <gtest/gtest.h>

namespace vicenter::ui {
namespace {

struct Expected {
    const char* key;
    const char* caption;
    const char* tooltip;
};

constexpr Expected kExpected[] = {
    {"mnuNew", "新增", "新增模板库"},      {"mnuDel", "删除", "删除模板库"},
    {"mnuSave", "保存", "保存模板库"},     {"mnuShowCol", "显示隐藏列", "显示隐藏列"},
    {"mnuDelRow", "删行", "删除分录"},     {"mnuAddRow", "添加", "添加分录"},
    {"mnuPrcFind", "查找", "查找"},        {"mnuImp", "引入", "凭证模板引入"},
    {"mnuExp", "引出", "凭证模板引出"},    {"mnuAutoVch", "根据凭证生成", "根据凭证生成"},
    {"mnuCloudP", "上传云盘", "上传云盘"}, {"mnuShare", "分享", "分享"},
    {"mnuQuit", "退出", "退出"},
};

TEST(ToolBand, HoldsThirteenToolsInTheirOrderWithCaptionTooltipAndIcon) {
    const ToolBand band;
    EXPECT_EQ(band.objectName(), "BandToolBar");
    std::size_t next = 0;
    for (const QAction* action : band.actions()) {
        if (action->isSeparator()) continue;
        ASSERT_LT(next, std::size(kExpected));
        EXPECT_EQ(action->objectName(), kExpected[next].key);
        EXPECT_EQ(action->text(), kExpected[next].caption);
        EXPECT_EQ(action->toolTip(), kExpected[next].tooltip);
        EXPECT_FALSE(action->icon().isNull()) << kExpected[next].key;
        ++next;
    }
    EXPECT_EQ(next, std::size(kExpected));
}

TEST(ToolBand, AClickTellsTheKeyAndLeavesTheFocusWhereItWas) {
    ToolBand band;
    band.show();
    QSignalSpy clicked(&band, &ToolBand::toolClicked);
    auto* button = band.findChild<QToolButton*>("mnuSaveButton");
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(button->focusPolicy(), Qt::NoFocus);
    QTest::mouseClick(button, Qt::LeftButton);
    ASSERT_EQ(clicked.size(), 1);
    EXPECT_EQ(clicked[0][0].toString(), "mnuSave");
}

TEST(ToolBand, TooltipsAreTheFixedTextsAlsoWhereACommandHasAKey) {
    const std::pair<const char*, const char*> expected[] = {
        {"mnuNew", "新增模板库"},
        {"mnuSave", "保存模板库"},
        {"mnuPrcFind", "查找"},
        {"mnuAutoVch", "根据凭证生成"},
    };
    ToolBand band;
    band.show();
    for (const auto& [key, text] : expected) {
        auto* button = band.findChild<QToolButton*>(QString(key) + "Button");
        ASSERT_NE(button, nullptr) << key;
        const QPoint at = button->rect().center();
        QHelpEvent asked(QEvent::ToolTip, at, button->mapToGlobal(at));
        QApplication::sendEvent(button, &asked);
        EXPECT_EQ(QToolTip::text(), text);
    }
    QToolTip::hideText();
}

TEST(ToolBand, StatesEnableAndDisableToolsInTheirPlaces) {
    ToolBand band;
    band.show();
    center::ToolStates states{};
    states[static_cast<std::size_t>(center::Tool::PrcFind)] = true;
    band.SetStates(states);
    EXPECT_TRUE(band.ActionOf(center::Tool::PrcFind).isEnabled());
    EXPECT_FALSE(band.ActionOf(center::Tool::Save).isEnabled());
    QSignalSpy clicked(&band, &ToolBand::toolClicked);
    QTest::mouseClick(band.findChild<QToolButton*>("mnuSaveButton"), Qt::LeftButton);
    EXPECT_TRUE(clicked.isEmpty());
}

}  // namespace
}  // namespace vicenter::ui
