#include "center/faults/reported_faults.h"

#include <algorithm>

namespace vicenter::center {

void ReportedFaults::Take(const FaultReport& report) {
    std::erase_if(all_, [&](const ReportedFault& known) {
        return known.kind == report.kind && known.source == report.source;
    });
    for (const store::LineFault& fault : report.faults)
        all_.push_back({report.kind, report.source, fault});
}

void ReportedFaults::DropShown(const std::string& templateName) {
    std::erase_if(all_, [&](const ReportedFault& known) {
        return known.kind == FaultSource::Template && known.source == templateName && !known.fault.hint;
    });
}

void ReportedFaults::Drop(const std::vector<std::size_t>& places) {
    std::vector<ReportedFault> left;
    for (std::size_t i = 0; i < all_.size(); ++i) {
        if (std::find(places.begin(), places.end(), i) == places.end()) left.push_back(std::move(all_[i]));
    }
    all_ = std::move(left);
}

}  // namespace vicenter::center
