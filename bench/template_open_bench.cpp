// Opening a template of many lines, its checks included, beside reading its rows alone; and pasting as many
// rows of 21 columns with resolution beside the same rows loaded.
//
// Everything runs on an embedded account set with the demo ledger, through the component's own data access.
// Base and candidate take turns; every run checks its result. Usage: template_open_bench [lines] [rounds]

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "bench/account_set_bench.h"
#include "center/editing/block_editing.h"
#include "center/editing/grid_editing.h"
#include "center/frame/silent_view.h"
#include "center/frame/window_state.h"
#include "center/template/line_loader.h"
#include "entry/host_context.h"
#include "host/account_set.h"
#include "store/cls_vi_data.h"
#include "store/statements.h"

namespace {

using namespace vicenter;
using bench::Require;

constexpr const char* kTemplateId = "900";

class Folder {
  public:
    Folder()
        : path_(std::filesystem::temp_directory_path() /
                ("vicenter_open_bench_" +
                 std::to_string(std::chrono::steady_clock::now().time_since_epoch().count()))) {
        std::filesystem::create_directories(path_);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() {
        ado::CloseIdleAccountSets();
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    std::string File() const { return (path_ / "bench.vas").string(); }

  private:
    std::filesystem::path path_;
};

// One line of the template as codes: what a user would type or paste into the 21 columns.
std::string PastedLine(int line) {
    const std::string number = std::to_string(line / 4 + 1);
    const std::string amount = std::to_string(line) + ".25";
    switch (line % 4) {
        case 0:
            return number + "\t支付货款\t借\t\t1122.01\t\t2\t\t\t\tC001\t\t\t\t\t\t\t\t\t" + amount +
                   "\t备注" + number;
        case 1:
            return number + "\t\t贷\t\t1002.01\t\t\t\tJF02\tZZ" + amount + "\t\t\tRMB\t1\t" + amount +
                   "\t\t\t\t\t" + amount + "\t";
        case 2:
            return number + "\t入库\t借\t\t1405.01\t\t3\t\t\t\t\t\t\t\t\t\tKG\t12.5\t80.1234\t" + amount +
                   "\t";
        default:
            return number + "\t\t贷\t\t1002.02\t\t\t\tJF03\tDH" + number + "\t\t\tUSD\t7.1865\t" + amount +
                   "\t\t\t\t\t" + amount + "\t外币";
    }
}

std::string PastedBlock(int lines) {
    std::string block;
    for (int line = 0; line < lines; ++line)
        block += PastedLine(line) + "\r\n";
    return block;
}

// The same lines as rows of the account set.
void StoreLines(const center::EntryGrid& grid, int lines) {
    const auto quoted = [](std::string_view text) { return "N'" + std::string(text) + "'"; };
    std::string batch;
    for (int row = 1; row <= lines; ++row) {
        std::string names;
        std::string values;
        for (const center::ColumnSpec& spec : center::Columns()) {
            const std::string_view text = grid.Text(row, spec.column);
            names += "," + std::string(spec.field);
            if (spec.kind == center::CellKind::Text)
                values += "," + quoted(text);
            else if (spec.kind == center::CellKind::Direction)
                values += text == center::kDebit ? ",1" : ",0";
            else
                values += "," + (text.empty() ? std::string("0") : std::string(text));
        }
        batch += "insert into t_VchTemplateEntry(FID,FEntryID" + names + ") values(" + kTemplateId + "," +
                 std::to_string(row) + values + ")\r\n";
    }
    store::RunSql("insert into t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) values(" +
                  std::string(kTemplateId) + ",'bench',1,'0',GETDATE())");
    Require(store::RunSql(batch), "the template is stored");
}

}  // namespace

int main(int argc, char** argv) {
    const int lines = argc > 1 ? std::atoi(argv[1]) : 10000;
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 9;
    const Folder folder;
    host::RegisterProviders();
    host::CreateAccountSetFile(folder.File(), {true, 0});
    entry::PresetPropsString("UserID=1;ConnectString={" + host::FileConnectString(folder.File()) + "};");
    entry::SetCurrentUserId("1");

    center::SilentView view;
    center::WindowState state(view);
    state.hasRight = true;
    state.open.Become(kTemplateId, {});
    center::EntryGrid& grid = *state.grid;
    center::GridEditing editing(state);
    center::BlockEditing blocks(state, [] {});
    const std::string block = PastedBlock(lines);
    const auto clear = [&] {
        state.open.Journal().Drop();
        state.open.TakeRows(0);
        grid.Clear(center::kFirstRowTotal);
        for (int c = 1; c <= center::kColumnCount; ++c)
            grid.SetColumnHidden(c, false);
    };
    const auto paste = [&] {
        const center::PasteResult result = blocks.Paste({1, 1}, block);
        Require(result.rows == lines && result.refused.empty() && state.open.RowCount() == lines,
                "all rows are pasted");
        Require(grid.Text(lines, center::column::kAccountId) != "", "codes are resolved");
    };
    clear();
    paste();
    StoreLines(grid, lines);
    const std::string lastName(grid.Text(lines, center::column::kAccountName));

    const auto read = [&] {
        const ado::RecordsetRef rows = store::clsVIData().GetVchTemplateEntryInfo(kTemplateId);
        Require(rows != nullptr && rows->RecordCount() == lines, "all rows are read");
    };
    const auto open = [&] {
        Require(center::LoadLines(grid, kTemplateId) == lines, "all lines are loaded");
        Require(grid.Text(lines, center::column::kAccountName) == lastName, "the last line is the last");
        Require(grid.Look(lines, center::column::kAccountNumber).foreColor == center::color::kBlack,
                "sound codes are black");
    };

    std::printf("%d lines of 21 columns, demo ledger, %d rounds; milliseconds\n", lines, rounds);
    std::vector<bench::Candidate> candidates{{"rows read alone (clsVIData, recordset)", nullptr, read},
                                             {"template opened, five checks a row", clear, open},
                                             {"the same rows pasted, codes resolved", clear, paste}};
    bench::RunInTurn(candidates, rounds, 1, "ms");
    std::printf("paste beside load: %.2f x\n", candidates[2].Median() / candidates[1].Median());
    return 0;
}
