// A process of its own that writes into an account set: set_writer FILE FIRST COUNT TIMEOUT inserts FIRST,
// FIRST + 1, … into the table t, each in a session of its own as the command line does, and prints the number
// of every row that it was told is stored. Leaves with 1 when one was refused.

#include <cstdlib>
#include <iostream>

#include "tests/tsql/engine_fixture.h"

int main(int count, char** arguments) {
    using namespace vicenter::tsql::engine;
    if (count != 5) return 2;
    const PlainCollation collation;
    int result = 0;
    const long first = std::atol(arguments[2]);
    for (long number = first; number < first + std::atol(arguments[3]); ++number) {
        SessionOptions options;
        options.path = arguments[1];
        options.lockTimeoutMilliseconds = std::atoi(arguments[4]);
        options.collation = &collation;
        options.now = [] { return *vicenter::automation::DateTime::Parse("2026-01-31 08:09:10.123"); };
        try {
            Session session(options);
            TextSink sink;
            const ExecutionReport report =
                session.Execute("insert into t values(" + std::to_string(number) + ")", sink);
            if (report.errors.empty()) {
                std::cout << number << std::endl;
                continue;
            }
            std::cerr << number << ": " << report.errors.front().text << "\n";
        } catch (const vicenter::tsql::SqlError& error) {
            std::cerr << error.Text() << "\n";
        }
        result = 1;
    }
    return result;
}
