#include "support/string_builder.h"

#include <cstring>
#include <limits>
#include <new>

#include "automation/error.h"
#include "platform/system/utf8.h"

namespace vicenter::support {

using automation::Arguments;
using automation::Error;
using automation::MemberTable;
using automation::Method;
using automation::Property;
using automation::Variant;
namespace error_number = automation::error_number;

namespace {

constexpr std::int32_t kOutOfMemory = 7;
constexpr std::u16string_view kLineEnd = u"\r\n";

std::string TextAt(const Arguments& arguments, std::size_t index) {
    return arguments[index].Value().ToText();
}

}  // namespace

const MemberTable<StringBuilder>& StringBuilder::Members() {
    using Self = StringBuilder;
    static const MemberTable<Self> table{
        Property<Self>(
            "ChunkSize",
            [](Self& self, Arguments&) { return Variant(static_cast<std::int64_t>(self.ChunkSize())); },
            [](Self& self, Arguments& a) { self.SetChunkSize(a[0].Value().ToInt64()); }),
        Method<Self>("Append", {"text"},
                     [](Self& self, Arguments& a) {
                         self.Append(TextAt(a, 0));
                         return Variant();
                     }),
        Method<Self>("AppendLine", {"text"},
                     [](Self& self, Arguments& a) {
                         self.AppendLine(TextAt(a, 0));
                         return Variant();
                     }),
        Method<Self>("Insert", {"index", "text"},
                     [](Self& self, Arguments& a) {
                         self.Insert(a[0].Value().ToInt64(), TextAt(a, 1));
                         return Variant();
                     }),
        Method<Self>("Remove", {"index", "count"},
                     [](Self& self, Arguments& a) {
                         self.Remove(a[0].Value().ToInt64(), a[1].Value().ToInt64());
                         return Variant();
                     }),
        Method<Self>("Find", {"text", "start?", "compare?"},
                     [](Self& self, Arguments& a) {
                         const std::int64_t start = a[1].Value().IsMissing() ? 1 : a[1].Value().ToInt64();
                         const std::int32_t compare = a[2].Value().IsMissing() ? 0 : a[2].Value().ToInt32();
                         return Variant(self.Find(TextAt(a, 0), start, compare));
                     }),
        Method<Self>("ToString", {}, [](Self& self, Arguments&) { return Variant(self.ToString()); })
            .AsDefault(),
        Method<Self>("Clear", {},
                     [](Self& self, Arguments&) {
                         self.Clear();
                         return Variant();
                     }),
        Method<Self>("TrimToSize", {},
                     [](Self& self, Arguments&) {
                         self.TrimToSize();
                         return Variant();
                     }),
    };
    return table;
}

void StringBuilder::SetChunkSize(std::int64_t characters) {
    // A chunk of nothing would never make room.
    if (characters <= 0 || characters > std::numeric_limits<std::int32_t>::max())
        throw Error(error_number::kInvalidProcedureCall, {}, TypeName());
    chunkBytes_ = static_cast<std::size_t>(characters) * sizeof(char16_t);
}

void StringBuilder::Grow(std::size_t bytes) {
    const std::size_t capacity = block_.Size();
    if (bytes <= capacity - usedBytes_) return;
    const std::size_t missing = bytes - (capacity - usedBytes_);
    const std::size_t chunks = (missing + chunkBytes_ - 1) / chunkBytes_;
    try {
        block_.Resize(capacity + chunks * chunkBytes_);
    } catch (const std::bad_alloc&) {
        throw Error(kOutOfMemory, "Out of memory", TypeName());
    }
}

void StringBuilder::Append(std::u16string_view text) {
    if (text.empty()) return;
    const std::size_t bytes = text.size() * sizeof(char16_t);
    Grow(bytes);
    std::memcpy(Characters() + Length(), text.data(), bytes);
    usedBytes_ += bytes;
}

void StringBuilder::Append(std::string_view text) {
    Append(system::ToUtf16(text));
}

void StringBuilder::AppendLine(std::string_view text) {
    Append(text);
    Append(kLineEnd);
}

void StringBuilder::Insert(std::int64_t index, std::string_view text) {
    if (index < 0 || static_cast<std::uint64_t>(index) > Length())
        throw Error(error_number::kSubscriptOutOfRange, {}, TypeName());
    const std::u16string units = system::ToUtf16(text);
    if (units.empty()) return;
    const std::size_t bytes = units.size() * sizeof(char16_t);
    Grow(bytes);
    char16_t* place = Characters() + index;
    std::memmove(place + units.size(), place,
                 usedBytes_ - static_cast<std::size_t>(index) * sizeof(char16_t));
    std::memcpy(place, units.data(), bytes);
    usedBytes_ += bytes;
}

void StringBuilder::Remove(std::int64_t index, std::int64_t count) {
    const auto length = static_cast<std::int64_t>(Length());
    if (index < 0 || count < 0 || index > length || count > length - index)
        throw Error(error_number::kSubscriptOutOfRange, {}, TypeName());
    if (count == 0) return;
    char16_t* place = Characters() + index;
    std::memmove(place, place + count, static_cast<std::size_t>(length - index - count) * sizeof(char16_t));
    usedBytes_ -= static_cast<std::size_t>(count) * sizeof(char16_t);
}

std::int64_t StringBuilder::Find(std::string_view text, std::int64_t start, std::int32_t compare) const {
    if (start < 1 || (compare != 0 && compare != 1))
        throw Error(error_number::kInvalidProcedureCall, {}, TypeName());
    if (static_cast<std::uint64_t>(start) > Length()) return 0;
    if (text.empty()) return start;
    const auto from = static_cast<std::size_t>(start - 1);
    if (compare == 0) {
        const std::size_t found = Text().find(system::ToUtf16(text), from);
        return found == std::u16string_view::npos ? 0 : static_cast<std::int64_t>(found) + 1;
    }
    const std::string rest = system::FromUtf16(Text().substr(from));
    const std::size_t found = system::FindIgnoringCase(rest, text);
    if (found == std::string::npos) return 0;
    return start + static_cast<std::int64_t>(system::CodeUnitCount(std::string_view(rest).substr(0, found)));
}

std::string StringBuilder::ToString() const {
    return system::FromUtf16(Text());
}

void StringBuilder::TrimToSize() {
    block_.Resize(usedBytes_);
}

}  // namespace vicenter::support
