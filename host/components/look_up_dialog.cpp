#include "host/components/look_up_dialog.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace vicenter::host {

namespace {

std::shared_ptr<LookUpDialog>& ProcessDialog() {
    static std::shared_ptr<LookUpDialog> dialog;
    return dialog;
}

}  // namespace

std::shared_ptr<LookUpDialog> LookUpDialog::Process() {
    return ProcessDialog();
}

void LookUpDialog::SetProcess(std::shared_ptr<LookUpDialog> dialog) {
    ProcessDialog() = std::move(dialog);
}

LookUpFilter::LookUpFilter(const std::vector<LookUpRecord>& records) : records_(records) {
    index_.Reserve(records.size());
    parents_.reserve(records.size());
    std::vector<std::size_t> path;  // the record and its parents, by level
    for (std::size_t i = 0; i < records.size(); ++i) {
        index_.Add(records[i].number, records[i].name);
        const auto level = static_cast<std::size_t>(std::max(0, records[i].level));
        path.resize(std::min(path.size(), level));
        parents_.push_back(path.empty() ? std::nullopt : std::optional(path.back()));
        path.push_back(i);
    }
}

std::vector<LookUpFilter::Shown> LookUpFilter::Narrow(std::string_view text) {
    const std::vector<std::size_t>& matching = index_.Narrow(text);
    std::vector<bool> matches(records_.size());
    std::vector<bool> shown(records_.size());
    for (const std::size_t i : matching) {
        matches[i] = true;
        shown[i] = true;
        for (std::optional<std::size_t> parent = parents_[i]; parent && !shown[*parent];
             parent = parents_[*parent]) {
            shown[*parent] = true;
        }
    }
    std::vector<Shown> result;
    for (std::size_t i = 0; i < records_.size(); ++i) {
        if (shown[i]) result.push_back({i, matches[i]});
    }
    return result;
}

std::optional<std::size_t> LookUpFilter::Best(std::string_view text) {
    for (const std::size_t i : index_.Best(text, std::numeric_limits<std::size_t>::max())) {
        if (records_[i].selectable) return i;
    }
    return std::nullopt;
}

}  // namespace vicenter::host
