// The account set's scripts as texts: they parse, and every batch is what a server takes at once.

#include <sstream>

#include <gtest/gtest.h>

#include "host/batch_reader.h"
#include "host/embedded_files.h"
#include "tsql/base/diagnostic.h"
#include "tsql/syntax/parse/parser.h"

namespace vicenter::host {
namespace {

class AccountSetScript : public testing::TestWithParam<const char*> {};

TEST_P(AccountSetScript, ParsesBatchByBatch) {
    std::istringstream stream{std::string(EmbeddedText(GetParam()))};
    BatchReader reader(stream);
    int batches = 0;
    while (const std::optional<ScriptBatch> batch = reader.Next()) {
        ++batches;
        EXPECT_NO_THROW(tsql::ParseBatch(batch->text)) << "line " << batch->firstLine;
    }
    EXPECT_GT(batches, 0);
}

INSTANTIATE_TEST_SUITE_P(All, AccountSetScript,
                         testing::Values("accountset/schema.sql", "accountset/procedures.sql",
                                         "accountset/seed.sql"),
                         [](const auto& script) {
                             std::string name = script.param;
                             name = name.substr(name.find('/') + 1);
                             return name.substr(0, name.find('.'));
                         });

TEST(AccountSetScripts, ProceduresComeFirstInTheirBatch) {
    std::istringstream stream{std::string(EmbeddedText("accountset/procedures.sql"))};
    BatchReader reader(stream);
    while (const std::optional<ScriptBatch> batch = reader.Next()) {
        EXPECT_EQ(1U, tsql::ParseBatch(batch->text).statements.size());
    }
}

}  // namespace
}  // namespace vicenter::host
