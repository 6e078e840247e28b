#pragma once

// A small ledger made of scripted answers, for the window's tests: three templates, a few accounts, one user.
//
// The window runs on its real presenter; only the statements are answered from here. In place from
// construction to destruction.

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "automation/class_registry.h"
#include "entry/host_context.h"
#include "tests/fakes/fake_account_set.h"
#include "tests/fakes/fake_surroundings.h"
#include "tests/fakes/scripted_object.h"

namespace vicenter::ui::testing {

using automation::Arguments;
using automation::Variant;

struct ScriptedLine {
    int no = 1;
    std::string explanation;
    int debit = 1;
    std::string account;
    std::string accountName;
    std::string amount = "0";
};

class ScriptedLedger {
  public:
    explicit ScriptedLedger(bool right = true) {
        entry::PresetPropsString("UserID=16394;");
        templates = {{0, "标准模板"}, {5, "自定义模板(1)"}, {6, "工资计提"}};
        lines[0] = {{1, "收到货款", 1, "1002.01", "银行存款-工行", "113000"},
                    {1, "收到货款", 0, "1122", "应收账款", "113000"},
                    {2, "提取现金", 1, "1001", "库存现金", "5000"},
                    {2, "提取现金", 0, "1002.01", "银行存款-工行", "5000"}};
        lines[5] = {{1, "支付房租", 1, "5602.03", "管理费用-租金", "8000"},
                    {1, "支付房租", 0, "9999", "已删除科目", "8000"}};
        accounts = {{"1001", "库存现金"},
                    {"1002.01", "银行存款-工行"},
                    {"1122", "应收账款"},
                    {"5602.03", "管理费用-租金"},
                    {"2211", "应付职工薪酬"}};
        AnswerStatements();
        security->On("AccessCheck", [right](Arguments&) { return Variant(right); });
        log->On("WriteLog", [](Arguments&) { return Variant(); });
        settings->On("Execute", [this](Arguments&) {
            return Variant(fontSize.empty() ? fakes::Rows({"FValue"})
                                            : fakes::Rows({"FValue"}, {{Variant(fontSize)}}));
        });
        Register("VelaEBSBase.SecurityInfo", security);
        Register("VelaEBCGLView.GLData", log);
        Register("VelaConnection.AppConnection", settings);
    }
    ~ScriptedLedger() { entry::PresetPropsString(""); }

    std::vector<std::pair<int, std::string>> templates;
    std::map<int, std::vector<ScriptedLine>> lines;
    std::map<std::string, std::string> accounts;
    std::string profile;   // of the user; empty: the built-in layout
    std::string fontSize;  // of the user; empty: no setting

    fakes::FakeSurroundings surroundings;
    fakes::FakeAccountSet set;
    std::shared_ptr<fakes::ScriptedObject> security = std::make_shared<fakes::ScriptedObject>("SecurityInfo");
    std::shared_ptr<fakes::ScriptedObject> log = std::make_shared<fakes::ScriptedObject>("GLData");
    std::shared_ptr<fakes::ScriptedObject> settings =
        std::make_shared<fakes::ScriptedObject>("AppConnection");

    // The statement that holds the text, the latest one; empty when there was none.
    std::string Sent(const std::string& part) const {
        for (auto it = set.Statements().rbegin(); it != set.Statements().rend(); ++it) {
            if (it->find(part) != std::string::npos) return *it;
        }
        return {};
    }

  private:
    static void Register(const std::string& progId, const std::shared_ptr<fakes::ScriptedObject>& object) {
        automation::ClassRegistry::Process().Register(progId,
                                                      [object] { return automation::ObjectRef(object); });
    }
    // The number that follows the text in a statement; -1 when it does not occur.
    static int NumberAfter(const std::string& sql, const std::string& text) {
        const std::size_t at = sql.find(text);
        return at == std::string::npos ? -1 : std::atoi(sql.c_str() + at + text.size());
    }
    static std::string QuotedAfter(const std::string& sql, const std::string& text) {
        const std::size_t from = sql.find('\'', sql.find(text)) + 1;
        return sql.substr(from, sql.find('\'', from) - from);
    }

    void AnswerStatements() {
        set.Respond("select a.* from (select FID,FName", [this](const std::string&) {
            std::vector<std::vector<Variant>> rows;
            for (const auto& [id, name] : templates)
                rows.push_back({Variant(id), Variant(name)});
            return fakes::Rows({"FID", "FName"}, rows);
        });
        set.Respond("select * from t_VchTemplateEntry",
                    [this](const std::string& sql) { return Entries(lines[NumberAfter(sql, "FID = ")]); });
        set.Respond("select count(*) as FCount", [this](const std::string& sql) {
            const auto count = static_cast<std::int32_t>(lines[NumberAfter(sql, "FID = ")].size());
            return fakes::Rows({"FCount"}, {{Variant(count)}});
        });
        set.Respond("select FValue from t_VchTpProfile", [this](const std::string&) {
            return profile.empty() ? fakes::Rows({"FValue"}) : fakes::Rows({"FValue"}, {{Variant(profile)}});
        });
        set.Respond("select * from t_Account where FNumber", [this](const std::string& sql) {
            const bool known = accounts.count(QuotedAfter(sql, "FNumber =")) != 0;
            return known ? fakes::Rows({"FAccountID"}, {{Variant(1)}}) : fakes::Rows({"FAccountID"});
        });
        set.Respond("select FAccountID,FNumber,FName from t_Account where FNumber",
                    [this](const std::string& sql) {
                        const auto it = accounts.find(QuotedAfter(sql, "FNumber ="));
                        if (it == accounts.end()) return fakes::Rows({"FAccountID", "FNumber", "FName"});
                        return fakes::Rows({"FAccountID", "FNumber", "FName"},
                                           {{Variant(7), Variant(it->first), Variant(it->second)}});
                    });
        set.Answer("Max(FID) as FID", fakes::Rows({"FID"}, {{Variant(9)}}));
        AnswerWhatBecameOfATemplate();
    }

    // Every template is still there, still the user's and as it was read.
    void AnswerWhatBecameOfATemplate() {
        set.Respond("select FUserID,FName as FTemplateName", [this](const std::string& sql) {
            return fakes::Rows(
                {"FUserID", "FTemplateName", "FLines", "FControls"},
                {{Variant(16394), Variant(NameOf(NumberAfter(sql, "FID = "))), Variant(0), Variant(0)}});
        });
        set.Respond("select a.FUserID,a.FName as FTemplateName", [this](const std::string& sql) {
            const int id = NumberAfter(sql, "where a.FID = ");
            const ado::RecordsetRef entries = Entries(lines[id]);
            std::vector<std::string> names = {"FUserID", "FTemplateName"};
            for (const ado::Column& column : entries->Columns())
                names.push_back(column.name);
            std::vector<std::vector<Variant>> rows;
            // A template without lines has one record that is none.
            for (std::int64_t row = 0; row < std::max<std::int64_t>(1, entries->RecordCount()); ++row) {
                rows.push_back({Variant(16394), Variant(NameOf(id))});
                for (std::size_t c = 0; c < entries->ColumnCount(); ++c) {
                    const bool none = row >= entries->RecordCount();
                    rows.back().push_back(none ? Variant::Null()
                                               : entries->ValueAt(static_cast<std::size_t>(row), c));
                }
            }
            return fakes::Rows(names, rows);
        });
    }
    std::string NameOf(int wanted) const {
        for (const auto& [id, name] : templates) {
            if (id == wanted) return name;
        }
        return "自定义模板(1)";  // the new one's
    }

    static ado::RecordsetRef Entries(const std::vector<ScriptedLine>& from) {
        const std::vector<std::string> names = {
            "FID",           "FEntryID",       "FNo",           "FExp",      "FDC",
            "FAccountID",    "FAccountNumber", "FAcctountName", "FSettleID", "FSettleName",
            "FSettleNumber", "FCurrencyID",    "FCurrencyName", "FRate",     "FAmountFor",
            "FAmount",       "FQty",           "FPrice",        "FUnitID",   "FUnitName",
            "FRemark",       "FFileCount",     "FItemsInfo"};
        std::vector<std::vector<Variant>> rows;
        int entry = 0;
        for (const ScriptedLine& line : from) {
            rows.push_back({Variant(0),
                            Variant(++entry),
                            Variant(line.no),
                            Variant(line.explanation),
                            Variant(line.debit),
                            Variant(0),
                            Variant(line.account),
                            Variant(line.accountName),
                            Variant(0),
                            Variant(""),
                            Variant(""),
                            Variant(0),
                            Variant(""),
                            Variant(0),
                            Variant(0),
                            Variant(line.amount),
                            Variant(0),
                            Variant(0),
                            Variant(0),
                            Variant(""),
                            Variant(""),
                            Variant(0),
                            Variant("")});
        }
        return fakes::Rows(names, rows);
    }

    automation::ClassRegistry::Restore restore_;
};

}  // namespace vicenter::ui::testing
