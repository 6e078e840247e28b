#include "store/engine_text.h"

#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vicenter::store {
namespace {

using testing::StartsWith;

TEST(EngineText, UsualRefusalsAreToldInChineseWithNumberAndOriginalBehind) {
    const std::string original = "String or binary data would be truncated in table 't', column 'FName'.";
    EXPECT_EQ(EngineTextInChinese(original),
              "文本太长，账套的字段放不下，没有写入！\r\n\r\n（2628：" + original + "）");
}

TEST(EngineText, EachIsKnownByItsOwnText) {
    const std::pair<const char*, const char*> expected[] = {
        {"Cannot insert the value NULL into column 'FNo', table 't'; column does not allow nulls. INSERT "
         "fails.",
         "515"},
        {"Violation of PRIMARY KEY constraint 'PK'. Cannot insert duplicate key in object 't'. The duplicate "
         "key "
         "value is (1).",
         "2627"},
        {"Cannot insert duplicate key row in object 't' with unique index 'i'. The duplicate key value is "
         "(1).",
         "2601"},
        {"String or binary data would be truncated.", "8152"},
        {"Lock request time out period exceeded.", "1222"},
        {"Transaction (Process ID 51) was deadlocked on lock resources with another process and has been "
         "chosen as "
         "the deadlock victim. Rerun the transaction.",
         "1205"},
        {"The account set '/tmp/a.vas' cannot be read or written: disk I/O error.", "823"},
        {"The account set '/tmp/a.vas' is damaged: database disk image is malformed.", "824"},
        {"The file '/tmp/a.txt' is not an account set.", "5172"},
        {"Failed to update database \"a.vset\" because the database is read-only.", "3906"},
        {"The transaction log for database 'a.vset' is full due to 'DISK_FULL'.", "9002"},
        {"Could not allocate space for object 'dbo.t_VchTemplateEntry' in database 'd' because the 'PRIMARY' "
         "filegroup is full.",
         "1105"},
        {"Could not allocate a new page for database 'd' because of insufficient disk space in filegroup "
         "'PRIMARY'.",
         "1101"},
        {"Unable to open the physical file \"a.vset\": 账套文件已被删除或移走，请重新打开账套.", "5120"},
        {"There is insufficient system memory in resource pool 'default' to run this query.", "701"},
        {"The INSERT permission was denied on the object 't_VchTemplate', database 'd', schema 'dbo'.",
         "229"},
        {"CREATE TABLE permission denied in database 'd'.", "262"},
        {"[Driver][Server]Lock request time out period exceeded.", "1222"},
    };
    for (const auto& [text, number] : expected) {
        const std::string told = EngineTextInChinese(text);
        EXPECT_THAT(told, testing::HasSubstr(std::string("（") + number + "：" + text + "）"));
        EXPECT_THAT(told, testing::Not(StartsWith(text)));
    }
}

TEST(EngineText, AnyOtherTextStaysAsItIs) {
    for (const char* text :
         {"", "Invalid object name 'x'.", "模板 甲 保存失败！", "Arithmetic overflow", "down"})
        EXPECT_EQ(EngineTextInChinese(text), text);
}

TEST(EngineText, IsToldOnce) {
    const std::string told = EngineTextInChinese("Lock request time out period exceeded.");
    EXPECT_EQ(EngineTextInChinese(told), told);
}

}  // namespace
}  // namespace vicenter::store
