#include "autovch/frm_auto_vch.h"

#include <algorithm>

namespace vicenter::autovch {

namespace {

constexpr std::int64_t kMaxYear = 9999;
constexpr std::int64_t kMaxVoucherNumber = 999999999;
constexpr std::int64_t kUsualPeriods = 12;  // of a ledger that does not say how many it has
constexpr int kCancel = 2;

std::string Words(const store::VoucherCount& count) {
    return "将生成 " + std::to_string(count.numbers) + " 个凭证模板编号（" + std::to_string(count.vouchers) +
           " 张凭证，" + std::to_string(count.lines) + " 条分录）";
}

}  // namespace

void frmAutoVch::Load() {
    state_.groups = {kAllGroups};
    for (std::string& group : ReadVoucherGroups())
        state_.groups.push_back(std::move(group));
    state_.group = 0;

    const LedgerPeriod ledger = ReadLedgerPeriod();
    bounds_[kYear].upper = kMaxYear;
    bounds_[kPeriod].upper = ledger.periodCount > 0 ? ledger.periodCount : kUsualPeriods;
    bounds_[kFirstNumber].upper = bounds_[kLastNumber].upper = kMaxVoucherNumber;

    optionalFields_ = std::make_shared<scripting::Dictionary>();
    for (const int column : store::VoucherColumns())
        optionalFields_->Add(std::to_string(column), 0);

    state_.boxes[kYear] = std::to_string(ledger.currentYear);
    state_.boxes[kPeriod] = std::to_string(ledger.currentPeriod);
    RefreshNumbers();
    FilterSettled();
}

bool frmAutoVch::AcceptsCharacter(char32_t character) {
    constexpr char32_t kBackspace = 8;
    return (character >= U'0' && character <= U'9') || character == kBackspace;
}

bool frmAutoVch::SetBox(Box box, const std::string& text) {
    if (text == state_.boxes[box]) return true;
    if (text.size() > state_.maxLengths[box] || (!text.empty() && !IsWholeNumber(text))) return false;
    state_.boxes[box] = text;
    Changed(box);
    return true;
}

void frmAutoVch::Spin(Box box, bool up) {
    const BoxBounds& bounds = bounds_[box];
    std::int64_t value = bounds.lower;
    if (!state_.boxes[box].empty()) {
        const std::int64_t old = std::stoll(state_.boxes[box]);
        if (up) {
            value = old >= bounds.upper ? bounds.upper : old < bounds.lower ? bounds.lower : old + 1;
        } else {
            value = old <= bounds.lower ? bounds.lower : old > bounds.upper ? bounds.upper : old - 1;
        }
    }
    state_.boxes[box] = std::to_string(value);
    Changed(box);
    view_.Show(state_);
}

void frmAutoVch::Changed(Box box) {
    without_.clear();
    if (box == kFirstNumber || box == kLastNumber) {
        ownRange_ = true;
    } else if (!ownRange_) {
        RefreshNumbers();
        view_.Show(state_);
    }
}

void frmAutoVch::RefreshNumbers() {
    const VoucherNumbers numbers = ReadVoucherNumbers(state_.boxes[kYear], state_.boxes[kPeriod]);
    state_.boxes[kFirstNumber] = numbers.lowest;
    state_.boxes[kLastNumber] = numbers.highest;
}

void frmAutoVch::SelectGroup(std::size_t index) {
    if (index >= state_.groups.size()) return;
    if (index != state_.group) without_.clear();
    state_.group = index;
}

void frmAutoVch::SetIncludeSystem(bool include) {
    if (include != state_.includeSystem) without_.clear();
    state_.includeSystem = include;
}

void frmAutoVch::SetTemplateName(const std::string& name) {
    state_.templateName = name;
}

VoucherFilter frmAutoVch::Filter() const {
    return {state_.boxes[kYear],
            state_.boxes[kPeriod],
            state_.boxes[kFirstNumber],
            state_.boxes[kLastNumber],
            state_.group == 0 ? std::string() : state_.groups[state_.group],
            state_.includeSystem};
}

void frmAutoVch::FilterSettled() {
    Describe();
    view_.Show(state_);
}

void frmAutoVch::Describe() {
    const VoucherFilter filter = Filter();
    state_.warning.clear();
    state_.oneGroup.clear();
    state_.selected = FilterProblem(filter);
    if (!state_.selected.empty()) return;
    const store::VoucherCount count = CountSelected(filter);
    state_.selected = Words(count);
    if (!without_.empty()) state_.selected += "，其中 " + std::to_string(without_.size()) + " 个不生成";
    if (count.missing > 0) state_.warning = MissingLinesWarning(FindMissingLines(filter));
    // More vouchers than numbers: some share one.
    if (!filter.group.empty() || count.vouchers <= count.numbers) return;
    const MergedNumbers merged = FindMergedNumbers(filter);
    if (merged.numbers.empty()) return;
    state_.warning += (state_.warning.empty() ? "" : "\n") + merged.Warning();
    state_.oneGroup = merged.groups.front();
}

void frmAutoVch::ChoosePatterns() {
    const GenerationPreview preview = PreviewGeneration(Filter());
    if (!preview.problem.empty()) {
        state_.selected = preview.problem;
        view_.Show(state_);
        return;
    }
    LeftOut without = without_;
    if (!view_.ShowPatterns(preview, without)) return;
    without_ = std::move(without);
    Describe();
    view_.Show(state_);
}

void frmAutoVch::TakeOneGroup() {
    const auto group = std::find(state_.groups.begin() + 1, state_.groups.end(), state_.oneGroup);
    if (state_.oneGroup.empty() || group == state_.groups.end()) return;
    SelectGroup(static_cast<std::size_t>(group - state_.groups.begin()));
    FilterSettled();
}

void frmAutoVch::ChooseColumns() {
    dialogs::frmSetColume dialog;
    dialog.SetSelectionMode(true);
    dialog.SetSelection(optionalFields_);
    view_.ShowColumnDialog(dialog);
}

void frmAutoVch::Command(int index) {
    if (index == kCancel) {
        view_.Unload();
        return;
    }
    GenerationRequest request{Filter(), state_.templateName, {}, without_};
    for (const int column : store::VoucherColumns()) {
        const automation::Variant* chosen = optionalFields_->Item(std::to_string(column));
        if (chosen != nullptr && chosen->ToInt32() == 1) request.columns.insert(column);
    }
    bool shown = false;
    result_ = Generate(request, [&](std::int64_t done, std::int64_t all) {
        shown = true;
        return view_.ShowProgress(done, all);
    });
    if (shown) view_.HideProgress();
    if (result_.outcome) view_.Unload();
}

}  // namespace vicenter::autovch
