#pragma once

// A session on an account set in a folder of its own, and results as plain texts.

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/fakes/own_folder.h"
#include "tests/tsql/plain_collation.h"
#include "tsql/run/session.h"
#include "tsql/types/convert.h"

namespace vicenter::tsql::engine {

class TextSink : public ResultSink {
  public:
    void BeginResult(const std::vector<ResultColumn>& columns) override {
        if (!text_.empty()) text_ += "\n--\n";
        types_.clear();
        std::string header;
        for (const ResultColumn& column : columns) {
            header += (header.empty() ? "" : " ") + column.name + ":" + column.type.FullName();
            types_.push_back(column.type);
        }
        text_ += header;
    }
    void AddRow(std::vector<Value>& row) override {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            line += i == 0 ? "" : "|";
            line += row[i].IsNull() ? "NULL"
                                    : Convert(row[i], types_[i], SqlType::NVarChar(kMaxLength),
                                              types_[i].IsDate() ? 121 : 0)
                                          .Text();
        }
        text_ += "\n" + line;
    }
    void Message(const Diagnostic& message) override { messages_ += message.text + "\n"; }

    const std::string& Text() const { return text_; }
    const std::string& Messages() const { return messages_; }

  private:
    std::string text_;
    std::string messages_;
    std::vector<SqlType> types_;
};

class EngineTest : public testing::Test {
  protected:
    ~EngineTest() override { session_.reset(); }

    std::string Path() const { return (folder_ / "set.vas").string(); }
    SessionOptions Options() const {
        SessionOptions options;
        options.path = Path();
        options.create = true;
        options.collation = &collation_;
        options.now = [] { return *automation::DateTime::Parse("2026-01-31 08:09:10.123"); };
        return options;
    }
    std::unique_ptr<Session> Another() const { return std::make_unique<Session>(Options()); }
    Session& First() {
        if (!session_) session_ = Another();
        return *session_;
    }
    void UseStatementTransactions() {
        SessionOptions options = Options();
        options.batchTransactions = false;
        session_ = std::make_unique<Session>(options);
    }

    // The results, or "error <number> line <line>: <text>" for each error behind them.
    static std::string RunOn(Session& session, std::string_view batch) {
        TextSink sink;
        const ExecutionReport report = session.Execute(batch, sink);
        std::string text = sink.Text();
        for (const Diagnostic& error : report.errors) {
            text += (text.empty() ? "" : "\n") + ("error " + std::to_string(error.number)) + " line " +
                    std::to_string(error.line) + ": " + error.text;
        }
        return text;
    }
    std::string Run(std::string_view batch) { return RunOn(First(), batch); }
    std::int64_t Affected(std::string_view batch) {
        TextSink sink;
        return First().Execute(batch, sink).rowsAffected;
    }
    std::string Messages(std::string_view batch) {
        TextSink sink;
        First().Execute(batch, sink);
        return sink.Messages();
    }

    PlainCollation collation_;
    const fakes::OwnFolder own_;
    const std::filesystem::path folder_ = own_.Path();
    std::unique_ptr<Session> session_;
};

}  // namespace vicenter::tsql::engine
