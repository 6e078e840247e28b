#include "tests/faults/drill.h"

#include <algorithm>
#include <stdexcept>

namespace vicenter::faults {

namespace fs = std::filesystem;

namespace {

constexpr const char* kSet = "账套.vas";
constexpr const char* kTemplate = "日常费用";

// Another content for the template: three numbers to a hundred lines, so that a save writes many pages.
std::string OtherLines() {
    std::string text = "{\"lines\":[";
    for (int i = 0; i < 120; ++i) {
        text += std::string(i > 0 ? "," : "") + "{\"FNo\":" + std::to_string(i / 40 + 1) +
                ",\"FExp\":\"改后的摘要" + std::to_string(i) + "\",\"FDC\":\"" + (i % 2 == 0 ? "借" : "贷") +
                "\",\"FAccountNumber\":\"" + (i / 40 == 1 ? "没有" : "1001") +
                "\",\"FAcctountName\":\"库存现金\",\"FAmount\":\"" + std::to_string(i) + ".25\"}";
    }
    return text + "]}";
}

constexpr const char* kScript =
    "insert into t_VchTemplate(FID,FName,FUserID,FNXUserID,FDate) values(500,'脚本',1,'',GetDate())\n"
    "insert into t_VchTemplateEntry(FID,FEntryID,FNo,FExp,FDC) values(500,1,1,'一',1)\n"
    "update t_VchTemplateEntry set FExp = FExp + '。' where FID = 1\n"
    "go\n";

}  // namespace

const std::vector<Drill>& Drills() {
    static const std::vector<Drill> drills = {
        {"save", {"save", kTemplate}, "lines.json"},
        {"import_new", {"--yes", "import", "@新引入.xlsx"}, {}, {{"other.xlsx", "新引入.xlsx"}}},
        {"import_over", {"--yes", "import", "@日常费用.xlsx"}, {}, {{"other.xlsx", "日常费用.xlsx"}}},
        {"import_xls", {"--yes", "import", "@新引入.xls"}, {}, {{"other.xls", "新引入.xls"}}},
        {"export_new", {"--yes", "export", kTemplate, "@引出.xlsx"}, {}, {}, "引出.xlsx"},
        {"export_over",
         {"--yes", "export", kTemplate, "@引出.xlsx"},
         {},
         {{"other.xlsx", "引出.xlsx"}},
         "引出.xlsx"},
        {"export_over_xls",
         {"--yes", "export", kTemplate, "@引出.xls"},
         {},
         {{"other.xls", "引出.xls"}},
         "引出.xls"},
        {"generate_new", {"--yes", "generate", "--name", "生成", "--year", "2026", "--period", "1"}},
        {"generate_over", {"--yes", "generate", "--name", kTemplate, "--year", "2026", "--period", "1"}},
        {"new", {"new"}},
        {"rename", {"rename", kTemplate, "改名"}},
        {"delete", {"--yes", "delete", kTemplate}},
        {"sql", {"sql"}, "script.sql"},
        {"backup", {"account-set", "backup", "@账套.vas", "@备份.vas"}, {}, {}, "备份.vas", false, true},
        {"restore",
         {"--yes", "account-set", "restore", "@另存.vas", "@账套.vas"},
         {},
         {{"other.vas", "另存.vas"}}},
        {"account_set_new", {"account-set", "new", "@新账套.vas"}, {}, {}, "新账套.vas", true, true},
    };
    return drills;
}

DrillGround::DrillGround() {
    const auto must = [&](const std::vector<std::string>& arguments, const std::string& input = {}) {
        const Outcome outcome = shop_.Run({arguments, input, {}});
        if (outcome.exitCode != 0) throw std::runtime_error(outcome.Ended() + ": " + outcome.Said());
    };
    const std::string set = SetFile().string();
    WriteFile(shop_.Kept("lines.json"), OtherLines());
    WriteFile(shop_.Kept("script.sql"), kScript);
    must({"account-set", "new", set, "--demo"});
    // Afterwards the user's column profile is there, which the first window stores for itself.
    must({"--account-set", set, "new"});
    must({"--account-set", set, "--yes", "delete", "自定义模板(1)"});
    Keep(kSet);
    must({"--account-set", set, "save", kTemplate}, shop_.Kept("lines.json").string());
    fs::copy_file(set, shop_.Kept("other.vas"));
    for (const char* name : {"other.xlsx", "other.xls"}) {
        must({"--account-set", set, "export", kTemplate, shop_.File(name).string()});
        Keep(name);
    }
}

void DrillGround::Keep(const std::string& name) const {
    fs::copy_file(shop_.File(name), shop_.Kept(name));
}

void DrillGround::Prepare(const Drill& drill) const {
    shop_.Clear();
    if (!drill.makesSet) fs::copy_file(shop_.Kept(kSet), SetFile());
    for (const auto& [from, to] : drill.files)
        fs::copy_file(shop_.Kept(from), shop_.File(to));
}

Call DrillGround::CallOf(const Drill& drill) const {
    Call call;
    // What looks like somebody else's lock is not waited for as long as a user would.
    const bool namesSet =
        std::find(drill.arguments.begin(), drill.arguments.end(), "account-set") != drill.arguments.end();
    if (!namesSet) {
        call.arguments = {"--connect",
                          "Provider=VelaAccountSet;Lock Timeout=200;Data Source=" + SetFile().string()};
    }
    for (const std::string& argument : drill.arguments)
        call.arguments.push_back(argument.starts_with('@') ? shop_.File(argument.substr(1)).string()
                                                           : argument);
    if (!drill.input.empty()) call.input = shop_.Kept(drill.input).string();
    return call;
}

State DrillGround::Look(const Drill& drill) const {
    State state;
    if (!drill.makesSet) state.set = ReadSet(SetFile());
    if (drill.target.empty()) return state;
    const fs::path target = shop_.File(drill.target);
    state.hasTarget = fs::exists(target);
    if (!state.hasTarget) return state;
    if (drill.targetIsSet) {
        const SetContent content = ReadSet(target);
        state.target = content.templates;
        state.targetFault = content.fault;
    } else {
        state.target = ReadFile(target);
    }
    return state;
}

}  // namespace vicenter::faults
