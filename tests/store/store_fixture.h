#pragma once

#include <gtest/gtest.h>

#include "entry/host_context.h"
#include "store/cls_vi_data.h"
#include "tests/fakes/fake_account_set.h"
#include "tests/fakes/fake_surroundings.h"
#include "tests/fakes/scripted_object.h"

namespace vicenter::store {

using automation::Variant;
using fakes::Rows;
using Statements = std::vector<std::string>;

// A clsVIData on a scripted account set, user 16394 signed in.
class StoreTest : public testing::Test {
  protected:
    void SetUp() override {
        entry::PresetPropsString("UserID=16394;");
        entry::SetCurrentUserId("16394");
    }
    void TearDown() override {
        entry::PresetPropsString("");
        entry::SetCurrentUserId("");
    }

    automation::ClassRegistry::Restore restore_;
    fakes::FakeSurroundings surroundings_;
    fakes::FakeAccountSet set_;
};

}  // namespace vicenter::store
