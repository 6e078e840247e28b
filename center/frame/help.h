#pragma once

// The help key: the host's viewer on the template page, or the same page in the browser where there is no
// viewer.

namespace vicenter::center {

// Never fails: help that cannot be shown is ignored.
void ShowHelp();

}  // namespace vicenter::center
