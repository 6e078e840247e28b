// Whose window it is stands in the title; what has been done stands in the status line.

#include <QHelpEvent>
#include <QLabel>
#include <QToolTip>

#include "entry/host_context.h"
#include "tests/ui/window_fixture.h"
#include "ui/window/status_line.h"

namespace vicenter::ui {
namespace {

class TitleTest : public WindowTest {
  protected:
    QLabel& Hint() { return *window->findChild<QLabel*>(QStringLiteral("lblHint")); }
    std::string Title() { return window->windowTitle().toStdString(); }
};

TEST_F(TitleTest, NamesTheAccountSetAndTheUserAndWhatIsNotSaved) {
    entry::PresetPropsString("UserID=16394;AcctName=林氏茶礼;UserName=林晓岚;");
    Open();
    EXPECT_EQ(Title(), "凭证模板 - 林氏茶礼 - 林晓岚");
    ClickCell(1, 2);
    Type("x");
    Key(Qt::Key_Return);
    EXPECT_EQ(Title(), "凭证模板 * - 林氏茶礼 - 林晓岚");
    Key(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(Title(), "凭证模板 - 林氏茶礼 - 林晓岚");
}

TEST_F(TitleTest, ANameWithQtsOwnSignForWhatIsNotSavedIsShownAsItStands) {
    entry::PresetPropsString("UserID=16394;AcctName=A[*]B;");
    Open();
    // Qt shows two of them as one.
    EXPECT_EQ(Title(), "凭证模板 - A[*][*]B - 用户 16394");
}

TEST_F(TitleTest, ANameThatTurnsTheDirectionOfTextIsShownWithItsSigns) {
    entry::PresetPropsString("UserID=16394;AcctName=茶\u202E礼;UserName=林\n晓\u2066岚;");
    Open();
    EXPECT_EQ(Title(), "凭证模板 - 茶□礼 - 林 晓□岚");
    StatusLine line;
    center::StatusState state;
    state.hint = "编号 \u202E3";
    line.SetState(state);
    EXPECT_EQ(line.findChild<QLabel*>(QStringLiteral("lblHint"))->text().toStdString(), "编号 □3");
}

TEST_F(TitleTest, ASaveIsToldInTheStatusLineAsWell) {
    Open();
    ClickCell(1, 2);
    Type("x");
    Key(Qt::Key_Return);
    Key(Qt::Key_S, Qt::ControlModifier);
    EXPECT_THAT(Messages(), Contains(HasSubstr("保存成功！")));
    EXPECT_THAT(Hint().text().toStdString(), HasSubstr("✓ 模板 标准模板 已保存"));
}

TEST_F(TitleTest, WhatWasDoneToOneTemplateIsNotSaidOverAnother) {
    Open();
    ClickCell(1, 2);
    Type("x");
    Key(Qt::Key_Return);
    Key(Qt::Key_S, Qt::ControlModifier);
    ASSERT_THAT(Hint().text().toStdString(), HasSubstr("已保存"));
    window->Tree().setFocus();
    Key(Qt::Key_Down);
    ASSERT_NE(window->Presenter().TemplateId(), "0");
    EXPECT_EQ(Hint().text().toStdString(), "");
}

TEST_F(TitleTest, AFileThatWasMadeIsALinkThatOpensIt) {
    Open();
    window->Presenter().TellDone("模板 A&B 已引出", "/tmp/模板 <1>.xlsx");
    EXPECT_THAT(Hint().text().toStdString(), HasSubstr("模板 A&amp;B 已引出"));
    EXPECT_THAT(Hint().text().toStdString(), HasSubstr(">/tmp/模板 &lt;1&gt;.xlsx</a>"));
    EXPECT_EQ(Hint().accessibleName().toStdString(), "模板 A&B 已引出　/tmp/模板 <1>.xlsx");
    emit Hint().linkActivated(QStringLiteral("file"));
    EXPECT_THAT(ledger->surroundings.processes->opened, ElementsAre("/tmp/模板 <1>.xlsx"));
    ledger->surroundings.processes->openError = 53;
    emit Hint().linkActivated(QStringLiteral("file"));
    EXPECT_THAT(Messages(), Contains("文件未能打开！\r\n\r\n/tmp/模板 <1>.xlsx"));
}

TEST_F(TitleTest, WhatIsWrongComesBeforeWhatHasBeenDone) {
    StatusLine line;
    line.TellDone(QStringLiteral("已保存"), {});
    auto* hint = line.findChild<QLabel*>(QStringLiteral("lblHint"));
    center::StatusState state;
    state.hint = "科目代码不存在";
    line.SetState(state);
    EXPECT_EQ(hint->text(), "科目代码不存在");
    line.Flash(QStringLiteral("只能录入数字"));
    EXPECT_EQ(hint->text(), "只能录入数字");
    line.EndFlash();
    line.SetState({});
    EXPECT_EQ(hint->text(), "✓ 已保存");
}

TEST_F(TitleTest, ANarrowStatusLineCutsNoAmountWithoutASign) {
    StatusLine line;
    center::StatusState state;
    state.lines = 12;
    state.numbers = 3;
    state.number = "3";
    state.debit = "1,234,567,890.00";
    state.credit = "1,234,567,891.00";
    state.difference = "-1.00";
    state.selectionSum = "借 1,234,567,890.00　贷 1,234,567,891.00";
    state.unbalanced = {"3"};
    line.SetState(state);
    line.resize(500, line.sizeHint().height());
    line.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&line));
    int cut = 0;
    int right = 0;
    for (const char* name : {"lblUnbalanced", "lblSelection", "lblSums", "lblCounts"}) {
        auto* label = line.findChild<QLabel*>(name);
        EXPECT_GE(label->x(), right) << name << " covers another";
        right = label->geometry().right();
        EXPECT_LT(right, line.width()) << name;
        const QRect room = label->contentsRect();
        if (label->fontMetrics().horizontalAdvance(label->text()) <= room.width()) continue;
        ++cut;
        // As a label that holds the shortened text looks.
        QLabel shortened(label->fontMetrics().elidedText(label->text(), Qt::ElideRight, room.width()), &line);
        shortened.setContentsMargins(label->contentsMargins());
        shortened.setPalette(label->palette());
        shortened.setFont(label->font());
        shortened.resize(label->size());
        EXPECT_EQ(label->grab().toImage(), shortened.grab().toImage()) << name;
        QHelpEvent help(QEvent::ToolTip, room.center(), label->mapToGlobal(room.center()));
        QApplication::sendEvent(label, &help);
        EXPECT_TRUE(QToolTip::text().contains(label->text().section(QChar(0x3000), 0, 0))) << name;
        QToolTip::hideText();
    }
    EXPECT_GT(cut, 0);
}

TEST_F(TitleTest, TheStatusLineSaysWhenItsSumsStandInAHiddenColumn) {
    StatusLine line;
    auto* sums = line.findChild<QLabel*>(QStringLiteral("lblSums"));
    center::StatusState state;
    state.number = "1";
    state.debit = state.credit = "5.00";
    line.SetState(state);
    EXPECT_EQ(sums->text(), "编号 1：借 5.00　贷 5.00");
    state.amountHidden = true;
    line.SetState(state);
    EXPECT_EQ(sums->text(), "编号 1：借 5.00　贷 5.00（金额列已隐藏）");
}

}  // namespace
}  // namespace vicenter::ui
