#pragma once

#include <gtest/gtest.h>

#include "autovch/generation.h"
#include "entry/host_context.h"
#include "tests/fakes/fake_account_set.h"
#include "tests/fakes/fake_surroundings.h"
#include "tests/fakes/scripted_object.h"

namespace vicenter::autovch {

using automation::Variant;
using fakes::Rows;
using Texts = std::vector<std::string>;

inline VoucherFilter MarchFilter() {
    return {"2024", "3", "1", "5", "", false};
}

// Column names of the voucher query, in its order.
inline const std::vector<std::string>& VoucherColumns() {
    static const std::vector<std::string> columns{
        "FNo",        "FExp",        "FDC",           "FAccountID",  "FAccountNumber", "FAccountName",
        "FSettleID",  "FSettleName", "FSettleNumber", "FCurrencyID", "FCurrencyName",  "FRate",
        "FAmountFor", "FAmount",     "FQty",          "FPrice",      "FUnitID",        "FUnitName",
        "FRemark",    "FFileCount",  "FItemsInfo"};
    return columns;
}

inline std::vector<Variant> VoucherRow(int number, const std::string& explanation, int detailId) {
    const auto decimal = [](const char* text) { return Variant(*automation::Decimal::Parse(text)); };
    return {number,
            explanation,
            1,
            1002,
            "1002.01",
            "工行",
            0,
            "",
            Variant::Null(),
            1,
            "人民币",
            decimal("1.0000000000"),
            decimal("1000.5000"),
            decimal("1000.50"),
            decimal("0.0000"),
            decimal("0.1234567891"),
            0,
            "",
            "",
            2,
            detailId};
}

// A scripted ledger with the template center's user signed in.
class AutoVchTest : public testing::Test {
  protected:
    void SetUp() override {
        entry::PresetPropsString("UserID=16394;");
        entry::SetCurrentUserId("16394");
        frame_ = fakes::RegisterScripted("Vela_APFC.FrameData");
        frame_->Value("WriteMGLog", true);
    }
    void TearDown() override {
        entry::PresetPropsString("");
        entry::SetCurrentUserId("");
    }

    automation::ClassRegistry::Restore restore_;
    fakes::FakeSurroundings surroundings_;
    fakes::FakeAccountSet set_;
    fakes::ScriptedRef frame_;
};

}  // namespace vicenter::autovch
