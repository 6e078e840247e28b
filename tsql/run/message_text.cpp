#include "tsql/run/message_text.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "tsql/base/error_table.h"
#include "tsql/base/text_units.h"

namespace vicenter::tsql::engine {

namespace {

// The longest message; a longer one ends in three points.
constexpr std::size_t kLongestMessage = 2047;
// Wider slots than the message is long are of no use.
constexpr int kWidest = 2047;

struct Slot {
    std::string flags;
    int width = 0;
    int precision = -1;
    bool isWide = false;  // %I64d
    char kind = 0;
};

class Filler {
  public:
    Filler(const std::string& message, const std::vector<MessageArgument>& arguments)
        : message_(message), arguments_(arguments) {}

    std::string Fill() {
        std::string result;
        while (at_ < message_.size()) {
            if (message_[at_] != '%') {
                result += message_[at_++];
            } else if (message_.compare(at_, 2, "%%") == 0) {
                result += '%';
                at_ += 2;
            } else {
                const Slot slot = ReadSlot();
                result += Filled(slot);
            }
        }
        if (UnitCount(result) <= kLongestMessage) return result;
        return std::string(HeadUnits(result, kLongestMessage - 3)) + "...";
    }

  private:
    Slot ReadSlot() {
        const std::size_t start = at_++;
        Slot slot;
        while (at_ < message_.size() &&
               std::string_view("-+0# ").find(message_[at_]) != std::string_view::npos)
            slot.flags += message_[at_++];
        slot.width = ReadNumber(0);
        if (Take(".")) slot.precision = ReadNumber(0);
        slot.isWide = Take("I64");
        if (!slot.isWide && !Take("h")) Take("l");
        if (at_ < message_.size()) slot.kind = message_[at_++];
        if (slot.kind == 0 || std::string_view("diosuxX").find(slot.kind) == std::string_view::npos)
            throw MakeError(2787, {}, {message_.substr(start, at_ - start)});
        return slot;
    }
    bool Take(std::string_view word) {
        if (std::string_view(message_).substr(at_, word.size()) != word) return false;
        at_ += word.size();
        return true;
    }
    int ReadNumber(int otherwise) {
        if (Take("*")) {
            const MessageArgument* argument = Next(true);
            return argument == nullptr || argument->isNull
                       ? otherwise
                       : static_cast<int>(std::clamp<std::int64_t>(argument->number, -kWidest, kWidest));
        }
        int number = otherwise;
        while (at_ < message_.size() && message_[at_] >= '0' && message_[at_] <= '9')
            number = std::min(number * 10 + (message_[at_++] - '0'), kWidest);
        return number;
    }
    // Nothing when there are no more.
    const MessageArgument* Next(bool isInteger) {
        if (next_ >= arguments_.size()) return nullptr;
        const MessageArgument& argument = arguments_[next_++];
        if (!argument.isNull && argument.isInteger != isInteger)
            throw MakeError(2786, {}, {static_cast<std::int32_t>(next_)});
        return &argument;
    }
    std::string Filled(const Slot& slot) {
        const MessageArgument* argument = Next(slot.kind != 's');
        if (argument == nullptr || argument->isNull) return Padded(slot, "(null)");
        if (slot.kind == 's') {
            const std::string_view text = argument->text;
            return Padded(
                slot, slot.precision < 0 ? text : HeadUnits(text, static_cast<std::size_t>(slot.precision)));
        }
        std::string form = "%" + slot.flags;
        if (slot.width != 0) form += std::to_string(slot.width);
        if (slot.precision >= 0) form += "." + std::to_string(slot.precision);
        form += std::string("ll") + slot.kind;
        // Without a sign of its own a negative number of four bytes counts from 2^32.
        const bool isSigned = slot.kind == 'd' || slot.kind == 'i';
        const auto bits = static_cast<std::uint64_t>(argument->number);
        const std::uint64_t plain = slot.isWide ? bits : bits & 0xFFFFFFFFU;
        std::string text(static_cast<std::size_t>(kWidest) + 64, '\0');
        const int size = isSigned ? std::snprintf(text.data(), text.size(), form.c_str(),
                                                  static_cast<long long>(argument->number))
                                  : std::snprintf(text.data(), text.size(), form.c_str(),
                                                  static_cast<unsigned long long>(plain));
        text.resize(static_cast<std::size_t>(std::max(size, 0)));
        return text;
    }
    static std::string Padded(const Slot& slot, std::string_view text) {
        const bool isLeft = slot.width < 0 || slot.flags.find('-') != std::string::npos;
        const auto width = static_cast<std::size_t>(std::abs(slot.width));
        const std::size_t units = UnitCount(text);
        const std::string blanks(width > units ? width - units : 0, ' ');
        return isLeft ? std::string(text) + blanks : blanks + std::string(text);
    }

    const std::string& message_;
    const std::vector<MessageArgument>& arguments_;
    std::size_t at_ = 0;
    std::size_t next_ = 0;
};

}  // namespace

std::string FilledMessage(const std::string& message, const std::vector<MessageArgument>& arguments) {
    return Filler(message, arguments).Fill();
}

}  // namespace vicenter::tsql::engine
