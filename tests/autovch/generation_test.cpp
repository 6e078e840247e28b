#include "autovch/generation.h"

#include "tests/autovch/autovch_fixture.h"
#include "tests/fakes/template_answer.h"

namespace vicenter::autovch {
namespace {

using system::MessageButtons;
using system::MessageResult;

class GenerateTest : public AutoVchTest {
  protected:
    void SetUp() override {
        AutoVchTest::SetUp();
        request_ = {MarchFilter(), " 三月 ", {}};
        set_.Answer("from t_Voucher a",
                    Rows(VoucherColumns(), {VoucherRow(2, "提现", 17), VoucherRow(2, "提现", 17)}));
    }
    std::string BatchSent() const {
        for (const std::string& sql : set_.Statements()) {
            if (sql.find("@Vch_cursor") != std::string::npos) return sql;
        }
        return {};
    }

    GenerationRequest request_;
};

// A template of that name is there, and whose it is.
void Exists(fakes::FakeAccountSet& set, int id, int owner) {
    set.Answer("select FID from t_VchTemplate where FName", Rows({"FID"}, {{id}}));
    set.Answer("as FTemplateName", fakes::TemplateAnswer(owner, "三月"));
}

// From the first insert on the template can be found by its name.
void ExistsAfterTheBatch(fakes::FakeAccountSet& set, int id) {
    set.Respond("@Vch_cursor", [&set, id](const std::string&) {
        set.Answer("select FID from t_VchTemplate where FName", Rows({"FID"}, {{id}}));
        return Rows({});
    });
}

TEST_F(GenerateTest, WritesOneBatchAndReports) {
    ExistsAfterTheBatch(set_, 9);
    const GenerationResult result = Generate(request_);
    EXPECT_TRUE(result.outcome);
    EXPECT_EQ(result.outcome.id, 9);
    EXPECT_EQ(result.message, "凭证生成凭证模板 三月 成功！");
    EXPECT_TRUE(surroundings_.messageBoxes->shown.empty());
    const auto& sent = set_.Statements();
    ASSERT_EQ(sent.size(), 7U);
    EXPECT_EQ(sent[0], "select FID from t_VchTemplate where FName = '三月'");
    EXPECT_EQ(sent[1], VoucherQuery(request_.filter));
    // The one question about lines in a new template's way.
    EXPECT_TRUE(sent[2].starts_with("if exists(select 1 from t_VchTemplateEntry where FID > "));
    EXPECT_EQ(sent[4], "select FID from t_VchTemplate where FName = '三月'");
    EXPECT_EQ(sent[5], "exec pro_VchTpCanUsed 9");
    EXPECT_EQ(sent[6], "select FNo from t_VchTpControl where FIsCanUsed = 0 and FID = 9 order by fno");
    EXPECT_EQ(frame_->Calls(), (Texts{"Propstring=UserID=16394;", "WriteMGLog(C001C039, AutoRunVch)"}));
}

TEST_F(GenerateTest, ReportsTheNumbersThatCannotBeUsed) {
    ExistsAfterTheBatch(set_, 9);
    set_.Answer("FIsCanUsed = 0", Rows({"FNo"}, {{2}, {4}}));
    EXPECT_EQ(Generate(request_).message,
              "凭证生成凭证模板 三月 成功！\r\n\r\n注：编号为 2、4 "
              "的凭证模板存在异常(标红)，无法在当前账套中使用！");
}

TEST_F(GenerateTest, NumbersThatCannotBeReadAreNotPassedForUsable) {
    ExistsAfterTheBatch(set_, 9);
    set_.Fail("FIsCanUsed = 0", "no answer");
    EXPECT_EQ(Generate(request_).message,
              "凭证生成凭证模板 三月 成功！\r\n\r\n注：哪些编号无法在当前账套中使用未能读取，"
              "请重新打开凭证模板查看！");
}

TEST_F(GenerateTest, InputProblemsStopBeforeAnything) {
    request_.filter.year = "";
    EXPECT_FALSE(Generate(request_).outcome);
    request_.filter = MarchFilter();
    request_.filter.period = "";
    Generate(request_);
    request_.filter = MarchFilter();
    request_.filter.to = "0";
    Generate(request_);
    request_.filter = MarchFilter();
    request_.templateName = "   ";
    Generate(request_);
    EXPECT_EQ(surroundings_.messageBoxes->Texts(),
              (Texts{"请设置凭证过滤年度！", "请设置凭证过滤期间！", "请正确设置凭证号范围！",
                     "凭证模板名称不允许为空！"}));
    for (const auto& message : surroundings_.messageBoxes->shown) {
        EXPECT_EQ(message.title, "信息提示");
        EXPECT_EQ(message.icon, system::MessageIcon::Information);
    }
    EXPECT_TRUE(set_.Statements().empty());
    EXPECT_TRUE(frame_->Calls().empty());
}

TEST_F(GenerateTest, TheLineEndOfACopiedNameIsNoPartOfItAndOthersAreRefused) {
    request_.templateName = "a\tb";
    EXPECT_FALSE(Generate(request_).outcome);
    EXPECT_EQ(surroundings_.messageBoxes->Texts(), Texts{"凭证模板名称不能包含制表符、换行等控制字符！"});
    EXPECT_TRUE(set_.Statements().empty());
    Exists(set_, 7, 16394);
    surroundings_.messageBoxes->shown.clear();
    surroundings_.messageBoxes->answers = {MessageResult::No};
    request_.templateName = "三月\r\n";
    Generate(request_);
    EXPECT_EQ(
        surroundings_.messageBoxes->Texts(),
        Texts{"凭证模板“三月”已存在，生成的凭证模板将覆盖原模板，建议先引出原模板备份。请确认是否生成？"});
}

TEST_F(GenerateTest, AnExistingNameIsAskedAbout) {
    Exists(set_, 7, 16394);
    surroundings_.messageBoxes->answers = {MessageResult::No};
    EXPECT_FALSE(Generate(request_).outcome);
    ASSERT_EQ(surroundings_.messageBoxes->shown.size(), 1U);
    const auto& question = surroundings_.messageBoxes->shown.front();
    EXPECT_EQ(question.text,
              "凭证模板“三月”已存在，生成的凭证模板将覆盖原模板，建议先引出原模板备份。请确认是否生成？");
    EXPECT_EQ(question.buttons, MessageButtons::YesNo);
    EXPECT_EQ(BatchSent(), "");
    EXPECT_EQ(set_.Statements().size(), 2U);  // its name and its owner, not even the vouchers
}

TEST_F(GenerateTest, AnotherUsersTemplateIsNeverTakenOver) {
    Exists(set_, 7, 2);
    EXPECT_FALSE(Generate(request_).outcome);
    EXPECT_EQ(surroundings_.messageBoxes->Texts(),
              Texts{"凭证模板“三月”属于其他用户（用户编号 2），不允许覆盖，凭证模板生成失败！"});
    EXPECT_EQ(BatchSent(), "");
}

TEST_F(GenerateTest, ATemplateThatCannotBeReadIsNotReplaced) {
    set_.Fail("select FID from t_VchTemplate where FName", "gone");
    EXPECT_FALSE(Generate(request_).outcome);
    EXPECT_EQ(surroundings_.messageBoxes->Texts(), Texts{"凭证模板“三月”无法读取，凭证模板生成失败！"});
    EXPECT_EQ(BatchSent(), "");
}

TEST_F(GenerateTest, TheStandardTemplateStaysEverybodys) {
    request_.templateName = "标准模板";
    Exists(set_, 0, 0);
    surroundings_.messageBoxes->answers = {MessageResult::Yes};
    EXPECT_TRUE(Generate(request_).outcome);
    EXPECT_NE(BatchSent().find("values(@MaxFID,'标准模板',0,'',GetDate())"), std::string::npos);
}

TEST_F(GenerateTest, YesOverwritesUnderTheSameId) {
    Exists(set_, 7, 16394);
    surroundings_.messageBoxes->answers = {MessageResult::Yes};
    const GenerationResult result = Generate(request_);
    EXPECT_TRUE(result.outcome);
    EXPECT_EQ(result.outcome.id, 7);
    EXPECT_TRUE(BatchSent().starts_with(" delete t_VchTemplateEntry where FID = 7\r\n"));
}

TEST_F(GenerateTest, NoVouchersIsAMessage) {
    set_.Answer("from t_Voucher a", Rows(VoucherColumns()));
    EXPECT_FALSE(Generate(request_).outcome);
    EXPECT_EQ(surroundings_.messageBoxes->Texts(),
              Texts{"没有查询到凭证信息，凭证模板生成失败，请重新设置过滤条件！"});
    EXPECT_EQ(BatchSent(), "");
}

TEST_F(GenerateTest, AFailingBatchIsReportedOnceAndGeneratesNothing) {
    set_.Fail("@Vch_cursor", "Violation of PRIMARY KEY constraint.");
    EXPECT_FALSE(Generate(request_).outcome);
    EXPECT_EQ(surroundings_.messageBoxes->Texts(), Texts{"Violation of PRIMARY KEY constraint."});
    EXPECT_EQ(set_.LastStatement(), BatchSent());
}

TEST_F(GenerateTest, CancellingWritesNothingAndSaysNothing) {
    EXPECT_FALSE(Generate(request_, [](std::int64_t, std::int64_t) { return false; }).outcome);
    EXPECT_TRUE(surroundings_.messageBoxes->shown.empty());
    EXPECT_EQ(BatchSent(), "");
}

TEST_F(GenerateTest, EachDetailIdIsAskedForOnce) {
    request_.columns = {11};
    set_.Answer("FSQLTableName", Rows({"FItemClassID", "FSQLTableName"}, {{1, "t_Organization"}}));
    set_.Answer("as FItemsInfo from t_ItemDetail a", Rows({"FItemsInfo"}, {{"01.01"}}));
    ExistsAfterTheBatch(set_, 9);
    EXPECT_TRUE(Generate(request_).outcome);
    int asked = 0;
    for (const std::string& sql : set_.Statements())
        asked += sql.find("FSQLTableName") != std::string::npos ? 1 : 0;
    EXPECT_EQ(asked, 1);
    EXPECT_NE(BatchSent().find(",'01.01') \r\n"), std::string::npos);
}

// Round trips of a generation from that many lines, with four detail ids among them.
std::size_t RoundTrips(fakes::FakeAccountSet& set, const GenerationRequest& request, int lines) {
    std::vector<std::vector<Variant>> rows;
    for (int line = 0; line < lines; ++line)
        rows.push_back(VoucherRow(1 + line / 2, "提现", 16 + line % 4));
    set.Answer("from t_Voucher a", Rows(VoucherColumns(), rows));
    set.Answer("select FID from t_VchTemplate where FName", Rows({"FID"}));
    ExistsAfterTheBatch(set, 9);
    set.Forget();
    EXPECT_TRUE(Generate(request).outcome);
    return set.Statements().size();
}

TEST_F(GenerateTest, RoundTripsDoNotGrowWithTheLines) {
    set_.Answer("FSQLTableName", Rows({"FItemClassID", "FSQLTableName"}, {{1, "t_Organization"}}));
    set_.Answer("as FItemsInfo from t_ItemDetail a", Rows({"FItemsInfo"}, {{"01.01"}}));
    EXPECT_EQ(RoundTrips(set_, request_, 8), 7U);
    EXPECT_EQ(RoundTrips(set_, request_, 8000), 7U);
    // With the items: two more for each distinct detail id.
    request_.columns = {11};
    EXPECT_EQ(RoundTrips(set_, request_, 8), 7U + 2 * 4);
    EXPECT_EQ(RoundTrips(set_, request_, 8000), 7U + 2 * 4);
}

std::size_t PlaceOf(const std::string& name) {
    const auto& names = VoucherColumns();
    return static_cast<std::size_t>(std::find(names.begin(), names.end(), name) - names.begin());
}

TEST_F(GenerateTest, TellsWhatATemplateHasNoRoomForAndWritesNothing) {
    std::string longName;
    for (int i = 0; i < 161; ++i)
        longName += "长";
    std::vector<Variant> second = VoucherRow(7, "提现", 0);
    second[PlaceOf("FAccountName")] = longName;
    second[PlaceOf("FAmount")] = *automation::Decimal::Parse("1000000000000000000000000");
    std::vector<Variant> third = VoucherRow(8, "提现", 17);
    third[PlaceOf("FAmount")] = *automation::Decimal::Parse("-999999999999999999999999.9999");
    set_.Answer("from t_Voucher a", Rows(VoucherColumns(), {VoucherRow(2, "提现", 0), second, third}));
    request_.columns = {store::column::kAmount};
    const GenerationResult result = Generate(request_);
    EXPECT_FALSE(result.outcome);
    EXPECT_EQ(surroundings_.messageBoxes->Texts(),
              Texts{"凭证模板生成失败！以下内容超出模板的存储范围：\r\n"
                    "第2行，科目名称(*)：长度不能超过160个字符（凭证号 7）\r\n"
                    "第2行，金额：数字过大，整数部分不能超过24位（凭证号 7）"});
    EXPECT_EQ(BatchSent(), "");
    ASSERT_EQ(result.faults.size(), 2U);
    EXPECT_EQ(result.faults[0].value, longName);
    EXPECT_EQ(result.faults[1].row, 2);
    EXPECT_EQ(result.faults[1].header, "金额");
    EXPECT_EQ(result.faults[1].reason, "数字过大，整数部分不能超过24位（凭证号 7）");
}

// Vouchers know negative amounts and large counts; the template keeps them as they are.
TEST_F(GenerateTest, TakesNumbersOutsideOfWhatACellTakes) {
    std::vector<Variant> row = VoucherRow(2, "冲回", 0);
    row[PlaceOf("FAmount")] = *automation::Decimal::Parse("-12.34");
    row[PlaceOf("FAmountFor")] = -5.0;
    row[PlaceOf("FQty")] = std::int64_t{1500000000};
    row[PlaceOf("FFileCount")] = 1500000000;
    set_.Answer("from t_Voucher a", Rows(VoucherColumns(), {row}));
    request_.columns = {store::column::kFileCount, store::column::kAmountFor, store::column::kQuantity,
                        store::column::kAmount};
    ExistsAfterTheBatch(set_, 9);
    EXPECT_TRUE(Generate(request_).outcome);
    EXPECT_NE(BatchSent().find(",1500000000,-5,1500000000,-12.34) \r\n"), std::string::npos) << BatchSent();
}

}  // namespace
}  // namespace vicenter::autovch
