#pragma once

// A translated statement, prepared: made once for a place in a program, run many times.

#include <cstdint>
#include <memory>
#include <optional>

#include "tsql/catalog/catalog.h"
#include "tsql/run/options.h"
#include "tsql/sqlite/database.h"
#include "tsql/translate/translation.h"

namespace vicenter::tsql::engine {

struct SentText;

struct Plan {
    Translation translation;
    PreparedStatement statement;
    std::uint64_t generation = 0;  // the catalog's when the plan was made
    // The statement takes any literals in the places of its own. False when one of them was looked at while
    // the plan was made, or goes elsewhere than into a column.
    bool takesAnyLiterals = false;

    // All of its parameters are literals of expressions, converted by nothing but their types and DATEFORMAT.
    bool takesLiteralsAlone = false;
    // SQLite keeps what was bound: for the same text again there is nothing to bind.
    struct Bound {
        std::shared_ptr<const SentText> sent;  // none for the tree's own literals
        DateFormat dateFormat = DateFormat::kMdy;
        friend bool operator==(const Bound&, const Bound&) = default;
    };
    std::optional<Bound> bound;  // none when something else may have been

    // It asks tables of the account set, so that they and the catalog must be of one moment.
    bool readsSet = false;

    // What the plan was made from still holds: the catalog, the temporary tables by their numbers, and the
    // options that let it through.
    bool IsCurrent(const Catalog& catalog, const SetOptions& options) const;
    // No temporary table has been dropped and made again since: its rows are not those of another one, though
    // the plan would read them.
    bool IsOfTheseTables(const Catalog& catalog) const;
};

}  // namespace vicenter::tsql::engine
