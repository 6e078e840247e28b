#pragma once

// Sessions on an account set whose file is to be whole at the end of each test: its structure, its keys and
// its values, as "account-set verify" looks at them.

#include "engine_fixture.h"
#include "tsql/run/care.h"

namespace vicenter::tsql::engine {

class WholeSetTest : public EngineTest {
  protected:
    void TearDown() override { EXPECT_EQ(Damage(), ""); }

    // Another session, which has to find out everything from the file.
    void Reopen() { session_.reset(); }
    // What is wrong with the file, one finding a line.
    std::string Damage() {
        Reopen();
        std::string text;
        for (const std::string& finding : FindDamage(Path(), {&collation_}))
            text += finding + "\n";
        return text;
    }
};

}  // namespace vicenter::tsql::engine
