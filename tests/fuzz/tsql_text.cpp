#include "tests/fuzz/tsql_text.h"

#include <vector>

namespace vicenter::fuzz {

const char* const kTsqlTables =
    "create table t (a int not null primary key, b nvarchar(20), c decimal(18,4), d datetime, e int)\n"
    "create table u (a int not null, b nvarchar(50), c decimal(10,2), f float, g bit, primary key (a, b))\n"
    "create index ix_t on t (b, c)\n"
    "insert into t values (1, N'现金', 12.5, '2026-01-05', 1), (2, N'银行', null, null, 2), (3, null, 7, "
    "'2026-03-01', 1)\n"
    "insert into u values (1, N'现金', 12.50, 0.5, 1), (1, N'x', 3, null, 0), (4, N'银行', null, 2e3, 1)\n";

namespace {

constexpr int kDeep = 4;

const char* const kColumns[] = {"t.a", "t.b", "t.c", "t.d", "t.e", "u.a", "u.b", "u.c", "u.f", "u.g"};
const char* const kColumnsOfT[] = {"t.a", "t.b", "t.c", "t.d", "t.e"};
const char* const kOwnColumns[] = {"a", "b", "c"};
const char* const kLiterals[] = {"0",    "1",       "-1",  "2147483647", "12.50",        "1e3",
                                 "null", "N'现金'", "'x'", "''",         "'2026-01-05'", "'12.5000'",
                                 "0x41", "N'%_['",  "@i",  "@s",         "99999999999",  "0.0001",
                                 "'  '", "'abc '"};
const char* const kTypes[] = {"int",   "bigint", "smallint",     "decimal(18,4)", "decimal(5,2)",
                              "money", "float",  "nvarchar(20)", "varchar(3)",    "datetime",
                              "date",  "bit",    "char(4)"};
const char* const kOneArgument[] = {"len",        "upper", "ltrim",   "rtrim", "abs",     "floor",
                                    "isnumeric",  "year",  "month",   "ascii", "unicode", "reverse",
                                    "datalength", "sign",  "ceiling", "str"};
const char* const kComparisons[] = {"=", "<>", "<", ">", "<=", ">=", "!<"};
const char* const kArithmetic[] = {"+", "-", "*", "/", "%", "&", "|"};
const char* const kAggregates[] = {"sum", "min", "max", "avg"};

class Maker {
  public:
    explicit Maker(Choices& choices) : choices_(choices) {}

    std::string Batch() {
        std::string text =
            "declare @i int = " + std::to_string(choices_.Below(5)) + ", @s nvarchar(20) = N'现'\n";
        for (std::size_t count = 1 + choices_.Below(5); count > 0; --count)
            text += Statement(0) + (choices_.Below(4) == 0 ? ";\n" : "\n");
        return text;
    }

  private:
    std::string Column() { return both_ ? choices_.Of(kColumns) : choices_.Of(kColumnsOfT); }

    std::string Expression(int depth) {
        if (depth >= kDeep) return choices_.Coin() ? std::string(choices_.Of(kLiterals)) : Column();
        const auto inner = [&] { return Expression(depth + 1); };
        switch (choices_.Below(14)) {
            case 0:
            case 1:
            case 2:
                return Column();
            case 3:
            case 4:
                return choices_.Of(kLiterals);
            case 5:
                return "(" + inner() + " " + choices_.Of(kArithmetic) + " " + inner() + ")";
            case 6:
                return std::string(choices_.Of(kOneArgument)) + "(" + inner() + ")";
            case 7:
                return "isnull(" + inner() + ", " + inner() + ")";
            case 8:
                return std::string("cast(") + inner() + " as " + choices_.Of(kTypes) + ")";
            case 9:
                return "case when " + Condition(depth + 1) + " then " + inner() + " else " + inner() + " end";
            case 10:
                return "substring(" + inner() + ", " + inner() + ", " + inner() + ")";
            case 11:
                return "(select top 1 " + std::string(choices_.Of(kOwnColumns)) + " from u x where " +
                       (choices_.Coin() ? "x.a = t.a" : Condition(depth + 1)) + ")";
            case 12:
                return "replace(" + inner() + ", " + inner() + ", " + inner() + ")";
            default:
                return "-" + inner();
        }
    }

    std::string Condition(int depth) {
        if (depth >= kDeep) return Column() + " = " + choices_.Of(kLiterals);
        const auto inner = [&] { return Expression(depth + 1); };
        switch (choices_.Below(9)) {
            case 0:
                return inner() + " is " + (choices_.Coin() ? "not null" : "null");
            case 1:
                return inner() + " like " + inner();
            case 2:
                return inner() + " in (" + inner() + ", " + inner() + ", -1)";
            case 3:
                return inner() + " not in (select a from u)";
            case 4:
                return inner() + " between " + inner() + " and " + inner();
            case 5:
                return "exists (select 1 from t y where " + Condition(depth + 1) + ")";
            case 6:
                return "(" + Condition(depth + 1) + (choices_.Coin() ? " and " : " or ") +
                       Condition(depth + 1) + ")";
            case 7:
                return "not (" + Condition(depth + 1) + ")";
            default:
                return inner() + " " + choices_.Of(kComparisons) + " " + inner();
        }
    }

    std::string Source() {
        switch (choices_.Below(6)) {
            case 0:
                return "t, u";
            case 1:
                return "t inner join u on t.a = u.a";
            case 2:
                return "t left join u on t.c = u.c and " + Condition(2);
            case 3:
                return "(select a, b, c, d, e from t where " + Condition(3) + ") t cross join u";
            case 4:
                return "t full join u on t.b = u.b";
            default:
                return "t right join u on " + Condition(2);
        }
    }

    std::string Select() {
        std::string text = "select ";
        if (choices_.Below(4) == 0) text += "distinct ";
        if (choices_.Below(4) == 0) text += "top " + std::to_string(choices_.Below(4)) + " ";
        const bool grouped = choices_.Below(4) == 0;
        if (grouped) {
            text += std::string("t.b, ") + choices_.Of(kAggregates) + "(" + Expression(2) +
                    "), count(*) from " + Source();
        } else {
            text += Expression(0) + " as x, " + Expression(1) + " from " + Source();
        }
        if (choices_.Coin()) text += " where " + Condition(0);
        if (grouped) {
            text += " group by t.b";
            if (choices_.Coin()) text += " having count(*) > " + std::to_string(choices_.Below(3));
            return text + (choices_.Coin() ? " order by t.b" : "");
        }
        switch (choices_.Below(6)) {
            case 0:
                return text + " order by 1";
            case 1:
                return text + " order by x desc, 2";
            case 2:
                return text + (choices_.Coin() ? " union all" : " union") + " select 1, N'现'";
            default:
                return text;
        }
    }

    std::string Block(int depth) {
        std::string text = "begin\n";
        for (std::size_t count = 1 + choices_.Below(2); count > 0; --count)
            text += Statement(depth + 1) + "\n";
        return text + "end";
    }

    std::string Statement(int depth) {
        if (depth >= 3) return "set @i = @i + 1";
        switch (choices_.Below(20)) {
            case 0:
            case 1:
            case 2:
            case 3:
                return Select();
            case 4:
                return "insert into t values (" + std::to_string(choices_.Below(20)) + ", " + Scalar() +
                       ", " + Scalar() + ", null, " + Scalar() + ")";
            case 5:
                return "insert into u (a, b, c) select " + Expression(2) + ", N'新', " + Expression(2) +
                       " from " + Source();
            case 6: {
                both_ = choices_.Coin();
                const std::string text = std::string("update t set ") + (choices_.Coin() ? "b" : "c") +
                                         " = " + Expression(1) +
                                         (both_ ? " from t inner join u on t.a = u.a" : "") +
                                         (choices_.Coin() ? " where " + Condition(2) : "");
                both_ = true;
                return text;
            }
            case 7:
                return "update u set a = a + " + std::to_string(choices_.Below(3)) + ", f = " + Scalar();
            case 8:
                return choices_.Coin() ? "delete t where a not in (1, -1)"
                                       : "delete u from u inner join t on t.c = u.c where " + Condition(1);
            case 9:
                return "set @i = " + Scalar();
            case 10:
                return "select @s = b, @i = a from t where a > " + std::to_string(choices_.Below(4));
            case 11:
                return "if " + ScalarCondition() + "\n" + Block(depth) +
                       (choices_.Coin() ? "\nelse " + Block(depth) : "");
            case 12: {
                const std::string counter = "@w" + std::to_string(++names_);
                return "declare " + counter + " int = 0\nwhile " + counter + " < " +
                       std::to_string(choices_.Below(4)) + "\nbegin\nset " + counter + " += 1\n" +
                       Statement(depth + 1) + (choices_.Below(4) == 0 ? "\nif @i > 2 break" : "") + "\nend";
            }
            case 13:
                return "begin try\n" + Statement(depth + 1) +
                       "\nend try\nbegin catch\nselect error_number(), " + "error_message()\nend catch";
            case 14: {
                const std::string cursor = "c" + std::to_string(++names_);
                return "declare " + cursor + " cursor local for select a from t order by a\nopen " + cursor +
                       "\nfetch next from " + cursor + " into @i\nwhile @@fetch_status = 0\nbegin\n" +
                       Statement(depth + 1) + "\nfetch next from " + cursor + " into @i\nend\nclose " +
                       cursor + "\ndeallocate " + cursor;
            }
            case 15:
                return choices_.Coin() ? "begin transaction" : choices_.Coin() ? "commit" : "rollback";
            case 16: {
                const std::string table = "#x" + std::to_string(++names_);
                return "select a, " + Expression(2) + " as v into " + table +
                       " from t\nselect count(*) from " + table + "\ndrop table " + table;
            }
            case 17:
                return "raiserror('gone', " + std::to_string(choices_.Below(18)) + ", 1)";
            case 18:
                return "exec (N'select ' + @s + N' from t')";
            default:
                return "print " + Scalar();
        }
    }

    // Without columns.
    std::string Scalar() {
        switch (choices_.Below(6)) {
            case 0:
                return std::string("cast(") + choices_.Of(kLiterals) + " as " + choices_.Of(kTypes) + ")";
            case 1:
                return "(select count(*) from " + Source() + ")";
            case 2:
                return std::string(choices_.Of(kOneArgument)) + "(" + choices_.Of(kLiterals) + ")";
            case 3:
                return std::string("(") + choices_.Of(kLiterals) + " " + choices_.Of(kArithmetic) + " " +
                       choices_.Of(kLiterals) + ")";
            default:
                return choices_.Of(kLiterals);
        }
    }
    std::string ScalarCondition() { return Scalar() + " " + choices_.Of(kComparisons) + " " + Scalar(); }

    Choices& choices_;
    int names_ = 0;
    bool both_ = true;  // tables that columns may be of
};

}  // namespace

std::string MakeTsqlBatch(Choices& choices) {
    return Maker(choices).Batch();
}

}  // namespace vicenter::fuzz
