#include "automation/object.h"
#include "tsql/run/executor.h"

namespace vicenter::tsql::engine {

// The list that holds the label goes on behind it: those in between end with Flow::kGoto.
Flow Executor::Goto(const GotoStatement& statement) {
    label_ = statement.label.text;
    return Flow::kGoto;
}

bool Executor::IsWantedLabel(const Statement& statement) const {
    const auto* label = TryAs<LabelStatement>(&statement);
    return label != nullptr && automation::SameName(label->label.text, label_);
}

}  // namespace vicenter::tsql::engine
