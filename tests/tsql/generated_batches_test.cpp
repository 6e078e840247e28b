// What holds for every batch of the dialect, asked of generated ones: printed and parsed again it is the same
// tree; it answers alike with and without indexes, with SQLite's plans or without them, and with all that
// nests taken apart; it is no internal error; and a statement that fails at any place of it leaves the set as
// the mode of transactions says. A batch that breaks one of these is told by its seed, without the statements
// that make no difference.
//
// VICENTER_GENERATED_BATCHES says how many, VICENTER_FIRST_SEED from which seed on.

#include <functional>
#include <map>
#include <memory>

#include "engine_fixture.h"
#include "generator/batch_generator.h"
#include "generator/seeds.h"
#include "generator/shrink.h"
#include "tree_dump/tree_dump.h"
#include "tsql/syntax/parse/parser.h"
#include "tsql/syntax/print/printer.h"

namespace vicenter::tsql::engine {
namespace {

using tsql_test::BatchGenerator;
using tsql_test::FromEnvironment;
using tsql_test::Statements;

class GeneratedBatchesTest : public EngineTest {
  protected:
    // The set before a batch, on a session of its own for each way to run one.
    void Prepare(int indexes, QueryPlans plans, bool batches, int deepest = 0) {
        const int kind = static_cast<int>(plans) * 4 + (batches ? 1 : 0) + (deepest > 0 ? 2 : 0);
        std::unique_ptr<Session>& session = sessions_[kind];
        if (!session) {
            SessionOptions options = Options();
            options.path = (folder_ / ("set" + std::to_string(kind) + ".vas")).string();
            // In memory: thousands of sets are made, and none is to outlive its batch.
            options.fileSystem = "memdb";
            options.plans = plans;
            options.batchTransactions = batches;
            options.deepestText = deepest;
            session = std::make_unique<Session>(options);
        }
        now_ = session.get();
        now_->Reset();
        std::string tables = "drop table if exists g_one, g_two\nbegin tran\n";
        tables += BatchGenerator::Text(BatchGenerator::Tables(indexes)) + "commit";
        ASSERT_EQ(Answer(tables), "");
    }
    std::string Answer(const std::string& batch) { return RunOn(*now_, batch); }
    std::string State() {
        return Answer(
            "select * from g_one order by id select * from g_two order by id select @@trancount as n");
    }
    std::string AnswerOf(const Statements& statements, int indexes, QueryPlans plans, int deepest = 0) {
        Prepare(indexes, plans, true, deepest);
        const std::string answer = Answer(BatchGenerator::Text(statements));
        return answer + "\n==\n" + State();
    }

    // Each says what is wrong, or nothing.
    std::string PrintsBack(const Statements& statements) {
        const std::string text = BatchGenerator::Text(statements);
        const Batch batch = ParseBatch(text);
        const std::string printed = Print(batch);
        if (DumpTree(batch, false) == DumpTree(ParseBatch(printed), false)) return {};
        return "printed as\n" + printed;
    }
    std::string AnswersAlike(const Statements& statements) {
        const std::string usual = AnswerOf(statements, 0, QueryPlans::kUsual);
        // Nothing in it fails, so that what is compared below has run to its end.
        if (usual.rfind("error ", 0) == 0 || usual.find("\nerror ") != std::string::npos) return usual;
        for (const int indexes : {0, 3}) {
            const std::string other = AnswerOf(statements, indexes, QueryPlans::kAsWritten);
            if (other != usual)
                return "usual\n" + usual + "\nas written, indexes " + std::to_string(indexes) + "\n" + other;
        }
        for (const QueryPlans plans : {QueryPlans::kUsual, QueryPlans::kAsWritten}) {
            const std::string apart = AnswerOf(statements, 1, plans, 1);
            if (apart != usual) return "usual\n" + usual + "\ntaken apart\n" + apart;
        }
        const std::string indexed = AnswerOf(statements, 3, QueryPlans::kUsual);
        return indexed == usual ? std::string() : "usual\n" + usual + "\nwith indexes\n" + indexed;
    }
    std::string IsUndoneAsAWhole(const Statements& statements, std::size_t place, std::size_t form) {
        Statements broken = statements;
        broken.insert(broken.begin() + static_cast<std::ptrdiff_t>(place), BatchGenerator::Failing(form));
        Prepare(1, QueryPlans::kUsual, true);
        const std::string before = State();
        const std::string answer = Answer(BatchGenerator::Text(broken));
        const std::string after = State();
        if (answer.find("error ") == std::string::npos) return "no error of " + BatchGenerator::Failing(form);
        return after == before ? std::string() : "a batch that failed has changed the set\n" + after;
    }
    std::string IsUndoneAlone(const Statements& statements, std::size_t place, std::size_t form) {
        Statements broken = statements;
        broken.insert(broken.begin() + static_cast<std::ptrdiff_t>(place), BatchGenerator::Failing(form));
        Prepare(1, QueryPlans::kUsual, false);
        Answer(BatchGenerator::Text(statements));
        const std::string without = State();
        Prepare(1, QueryPlans::kUsual, false);
        Answer(BatchGenerator::Text(broken));
        const std::string with = State();
        return with == without ? std::string() : "without\n" + without + "\nwith it\n" + with;
    }

    void Expect(std::uint32_t seed, const Statements& statements,
                const std::function<std::string(const Statements&)>& fault) {
        if (fault(statements).empty()) return;
        const Statements least =
            tsql_test::Shrunk(statements, [&](const Statements& fewer) { return !fault(fewer).empty(); });
        ADD_FAILURE() << "seed " << seed << "\n" << BatchGenerator::Text(least) << fault(least);
    }

    std::map<int, std::unique_ptr<Session>> sessions_;
    Session* now_ = nullptr;
};

TEST_F(GeneratedBatchesTest, Keep_what_holds_for_every_batch) {
    const std::uint32_t first = FromEnvironment("VICENTER_FIRST_SEED", 1);
    const std::uint32_t count = FromEnvironment("VICENTER_GENERATED_BATCHES", 80);
    for (std::uint32_t seed = first; seed < first + count && !HasFailure(); ++seed) {
        const Statements batch = BatchGenerator(seed).Batch();
        Expect(seed, batch, [&](const Statements& part) { return PrintsBack(part); });
        Expect(seed, batch, [&](const Statements& part) { return AnswersAlike(part); });
        for (std::size_t place = 0; place <= batch.size(); ++place) {
            const std::size_t form = seed + place;
            const auto at = [place](const Statements& part) { return std::min(place, part.size()); };
            Expect(seed, batch,
                   [&](const Statements& part) { return IsUndoneAsAWhole(part, at(part), form); });
            Expect(seed, batch, [&](const Statements& part) { return IsUndoneAlone(part, at(part), form); });
        }
    }
}

TEST_F(GeneratedBatchesTest, Are_the_same_for_the_same_seed) {
    EXPECT_EQ(BatchGenerator(7).Batch(), BatchGenerator(7).Batch());
    EXPECT_NE(BatchGenerator(7).Batch(), BatchGenerator(8).Batch());
}

}  // namespace
}  // namespace vicenter::tsql::engine
