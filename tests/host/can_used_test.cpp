// pro_VchTpCanUsed reports a template number as unusable exactly when the grid would show one of its lines
// red, or a line has no account: the procedure's answer beside CheckErrorCell's, line by line.

#include <gtest/gtest.h>

#include "automation/class_registry.h"
#include "entry/sql_text.h"
#include "host/components/components.h"
#include "store/cls_vi_data.h"
#include "tests/host/demo_set.h"
#include "tests/lanes/set_lane.h"

namespace vicenter::host {
namespace {

struct Line {
    std::string account;
    std::string settle;
    std::string currency;
    std::string unit;
    std::string items;
};

class CanUsed : public testing::Test {
  protected:
    CanUsed() { session_ = RegisterHostComponents({lanes::ConnectTextOf(test::CopySet(folder_)), 1}); }

    static bool IsSound(const Line& line) {
        store::clsVIData data;
        bool sound = !line.account.empty();
        for (std::int32_t check = 1; check <= 5; ++check)
            sound =
                data.CheckErrorCell(check, line.account, line.settle, line.currency, line.unit, line.items) &&
                sound;
        return sound;
    }

    // Each line under a number of its own.
    void Store(const std::vector<Line>& lines) {
        std::string batch =
            "delete t_VchTemplateEntry where FID = 500 delete t_VchTpControl where FID = 500\r\n";
        for (std::size_t i = 0; i < lines.size(); ++i) {
            const std::string number = std::to_string(i + 1);
            const auto literal = [](const std::string& text) { return entry::SqlQuote(text, true, false); };
            batch +=
                "insert into t_VchTemplateEntry(FID,FEntryID,FNo,FAccountNumber,FSettleName,FCurrencyName,"
                "FUnitName,FItemsInfo) values(500," +
                number + "," + number + "," + literal(lines[i].account) + "," + literal(lines[i].settle) +
                "," + literal(lines[i].currency) + "," + literal(lines[i].unit) + "," +
                literal(lines[i].items) + ")\r\n";
            batch += "insert into t_VchTpControl(FID,FNo) values(500," + number + ")\r\n";
        }
        session_->Execute(batch + "exec pro_VchTpCanUsed 500");
    }

    void ExpectAgreement(const std::vector<Line>& lines) {
        Store(lines);
        const ado::RecordsetRef control =
            session_->Execute("select FNo,FIsCanUsed from t_VchTpControl where FID = 500 order by FNo");
        ASSERT_EQ(static_cast<std::int64_t>(lines.size()), control->RecordCount());
        int sound = 0;
        for (const Line& line : lines) {
            const bool expected = IsSound(line);
            sound += expected ? 1 : 0;
            EXPECT_EQ(expected ? 1 : 0, control->Value("FIsCanUsed").ToInt32())
                << "[" << line.account << "][" << line.settle << "][" << line.currency << "][" << line.unit
                << "][" << line.items << "]";
            control->MoveNext();
        }
        // A comparison of nothing but refusals would prove little.
        EXPECT_GT(sound, 0);
        EXPECT_LT(sound, static_cast<int>(lines.size()));
    }

    const std::vector<std::string> accounts_ = {"",        "1001",    "1002",    "1002.01", "1002.02",
                                                "1122.01", "1122.02", "5601.06", "5601.02", "1405.01",
                                                "5001.03", "9999",    " 1001",   "1001 ",   "2241.03"};
    const std::vector<std::string> settles_ = {"", "电汇", "JF03", "不存在", " ", " 电汇 "};
    const std::vector<std::string> currencies_ = {"", "人民币", "美元", "USD", "火星币", " ", "港币 "};
    const std::vector<std::string> units_ = {"", "千克", "克", "米", "套", "斤", " "};
    const std::vector<std::string> items_ = {"",
                                             ",",
                                             ",,",
                                             ",,,,",
                                             "C001",
                                             "c001",
                                             "C999",
                                             "C001 ",
                                             " C001",
                                             ", ,",
                                             "C001,",
                                             "C001,x",
                                             "D01,E001,P01",
                                             "D01,E001",
                                             "D01,E001,",
                                             "D01,,P01",
                                             ",,P01",
                                             "D01,E001,P99",
                                             "E001,D01",
                                             "D01,E001,P01,X",
                                             "D01,E001,P01,",
                                             "C001,S001",
                                             ",S001",
                                             "'",
                                             "，",
                                             "D01，E001，P01",
                                             ",，",
                                             "D01,E001，,P01",
                                             "D01,E001,P01,X，Y",
                                             "，,"};

    test::TestFolder folder_;
    automation::ClassRegistry::Restore restore_;
    HostSessionRef session_;
};

TEST_F(CanUsed, AgreesWithTheChecksOnEveryDemoTemplate) {
    const ado::RecordsetRef control =
        session_->Execute("select FID,FNo,FIsCanUsed from t_VchTpControl order by FID,FNo");
    ASSERT_GT(control->RecordCount(), 25);
    for (; !control->AtEnd(); control->MoveNext()) {
        const std::string where =
            " where FID = " + control->Value("FID").ToText() + " and FNo = " + control->Value("FNo").ToText();
        const ado::RecordsetRef lines = session_->Execute("select * from t_VchTemplateEntry" + where);
        bool sound = true;
        for (; !lines->AtEnd(); lines->MoveNext()) {
            sound = IsSound({lines->Value("FAccountNumber").ToText(), lines->Value("FSettleName").ToText(),
                             lines->Value("FCurrencyName").ToText(), lines->Value("FUnitName").ToText(),
                             lines->Value("FItemsInfo").ToText()}) &&
                    sound;
        }
        EXPECT_EQ(sound ? 1 : 0, control->Value("FIsCanUsed").ToInt32()) << where;
    }
}

TEST_F(CanUsed, AgreesOnEveryAccountWithEveryOneOfTheOtherCells) {
    std::vector<Line> lines;
    for (const std::string& account : accounts_) {
        for (const std::string& settle : settles_)
            lines.push_back({account, settle, "", "", ""});
        for (const std::string& currency : currencies_)
            lines.push_back({account, "", currency, "", ""});
        for (const std::string& unit : units_)
            lines.push_back({account, "", "", unit, ""});
        for (const std::string& items : items_)
            lines.push_back({account, "", "", "", items});
    }
    ExpectAgreement(lines);
}

TEST_F(CanUsed, AgreesOnLinesMixedFromAllCells) {
    std::vector<Line> lines;
    std::uint32_t state = 7;
    const auto pick = [&state](const std::vector<std::string>& list) {
        state = state * 1664525U + 1013904223U;
        return list[(state >> 16) % list.size()];
    };
    for (int i = 0; i < 600; ++i) {
        Line line;
        line.account = pick(accounts_);
        line.settle = pick(settles_);
        line.currency = pick(currencies_);
        line.unit = pick(units_);
        line.items = pick(items_);
        lines.push_back(line);
    }
    ExpectAgreement(lines);
}

TEST_F(CanUsed, OneUnusableLineMakesItsWholeNumberUnusableAndNoOther) {
    Store({{"1001", "", "", "", ""}, {"1001", "", "", "", ""}});
    session_->Execute(
        "insert into t_VchTemplateEntry(FID,FEntryID,FNo,FAccountNumber) values(500,3,2,'9999') "
        "insert into t_VchTemplateEntry(FID,FEntryID,FNo,FAccountNumber) values(500,4,2,'1001') "
        "exec pro_VchTpCanUsed 500");
    const ado::RecordsetRef control =
        session_->Execute("select FIsCanUsed from t_VchTpControl where FID = 500 order by FNo");
    EXPECT_EQ(1, control->ValueAt(0, 0).ToInt32());
    EXPECT_EQ(0, control->ValueAt(1, 0).ToInt32());
}

TEST_F(CanUsed, TouchesNoOtherTemplate) {
    session_->Execute("update t_VchTpControl set FIsCanUsed = 7 where FID = 1");
    session_->Execute("exec pro_VchTpCanUsed 2");
    EXPECT_EQ(0, session_->Execute("select count(*) from t_VchTpControl where FID = 1 and FIsCanUsed <> 7")
                     ->Value(std::size_t{0})
                     .ToInt32());
}

TEST_F(CanUsed, MissingCellsOfImportedLinesCountAsEmpty) {
    session_->Execute(
        "insert into t_VchTpControl(FID,FNo) values(500,1) insert into t_VchTpControl(FID,FNo) values(500,2) "
        "insert into t_VchTemplateEntry(FID,FEntryID,FNo,FAccountNumber,FSettleName,FCurrencyName,FUnitName,"
        "FItemsInfo) values(500,2,1,'1001',null,null,null,null) "
        "insert into t_VchTemplateEntry(FID,FEntryID,FNo,FAccountNumber) values(500,3,2,null) "
        "exec pro_VchTpCanUsed 500");
    const ado::RecordsetRef control =
        session_->Execute("select FIsCanUsed from t_VchTpControl where FID = 500 order by FNo");
    EXPECT_EQ(1, control->ValueAt(0, 0).ToInt32());
    EXPECT_EQ(0, control->ValueAt(1, 0).ToInt32());
}

TEST_F(CanUsed, AControlRowWithoutLinesIsUsable) {
    session_->Execute("insert into t_VchTpControl(FID,FNo) values(500,9) exec pro_VchTpCanUsed 500");
    EXPECT_EQ(1, session_->Execute("select FIsCanUsed from t_VchTpControl where FID = 500")
                     ->Value(std::size_t{0})
                     .ToInt32());
}

TEST_F(CanUsed, AnItemClassOfTheFirmsOwnIsLookedUpInItsTable) {
    ExpectAgreement({{"4301.01", "", "", "", "P01"}, {"4301.01", "", "", "", "P99"}});
    session_->Execute("insert into t_Item_3001(FItemID,FNumber,FName) values(9001,'P99',N'新项目')");
    Store({{"4301.01", "", "", "", "P99"}});
    EXPECT_EQ(1, session_->Execute("select FIsCanUsed from t_VchTpControl where FID = 500")
                     ->Value(std::size_t{0})
                     .ToInt32());
}

TEST_F(CanUsed, AClassWhoseTableIsMissingRefusesItsItemsButNotTheEmptyPiece) {
    session_->Execute("update t_ItemClass set FSQLTableName = 't_Gone' where FItemClassID = 3001");
    ExpectAgreement({{"4301.01", "", "", "", "P01"}, {"5601.06", "", "", "", "D01,E001,"}});
}

}  // namespace
}  // namespace vicenter::host
