#include "center/faults/reported_faults.h"

#include <algorithm>
#include <utility>

namespace vicenter::center {

void ReportedFaults::Take(const FaultReport& report) {
    const auto isOfIt = [&](const ReportedFault& known) {
        return known.kind == report.kind && known.source == report.source;
    };
    std::erase_if(all_, isOfIt);
    std::erase_if(steppedBack_, isOfIt);
    for (const store::LineFault& fault : report.faults)
        all_.push_back({report.kind, report.source, fault});
}

int ReportedFaults::HintCount() const {
    return static_cast<int>(
        std::count_if(all_.begin(), all_.end(), [](const ReportedFault& known) { return known.fault.hint; }));
}

void ReportedFaults::Show(const std::string& templateId, const std::string& templateName) {
    const std::string before = std::exchange(shownName_, templateName);
    all_.insert(all_.end(), steppedBack_.begin(), steppedBack_.end());
    steppedBack_.clear();
    const bool renamed = std::exchange(shownId_, templateId) == templateId && before != templateName;
    std::vector<ReportedFault> left;
    for (ReportedFault& known : all_) {
        const bool ofTemplate = known.kind == FaultSource::Template;
        if (renamed && ofTemplate && known.source == before) known.source = templateName;
        const bool stepsBack = ofTemplate && known.source == templateName;
        (stepsBack ? steppedBack_ : left).push_back(std::move(known));
    }
    all_ = std::move(left);
}

void ReportedFaults::ReplaceSteppedBack(const std::vector<store::LineFault>& faults) {
    steppedBack_.clear();
    for (const store::LineFault& fault : faults)
        steppedBack_.push_back({FaultSource::Template, shownName_, fault});
}

void ReportedFaults::Drop(const std::vector<std::size_t>& places) {
    std::vector<ReportedFault> left;
    for (std::size_t i = 0; i < all_.size(); ++i) {
        if (std::find(places.begin(), places.end(), i) == places.end()) left.push_back(std::move(all_[i]));
    }
    all_ = std::move(left);
}

}  // namespace vicenter::center
