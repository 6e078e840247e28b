#include "platform/system/narrowing_index.h"

#include <numeric>

#include "platform/system/collation.h"
#include "platform/system/utf8.h"

namespace vicenter::system {

void NarrowingIndex::Clear() {
    folded_.clear();
    candidates_.clear();
    narrowed_ = false;
}

void NarrowingIndex::Reserve(std::size_t count) {
    folded_.reserve(count);
}

void NarrowingIndex::Add(std::string_view code, std::string_view name) {
    const Collator& collator = Collator::Chinese();
    std::string folded = collator.Fold(code);
    folded += '\0';
    folded += collator.Fold(name);
    folded += '\0';
    folded += collator.PinyinInitials(name);
    folded += '\0';
    folded_.push_back(std::move(folded));
    narrowed_ = false;
}

const std::vector<std::size_t>& NarrowingIndex::Narrow(std::string_view text) {
    std::string wanted = Collator::Chinese().Fold(TrimBlanks(text));
    if (!narrowed_ || wanted.find(lastText_) == std::string::npos) {
        candidates_.resize(folded_.size());
        std::iota(candidates_.begin(), candidates_.end(), std::size_t{0});
    }
    std::erase_if(candidates_, [&](std::size_t i) { return folded_[i].find(wanted) == std::string::npos; });
    lastText_ = std::move(wanted);
    narrowed_ = true;
    return candidates_;
}

std::vector<std::size_t> NarrowingIndex::Best(std::string_view text, std::size_t most) {
    Narrow(text);
    std::vector<std::size_t> result;
    const auto take = [&](bool codesThatBegin) {
        for (const std::size_t i : candidates_) {
            if (result.size() >= most) return;
            if (folded_[i].starts_with(lastText_) == codesThatBegin) result.push_back(i);
        }
    };
    take(true);
    take(false);
    return result;
}

}  // namespace vicenter::system
