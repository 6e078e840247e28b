// What a save has SQLite prepare: its own batch, which is another text each time, and nothing beside.

#include <sqlite3.h>

#include "tests/center/window_on_set.h"

namespace vicenter::center::test {
namespace {

// SQLite asks for each table and column that a statement is to read or to change, whenever it prepares it.
int asked = 0;

int Allow(void* /*data*/, int /*action*/, const char* /*first*/, const char* /*second*/,
          const char* /*database*/, const char* /*trigger*/) {
    ++asked;
    return SQLITE_OK;
}

int Watch(sqlite3* database, char** /*error*/, const void* /*functions*/) {
    return sqlite3_set_authorizer(database, Allow, nullptr);
}

class SavePreparation : public WindowOnSet {
  protected:
    void SetUp() override {
        sqlite3_auto_extension(reinterpret_cast<void (*)()>(Watch));
        WindowOnSet::SetUp();
    }
    void TearDown() override {
        sqlite3_cancel_auto_extension(reinterpret_cast<void (*)()>(Watch));
        WindowOnSet::TearDown();
    }
    // How often SQLite asks during a save of so many lines of one number, once the same has been saved
    // before.
    int AskedBySaving(int lines) {
        for (int row = 1; row <= lines; ++row)
            TypeLine(row, "1", "说明", row % 2 == 1 ? "借" : "贷", "1001");
        for (const char* amount : {"1", "2", "3", "4"}) {
            Type(1, column::kAmount, amount);
            asked = 0;
            EXPECT_TRUE(Window().Save());
        }
        return asked;
    }
};

TEST_F(SavePreparation, IsTheSameForAnyNumberOfLines) {
    NewTemplate("行数");
    const int ofForty = AskedBySaving(40);
    EXPECT_GT(ofForty, 0);
    EXPECT_EQ(AskedBySaving(80), ofForty);
}

TEST_F(SavePreparation, IsNoMoreForTheVersionBeforeIt) {
    NewTemplate("版本");
    const int with = AskedBySaving(40);
    session_->Execute(
        "drop table t_VchTpHistoryControl drop table t_VchTpHistoryEntry drop table t_VchTpHistory "
        "drop table t_VchTpHistoryRule");
    EXPECT_EQ(with, AskedBySaving(40));
}

}  // namespace
}  // namespace vicenter::center::test
