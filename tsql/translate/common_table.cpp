// Queries that WITH names, and views. Each use of one stands for the query itself, as on the server; where
// that makes too much text of it, it stands at the head of the statement once.

#include <algorithm>
#include <utility>

#include "automation/object.h"
#include "tsql/translate/translator.h"

namespace vicenter::tsql::engine {

using automation::SameName;

namespace {

// Uses that a text still holds one by one.
constexpr std::int64_t kMostInText = 100;
// SQLite opens every use of a query, and of those within it: beyond that it takes seconds.
constexpr std::int64_t kMostUses = 10000;

}  // namespace

void Translator::AddCommonTables(const std::vector<CommonTable>& tables) {
    if (tables.empty()) return;
    for (auto table = tables.begin(); table != tables.end(); ++table) {
        for (auto other = tables.begin(); other != table; ++other) {
            if (SameName(other->name.text, table->name.text))
                throw MakeError(239, table->name.position, {table->name.text});
        }
    }
    commonTables_.push_back({&tables, tables.size()});
}

const CommonTable* Translator::FindCommonTable(const std::string& name) const {
    for (auto list = commonTables_.rbegin(); list != commonTables_.rend(); ++list) {
        for (std::size_t i = 0; i < list->known; ++i) {
            const CommonTable& table = (*list->tables)[i];
            if (SameName(table.name.text, name)) return &table;
        }
    }
    return nullptr;
}

QueryText Translator::CommonQuery(const CommonTable& table, bool recursive) {
    if (std::find(open_.begin(), open_.end(), &table) != open_.end())
        throw MakeError(465, table.name.position);
    // What is used within a recursive query may see its level above.
    if (!recursions_.empty()) return OpenedQuery(table, recursive);
    return UsedText(&table, [&] { return OpenedQuery(table, recursive); });
}

QueryText Translator::UsedText(const void* key, const std::function<QueryText()>& open) {
    if (ways_.sharesQueries && recursions_.empty()) return SharedText(key, open);
    if (++uses_ > kMostInText) {
        if (ways_.sharesQueries) throw MakeError(8623, {});
        Ways ways = ways_;
        ways.sharesQueries = true;
        throw NeedsWays{ways};
    }
    return open();
}

// The query itself, which knows those before it.
QueryText Translator::OpenedQuery(const CommonTable& table, bool recursive) {
    std::vector<CommonTables> inside;
    for (const CommonTables& list : commonTables_) {
        inside.push_back(list);
        std::size_t place = 0;
        while (place < list.tables->size() && &(*list.tables)[place] != &table)
            ++place;
        if (place == list.tables->size()) continue;
        inside.back().known = place + 1;
        break;
    }
    inside.swap(commonTables_);
    open_.push_back(&table);
    QueryText query = recursive ? RecursiveQuery(table) : QueryOf(*table.query, nullptr, false);
    open_.pop_back();
    inside.swap(commonTables_);
    return query;
}

// By its name; its text stands at the head of the statement from now on.
QueryText Translator::SharedText(const void* key, const std::function<QueryText()>& open) {
    auto known = shared_.find(key);
    if (known == shared_.end()) {
        const std::int64_t before = std::exchange(uses_, 1);
        SharedQuery shared;
        shared.text = open();
        shared.uses = std::exchange(uses_, before);
        const std::string name = "\"with$" + std::to_string(shared_.size() + 1) + "\"";
        sharedTexts_ +=
            (sharedTexts_.empty() ? "" : ", ") + name + " AS MATERIALIZED (" + shared.text.sql + ")";
        shared.text.sql = "SELECT * FROM " + name;
        shared.text.weights.clear();
        known = shared_.emplace(key, std::move(shared)).first;
    }
    uses_ += known->second.uses;
    if (uses_ > kMostUses) throw MakeError(8623, {});
    return known->second.text;
}

}  // namespace vicenter::tsql::engine
