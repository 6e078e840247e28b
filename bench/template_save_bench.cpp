// A save of a template with the version before it kept, beside the same save on an account set that keeps
// none. Both through the component's own save, on embedded account sets with the demo ledger; they take
// turns. Usage: template_save_bench [lines] [rounds]

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "bench/account_set_bench.h"
#include "center/template/template_save.h"
#include "entry/host_context.h"
#include "host/account_set.h"
#include "platform/system/surroundings.h"
#include "store/statements.h"
#include "store/template_history.h"

namespace {

using namespace vicenter;
using bench::Require;

constexpr const char* kTemplateId = "900";

class Nobody final : public system::MessageBoxes {
  public:
    system::MessageResult Show(const std::string& /*text*/, system::MessageButtons /*buttons*/,
                               system::MessageIcon /*icon*/, const std::string& /*title*/) override {
        return system::MessageResult::Ok;
    }
};

void UseAccountSet(const std::string& file) {
    entry::PresetPropsString("UserID=1;ConnectString={" + host::FileConnectString(file) + "};");
    entry::SetCurrentUserId("1");
}

void FillLines(center::EntryGrid& grid, int lines) {
    namespace column = center::column;
    for (int row = 1; row <= lines; ++row) {
        grid.SetText(row, column::kNo, std::to_string((row + 3) / 4));
        grid.SetText(row, column::kExplanation, "支付第" + std::to_string(row) + "笔货款");
        grid.SetText(row, column::kDirection, row % 2 == 0 ? "贷" : "借");
        grid.SetText(row, column::kAccountId, "1001");
        grid.SetText(row, column::kAccountNumber, "1001");
        grid.SetText(row, column::kAccountName, "库存现金");
        grid.SetText(row, column::kAmount, std::to_string(row) + ".25");
    }
}

}  // namespace

int main(int argc, char** argv) {
    const int lines = argc > 1 ? std::atoi(argv[1]) : 10000;
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 9;
    const bench::TemporaryAccountSet folder;
    const std::string with = folder.Path() + ".with.vas";
    const std::string without = folder.Path() + ".without.vas";
    host::RegisterProviders();
    system::Surroundings surroundings = system::Surroundings::Current();
    surroundings.messageBoxes = std::make_shared<Nobody>();
    const system::SurroundingsScope scope(surroundings);
    for (const std::string& file : {with, without}) {
        host::CreateAccountSetFile(file, {true, 0});
        UseAccountSet(file);
        Require(
            store::RunSql("insert into t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) values(900,'bench',1,"
                          "'0',GETDATE())"),
            "the template is made");
    }
    Require(store::RunSql("drop table t_VchTpHistoryControl drop table t_VchTpHistoryEntry drop table "
                          "t_VchTpHistory drop table t_VchTpHistoryRule"),
            "nothing is kept");

    center::EntryGrid grid;
    grid.Clear(lines + 2);
    FillLines(grid, lines);
    // What changes nothing leaves no version: each save changes a line, now here, now there.
    int change = 0;
    const auto prepare = [&](const std::string& file) {
        UseAccountSet(file);
        ++change;
        grid.SetText(change * 37 % lines + 1, center::column::kAmount, std::to_string(change));
    };
    const auto save = [&] {
        Require(
            static_cast<bool>(center::SendTemplate(grid, lines, store::SeenAs(kTemplateId, "1", "bench"))),
            "it is saved");
    };
    std::printf("%d lines saved, demo ledger, %d rounds; milliseconds\n", lines, rounds);
    std::vector<bench::Candidate> candidates{
        {"saved, no version kept", [&] { prepare(without); }, save},
        {"saved, the version before it kept", [&] { prepare(with); }, save}};
    bench::RunInTurn(candidates, rounds, 1, "ms");
    UseAccountSet(with);
    Require(store::ReadHistory(kTemplateId).versions.size() == static_cast<std::size_t>(rounds) + 1,
            "every save has left a version");
    ado::CloseIdleAccountSets();
    for (const std::string& file : {with, without})
        std::filesystem::remove(file);
    return 0;
}
