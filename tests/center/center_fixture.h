#pragma once

// The main window's presenter on a scripted account set, a scripted host and a view that shows nothing.

#include <array>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "center/frame/frm_vi_center.h"
#include "entry/host_context.h"
#include "tests/center/fake_view.h"
#include "tests/fakes/fake_account_set.h"
#include "tests/fakes/fake_surroundings.h"
#include "tests/fakes/scripted_object.h"

namespace vicenter::center::test {

using automation::Arguments;
using automation::Variant;
using fakes::Rows;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

struct Template {
    int id = 0;
    std::string name;
};

// Four commands that only say that they were run.
class RecordingCommands : public TemplateCommands {
  public:
    void Import(CommandTarget&) override { run.emplace_back("import"); }
    void ImportFiles(CommandTarget&, const std::vector<std::string>& fileNames) override {
        std::string names;
        for (const std::string& name : fileNames)
            names += " " + name;
        run.push_back("import" + names);
    }
    void ImportTidily(CommandTarget&, const std::string& fileName) override {
        run.push_back("tidily " + fileName);
    }
    void SaveMarkedCopy(CommandTarget&, const std::string& fileName) override {
        run.push_back("marked " + fileName);
    }
    void Export(CommandTarget&) override { run.emplace_back("export"); }
    void UploadToCloud(CommandTarget&) override { run.emplace_back("upload"); }
    void GenerateFromVouchers(CommandTarget&) override { run.emplace_back("generate"); }
    Texts run;
};

// Field names of t_VchTemplateEntry in the order of the grid's columns.
inline const Texts& LineFields() {
    static const Texts fields = [] {
        Texts names;
        for (const ColumnSpec& spec : Columns())
            names.emplace_back(spec.field);
        return names;
    }();
    return fields;
}

// A line whose codes all resolve; the fields behind the account name are empty.
inline std::vector<Variant> Line(int no, const std::string& explanation, int direction = 1,
                                 const std::string& account = "1001", const std::string& name = "现金") {
    return {no, explanation, direction, 1001, account, name, 0, 0, "", "", "",
            0,  "",          0,         0,    0,       "",   0, 0, 0,  ""};
}

class CenterTest : public testing::Test {
  protected:
    CenterTest() {
        entry::PresetPropsString("UserID=7;ConnectString={Provider=Test;};");
        security_->On("AccessCheck", [this](Arguments&) { return Variant(right_); });
        log_->On("WriteLog", [this](Arguments& a) {
            events_.push_back("log " + a[1].Value().ToText() + " " + a[2].Value().ToText());
            return Variant();
        });
        settings_->On("Execute", [](Arguments&) { return Variant(Rows({"FValue"})); });
        // Every code is known; a test that wants another answer says so later.
        set_.Respond("select * from t_Account where",
                     [](const std::string&) { return Rows({"FAccountID"}, {{1001}}); });
        set_.Respond("select a.* from (select FID,FName from t_VchTemplate", [this](const std::string&) {
            std::vector<std::vector<Variant>> rows;
            for (const Template& row : templates_)
                rows.push_back({row.id, row.name});
            return Rows({"FID", "FName"}, rows);
        });
        set_.Respond("select count(*) as FCount", [this](const std::string& sql) {
            return Rows({"FCount"}, {{static_cast<int>(LinesOf(sql).size())}});
        });
        set_.Respond("select * from t_VchTemplateEntry",
                     [this](const std::string& sql) { return Rows(LineFields(), LinesOf(sql)); });
        set_.Respond("select a.FUserID,a.FName as FTemplateName",
                     [this](const std::string& sql) { return RowWithLines(sql); });
        set_.Respond("select FUserID,FName as FTemplateName", [this](const std::string& sql) {
            const std::string name = NameOf(IdIn(sql));
            if (name.empty()) return Rows({"FUserID", "FTemplateName", "FLines", "FControls"});
            return Rows({"FUserID", "FTemplateName", "FLines", "FControls"},
                        {{OwnerOf(IdIn(sql)), name, static_cast<int>(LinesOf(sql).size()), 0}});
        });
        set_.Respond("update t_VchTemplate set FName = '", [this](const std::string& sql) {
            const std::size_t at = sql.find('\'') + 1;
            names_[IdIn(sql)] = sql.substr(at, sql.rfind('\'') - at);
            return Rows({});
        });
        set_.Respond("declare @MaxFID", [this](const std::string& sql) {
            const std::size_t at = sql.find("(@MaxFID,'") + 10;
            inserted_ = sql.substr(at, sql.find('\'', at) - at);
            return Rows({});
        });
    }
    ~CenterTest() override {
        window_.reset();
        entry::PresetPropsString("");
        entry::SetCurrentUserId("");
    }

    frmVICenter& Open() {
        window_ = std::make_unique<frmVICenter>(view_, &commands_);
        window_->Load();
        return *window_;
    }
    frmVICenter& Window() { return *window_; }
    EntryGrid& Grid() { return window_->Grid(); }
    std::string Cell(int row, int gridColumn) { return std::string(Grid().Text(row, gridColumn)); }
    // The cursor goes there and the text is typed.
    void Type(int row, int gridColumn, const std::string& text) {
        window_->Cells().MoveActiveCell({row, gridColumn});
        ASSERT_EQ(window_->Cells().CommitText({row, gridColumn}, text), TextVerdict::Taken);
    }
    // A row that can be saved, typed without look-ups.
    void FillLine(int row, const std::string& no, const std::string& explanation) {
        Grid().SetText(row, column::kNo, no);
        Grid().SetText(row, column::kExplanation, explanation);
        Grid().SetText(row, column::kDirection, kDebit);
        Grid().SetText(row, column::kAccountId, "1001");
        Grid().SetText(row, column::kAccountNumber, "1001");
        Grid().SetText(row, column::kAccountName, "现金");
    }
    // What the account set holds for the template once the window has saved it.
    void StoreOnSave(const std::string& id, std::vector<std::vector<Variant>> lines) {
        set_.Respond("exec pro_VchTpCanUsed", [this, id, lines](const std::string&) {
            lines_[id] = lines;
            return Rows({});
        });
    }
    void MakeDirty() { Type(1, column::kRemark, "changed"); }

    void Answer(system::MessageResult answer) { surroundings_.messageBoxes->answers.push_back(answer); }
    Texts Messages() const { return surroundings_.messageBoxes->Texts(); }
    const Texts& Log() const { return events_; }
    void Forget() {
        events_.clear();
        view_.calls.clear();
        set_.Forget();
        surroundings_.messageBoxes->shown.clear();
    }
    // Statements that change something or ask what the tests look at, without those that loading sends.
    Texts Sent(const std::string& part) const {
        Texts found;
        for (const std::string& sql : set_.Statements()) {
            if (sql.find(part) != std::string::npos) found.push_back(sql);
        }
        return found;
    }

    automation::ClassRegistry::Restore restore_;
    fakes::FakeSurroundings surroundings_;
    fakes::FakeAccountSet set_;
    fakes::ScriptedRef security_ = fakes::RegisterScripted("VelaEBSBase.SecurityInfo");
    fakes::ScriptedRef log_ = fakes::RegisterScripted("VelaEBCGLView.GLData");
    fakes::ScriptedRef settings_ = fakes::RegisterScripted("VelaConnection.AppConnection");
    FakeVICenterView view_;
    RecordingCommands commands_;
    bool right_ = true;
    std::vector<Template> templates_{{0, "标准模板"}, {5, "自定义模板(1)"}, {8, "自定义模板(2)"}};
    std::map<std::string, std::vector<std::vector<Variant>>> lines_;  // by template id
    Texts events_;                                                    // log entries
    std::unique_ptr<frmVICenter> window_;

    // What the account set answers when it is asked whose a template is now.
    std::map<std::string, std::string> names_;  // by template id; others have their names in the list
    std::map<std::string, int> owners_;         // by template id; 7 owns the others
    std::set<std::string> gone_;                // template ids that are there no longer

  private:
    static std::string IdIn(const std::string& sql) {
        static const std::string head = "FID = ";
        const std::size_t at = sql.find(head, sql.rfind("where")) + head.size();
        return sql.substr(at, sql.find_first_not_of("0123456789", at) - at);
    }
    std::vector<std::vector<Variant>> LinesOf(const std::string& sql) const {
        const auto found = lines_.find(IdIn(sql));
        return found == lines_.end() ? std::vector<std::vector<Variant>>() : found->second;
    }
    int OwnerOf(const std::string& id) const { return owners_.contains(id) ? owners_.at(id) : 7; }
    // Of a template that is not in the list: the name that was inserted last.
    std::string NameOf(const std::string& id) const {
        if (gone_.contains(id)) return {};
        if (names_.contains(id)) return names_.at(id);
        for (const Template& row : templates_) {
            if (std::to_string(row.id) == id) return row.name;
        }
        return inserted_;
    }
    ado::RecordsetRef RowWithLines(const std::string& sql) const {
        Texts columns{"FUserID", "FTemplateName", "FEntryID"};
        columns.insert(columns.end(), LineFields().begin(), LineFields().end());
        const std::string name = NameOf(IdIn(sql));
        if (name.empty()) return Rows(columns);
        std::vector<std::vector<Variant>> rows;
        for (const std::vector<Variant>& line : LinesOf(sql)) {
            rows.push_back({OwnerOf(IdIn(sql)), name, static_cast<int>(rows.size()) + 1});
            rows.back().insert(rows.back().end(), line.begin(), line.end());
        }
        if (rows.empty()) {
            rows.push_back(std::vector<Variant>(columns.size(), Variant::Null()));
            rows[0][0] = OwnerOf(IdIn(sql));
            rows[0][1] = name;
        }
        return Rows(columns, rows);
    }

    std::string inserted_;
};

// A template of one line is open, and somebody changes it.
class OpenTemplateTest : public CenterTest {
  protected:
    void SetUp() override {
        lines_["5"] = {Line(1, "原来的")};
        Open();
        Window().Tree().NodeClick("detail-5");
        Forget();
    }
    void TypeMine() { Type(1, column::kExplanation, "我的"); }
};

}  // namespace vicenter::center::test
