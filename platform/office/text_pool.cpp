#include "platform/office/text_pool.h"

#include <cstring>
#include <functional>

#include "platform/office/limits.h"

namespace vicenter::office {

std::uint32_t TextPool::Intern(std::string_view text) {
    if ((texts_.size() + 1) * 2 > slots_.size()) Grow();
    const std::uint64_t fullHash = std::hash<std::string_view>{}(text);
    const auto hash = static_cast<std::uint32_t>(fullHash ^ (fullHash >> 32));
    const std::size_t mask = slots_.size() - 1;
    for (std::size_t slot = hash & mask;; slot = (slot + 1) & mask) {
        const std::uint32_t entry = slots_[slot];
        if (entry == 0) {
            texts_.push_back(Store(text));
            hashes_.push_back(hash);
            slots_[slot] = static_cast<std::uint32_t>(texts_.size());
            return slots_[slot] - 1;
        }
        if (hashes_[entry - 1] == hash && texts_[entry - 1] == text) return entry - 1;
    }
}

std::string_view TextPool::Store(std::string_view text) {
    if (Bytes() + text.size() > kMaxWorkbookBytes) FailTooLarge();
    bytes_ += text.size();
    if (text.size() > kChunkBytes / 4) {
        auto own = std::make_unique<char[]>(text.size());
        std::memcpy(own.get(), text.data(), text.size());
        const std::string_view stored(own.get(), text.size());
        // Keeps the chunk in use at the back.
        chunks_.insert(chunks_.empty() ? chunks_.end() : chunks_.end() - 1, std::move(own));
        if (chunks_.size() == 1) chunkUsed_ = kChunkBytes;
        return stored;
    }
    if (chunks_.empty() || chunkUsed_ + text.size() > kChunkBytes) {
        chunks_.push_back(std::make_unique<char[]>(kChunkBytes));
        chunkUsed_ = 0;
    }
    char* place = chunks_.back().get() + chunkUsed_;
    if (!text.empty()) std::memcpy(place, text.data(), text.size());
    chunkUsed_ += text.size();
    return {place, text.size()};
}

void TextPool::Grow() {
    const std::size_t size = slots_.empty() ? 64 : slots_.size() * 2;
    slots_.assign(size, 0);
    for (std::size_t index = 0; index < hashes_.size(); ++index) {
        std::size_t slot = hashes_[index] & (size - 1);
        while (slots_[slot] != 0)
            slot = (slot + 1) & (size - 1);
        slots_[slot] = static_cast<std::uint32_t>(index + 1);
    }
}

}  // namespace vicenter::office
