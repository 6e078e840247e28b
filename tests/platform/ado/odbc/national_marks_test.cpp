#include "platform/ado/odbc/national_marks.h"

#include <gtest/gtest.h>

#include "automation/error.h"

namespace vicenter::ado {
namespace {

// A database whose t has Unicode columns, and one, "old", that is not.
std::string Marked(std::string_view batch, int pageNumber = 1252) {
    const auto page = system::CodePage::Open(pageNumber);
    try {
        return WithNationalMarks(
            batch, *page, pageNumber,
            [](const std::string& table, const std::string& column) -> std::optional<bool> {
                if (table != "t") return std::nullopt;
                if (column.empty()) return false;
                return column != "old";
            });
    } catch (const automation::Error& error) {
        return error.Text();
    }
}

TEST(NationalMarksTest, AColumnOfUnicodeGetsItsMark) {
    EXPECT_EQ(Marked("insert into t(a,b) values('abc','现金')"), "insert into t(a,b) values('abc',N'现金')");
    EXPECT_EQ(Marked("insert t(a) values(N'现金')"), "insert t(a) values(N'现金')");
    EXPECT_EQ(Marked("update t set a = '现', b = 'x' where c = '金'"),
              "update t set a = N'现', b = 'x' where c = N'金'");
    EXPECT_EQ(Marked("insert into t(a) values(replace('现','x','金'))"),
              "insert into t(a) values(replace(N'现','x',N'金'))");
}

TEST(NationalMarksTest, WhatIsOnlyComparedGetsItsMark) {
    EXPECT_EQ(Marked("select a from t where a = '现金' and b like '%金'"),
              "select a from t where a = N'现金' and b like N'%金'");
    EXPECT_EQ(Marked("if exists (select 1 from t where a = '金') delete t where old = '金'"),
              "if exists (select 1 from t where a = N'金') delete t where old = N'金'");
}

TEST(NationalMarksTest, ACharacterThatWouldBeLostIsRefusedByName) {
    EXPECT_EQ(Marked("insert into t(a,old) values('x','y')\r\ninsert into t(a,old) values('x','z现')"),
              "字符“现”不在账套数据库的代码页（1252）中，不能保存到字段 old 中（第 2 行）。");
    EXPECT_EQ(Marked("update t set old = '现'"),
              "字符“现”不在账套数据库的代码页（1252）中，不能保存到字段 old 中。");
    EXPECT_EQ(Marked("insert into unknown(a) values('现')"),
              "字符“现”不在账套数据库的代码页（1252）中，不能保存到字段 a 中（第 1 行）。");
    EXPECT_EQ(Marked("declare @v varchar(9) set @v = '现' insert into t(a) values(@v)"),
              "字符“现”不在账套数据库的代码页（1252）中，不能保存到字段 @v 中。");
}

TEST(NationalMarksTest, ATableOfTheBatchItselfIsKnown) {
    EXPECT_EQ(Marked("create table x (a int, b nvarchar(5), c varchar(5)) insert into x(a,b) values(1,'现')"),
              "create table x (a int, b nvarchar(5), c varchar(5)) insert into x(a,b) values(1,N'现')");
    EXPECT_EQ(Marked("declare @x table (b nvarchar(5)) insert into @x(b) values('现')"),
              "declare @x table (b nvarchar(5)) insert into @x(b) values(N'现')");
    EXPECT_EQ(Marked("declare @v nvarchar(9) set @v = '现'"), "declare @v nvarchar(9) set @v = N'现'");
}

TEST(NationalMarksTest, ThePageDecides) {
    EXPECT_EQ(Marked("insert into t(old) values('现金€')", 936), "insert into t(old) values('现金€')");
    EXPECT_EQ(Marked("insert into t(a) values('𠮷')", 936), "insert into t(a) values(N'𠮷')");
    EXPECT_EQ(Marked("insert into t(old) values('𠮷')", 936),
              "字符“𠮷”不在账套数据库的代码页（936）中，不能保存到字段 old 中（第 1 行）。");
    EXPECT_EQ(Marked("insert into t(old) values('Größe')"), "insert into t(old) values('Größe')");
    // Not everything in a batch is a text.
    EXPECT_EQ(Marked("select 1 -- 现金 '"), "select 1 -- 现金 '");
}

}  // namespace
}  // namespace vicenter::ado
