#pragma once

// A host framework whose connections answer from a script and record what they were sent.
//
//     FakeAccountSet set;                       // becomes the process's framework until it is destroyed
//     set.Answer("from t_Account", Rows({"FAccountID", "FName"}, {{1001, "现金"}}));
//     set.Fail("from t_Settle", "no such thing");
//     ...
//     EXPECT_EQ(set.Statements(), ...);
//
// The latest answer whose text occurs in a statement is given; a statement without an answer gives an empty
// recordset with no columns, but for the question whether a new template's name is free: it is.

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "automation/class_registry.h"
#include "platform/ado/host_connection_service.h"

namespace vicenter::fakes {

using automation::Variant;

inline ado::RecordsetRef Rows(const std::vector<std::string>& names,
                              const std::vector<std::vector<Variant>>& rows = {}) {
    std::vector<ado::Column> columns;
    for (const std::string& name : names)
        columns.push_back({name, ado::DataType::kVarWChar, ""});
    auto recordset = std::make_shared<ado::Recordset>(columns);
    for (const auto& row : rows)
        recordset->AppendRow(row);
    return recordset;
}

class FakeAccountSet {
  public:
    using Responder = std::function<ado::RecordsetRef(const std::string& sql)>;

    FakeAccountSet() {
        state_ = std::make_shared<State>();
        ado::HostFramework::SetProcess(std::make_shared<Framework>(state_));
        // Whoever makes a template finds its name free, and nothing in its way.
        Answer("as FNamed", Rows({"FNamed"}, {{0}}));
    }
    FakeAccountSet(const FakeAccountSet&) = delete;
    FakeAccountSet& operator=(const FakeAccountSet&) = delete;
    ~FakeAccountSet() { ado::HostFramework::SetProcess(nullptr); }

    // Each use gets a recordset of its own, at its first row.
    void Answer(const std::string& part, ado::RecordsetRef rows) {
        Respond(part, [rows](const std::string&) {
            std::vector<std::vector<Variant>> copies;
            auto fresh = std::make_shared<ado::Recordset>(rows->Columns());
            for (std::int64_t r = 0; r < rows->RecordCount(); ++r) {
                std::vector<Variant> values;
                for (std::size_t c = 0; c < rows->ColumnCount(); ++c) {
                    values.push_back(rows->ValueAt(static_cast<std::size_t>(r), c));
                }
                fresh->AppendRow(std::move(values));
            }
            return fresh;
        });
    }
    void Fail(const std::string& part, const std::string& text) {
        Respond(part, [text](const std::string&) -> ado::RecordsetRef {
            throw automation::Error(ado::error_number::kProviderError, text, "FakeAccountSet");
        });
    }
    void Respond(const std::string& part, Responder responder) {
        state_->responders.emplace_back(part, std::move(responder));
    }

    // From here on statements of a command can be one unit. Calls() then has "begin unit", "commit unit"
    // where it was asked for and "end unit"; an error text refuses the one or the other.
    void KnowUnits(const std::string& beginError = {}, const std::string& commitError = {}) {
        state_->knowsUnits = true;
        state_->beginError = beginError;
        state_->commitError = commitError;
    }

    // Every statement executed, in order.
    const std::vector<std::string>& Statements() const { return state_->statements; }
    std::string LastStatement() const { return state_->statements.empty() ? "" : state_->statements.back(); }
    // The calls of the connection service in order: "broker", "bind <props>", "auxiliary", "settle",
    // "connection", "execute".
    const std::vector<std::string>& Calls() const { return state_->calls; }
    void Forget() {
        state_->statements.clear();
        state_->calls.clear();
    }

  private:
    struct State {
        std::vector<std::pair<std::string, Responder>> responders;
        std::vector<std::string> statements;
        std::vector<std::string> calls;
        bool knowsUnits = false;
        bool unitIsOpen = false;
        std::string beginError;
        std::string commitError;
    };
    using StateRef = std::shared_ptr<State>;

    class FakeUnit : public ado::UnitOfWork {
      public:
        explicit FakeUnit(StateRef state) : state_(std::move(state)) { state_->unitIsOpen = true; }
        ~FakeUnit() override {
            state_->unitIsOpen = false;
            state_->calls.emplace_back("end unit");
        }
        bool Commit() override {
            state_->calls.emplace_back("commit unit");
            if (!state_->commitError.empty())
                throw automation::Error(ado::error_number::kProviderError, state_->commitError, "FakeUnit");
            return true;
        }

      private:
        StateRef state_;
    };

    class FakeConnection : public ado::Connection {
      public:
        explicit FakeConnection(StateRef state) : state_(std::move(state)) {}
        void Open(const std::string&) override {}
        bool IsOpen() const override { return true; }
        ado::RecordsetRef Execute(std::string_view batch, std::int64_t* recordsAffected) override {
            const std::string sql(batch);
            state_->calls.emplace_back("execute");
            state_->statements.push_back(sql);
            if (recordsAffected != nullptr) *recordsAffected = 0;
            for (auto it = state_->responders.rbegin(); it != state_->responders.rend(); ++it) {
                if (sql.find(it->first) != std::string::npos) return it->second(sql);
            }
            return std::make_shared<ado::Recordset>(std::vector<ado::Column>());
        }
        void Close() override {}
        const std::vector<ado::DriverError>& Errors() const override { return errors_; }

      private:
        StateRef state_;
        std::vector<ado::DriverError> errors_;
    };

    class FakeBroker : public ado::Broker {
      public:
        explicit FakeBroker(StateRef state) : state_(std::move(state)) {}
        void Bind(const std::string& propsString) override { state_->calls.push_back("bind " + propsString); }
        automation::ObjectRef Auxiliary() override {
            state_->calls.emplace_back("auxiliary");
            return nullptr;
        }
        void Settle() override { state_->calls.emplace_back("settle"); }
        ado::ConnectionRef GiveConnection() override {
            state_->calls.emplace_back("connection");
            return std::make_shared<FakeConnection>(state_);
        }

      private:
        StateRef state_;
    };

    class Framework : public ado::HostFramework {
      public:
        explicit Framework(StateRef state) : state_(std::move(state)) {}
        std::shared_ptr<ado::Broker> GiveBroker() override {
            state_->calls.emplace_back("broker");
            return std::make_shared<FakeBroker>(state_);
        }
        automation::ObjectRef CreateObject(const std::string& progId) override {
            return automation::CreateObject(progId);
        }
        std::unique_ptr<ado::UnitOfWork> BeginUnit(const std::string&) override {
            if (!state_->knowsUnits || state_->unitIsOpen) return nullptr;
            state_->calls.emplace_back("begin unit");
            if (!state_->beginError.empty())
                throw automation::Error(ado::error_number::kProviderError, state_->beginError, "FakeUnit");
            return std::make_unique<FakeUnit>(state_);
        }

      private:
        StateRef state_;
    };

    StateRef state_;
};

}  // namespace vicenter::fakes
