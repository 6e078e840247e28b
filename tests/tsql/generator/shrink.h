#pragma once

// What is left of a batch when every statement is taken out that makes no difference.

#include <cstddef>
#include <functional>
#include <utility>

#include "generator/batch_generator.h"

namespace vicenter::tsql_test {

// The fewest statements of which it still holds.
inline Statements Shrunk(Statements statements, const std::function<bool(const Statements&)>& fails) {
    for (bool smaller = true; smaller;) {
        smaller = false;
        for (std::size_t i = 0; i < statements.size() && statements.size() > 1; ++i) {
            Statements fewer = statements;
            fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(i));
            if (!fails(fewer)) continue;
            statements = std::move(fewer);
            smaller = true;
            break;
        }
    }
    return statements;
}

}  // namespace vicenter::tsql_test
