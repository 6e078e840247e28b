#include "platform/scripting/dictionary.h"

#include <cstdio>
#include <utility>

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

std::string Dictionary::CodeOf(const Variant& key) const {
    switch (key.Type()) {
        case VariantType::Empty:
            return "e";
        case VariantType::Null:
            return "n";
        case VariantType::Text: {
            const std::string& text = key.AsText();
            return "t" + (mode_ == CompareMode::Text ? system::Collator::Chinese().Fold(text) : text);
        }
        case VariantType::Object: {
            char address[32];
            std::snprintf(address, sizeof address, "o%p",
                          static_cast<const void*>(std::get<automation::ObjectRef>(key.Raw()).get()));
            return address;
        }
        case VariantType::Array:
        case VariantType::Error:
            throw Error(error_number::kInvalidProcedureCall, {}, "Dictionary");
        case VariantType::Double:
            return "#" + automation::DoubleToText(key.ToDouble());
        case VariantType::Date:
            return "#" + automation::DoubleToText(key.ToDouble());
        case VariantType::Decimal:
            return "#" + key.ToText();
        default:
            return "#" + std::to_string(key.ToInt64());
    }
}

std::size_t Dictionary::FindCode(const std::string& code) const {
    if (index_.empty()) {
        for (std::size_t i = 0; i < entries_.size(); ++i) {
            if (entries_[i].code == code) return i;
        }
        return kNone;
    }
    const auto found = index_.find(code);
    return found == index_.end() ? kNone : found->second;
}

void Dictionary::Append(std::string code, Variant key, Variant item) {
    if (!index_.empty()) index_.emplace(code, entries_.size());
    entries_.push_back({std::move(code), std::move(key), std::move(item)});
    if (index_.empty() && entries_.size() > kIndexFrom) RebuildIndex();
}

void Dictionary::RebuildIndex() {
    index_.clear();
    if (entries_.size() <= kIndexFrom) return;
    for (std::size_t i = 0; i < entries_.size(); ++i)
        index_.emplace(entries_[i].code, i);
}

void Dictionary::Add(Variant key, Variant item) {
    std::string code = CodeOf(key);
    if (FindCode(code) != kNone) throw Error(error_number::kKeyAlreadyExists, {}, "Dictionary");
    Append(std::move(code), std::move(key), std::move(item));
}

void Dictionary::SetItem(const Variant& key, Variant item) {
    std::string code = CodeOf(key);
    const std::size_t found = FindCode(code);
    if (found == kNone) {
        Append(std::move(code), key, std::move(item));
    } else {
        entries_[found].item = std::move(item);
    }
}

const Variant* Dictionary::Item(const Variant& key) const {
    const std::size_t found = Find(key);
    return found == kNone ? nullptr : &entries_[found].item;
}

const Variant& Dictionary::ItemOrNew(const Variant& key) {
    std::string code = CodeOf(key);
    std::size_t found = FindCode(code);
    if (found == kNone) {
        found = entries_.size();
        Append(std::move(code), key, Variant());
    }
    return entries_[found].item;
}

void Dictionary::Remove(const Variant& key) {
    const std::size_t found = Find(key);
    if (found == kNone) throw Error(error_number::kElementNotFound, {}, "Dictionary");
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(found));
    RebuildIndex();
}

void Dictionary::RemoveAll() {
    entries_.clear();
    index_.clear();
}

void Dictionary::Rename(const Variant& key, Variant newKey) {
    const std::size_t found = Find(key);
    if (found == kNone) throw Error(error_number::kElementNotFound, {}, "Dictionary");
    std::string code = CodeOf(newKey);
    const std::size_t other = FindCode(code);
    if (other != kNone && other != found) throw Error(error_number::kKeyAlreadyExists, {}, "Dictionary");
    entries_[found].code = std::move(code);
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
