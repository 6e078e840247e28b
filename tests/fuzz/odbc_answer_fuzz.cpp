// Fuzz target of the ODBC back end: the bytes choose what a server answers to one batch, results of any
// types, counts, messages and errors in any order, with packets that end anywhere. What was put into the
// answer comes out of it, value by value, and the first error is the one that is told.
//
// Every answer is one that a server may give: FreeTDS ends the process on a description of columns that is
// none.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include <unistd.h>

#include "automation/error.h"
#include "platform/ado/connection.h"
#include "platform/ado/odbc/odbc_provider.h"
#include "tds_server/server.h"
#include "tests/fuzz/choices.h"

namespace {

using namespace vicenter;
using fuzz::Choices;
using tds_server::SqlType;
using tds_server::TokenWriter;
using tds_server::Value;
using tsql::engine::TypeKind;

constexpr const char* kBatch = "select the answer";
constexpr const char* kTexts[] = {"",       "a",      "中文", "𠮷", "a'b",
                                  " ends ", "a\r\nb", "\t",   "0",  "一段比较长的摘要，用来占满一个数据包"};
constexpr const char* kNumbers[] = {
    "0", "1", "-1", "12.5", "-0.0001", "999999999999.9999", "-7922816251426433"};

// A column's type and what one of its values is in the recordset.
struct Kind {
    SqlType type;
    Value (*value)(Choices& choices, std::string& text);
};

Value Number(Choices& choices, std::string& text, std::int64_t least, std::int64_t most) {
    const std::int64_t all[] = {0, 1, least, most, most / 3};
    const std::int64_t number = choices.Of(all);
    text = std::to_string(number);
    return Value(number);
}

// Sometimes of very many bytes, at most so many.
Value Text(Choices& choices, std::string& text, std::size_t most) {
    text = choices.Of(kTexts);
    const bool isLong = choices.Below(6) == 0;
    while (isLong && !text.empty() && text.size() * 2 <= most)
        text += text;
    return Value(text);
}

const Kind kKinds[] = {
    {SqlType::Int(),
     [](Choices& choices, std::string& text) {
         return Number(choices, text, std::numeric_limits<std::int32_t>::min(),
                       std::numeric_limits<std::int32_t>::max());
     }},
    {SqlType::Of(TypeKind::kBigInt),
     [](Choices& choices, std::string& text) {
         return Number(choices, text, std::numeric_limits<std::int64_t>::min(),
                       std::numeric_limits<std::int64_t>::max());
     }},
    {SqlType::Of(TypeKind::kSmallInt),
     [](Choices& choices, std::string& text) { return Number(choices, text, -32768, 32767); }},
    {SqlType::Of(TypeKind::kTinyInt),
     [](Choices& choices, std::string& text) { return Number(choices, text, 0, 255); }},
    {SqlType::NVarChar(4000), [](Choices& choices, std::string& text) { return Text(choices, text, 4000); }},
    {SqlType::NVarChar(tsql::engine::kMaxLength),
     [](Choices& choices, std::string& text) { return Text(choices, text, 40'000); }},
    {SqlType::Decimal(28, 4),
     [](Choices& choices, std::string& text) {
         const auto number = automation::Decimal::Parse(choices.Of(kNumbers));
         text = number->ToShortText();
         return Value(*number);
     }},
    {SqlType::Float(),
     [](Choices& choices, std::string& text) {
         const double number = static_cast<double>(choices.Byte()) / 8;
         text = automation::Variant(number).ToText();
         return Value(number);
     }},
};

// What an answer holds, as it is put together and as it comes out.
struct Content {
    std::string results;
    std::string error;  // the first
};

class Answer {
  public:
    explicit Answer(Choices& choices)
        : choices_(choices), page_(system::CodePage::Open(collation_.codePage)), writer_(collation_, *page_) {
        constexpr int kMostParts = 8;
        for (int i = 0; i < kMostParts && choices_.Any(); ++i)
            Part();
        TokenWriter::Done(tokens, tds_server::done::kToken, tds_server::done::kFinal, 0xC1, 0);
    }

    std::string tokens;
    Content content;

  private:
    void Part() {
        switch (choices_.Below(6)) {
            case 0:
                writer_.Said(tokens, tds_server::Information(50000, choices_.Of(kTexts)));
                break;
            case 1: {
                const std::string text = "error " + std::to_string(choices_.Byte());
                writer_.Said(tokens, tds_server::Refusal(50000, 16, text));
                Done(tds_server::done::kError, 0);
                if (content.error.empty()) content.error = text;
                break;
            }
            case 2:
                Done(tds_server::done::kCount, choices_.Byte());
                break;
            default:
                Result();
                break;
        }
    }
    void Done(unsigned status, std::uint64_t rows) {
        TokenWriter::Done(tokens, tds_server::done::kToken,
                          static_cast<std::uint16_t>(status | tds_server::done::kMore), 0xC1, rows);
    }
    void Result() {
        std::vector<std::string> names;
        std::vector<SqlType> types;
        std::vector<const Kind*> kinds;
        std::string shown;
        for (std::size_t count = choices_.Below(12) + 1; count > 0; --count) {
            kinds.push_back(&kKinds[choices_.Below(std::size(kKinds))]);
            types.push_back(kinds.back()->type);
            names.push_back("c" + std::to_string(count));
            shown += names.back() + "|";
        }
        writer_.Columns(tokens, names, types);
        const std::size_t rows = choices_.Below(7);
        for (std::size_t row = 0; row < rows; ++row) {
            std::vector<Value> values;
            shown += "\n";
            for (const Kind* kind : kinds) {
                std::string text = "NULL";
                values.push_back(choices_.Below(5) == 0 ? Value() : kind->value(choices_, text));
                shown += text + "|";
            }
            writer_.Row(tokens, types, values);
        }
        Done(tds_server::done::kCount, rows);
        content.results += shown + "\n\n";
    }

    Choices& choices_;
    const tds_server::Collation collation_ = tds_server::Collation::ChinesePrc();
    std::unique_ptr<system::CodePage> page_;
    TokenWriter writer_;
};

class Books {
  public:
    Books() {
        std::filesystem::create_directories(folder_);
        ado::RegisterOdbcProviders();
        server_.AddDatabase("books", folder_ / "books.vas");
        connection_ = ado::OpenConnection(server_.ConnectText("books") + ";Pooling=no;Packet Size=512");
    }
    Books(const Books&) = delete;
    Books& operator=(const Books&) = delete;
    ~Books() {
        connection_.reset();
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }
    Content Ask(const std::string& tokens) {
        server_.Behave(
            std::make_shared<tds_server::AnswerWith>(kBatch, tokens, tds_server::AnswerWith::Line::kStays));
        Content content;
        try {
            for (ado::RecordsetRef rows = connection_->Execute(kBatch); rows && rows->IsOpen();
                 rows = rows->Next())
                content.results += Shown(*rows);
        } catch (const automation::Error& error) {
            content.error = error.Text();
        }
        return content;
    }

  private:
    static std::string Shown(const ado::Recordset& rows) {
        std::string text;
        for (const ado::Column& column : rows.Columns())
            text += column.name + "|";
        for (std::size_t row = 0; row < static_cast<std::size_t>(rows.RecordCount()); ++row) {
            text += "\n";
            for (std::size_t column = 0; column < rows.ColumnCount(); ++column) {
                const automation::Variant& value = rows.ValueAt(row, column);
                const bool exact = value.Type() == automation::VariantType::Decimal;
                text += value.IsNull() ? "NULL" : exact ? value.ToDecimal().ToShortText() : value.ToText();
                text += "|";
            }
        }
        return text + "\n\n";
    }

    const std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() / ("odbc_answer_fuzz." + std::to_string(getpid()));
    tds_server::Server server_;
    ado::ConnectionRef connection_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Books books;
    Choices choices(data, size);
    const Answer answer(choices);
    const Content content = books.Ask(answer.tokens);
    const bool same = answer.content.error.empty()
                          ? content.results == answer.content.results && content.error.empty()
                          : content.error == answer.content.error;
    if (!same) {
        // From a little before the first difference on.
        const std::string& in = answer.content.results;
        const std::string& out = content.results;
        std::size_t at = 0;
        while (at < std::min(in.size(), out.size()) && in[at] == out[at])
            ++at;
        at -= std::min<std::size_t>(at, 60);
        std::fprintf(stderr, "error put in: %s; told: %s\nput in:\n%.300s\ncame out:\n%.300s\n",
                     answer.content.error.c_str(), content.error.c_str(), in.c_str() + at, out.c_str() + at);
        std::abort();
    }
    return 0;
}
