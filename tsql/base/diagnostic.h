#pragma once

// What the server says when it refuses something, or merely has something to say.
//
// SqlError ends a statement (or the batch, by the error table) and is caught by TRY … CATCH or at the edge of
// the engine; a Diagnostic is a plain value.

#include <cstdint>
#include <string>
#include <utility>

#include "automation/error.h"
#include "tsql/base/position.h"

namespace vicenter::tsql {

struct Diagnostic {
    std::int32_t number = 0;
    std::int32_t severity = 16;
    std::int32_t state = 1;
    std::int32_t line = 1;    // within the batch or procedure, from 1
    std::int32_t column = 0;  // from 1; 0 where it is not known
    std::string procedure;    // empty outside a procedure
    std::string text;         // UTF-8
};

// The automation error number is the server's message number; the connection translates it at its boundary.
class SqlError : public automation::Error {
  public:
    explicit SqlError(Diagnostic diagnostic)
        : automation::Error(diagnostic.number, diagnostic.text), diagnostic_(std::move(diagnostic)) {}

    const Diagnostic& Details() const { return diagnostic_; }
    // Fills in where the error came up, unless something nearer to it already did.
    void SetProcedure(const std::string& name) {
        if (diagnostic_.procedure.empty()) diagnostic_.procedure = name;
    }
    void SetLine(std::int32_t line) { diagnostic_.line = line; }

  private:
    Diagnostic diagnostic_;
};

}  // namespace vicenter::tsql
