#include "platform/ado/side_by_side.h"

#include <map>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "automation/error.h"
#include "platform/ado/host_connection_service.h"

namespace vicenter::ado {

namespace {

std::map<std::string, SideBySideAsker>& Askers() {
    static std::map<std::string, SideBySideAsker> askers;
    return askers;
}

const SideBySideAsker* AskerOf(const std::string& connectString) {
    const std::string provider = ProviderOf(ConnectString(connectString));
    for (const auto& [name, asker] : Askers()) {
        if (automation::SameName(name, provider)) return &asker;
    }
    return nullptr;
}

struct NotYetAnswered {};

// Each question reads its answer from the first row on.
RecordsetRef CopyOf(const Recordset& answer) {
    auto copy = std::make_shared<Recordset>(answer.Columns());
    const auto rows = static_cast<std::size_t>(answer.RecordCount());
    copy->Reserve(rows);
    for (std::size_t row = 0; row < rows; ++row) {
        const std::span<Variant> values = copy->AppendRow();
        for (std::size_t column = 0; column < values.size(); ++column)
            values[column] = answer.ValueAt(row, column);
    }
    return copy;
}

// What has been asked and answered within one AskSideBySide.
class Round {
  public:
    Round(std::string connectString, const SideBySideAsker& asker)
        : connectString_(std::move(connectString)), asker_(asker) {
        current = this;
    }
    Round(const Round&) = delete;
    Round& operator=(const Round&) = delete;
    ~Round() { current = nullptr; }

    RecordsetRef Answer(const std::string& text) {
        if (const auto known = answers_.find(text); known != answers_.end()) return CopyOf(*known->second);
        // Whoever does not want to wait any more is not asked for each question.
        if (stopped_) throw automation::Error(*stopped_);
        // Whatever has become of it, it is met in the usual way.
        if (failed_.contains(text)) return OpenConnection(connectString_)->Execute(text);
        if (noted_.insert(text).second) texts_.push_back(text);
        throw NotYetAnswered();
    }
    void Ask() {
        std::vector<RecordsetRef> answers;
        try {
            answers = asker_(connectString_, texts_);
        } catch (const automation::Error& error) {
            stopped_ = error;
        }
        for (std::size_t i = 0; i < texts_.size(); ++i) {
            const bool usable =
                i < answers.size() && answers[i] && answers[i]->IsOpen() && !answers[i]->Next();
            if (usable) {
                answers_.emplace(texts_[i], answers[i]);
            } else {
                failed_.insert(texts_[i]);
            }
        }
        texts_.clear();
        noted_.clear();
    }
    const std::string& Place() const { return connectString_; }

    static Round* current;

  private:
    std::string connectString_;
    const SideBySideAsker& asker_;
    std::optional<automation::Error> stopped_;
    std::vector<std::string> texts_;
    std::unordered_set<std::string> noted_;
    std::unordered_set<std::string> failed_;
    std::unordered_map<std::string, RecordsetRef> answers_;
};

Round* Round::current = nullptr;

class RoundConnection final : public Connection {
  public:
    void Open(const std::string&) override {}
    bool IsOpen() const override { return true; }
    RecordsetRef Execute(std::string_view batch, std::int64_t*) override {
        if (Round::current == nullptr)
            throw automation::Error(error_number::kObjectClosed,
                                    "Operation is not allowed when the object is closed.",
                                    "ADODB.Connection");
        return Round::current->Answer(std::string(batch));
    }
    void Close() override {}
    const std::vector<DriverError>& Errors() const override { return none_; }

  private:
    std::vector<DriverError> none_;
};

// None where each connection is a host's own affair, or where a unit must be seen.
const SideBySideAsker* AskerFor(const std::string& propsString) {
    const std::optional<std::string> place = HostFramework::Process().PlainConnectString(propsString);
    return place && Round::current == nullptr ? AskerOf(*place) : nullptr;
}

}  // namespace

bool PaysToAskSideBySide(const std::string& propsString) {
    return AskerFor(propsString) != nullptr;
}

void AskSideBySide(const std::string& propsString, const std::vector<std::function<void()>>& questions) {
    const SideBySideAsker* asker = AskerFor(propsString);
    if (asker == nullptr) {
        for (const std::function<void()>& question : questions)
            question();
        return;
    }
    Round round(*HostFramework::Process().PlainConnectString(propsString), *asker);
    std::vector<const std::function<void()>*> open;
    for (const std::function<void()>& question : questions)
        open.push_back(&question);
    for (;;) {
        std::erase_if(open, [](const std::function<void()>* question) {
            try {
                (*question)();
                return true;
            } catch (const NotYetAnswered&) {
                return false;
            }
        });
        if (open.empty()) return;
        round.Ask();
    }
}

void RegisterSideBySide(const std::string& provider, SideBySideAsker asker) {
    Askers()[provider] = std::move(asker);
}

ConnectionRef SideBySideConnection(const std::string& connectString) {
    if (Round::current == nullptr || Round::current->Place() != connectString) return nullptr;
    return std::make_shared<RoundConnection>();
}

}  // namespace vicenter::ado
