#pragma once

#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "entry/host_context.h"
#include "exchange/exchange_target.h"
#include "exchange/template_columns.h"
#include "platform/office/cell_text.h"
#include "platform/office/excel_server.h"
#include "platform/office/workbook_file.h"
#include "platform/scripting/file_system_object.h"
#include "tests/fakes/fake_account_set.h"
#include "tests/fakes/fake_surroundings.h"
#include "tests/fakes/scripted_object.h"

namespace vicenter::exchange {

using automation::Arguments;
using automation::Variant;
using fakes::Rows;
using Lines = std::vector<std::string>;

// A window without a window: texts by grid column and row, and a record of what it was told.
class FakeWindow : public ExchangeTarget {
  public:
    std::string CurrentTemplateId() const override { return templateId; }
    std::string TemplateName() const override { return templateName; }
    std::int32_t EntryLineCount() const override { return lines; }
    std::string EntryText(std::int32_t column, std::int32_t row) const override {
        const auto found = texts.find({column, row});
        return found == texts.end() ? "" : found->second;
    }
    void ShowProgress(const std::string& label) override { told.push_back("show " + label); }
    void SetProgressLabel(const std::string& label) override { told.push_back("label " + label); }
    bool ReportRows(std::int64_t done, std::int64_t all) override {
        told.push_back("rows " + std::to_string(done) + "/" + std::to_string(all));
        return !cancel;
    }
    void HideProgress() override { told.emplace_back("hide"); }
    void RebuildTreeAndSelect(std::int32_t id) override { told.push_back("rebuild " + std::to_string(id)); }

    // One more line: texts in the order of the workbook's columns.
    void AddLine(const std::vector<std::string>& cells) {
        ++lines;
        for (std::size_t i = 0; i < cells.size(); ++i)
            texts[{kColumns[i].gridColumn, lines}] = cells[i];
    }

    std::string templateId = "7";
    std::string templateName = "我的模板";
    std::int32_t lines = 0;
    std::map<std::pair<std::int32_t, std::int32_t>, std::string> texts;
    bool cancel = false;
    Lines told;
};

// The built-in server, the scripting runtime, a scripted account set and a recording operation log.
class ExchangeTest : public testing::Test {
  protected:
    void SetUp() override {
        surroundings_.folders->temporary = folder_.File("temporary");
        std::filesystem::create_directories(folder_.Path() / "temporary");
        office::RegisterExcelServer("16.0");
        scripting::RegisterScripting();
        log_ = fakes::RegisterScripted("VelaEBCGLView.GLData");
        log_->Value("WriteLog", true);
        entry::PresetPropsString("UserID=16394;");
        entry::SetCurrentUserId("16394");
    }
    void TearDown() override {
        entry::PresetPropsString("");
        entry::SetCurrentUserId("");
    }

    Lines Messages() const { return surroundings_.messageBoxes->Texts(); }
    std::string LastTitle() const { return surroundings_.messageBoxes->shown.back().title; }
    Lines TemporaryFiles() const {
        Lines names;
        for (const auto& entry : std::filesystem::directory_iterator(folder_.Path() / "temporary")) {
            names.push_back(entry.path().filename().string());
        }
        return names;
    }
    static bool Exists(const std::string& name) {
        return std::filesystem::exists(system::PathFromUtf8(name));
    }

    // A workbook with one sheet of texts, row by row; numbers are given as "#1.5".
    std::string MakeWorkbook(const std::string& name, const std::vector<Lines>& rows,
                             const std::string& sheetName = kSheetName) {
        office::Workbook workbook;
        office::Sheet& sheet = workbook.AddSheet(sheetName);
        for (std::uint32_t r = 0; r < rows.size(); ++r) {
            for (std::uint32_t c = 0; c < rows[r].size(); ++c) {
                const std::string& text = rows[r][c];
                if (text.empty()) continue;
                office::Cell& cell = sheet.At(r, c);
                if (text.front() == '#') {
                    cell.kind = office::CellKind::Number;
                    cell.number = *automation::ParseDouble(text.substr(1));
                } else {
                    cell.kind = office::CellKind::Text;
                    cell.text = workbook.Texts().Intern(text);
                }
            }
        }
        std::string file = folder_.File(name);
        office::WriteWorkbook(workbook, file,
                              name.ends_with(".xls") ? office::FileKind::Xls : office::FileKind::Xlsx);
        return file;
    }

    automation::ClassRegistry::Restore restore_;
    fakes::FakeSurroundings surroundings_;
    fakes::FakeAccountSet set_;
    fakes::TemporaryFolder folder_;
    fakes::ScriptedRef log_;
    FakeWindow window_;
};

}  // namespace vicenter::exchange
