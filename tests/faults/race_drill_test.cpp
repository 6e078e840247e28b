// Eight processes at once, over all commands, on one account set, and an independent count at the end: what
// was told as done is there, whole and once, and nothing else is.
//
// Three seconds; sixty with VICENTER_LONG=1.

#include <array>
#include <atomic>
#include <iostream>
#include <mutex>
#include <random>
#include <thread>

#include <gtest/gtest.h>

#include "host/account_set.h"
#include "platform/ado/account_set/account_set_provider.h"
#include "platform/ado/connection.h"
#include "tests/faults/drill.h"

namespace vicenter::faults {
namespace {

using Clock = std::chrono::steady_clock;

constexpr int kLanes = 8;
constexpr std::chrono::seconds kLongestCommand{120};

// A template of one lane, as its answers say that it is.
struct Known {
    std::string name;
    std::string mark;  // remark of all its lines; empty for a generated one
    int lines = 0;
};

struct Count {
    int done = 0;
    int refused = 0;
    std::chrono::milliseconds longest{0};
};

// One user of the program who never has two commands under way.
class Lane {
  public:
    Lane(int number, const Workshop& shop, std::string set)
        : number_(number),
          shop_(shop),
          set_(std::move(set)),
          random_(Seed() + static_cast<unsigned>(number)) {}

    void Work(Clock::time_point until) {
        while (Clock::now() < until && fault_.empty())
            Step();
    }

    const std::string& Fault() const { return fault_; }
    const std::map<std::string, Count>& Counts() const { return counts_; }
    const std::vector<Known>& Templates() const { return templates_; }
    int Rows() const { return rows_; }
    int UnknownRows() const { return unknownRows_; }
    int Fresh() const { return fresh_; }

  private:
    std::string Own(const std::string& name) const { return "道" + std::to_string(number_) + name; }
    std::string File(const std::string& name) const { return shop_.File(Own(name)).string(); }

    void Step() {
        switch (random_() % 9) {
            case 0:
                return Insert();
            case 1:
                return Import();
            case 2:
                return Save();
            case 3:
                return Generate();
            case 4:
                return Rename();
            case 5:
                return Delete();
            case 6:
                return Export();
            case 7:
                return New();
            default:
                Do("list", {"list"});
        }
    }

    // True when the command was done; a refusal must say that others were in the way.
    bool Do(const std::string& kind, std::vector<std::string> arguments, const std::string& input = {}) {
        arguments.insert(arguments.begin(), {"--account-set", set_, "--yes"});
        const std::string output = shop_.Kept(Own("output")).string();
        const auto start = Clock::now();
        const End end = WaitFor(shop_.Start({arguments, input, {}}, output), kLongestCommand);
        Count& count = counts_[kind];
        count.longest = std::max(count.longest,
                                 std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start));
        said_ = ReadFile(output) + ReadFile(output + ".errors");
        if (end.timedOut) fault_ = kind + " hung";
        if (end.signal != 0) fault_ = kind + " ended by signal " + std::to_string(end.signal);
        if (end.exitCode == 0) {
            ++count.done;
            return true;
        }
        ++count.refused;
        if (said_.find("Lock request time out") == std::string::npos)
            fault_ = kind + " was refused: " + said_;
        return false;
    }

    Known* Any() { return templates_.empty() ? nullptr : &templates_[random_() % templates_.size()]; }
    std::string NextName() { return Own("之" + std::to_string(++made_)); }
    std::string NextMark() { return Own("版" + std::to_string(++marks_)); }

    std::string Document(const std::string& mark, int lines) const {
        std::string text = "{\"lines\":[";
        for (int i = 0; i < lines; ++i)
            text += std::string(i > 0 ? "," : "") + "{\"FNo\":" + std::to_string(i / 2 + 1) + ",\"FExp\":\"" +
                    mark + "\",\"FDC\":\"" + (i % 2 == 0 ? "借" : "贷") +
                    "\",\"FAccountNumber\":\"1001\",\"FAcctountName\":\"库存现金\",\"FAmount\":\"1\","
                    "\"FRemark\":\"" +
                    mark + "\"}";
        const std::string file = shop_.Kept(Own("document")).string();
        WriteFile(file, text + "]}");
        return file;
    }

    void Insert() {
        const std::string script = shop_.Kept(Own("script")).string();
        WriteFile(script, "insert into t_Drill(FLane) values(" + std::to_string(number_) + ")\ngo\n");
        (Do("sql", {"sql"}, script) ? rows_ : unknownRows_) += 1;
    }

    void Import() {
        // What another lane's export has made is as good as one's own.
        const std::string name = NextName();
        const std::string file = shop_.File(name + ".xlsx").string();
        std::filesystem::copy_file(shop_.Kept("other.xlsx"), file);
        if (Do("import", {"import", file})) templates_.push_back({name, "", 120});
        std::filesystem::remove(file);
    }

    void Save() {
        Known* known = Any();
        if (known == nullptr) return;
        const std::string mark = NextMark();
        const int lines = 2 + static_cast<int>(random_() % 40);
        if (!Do("save", {"save", known->name}, Document(mark, lines))) return;
        known->mark = mark;
        known->lines = lines;
    }

    void Generate() {
        const std::string name = NextName();
        if (Do("generate",
               {"generate", "--name", name, "--year", "2026", "--period", "10", "--from", "1", "--to", "2"}))
            templates_.push_back({name, "", -1});
    }

    void Rename() {
        Known* known = Any();
        if (known == nullptr) return;
        const std::string name = NextName();
        if (Do("rename", {"rename", known->name, name})) known->name = name;
    }

    void Delete() {
        if (templates_.size() < 4) return;
        const std::size_t place = random_() % templates_.size();
        if (Do("delete", {"delete", templates_[place].name}))
            templates_.erase(templates_.begin() + static_cast<std::ptrdiff_t>(place));
    }

    void Export() {
        const Known* known = Any();
        if (known == nullptr) return;
        const std::string file = File(".xlsx");
        if (!Do("export", {"export", known->name, file})) return;
        if (!std::filesystem::exists(file)) fault_ = "an exported workbook is not there";
    }

    void New() { fresh_ += Do("new", {"new"}) ? 1 : 0; }

    int number_;
    const Workshop& shop_;
    std::string set_;
    std::mt19937 random_;
    std::map<std::string, Count> counts_;
    std::vector<Known> templates_;
    std::string said_;
    std::string fault_;
    int made_ = 0;
    int marks_ = 0;
    int rows_ = 0;
    int unknownRows_ = 0;
    int fresh_ = 0;
};

class SetReader {
  public:
    explicit SetReader(const std::string& file) {
        host::RegisterProviders();
        connection_ = ado::OpenConnection(host::FileConnectString(file) + ";Pooling=no");
    }
    std::string Text(const std::string& query) {
        const ado::RecordsetRef rows = connection_->Execute(query);
        return rows->AtEnd() ? std::string() : rows->Value(std::size_t{0}).ToTextOrEmpty();
    }
    int Number(const std::string& query) {
        const std::string text = Text(query);
        return text.empty() ? -1 : std::stoi(text);
    }

  private:
    ado::ConnectionRef connection_;
};

TEST(RaceDrill, EightProcessesLoseNothingThatWasTold) {
    DrillGround ground;
    const Workshop& shop = ground.Shop();
    ground.Prepare(Drills().front());
    const std::string set = ground.SetFile().string();
    WriteFile(shop.Kept("script.sql"),
              "create table t_Drill(FID int identity primary key, FLane int not null)\ngo\n");
    ASSERT_EQ(0, shop.Run({{"--account-set", set, "sql"}, shop.Kept("script.sql").string(), {}}).exitCode);
    const int templatesBefore = SetReader(set).Number("select count(*) from t_VchTemplate");
    std::cout << "seed " << Seed() << "\n";

    std::vector<Lane> lanes;
    for (int i = 0; i < kLanes; ++i)
        lanes.emplace_back(i, shop, set);
    const auto until = Clock::now() + std::chrono::seconds(WholeDrill() ? 60 : 3);
    {
        std::vector<std::jthread> threads;
        for (Lane& lane : lanes)
            threads.emplace_back([&lane, until] { lane.Work(until); });
    }

    std::map<std::string, Count> counts;
    std::size_t templates = static_cast<std::size_t>(templatesBefore);
    for (const Lane& lane : lanes) {
        EXPECT_EQ("", lane.Fault());
        for (const auto& [kind, count] : lane.Counts()) {
            counts[kind].done += count.done;
            counts[kind].refused += count.refused;
            counts[kind].longest = std::max(counts[kind].longest, count.longest);
        }
        templates += lane.Templates().size() + static_cast<std::size_t>(lane.Fresh());
    }
    for (const auto& [kind, count] : counts)
        std::cout << kind << ": " << count.done << " done, " << count.refused << " refused, longest "
                  << count.longest.count() << " ms\n";

    int done = 0;
    for (const auto& [kind, count] : counts)
        done += count.done;
    EXPECT_GT(done, 0) << "nothing has come about that could be lost";
    const SetContent content = ReadSet(set);
    EXPECT_TRUE(content.Sound()) << content.fault;
    SetReader reader(set);
    EXPECT_EQ(templates, static_cast<std::size_t>(reader.Number("select count(*) from t_VchTemplate")));
    EXPECT_EQ(
        0, reader.Number(
               "select count(*) from t_VchTemplateEntry where FID not in (select FID from t_VchTemplate)"));
    EXPECT_EQ(0, reader.Number(
                     "select count(*) from t_VchTpControl where FID not in (select FID from t_VchTemplate)"));
    for (std::size_t i = 0; i < lanes.size(); ++i) {
        const Lane& lane = lanes[i];
        const int rows = reader.Number("select count(*) from t_Drill where FLane = " + std::to_string(i));
        EXPECT_GE(rows, lane.Rows()) << "acknowledged rows of lane " << i << " are gone";
        EXPECT_LE(rows, lane.Rows() + lane.UnknownRows());
        for (const Known& known : lane.Templates()) {
            const std::string named = " from t_VchTemplate where FName = '" + known.name + "'";
            EXPECT_EQ(1, reader.Number("select count(*)" + named)) << known.name;
            const std::string id = reader.Text("select FID" + named);
            if (id.empty()) continue;
            const std::string lines = " from t_VchTemplateEntry where FID = " + id;
            if (known.lines >= 0) {
                EXPECT_EQ(known.lines, reader.Number("select count(*)" + lines)) << known.name;
            }
            if (!known.mark.empty()) {
                EXPECT_EQ(known.mark, reader.Text("select min(FRemark)" + lines)) << known.name;
                EXPECT_EQ(known.mark, reader.Text("select max(FRemark)" + lines)) << known.name;
            }
            EXPECT_EQ(reader.Number("select count(distinct FNo)" + lines),
                      reader.Number("select count(*) from t_VchTpControl where FID = " + id))
                << known.name;
            if (!known.mark.empty()) {
                EXPECT_EQ(0, reader.Number(
                                 "select count(*) from t_VchTpControl where FIsCanUsed = 0 and FID = " + id))
                    << known.name;
            }
        }
    }
}

}  // namespace
}  // namespace vicenter::faults
