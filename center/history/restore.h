#pragma once

// Versions of a template brought back: over the template that is there, or as a new one. Both tell the user
// what came of it and write the operation log. Needs no window; the right to change templates has been asked
// for by then. User-interface thread.

#include <optional>
#include <string>

#include "store/template_history.h"
#include "store/template_outcome.h"

namespace vicenter::center {

// What an account set that keeps no versions is told about; the same for every way to ask.
inline constexpr const char* kHistoryOff =
    "当前账套没有开启模板历史。请由管理员执行 vicenter account-set upgrade 开启！";
inline constexpr const char* kHistoryUnreadable = "模板历史无法读取，请检查账套连接！";

// Asks whether the lines of the template of that name are to give way to the version's; they are kept as a
// version themselves. Failed without a further word when the user declines, and told when the template is not
// what the user was asked about by then, or when its lines cannot be kept.
store::TemplateOutcome RestoreOver(const store::HistoryVersion& version, const std::string& templateId,
                                   const std::string& name);

// A name under which the user has no template: the version's own when it is free, else one made of it.
// Nothing when the account set does not answer.
std::optional<std::string> NameForRestored(const std::string& versionName, const std::string& userId);

// A new template of the user's, with all its versions where it was deleted; named so but for blanks around
// it. A name that the user has already, or that no template can bear, is refused.
store::TemplateOutcome RestoreAsNew(const store::HistoryVersion& version, const std::string& wished,
                                    const std::string& userId);

}  // namespace vicenter::center
