// Questions on several lines of the pool at once.

#include "platform/ado/odbc/odbc_side_by_side.h"

#include <algorithm>
#include <atomic>

#include "automation/error.h"
#include "platform/ado/odbc/odbc_connection.h"
#include "platform/ado/odbc/odbc_pool.h"
#include "platform/ado/odbc/odbc_provider.h"
#include "platform/ado/odbc/watched_work.h"

namespace vicenter::ado {

namespace {

// A line more is worth its login for so many questions.
constexpr std::size_t kQuestionsForALine = 8;

// Shared by the threads, which may be left to themselves.
struct Questions {
    std::string connectString;
    std::vector<std::string> texts;
    std::vector<RecordsetRef> answers;  // each written by the one thread that took the question
    std::atomic<std::size_t> next = 0;
    std::atomic<bool> stopped = false;
};

void AskSome(Questions& questions) {
    try {
        OdbcConnection connection;
        connection.Open(questions.connectString);
        for (;;) {
            const std::size_t i = questions.next++;
            if (i >= questions.texts.size() || questions.stopped) return;
            try {
                questions.answers[i] = connection.Execute(questions.texts[i], nullptr);
            } catch (const automation::Error&) {
                // Asked again by itself, and told then. A line that is gone takes no more of them.
                if (connection.IsLost()) return;
            }
        }
    } catch (const std::exception&) {
        // The others ask what this one cannot.
    }
}

}  // namespace

std::vector<RecordsetRef> AskOdbcSideBySide(const std::string& connectString,
                                            std::vector<std::string> texts) {
    const auto questions = std::make_shared<Questions>();
    questions->connectString = connectString;
    questions->answers.resize(texts.size());
    questions->texts = std::move(texts);
    const std::size_t count = questions->texts.size();
    const std::size_t most = std::max<std::size_t>(CurrentOdbcPooling().most, 1);
    const std::size_t idle = OdbcPool::Process().Count(connectString);
    const std::size_t lines = std::min({most, count, std::max(idle, count / kQuestionsForALine + 1)});
    std::vector<std::function<void()>> works(lines, [questions] { AskSome(*questions); });
    const bool ended = RunSideBySide(std::move(works), [questions] {
        questions->stopped = true;
        CancelRunning();
    });
    if (!ended || questions->stopped)
        throw automation::Error(error_number::kOperationCancelled, "操作已经取消，没有完成。", "ODBC");
    return questions->answers;
}

}  // namespace vicenter::ado
