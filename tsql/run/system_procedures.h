#pragma once

// The server's own procedures, as far as an account set has anything to say: T-SQL over the system's views,
// or a heading in T-SQL whose work the engine does. Constant data, readable from anywhere.

#include <string_view>

namespace vicenter::tsql::engine {

struct SystemProcedure {
    std::string_view name;  // in lower case
    std::string_view text;  // CREATE PROCEDURE …
    bool writes = false;
};

// By the name in lower case; none for any other.
const SystemProcedure* FindSystemProcedure(std::string_view name);
// A procedure of the server's that there is not: it is refused by its name.
bool IsServerProcedure(std::string_view name);

// A source for each.
extern const SystemProcedure kSpColumns;
extern const SystemProcedure kSpHelp;
extern const SystemProcedure kSpHelpIndex;
extern const SystemProcedure kSpHelpText;
extern const SystemProcedure kSpRename;
extern const SystemProcedure kSpSpaceUsed;
extern const SystemProcedure kSpTables;

}  // namespace vicenter::tsql::engine
