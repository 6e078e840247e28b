#include "automation/quietly.h"

#include <new>

#include <gtest/gtest.h>

#include "automation/error.h"

namespace vicenter::automation {
namespace {

TEST(WhatIsDoneQuietly, IsDone) {
    int done = 0;
    Quietly([&] { ++done; });
    EXPECT_EQ(done, 1);
}

TEST(WhatIsDoneQuietly, FailsForItselfAlone) {
    struct Scope {
        ~Scope() {
            Quietly([] { throw std::bad_alloc(); });
            Quietly([] { throw Error(error_number::kPermissionDenied, "no"); });
            Quietly([] { throw 1; });
            ++ends;
        }
        int& ends;
    };
    int ends = 0;
    { const Scope scope{ends}; }
    EXPECT_EQ(ends, 1);
}

}  // namespace
}  // namespace vicenter::automation
