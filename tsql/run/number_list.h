#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace vicenter::tsql::engine {

// "[3,17]": the numbers of rows as a statement takes them, a list of JSON.
inline std::string NumberList(const std::vector<std::int64_t>& numbers) {
    std::string list = "[";
    for (const std::int64_t number : numbers)
        list += (list.size() == 1 ? "" : ",") + std::to_string(number);
    return list + "]";
}

}  // namespace vicenter::tsql::engine
