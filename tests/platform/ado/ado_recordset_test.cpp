// by hand
#include <gtest/gtest.h>

#include "platform/ado/connection.h"
#include "platform/ado/recordset.h"

namespace vicenter::ado {
namespace {

std::int32_t ErrorOf(const std::function<void()>& body) {
    try {
        body();
    } catch (const automation::Error& error) {
        return error.Number();
    }
    return 0;
}

RecordsetRef TwoRows() {
    auto rows = std::make_shared<Recordset>(std::vector<Column>{
        {"FID", DataType::kInteger, "int"}, {"FName", DataType::kVarWChar, "nvarchar(20)"}});
    rows->AppendRow({Variant(1), Variant("a")});
    rows->AppendRow({Variant(2), Variant("b")});
    return rows;
}

TEST(AdoRecordsetTest, Is_walked_from_the_first_row_to_behind_the_last) {
    const RecordsetRef rows = TwoRows();
    EXPECT_EQ(rows->RecordCount(), 2);
    EXPECT_FALSE(rows->AtEnd());
    EXPECT_EQ(rows->Value("fname").ToText(), "a");
    rows->MoveNext();
    EXPECT_EQ(rows->Value("FID").ToInt32(), 2);
    rows->MoveNext();
    EXPECT_TRUE(rows->AtEnd());
    EXPECT_EQ(ErrorOf([&] { rows->MoveNext(); }), error_number::kNoCurrentRecord);
    EXPECT_EQ(ErrorOf([&] { rows->Value("FID"); }), error_number::kNoCurrentRecord);
    rows->MoveFirst();
    EXPECT_EQ(rows->Value(0).ToInt32(), 1);
}

TEST(AdoRecordsetTest, An_empty_one_is_at_both_ends) {
    const auto rows = std::make_shared<Recordset>(std::vector<Column>{{"a", DataType::kInteger, "int"}});
    EXPECT_TRUE(rows->AtBegin());
    EXPECT_TRUE(rows->AtEnd());
    EXPECT_EQ(rows->RecordCount(), 0);
}

TEST(AdoRecordsetTest, Late_bound_members_answer_as_the_typed_ones) {
    const RecordsetRef rows = TwoRows();
    EXPECT_EQ(rows->Get("RecordCount").ToInt32(), 2);
    EXPECT_FALSE(rows->Get("EOF").ToBoolean());
    const Variant field = rows->Get("Fields", {Variant("FName")});
    EXPECT_EQ(field.AsObject()->Get("Value").ToText(), "a");
    EXPECT_EQ(field.AsObject()->Get("Name").ToText(), "FName");
    EXPECT_EQ(field.AsObject()->Get("Type").ToInt32(), 202);
    const Variant fields = rows->Get("Fields");
    EXPECT_EQ(fields.AsObject()->Get("Count").ToInt32(), 2);
    EXPECT_EQ(fields.AsObject()->Get("Item", {Variant(0)}).AsObject()->Get("").ToInt32(), 1);
    rows->Call("MoveNext");
    EXPECT_EQ(field.AsObject()->Get("Value").ToText(), "b");
    EXPECT_EQ(ErrorOf([&] { rows->Get("Fields", {Variant("nothing")}); }), error_number::kItemNotFound);
    EXPECT_EQ(ErrorOf([&] { rows->Get("Fields", {Variant(7)}); }), error_number::kItemNotFound);
}

TEST(AdoRecordsetTest, For_each_goes_through_the_fields_of_the_current_row) {
    const RecordsetRef rows = TwoRows();
    rows->MoveNext();
    std::string seen;
    const auto each = rows->Get("Fields").AsObject()->NewEnumerator();
    while (const auto field = each->Next())
        seen +=
            field->AsObject()->Get("Name").ToText() + "=" + field->AsObject()->Get("Value").ToText() + ";";
    EXPECT_EQ(seen, "FID=2;FName=b;");
    EXPECT_EQ(rows->NewEnumerator(), nullptr) << "a recordset is walked, not enumerated";
}

TEST(AdoRecordsetTest, A_closed_one_refuses_to_be_read) {
    const auto closed = std::make_shared<Recordset>();
    EXPECT_EQ(closed->RecordCount(), -1);
    EXPECT_EQ(closed->Get("State").ToInt32(), 0);
    EXPECT_EQ(ErrorOf([&] { closed->Get("EOF"); }), error_number::kObjectClosed);
    EXPECT_EQ(ErrorOf([&] { closed->MoveFirst(); }), error_number::kObjectClosed);
}

TEST(AdoConnectStringTest, Reads_braces_quotes_and_the_last_of_a_key) {
    const ConnectString text(" provider = X ; Data Source={a;b}};c};Empty=;nothing;Data source=\"q\";");
    EXPECT_EQ(text.Value("Provider"), "X");
    EXPECT_EQ(text.Value("DATA SOURCE"), "q");
    EXPECT_TRUE(text.Has("empty"));
    EXPECT_FALSE(text.Has("nothing"));
    EXPECT_EQ(ConnectString("Data Source={a;b}};c}").Value("Data Source"), "a;b};c");
}

TEST(AdoConnectStringTest, An_unknown_provider_is_error_3706) {
    EXPECT_EQ(ErrorOf([] { OpenConnection("Provider=Nobody;Data Source=x"); }),
              error_number::kProviderNotFound);
    EXPECT_EQ(ErrorOf([] { OpenConnection(""); }), error_number::kProviderNotFound);
    try {
        OpenConnection("Provider=Nobody");
    } catch (const automation::Error& error) {
        EXPECT_EQ(error.Text(), "Provider cannot be found. It may not be properly installed.");
    }
}

}  // namespace
}  // namespace vicenter::ado
