// A host's own connection service, called by names: what is asked in which order, and what its answers and
// failures become.

#include "platform/ado/late_bound_framework.h"

#include <optional>

#include <gtest/gtest.h>

#include "automation/error.h"
#include "tests/fakes/scripted_object.h"

namespace vicenter::ado {
namespace {

using automation::Arguments;
using automation::Error;
using automation::ObjectRef;
using automation::Variant;
using fakes::ScriptedObject;
using Calls = std::vector<std::string>;

// A recordset of two columns and as many rows as there are texts.
class ForeignRows {
  public:
    explicit ForeignRows(std::vector<std::string> texts) : texts_(std::move(texts)) {
        fields_->Value("Count", 2);
        fields_->On("Item", [this](Arguments& a) {
            const bool first = a[0].Value().ToInt32() == 0;
            auto field = std::make_shared<ScriptedObject>("Field");
            field->Value("Name", first ? "FNo" : "FText");
            field->Value("Type", first ? 3 : 999);
            if (row_ < texts_.size())
                field->Value("Value",
                             first ? Variant(static_cast<std::int32_t>(row_)) : Variant(texts_[row_]));
            return Variant(ObjectRef(field));
        });
        rows_->Value("Fields", ObjectRef(fields_));
        rows_->Value("RecordCount", -1);
        rows_->On("EOF", [this](Arguments&) { return Variant(row_ >= texts_.size()); });
        rows_->On("MoveNext", [this](Arguments&) {
            ++row_;
            return Variant();
        });
    }
    ScriptedObject& Rows() { return *rows_; }
    Variant Answer() const { return ObjectRef(rows_); }

  private:
    std::vector<std::string> texts_;
    std::size_t row_ = 0;
    std::shared_ptr<ScriptedObject> rows_ = std::make_shared<ScriptedObject>("Recordset");
    std::shared_ptr<ScriptedObject> fields_ = std::make_shared<ScriptedObject>("Fields");
};

class LateBound : public testing::Test {
  protected:
    LateBound() {
        framework_->On("GiveBroker", [this](Arguments&) { return Variant(ObjectRef(broker_)); });
        broker_->On("Bind", [](Arguments&) { return Variant(); });
        broker_->Value("Auxiliary", Variant());
        broker_->On("Settle", [](Arguments&) { return Variant(); });
        broker_->On("GiveConnection", [this](Arguments&) { return Variant(ObjectRef(connection_)); });
    }
    std::shared_ptr<HostFramework> Framework() { return MakeLateBoundFramework(framework_); }
    ConnectionRef Connection() { return Framework()->GiveBroker()->GiveConnection(); }
    void Answers(const Variant& answer, std::int32_t affected = -1) {
        connection_->On("Execute", [answer, affected](Arguments& a) {
            a[1].Assign(affected);
            return answer;
        });
    }
    static std::int32_t NumberOf(const std::function<void()>& action) {
        try {
            action();
        } catch (const Error& error) {
            return error.Number();
        }
        return 0;
    }

    std::shared_ptr<ScriptedObject> framework_ = std::make_shared<ScriptedObject>("Framework");
    std::shared_ptr<ScriptedObject> broker_ = std::make_shared<ScriptedObject>("Broker");
    std::shared_ptr<ScriptedObject> connection_ = std::make_shared<ScriptedObject>("Connection");
};

TEST_F(LateBound, TheFiveOperationsAreCalledByTheirNames) {
    Answers(Variant());
    const auto broker = Framework()->GiveBroker();
    broker->Bind("UserID=7;");
    EXPECT_EQ(broker->Auxiliary(), nullptr);
    broker->Settle();
    broker->GiveConnection()->Execute("select 1");
    EXPECT_EQ(framework_->Calls(), Calls{"GiveBroker()"});
    EXPECT_EQ(broker_->Calls(), (Calls{"Bind(UserID=7;)", "Auxiliary()", "Settle()", "GiveConnection()"}));
    EXPECT_EQ(connection_->Calls(), Calls{"Execute(select 1, -1, -1)"});
}

TEST_F(LateBound, AForwardOnlyRecordsetIsReadToItsEnd) {
    ForeignRows foreign({"现金", "银行"});
    foreign.Rows().On("Close", [](Arguments&) { return Variant(); });
    Answers(foreign.Answer(), 2);
    std::int64_t affected = 0;
    const RecordsetRef rows = Connection()->Execute("select", &affected);
    EXPECT_EQ(affected, 2);
    ASSERT_EQ(rows->RecordCount(), 2);
    EXPECT_EQ(rows->Columns()[0].name, "FNo");
    EXPECT_EQ(rows->Columns()[0].type, DataType::kInteger);
    EXPECT_EQ(rows->Columns()[1].type, DataType::kVarWChar) << "a code that ADO does not know";
    EXPECT_EQ(rows->ValueAt(0, 1).ToText(), "现金");
    EXPECT_EQ(rows->ValueAt(1, 0).ToInt32(), 1);
    EXPECT_EQ(foreign.Rows().Calls().back(), "Close()");
}

// ADO's way with a batch of several statements: a closed recordset for each that only changes.
class LateBoundBatch : public LateBound {
  protected:
    // What the batch's results are, one behind the other; none where the server has failed.
    void Gives(std::vector<std::optional<Variant>> results) {
        results_ = std::move(results);
        at_ = 0;
        connection_->On("Execute", [this](Arguments&) { return Next(); });
    }
    Variant OfChange() {
        auto closed = std::make_shared<ScriptedObject>("Recordset");
        closed->Value("State", 0);
        closed->On("NextRecordset", [this](Arguments&) { return Next(); });
        closed->On("Close", [](Arguments&) -> Variant { throw Error(3704, "closed", "ADODB.Recordset"); });
        return Variant(ObjectRef(closed));
    }
    Variant Of(ForeignRows& rows) {
        auto state = std::make_shared<int>(1);
        rows.Rows().On("State", [state](Arguments&) { return Variant(*state); });
        rows.Rows().On("NextRecordset", [this, state](Arguments&) {
            *state = 0;
            return Next();
        });
        rows.Rows().On("Close",
                       [](Arguments&) -> Variant { throw Error(3704, "closed", "ADODB.Recordset"); });
        return rows.Answer();
    }
    std::size_t Asked() const { return at_; }

  private:
    Variant Next() {
        if (at_ >= results_.size()) return Variant(ObjectRef());
        const std::optional<Variant> result = results_[at_++];
        if (!result) throw Error(-2147217873, "Cannot insert the value NULL", "Provider");
        return *result;
    }

    std::vector<std::optional<Variant>> results_;
    std::size_t at_ = 0;
};

TEST_F(LateBoundBatch, WhatFailsBehindItsFirstStatementIsToldAsFailed) {
    Gives({OfChange(), OfChange(), std::nullopt});
    const ConnectionRef connection = Connection();
    EXPECT_EQ(NumberOf([&] { connection->Execute("delete … insert … insert …"); }), -2147217873);
    ASSERT_EQ(connection->Errors().size(), 1U);
    EXPECT_EQ(connection->Errors()[0].text, "Cannot insert the value NULL");
}

TEST_F(LateBoundBatch, TheFirstResultWithColumnsIsKeptAndAllAreAskedFor) {
    ForeignRows first({"现金", "银行"});
    ForeignRows second({"other"});
    Gives({OfChange(), Of(first), OfChange(), Of(second), OfChange()});
    const RecordsetRef rows = Connection()->Execute("delete … select … update … select … delete");
    ASSERT_EQ(rows->RecordCount(), 2);
    EXPECT_EQ(rows->ValueAt(1, 1).ToText(), "银行");
    EXPECT_EQ(Asked(), 5U);
    Gives({});
    EXPECT_FALSE(Connection()->Execute("nothing")->IsOpen());
}

TEST_F(LateBoundBatch, WhatFailsBehindRowsOrWithinThemFails) {
    ForeignRows rows({"现金"});
    Gives({Of(rows), std::nullopt});
    EXPECT_EQ(NumberOf([&] { Connection()->Execute("select … insert …"); }), -2147217873);
    ForeignRows broken({"现金"});
    broken.Rows().On("MoveNext", [](Arguments&) -> Variant { throw Error(11, "overflow", "Provider"); });
    Answers(broken.Answer());
    const ConnectionRef connection = Connection();
    EXPECT_EQ(NumberOf([&] { connection->Execute("select"); }), 11);
    EXPECT_EQ(connection->Errors().size(), 1U);
}

TEST_F(LateBoundBatch, AProviderThatKnowsOneResultAloneHasGivenIt) {
    ForeignRows rows({"现金"});
    const Variant answer = Of(rows);
    bool closed = false;
    rows.Rows().On("NextRecordset", [](Arguments&) -> Variant {
        throw Error(3251, "Current provider does not support returning multiple recordsets",
                    "ADODB.Recordset");
    });
    rows.Rows().On("Close", [&](Arguments&) {
        closed = true;
        return Variant();
    });
    Gives({answer});
    EXPECT_EQ(Connection()->Execute("select")->RecordCount(), 1);
    EXPECT_TRUE(closed);
}

TEST_F(LateBound, NoRowsNoObjectAndAClosedRecordsetAreToldApart) {
    ForeignRows empty({});
    Answers(empty.Answer());
    EXPECT_EQ(Connection()->Execute("select")->RecordCount(), 0);
    Answers(Variant());
    EXPECT_FALSE(Connection()->Execute("update")->IsOpen());
    Answers(Variant(ObjectRef()));
    EXPECT_FALSE(Connection()->Execute("update")->IsOpen());
    auto closed = std::make_shared<ScriptedObject>("Recordset");
    closed->Value("State", 0);
    Answers(Variant(ObjectRef(closed)));
    EXPECT_FALSE(Connection()->Execute("update")->IsOpen());
}

TEST_F(LateBound, AnErrorOfTheHostsPassesWithWhatItsConnectionSays) {
    connection_->On("Execute", [](Arguments&) -> Variant { throw Error(-2147217900, "refused", "Host"); });
    const ConnectionRef plain = Connection();
    EXPECT_EQ(NumberOf([&] { plain->Execute("x"); }), -2147217900);
    ASSERT_EQ(plain->Errors().size(), 1U);
    EXPECT_EQ(plain->Errors()[0].text, "refused");

    auto error = std::make_shared<ScriptedObject>("Error");
    error->Value("NativeError", 2627).Value("Description", "key");
    auto errors = std::make_shared<ScriptedObject>("Errors");
    errors->Value("Count", 1).Value("Item", ObjectRef(error));
    connection_->Value("Errors", ObjectRef(errors));
    const ConnectionRef telling = Connection();
    EXPECT_EQ(NumberOf([&] { telling->Execute("x"); }), -2147217900);
    ASSERT_EQ(telling->Errors().size(), 1U);
    EXPECT_EQ(telling->Errors()[0].native, 2627);
    EXPECT_EQ(telling->Errors()[0].text, "key");
    errors->On("Count", [](Arguments&) -> Variant { throw Error(5, "broken", "Host"); });
    EXPECT_EQ(NumberOf([&] { telling->Execute("x"); }), -2147217900) << "the statement's own error stays";
}

TEST_F(LateBound, WhatMayBeMissingIsAndWhatMustBeThereIsAskedFor) {
    auto bare = std::make_shared<ScriptedObject>("Broker");
    bare->Value("GiveConnection", Variant());
    framework_->Value("GiveBroker", ObjectRef(bare));
    const auto broker = Framework()->GiveBroker();
    broker->Settle();
    EXPECT_EQ(NumberOf([&] { broker->GiveConnection(); }), automation::error_number::kObjectVariableNotSet);
    EXPECT_EQ(NumberOf([&] { broker->Bind(""); }), automation::error_number::kNoSuchMember);
    framework_->Value("GiveBroker", 7);
    EXPECT_EQ(NumberOf([&] { Framework()->GiveBroker(); }), automation::error_number::kObjectVariableNotSet);
}

TEST_F(LateBound, ComponentsComeFromTheHostsFactoryWhereItHasOne) {
    const automation::ClassRegistry::Restore registry;
    automation::ClassRegistry::Process().Register(
        "Test.Own", [] { return std::make_shared<ScriptedObject>("FromTheProcess"); });
    EXPECT_EQ(Framework()->CreateObject("Test.Own")->TypeName(), "FromTheProcess");
    framework_->On("CreateObject", [](Arguments& a) {
        return Variant(ObjectRef(std::make_shared<ScriptedObject>("Host:" + a[0].Value().ToText())));
    });
    EXPECT_EQ(Framework()->CreateObject("Test.Own")->TypeName(), "Host:Test.Own");
}

}  // namespace
}  // namespace vicenter::ado
