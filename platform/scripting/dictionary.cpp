#include "platform/scripting/dictionary.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <utility>

#include "automation/deep_release.h"
#include "automation/enumeration.h"
#include "platform/system/collation.h"

namespace vicenter::scripting {

using automation::Arguments;
using automation::Error;
using automation::IndexedProperty;
using automation::MemberTable;
using automation::Method;
using automation::Property;
using automation::VariantType;
namespace error_number = automation::error_number;

namespace {

std::uint32_t Mixed(std::uint64_t value) {
    value *= 0x9E3779B97F4A7C15U;
    return static_cast<std::uint32_t>(value >> 32);
}

// Eight bytes a step; the last step overlaps the one before it.
std::uint32_t HashText(std::string_view text) {
    const char* bytes = text.data();
    const std::size_t size = text.size();
    std::uint64_t hash = size;
    std::uint64_t word = 0;
    if (size < 8) {
        if (size != 0) std::memcpy(&word, bytes, size);
        return Mixed(hash ^ (word * 0xFF51AFD7ED558CCDU));
    }
    for (std::size_t i = 0; i + 8 < size; i += 8) {
        std::memcpy(&word, bytes + i, 8);
        hash = (hash ^ word) * 0xFF51AFD7ED558CCDU;
        hash ^= hash >> 32;
    }
    std::memcpy(&word, bytes + size - 8, 8);
    hash = (hash ^ word) * 0xFF51AFD7ED558CCDU;
    return Mixed(hash ^ (hash >> 32));
}

// The text that equal numbers of different types share.
std::string NumberCode(const Variant& key) {
    if (key.Type() == VariantType::Decimal) return key.ToText();
    if (key.Type() != VariantType::Double && key.Type() != VariantType::Date)
        return std::to_string(key.ToInt64());
    const double value = key.ToDouble();
    if (value == std::trunc(value) && std::fabs(value) < 9e15)
        return std::to_string(static_cast<std::int64_t>(value));
    return automation::DoubleToText(value);
}

}  // namespace

const MemberTable<Dictionary>& Dictionary::Members() {
    using Self = Dictionary;
    static const MemberTable<Self> table{
        IndexedProperty<Self>(
            "Item", {"Key"}, [](Self& self, Arguments& a) { return self.ItemOrNew(a[0].Value()); },
            [](Self& self, Arguments& a) { self.SetItem(a[0].Value(), a[1].Value()); })
            .AsDefault(),
        Method<Self>("Add", {"Key", "Item"},
                     [](Self& self, Arguments& a) {
                         self.Add(a[0].Value(), a[1].Value());
                         return Variant();
                     }),
        Method<Self>("Exists", {"Key"},
                     [](Self& self, Arguments& a) { return Variant(self.Exists(a[0].Value())); }),
        Method<Self>("Items", {}, [](Self& self, Arguments&) { return Variant(self.Items()); }),
        Method<Self>("Keys", {}, [](Self& self, Arguments&) { return Variant(self.Keys()); }),
        Method<Self>("Remove", {"Key"},
                     [](Self& self, Arguments& a) {
                         self.Remove(a[0].Value());
                         return Variant();
                     }),
        Method<Self>("RemoveAll", {},
                     [](Self& self, Arguments&) {
                         self.RemoveAll();
                         return Variant();
                     }),
        Property<Self>(
            "Count", [](Self& self, Arguments&) { return Variant(static_cast<std::int32_t>(self.Count())); }),
        Property<Self>(
            "CompareMode",
            [](Self& self, Arguments&) { return Variant(static_cast<std::int32_t>(self.GetCompareMode())); },
            [](Self& self, Arguments& a) {
                const std::int32_t mode = a[0].Value().ToInt32();
                if (mode != 0 && mode != 1)
                    throw Error(error_number::kInvalidProcedureCall, {}, "Dictionary");
                self.SetCompareMode(static_cast<CompareMode>(mode));
            }),
        IndexedProperty<Self>("Key", {"Key"}, nullptr,
                              [](Self& self, Arguments& a) { self.Rename(a[0].Value(), a[1].Value()); }),
    };
    return table;
}

std::unique_ptr<automation::Enumerator> Dictionary::NewEnumerator() {
    return automation::OverValues(Keys());
}

Dictionary::~Dictionary() {
    for (Entry& entry : entries_) {
        automation::Release(entry.key);
        automation::Release(entry.item);
    }
}

std::uint32_t Dictionary::HashOf(const Variant& key) const {
    switch (key.Type()) {
        case VariantType::Empty:
            return 1;
        case VariantType::Null:
            return 2;
        case VariantType::Text:
            return mode_ == CompareMode::Text ? HashText(system::Collator::Chinese().Fold(key.AsText()))
                                              : HashText(key.AsText());
        case VariantType::Object:
            return Mixed(reinterpret_cast<std::uintptr_t>(std::get<automation::ObjectRef>(key.Raw()).get()));
        case VariantType::Array:
        case VariantType::Error:
            throw Error(error_number::kInvalidProcedureCall, {}, "Dictionary");
        default:
            return HashText(NumberCode(key));
    }
}

bool Dictionary::SameKey(const Variant& a, const Variant& b) const {
    if (a.IsNumber() && b.IsNumber()) return NumberCode(a) == NumberCode(b);
    if (a.Type() != b.Type()) return false;
    if (a.IsText() && mode_ == CompareMode::Text) {
        const auto& collator = system::Collator::Chinese();
        return collator.Fold(a.AsText()) == collator.Fold(b.AsText());
    }
    return a == b;
}

template <class Test>
std::size_t Dictionary::Search(std::uint32_t hash, const Test& same) const {
    if (index_.empty()) {
        for (std::size_t i = 0; i < hashes_.size(); ++i) {
            if (hashes_[i] == hash && same(entries_[i].key)) return i;
        }
        return kNone;
    }
    const std::size_t mask = index_.size() - 1;
    for (std::size_t place = hash & mask; index_[place] != 0; place = (place + 1) & mask) {
        const std::size_t position = index_[place] - 1;
        if (hashes_[position] == hash && same(entries_[position].key)) return position;
    }
    return kNone;
}

std::size_t Dictionary::FindHashed(std::uint32_t hash, const Variant& key) const {
    return Search(hash, [&](const Variant& other) { return SameKey(other, key); });
}

void Dictionary::Append(std::uint32_t hash, Variant key, Variant item) {
    entries_.emplace_back(std::move(key), std::move(item));
    hashes_.push_back(hash);
    EnterIntoIndex(entries_.size() - 1);
}

void Dictionary::EnterIntoIndex(std::size_t position) {
    if (entries_.size() <= kIndexFrom) return;
    if (index_.size() < 2 * entries_.size()) {
        RebuildIndex();
        return;
    }
    const std::size_t mask = index_.size() - 1;
    std::size_t place = hashes_[position] & mask;
    while (index_[place] != 0)
        place = (place + 1) & mask;
    index_[place] = static_cast<std::uint32_t>(position + 1);
}

void Dictionary::RebuildIndex() {
    index_.clear();
    if (entries_.size() <= kIndexFrom) return;
    std::size_t places = 4 * kIndexFrom;
    while (places < 3 * entries_.size())
        places *= 2;
    index_.resize(places);
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        std::size_t place = hashes_[i] & (places - 1);
        while (index_[place] != 0)
            place = (place + 1) & (places - 1);
        index_[place] = static_cast<std::uint32_t>(i + 1);
    }
}

void Dictionary::Reserve(std::size_t count) {
    entries_.reserve(count);
    hashes_.reserve(count);
}

Variant* Dictionary::AddPlace(std::string_view key) {
    if (mode_ == CompareMode::Text) {
        Variant text(key);
        if (Exists(text)) return nullptr;
        Add(std::move(text), Variant());
        return &entries_.back().item;
    }
    const std::uint32_t hash = HashText(key);
    const std::size_t found = Search(hash, [&](const Variant& other) {
        const auto* text = std::get_if<std::string>(&other.Raw());
        return text != nullptr && *text == key;
    });
    if (found != kNone) return nullptr;
    Entry& entry = entries_.emplace_back(key);
    hashes_.push_back(hash);
    if (entries_.size() > kIndexFrom) EnterIntoIndex(entries_.size() - 1);
    return &entry.item;
}

void Dictionary::Add(Variant key, Variant item) {
    const std::uint32_t hash = HashOf(key);
    if (FindHashed(hash, key) != kNone) throw Error(error_number::kKeyAlreadyExists, {}, "Dictionary");
    Append(hash, std::move(key), std::move(item));
}

void Dictionary::SetItem(const Variant& key, Variant item) {
    const std::uint32_t hash = HashOf(key);
    const std::size_t found = FindHashed(hash, key);
    if (found == kNone) {
        Append(hash, key, std::move(item));
    } else {
        entries_[found].item = std::move(item);
    }
}

const Variant* Dictionary::Item(const Variant& key) const {
    const std::size_t found = Find(key);
    return found == kNone ? nullptr : &entries_[found].item;
}

const Variant& Dictionary::ItemOrNew(const Variant& key) {
    const std::uint32_t hash = HashOf(key);
    std::size_t found = FindHashed(hash, key);
    if (found == kNone) {
        found = entries_.size();
        Append(hash, key, Variant());
    }
    return entries_[found].item;
}

void Dictionary::Remove(const Variant& key) {
    const std::size_t found = Find(key);
    if (found == kNone) throw Error(error_number::kElementNotFound, {}, "Dictionary");
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(found));
    hashes_.erase(hashes_.begin() + static_cast<std::ptrdiff_t>(found));
    RebuildIndex();
}

void Dictionary::RemoveAll() {
    entries_.clear();
    hashes_.clear();
    index_.clear();
}

void Dictionary::Rename(const Variant& key, Variant newKey) {
    const std::size_t found = Find(key);
    if (found == kNone) throw Error(error_number::kElementNotFound, {}, "Dictionary");
    const std::uint32_t hash = HashOf(newKey);
    const std::size_t other = FindHashed(hash, newKey);
    if (other != kNone && other != found) throw Error(error_number::kKeyAlreadyExists, {}, "Dictionary");
    hashes_[found] = hash;
    entries_[found].key = std::move(newKey);
    RebuildIndex();
}

void Dictionary::SetCompareMode(CompareMode mode) {
    if (!entries_.empty()) throw Error(error_number::kInvalidProcedureCall, {}, "Dictionary");
    mode_ = mode;
}

automation::VariantArray Dictionary::Keys() const {
    automation::VariantArray result;
    result.reserve(entries_.size());
    for (const Entry& entry : entries_)
        result.push_back(entry.key);
    return result;
}

automation::VariantArray Dictionary::Items() const {
    automation::VariantArray result;
    result.reserve(entries_.size());
    for (const Entry& entry : entries_)
        result.push_back(entry.item);
    return result;
}

}  // namespace vicenter::scripting
