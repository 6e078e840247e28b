#pragma once

// A window on a copy of the demo set, worked in as by hand.

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "automation/class_registry.h"
#include "center/frame/frm_vi_center.h"
#include "entry/host_context.h"
#include "host/components/components.h"
#include "tests/center/fake_view.h"
#include "tests/fakes/fake_surroundings.h"
#include "tests/host/demo_set.h"

namespace vicenter::center::test {

class WindowOnSet : public testing::Test {
  protected:
    using Texts = std::vector<std::string>;

    void SetUp() override { OpenOn(host::FileConnectString(set_)); }
    void TearDown() override {
        window_.reset();
        entry::SetCurrentUserId("");
    }
    void Open() {
        window_ = std::make_unique<frmVICenter>(view_, nullptr);
        window_->Load();
        ASSERT_TRUE(window_->HasRight());
    }
    void OpenOn(const std::string& connectString) {
        session_ = host::RegisterHostComponents({connectString, 1});
        Open();
    }
    frmVICenter& Window() { return *window_; }
    std::string Cell(int row, int gridColumn) { return std::string(window_->Grid().Text(row, gridColumn)); }
    bool IsRed(int row, int gridColumn) {
        return window_->Grid().Look(row, gridColumn).foreColor == color::kRed;
    }
    void Type(int row, int gridColumn, const std::string& text) {
        window_->Cells().MoveActiveCell({row, gridColumn});
        ASSERT_EQ(window_->Cells().CommitText({row, gridColumn}, text), TextVerdict::Taken)
            << row << "," << gridColumn << " " << text;
    }
    // The required cells of a line, each left.
    void TypeLine(int row, const std::string& no, const std::string& explanation,
                  const std::string& direction, const std::string& account) {
        Type(row, column::kNo, no);
        Type(row, column::kExplanation, explanation);
        Type(row, column::kDirection, direction);
        Type(row, column::kAccountNumber, account);
        window_->Cells().MoveActiveCell({row, column::kFileCount});
    }
    // A new template of that name, open in the window.
    std::string NewTemplate(const std::string& name) {
        Window().ToolClick("mnuNew");
        EXPECT_TRUE(Window().Tree().AfterLabelEdit(name));
        return Window().TemplateId();
    }
    // The first value of the first row.
    std::string Value(const std::string& sql) {
        const ado::RecordsetRef rows = session_->Execute(sql);
        return rows->RecordCount() < 1 ? "none" : rows->Value(std::size_t{0}).ToTextOrEmpty();
    }
    void Answer(system::MessageResult answer) { surroundings_.messageBoxes->answers.push_back(answer); }
    Texts TakeMessages() {
        Texts texts = surroundings_.messageBoxes->Texts();
        surroundings_.messageBoxes->shown.clear();
        return texts;
    }

    host::test::TestFolder folder_;
    automation::ClassRegistry::Restore restore_;
    fakes::FakeSurroundings surroundings_;
    std::string set_ = host::test::CopySet(folder_);
    host::HostSessionRef session_;
    FakeVICenterView view_;
    std::unique_ptr<frmVICenter> window_;
};

}  // namespace vicenter::center::test
