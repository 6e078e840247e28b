#include "platform/office/xls_record_reader.h"

#include <algorithm>
#include <cstring>

#include "platform/office/limits.h"
#include "platform/office/utf.h"

namespace vicenter::office::xls {

namespace {

void AppendUnits(std::string& text, const std::u16string& units) {
    for (std::size_t i = 0; i < units.size(); ++i) {
        std::uint32_t code = units[i];
        if (code >= 0xD800 && code < 0xDC00 && i + 1 < units.size() && units[i + 1] >= 0xDC00 &&
            units[i + 1] < 0xE000) {
            code = 0x10000 + ((code - 0xD800) << 10) + (units[++i] - 0xDC00u);
        }
        AppendUtf8(text, code);
    }
}

}  // namespace

bool RecordReader::Fill(std::size_t count) {
    while (end_ - begin_ < count) {
        if (begin_ > 0) {
            std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
            end_ -= begin_;
            begin_ = 0;
        }
        const std::size_t got =
            source_.Read(reinterpret_cast<char*>(buffer_.data() + end_), buffer_.size() - end_);
        if (got == 0) return false;
        end_ += got;
        total_ += got;
        if (total_ > kMaxPartBytes) FailTooLarge();
    }
    return true;
}

bool RecordReader::Next() {
    if (!Fill(kHeaderBytes)) return false;
    const auto u16 = [this](std::size_t at) {
        return static_cast<std::uint16_t>(buffer_[begin_ + at] | buffer_[begin_ + at + 1] << 8);
    };
    const std::size_t payload = u16(2);
    id_ = u16(0);
    if (!Fill(kHeaderBytes + payload)) FailDamaged("记录不完整");
    at_ = begin_ + kHeaderBytes;
    last_ = at_ + payload;
    begin_ = last_;
    return true;
}

void RecordReader::SeekTo(std::uint64_t position) {
    source_.Seek(position);
    begin_ = end_ = at_ = last_ = 0;
}

const unsigned char* RecordReader::Take(std::size_t count) {
    if (Left() < count) FailDamaged("记录长度");
    const unsigned char* bytes = buffer_.data() + at_;
    at_ += count;
    return bytes;
}

void RecordReader::ContinueIfEmpty() {
    while (Left() == 0) {
        if (!Next() || id_ != kContinue) FailDamaged("字符串不完整");
    }
}

void RecordReader::SkipContinued(std::uint64_t count) {
    while (count > 0) {
        ContinueIfEmpty();
        const auto piece = static_cast<std::size_t>(std::min<std::uint64_t>(count, Left()));
        Take(piece);
        count -= piece;
    }
}

void RecordReader::ReadText(std::string& text, bool shortCount) {
    ContinueIfEmpty();
    const std::size_t count = shortCount ? U8() : U16();
    std::uint8_t flags = U8();
    const std::uint64_t runs = flags & kRich ? U16() : 0;
    const std::uint64_t phonetic = flags & kPhonetic ? U32() : 0;
    units_.clear();
    while (units_.size() < count) {
        if (Left() == 0) {
            // The rest of a text says again how wide its characters are.
            ContinueIfEmpty();
            flags = static_cast<std::uint8_t>((flags & ~kWide) | (U8() & kWide));
            if (Left() == 0) continue;
        }
        const bool wide = flags & kWide;
        const std::size_t piece = std::min(count - units_.size(), Left() / (wide ? 2 : 1));
        if (piece == 0) FailDamaged("字符串不完整");
        for (std::size_t i = 0; i < piece; ++i)
            units_ += static_cast<char16_t>(wide ? U16() : U8());
    }
    text.clear();
    AppendUnits(text, units_);
    SkipContinued(runs * 4);
    SkipContinued(phonetic);
}

}  // namespace vicenter::office::xls
