#pragma once

// Scripting.Dictionary: keys and items in the order in which the keys were added.
//
// Keys are any values but arrays; numbers are equal across their types; texts compare by their characters or,
// with CompareMode 1, without case. Removing a key costs time linear in the number of keys; everything else
// is constant. User-interface thread only.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "automation/member_table.h"
#include "automation/variant.h"

namespace vicenter::scripting {

using automation::Variant;

enum class CompareMode : std::int32_t { Binary = 0, Text = 1 };

class Dictionary : public automation::TableObject<Dictionary> {
  public:
    Dictionary() = default;
    Dictionary(const Dictionary&) = delete;
    Dictionary& operator=(const Dictionary&) = delete;
    ~Dictionary() override;  // dictionaries may hold each other in long chains

    static const automation::MemberTable<Dictionary>& Members();
    std::string TypeName() const override { return "Dictionary"; }
    // The keys.
    std::unique_ptr<automation::Enumerator> NewEnumerator() override;

    std::size_t Count() const { return entries_.size(); }
    bool Exists(const Variant& key) const { return Find(key) != kNone; }
    // Error 457 when the key exists.
    void Add(Variant key, Variant item);
    // Adds or replaces.
    void SetItem(const Variant& key, Variant item);
    // The item, or none when the key does not exist. Does not add.
    const Variant* Item(const Variant& key) const;
    // As automation clients know it: an unknown key is added with an empty item.
    const Variant& ItemOrNew(const Variant& key);
    // Error 32811 when the key does not exist.
    void Remove(const Variant& key);
    void RemoveAll();
    // Error 32811 for an unknown key, 457 when the new key exists.
    void Rename(const Variant& key, Variant newKey);
    // Error 5 when the dictionary is not empty.
    void SetCompareMode(CompareMode mode);
    CompareMode GetCompareMode() const { return mode_; }

    // The entry at a position, counted from 0.
    const Variant& KeyAt(std::size_t index) const { return entries_[index].key; }
    const Variant& ItemAt(std::size_t index) const { return entries_[index].item; }
    automation::VariantArray Keys() const;
    automation::VariantArray Items() const;

    // For readers of long texts: room for so many entries, and an entry with a text as key whose item the
    // caller fills in. None when the key exists; the place is good until the next change of the dictionary.
    void Reserve(std::size_t count);
    Variant* AddPlace(std::string_view key);

  private:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);
    // Up to here a plain scan of the hashes is quicker than the index and needs no memory of its own.
    static constexpr std::size_t kIndexFrom = 32;

    struct Entry {
        Entry(Variant theKey, Variant theItem) : key(std::move(theKey)), item(std::move(theItem)) {}
        explicit Entry(std::string_view text) : key(text) {}  // in place: many are made when texts are read

        Variant key;
        Variant item;
    };

    std::uint32_t HashOf(const Variant& key) const;
    bool SameKey(const Variant& a, const Variant& b) const;
    std::size_t Find(const Variant& key) const { return FindHashed(HashOf(key), key); }
    std::size_t FindHashed(std::uint32_t hash, const Variant& key) const;
    // The first entry of that hash whose key the test accepts.
    template <class Test>
    std::size_t Search(std::uint32_t hash, const Test& same) const;
    void Append(std::uint32_t hash, Variant key, Variant item);
    void EnterIntoIndex(std::size_t position);
    void RebuildIndex();

    std::vector<Entry> entries_;
    std::vector<std::uint32_t> hashes_;  // of entries_, position by position
    std::vector<std::uint32_t> index_;   // open addressing by hash: position + 1, 0 for a free place
    CompareMode mode_ = CompareMode::Binary;
};

using DictionaryRef = std::shared_ptr<Dictionary>;

}  // namespace vicenter::scripting
