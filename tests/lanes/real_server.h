#pragma once

// The SQL Server that VICENTER_TEST_CONNECT names, for the tests that run on any server: a connect string of
// a login that may create databases. What a test needs there stands in databases of its own, which go with
// it.

#include <optional>
#include <string>

namespace vicenter::lanes {

// Its connect string; nothing where the tests are to do without one.
std::optional<std::string> RealServer();

// Whether it is one that speaks T-SQL without being SQL Server: its errors have texts and mostly numbers of
// its own, and a literal is of the type text.
bool HasOwnErrors();

// An empty database with the Chinese collation of the code page 936.
class ScratchDatabase {
  public:
    explicit ScratchDatabase(std::string server);
    ScratchDatabase(const ScratchDatabase&) = delete;
    ScratchDatabase& operator=(const ScratchDatabase&) = delete;
    // Ends whatever is still connected to it.
    ~ScratchDatabase();

    const std::string& Name() const { return name_; }
    std::string ConnectText() const;
    // The account set of that file, row by row.
    void Take(const std::string& file) const;

  private:
    void Tell(const std::string& batch) const;

    std::string server_;
    std::string name_;
};

}  // namespace vicenter::lanes
