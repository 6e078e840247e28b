#include "store/template_writing.h"

#include <vector>

namespace vicenter::store {

TemplateWriting::TemplateWriting(const std::string& name, const std::optional<SeenTemplate>& seen,
                                 HistoryCommand command) {
    if (seen) {
        before_.emplace(std::vector{*seen}, command);
    } else {
        made_.emplace(name);
    }
}

std::string TemplateWriting::WhyNot(const std::string& undone) const {
    return before_ ? before_->WhyNot(undone) : made_->WhyNot(undone);
}

bool TemplateWriting::Commit() {
    return before_ ? before_->Commit() : made_->Commit();
}

}  // namespace vicenter::store
