#pragma once

namespace vicenter::tsql::engine {

// Views that stand on views that stand on themselves end here.
inline constexpr int kViewNesting = 32;

}  // namespace vicenter::tsql::engine
