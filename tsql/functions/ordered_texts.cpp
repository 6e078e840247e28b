// STRING_AGG … WITHIN GROUP: an aggregate that sorts what it joins.

#include <algorithm>
#include <new>

#include "text/ascii.h"
#include "tsql/functions/call.h"

namespace vicenter::tsql::engine {

namespace {

// The arguments before the keys: text, separator, kinds of the keys.
constexpr int kFirstKey = 3;

struct OrderedText {
    std::string text;
    std::string separator;
    std::vector<sqlite3_value*> keys;
};

struct OrderedTexts {
    OrderedTexts() = default;
    OrderedTexts(const OrderedTexts&) = delete;
    OrderedTexts& operator=(const OrderedTexts&) = delete;
    ~OrderedTexts() {
        for (const OrderedText& entry : entries) {
            for (sqlite3_value* key : entry.keys)
                sqlite3_value_free(key);
        }
    }

    std::string kinds;
    std::vector<OrderedText> entries;
};

std::string_view TextOf(sqlite3_value* value) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
    if (text == nullptr) throw std::bad_alloc();
    return {text, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

// 't' a text by the collation, 'n' a decimal, 'p' what compares as it is; capitals descend.
int Compare(const TextCollation& collation, char kind, sqlite3_value* a, sqlite3_value* b) {
    const bool descends = kind >= 'A' && kind <= 'Z';
    const char plain = text::LowerAscii(kind);
    int result = 0;
    const bool nullA = sqlite3_value_type(a) == SQLITE_NULL;
    const bool nullB = sqlite3_value_type(b) == SQLITE_NULL;
    if (nullA || nullB) {
        result = nullA && nullB ? 0 : nullA ? -1 : 1;
    } else if (plain == 't') {
        result = CompareTexts(collation, TextOf(a), TextOf(b));
    } else if (plain == 'n') {
        result = CompareStoredDecimals(TextOf(a), TextOf(b));
    } else if (sqlite3_value_type(a) == SQLITE_INTEGER) {
        const std::int64_t left = sqlite3_value_int64(a);
        const std::int64_t right = sqlite3_value_int64(b);
        result = left < right ? -1 : left > right ? 1 : 0;
    } else if (sqlite3_value_type(a) == SQLITE_FLOAT) {
        const double left = sqlite3_value_double(a);
        const double right = sqlite3_value_double(b);
        result = left < right ? -1 : left > right ? 1 : 0;
    } else {
        result = TextOf(a).compare(TextOf(b));
    }
    return descends ? -result : result;
}

void Step(sqlite3_context* context, int count, sqlite3_value** arguments) {
    if (sqlite3_value_type(arguments[0]) == SQLITE_NULL) return;
    const FunctionCall call(context, count, arguments);
    Guarded(context, call.Services(), [&] {
        auto** slot = static_cast<OrderedTexts**>(sqlite3_aggregate_context(context, sizeof(OrderedTexts*)));
        if (slot == nullptr) throw std::bad_alloc();
        if (*slot == nullptr) {
            *slot = new OrderedTexts();
            (*slot)->kinds = call.Text(2);
        }
        OrderedText& entry = (*slot)->entries.emplace_back();
        entry.text = call.Text(0);
        entry.separator = call.Text(1);
        for (int i = kFirstKey; i < count; ++i) {
            sqlite3_value* key = sqlite3_value_dup(arguments[i]);
            if (key == nullptr) throw std::bad_alloc();
            entry.keys.push_back(key);
        }
    });
}

void Finish(sqlite3_context* context) {
    auto** slot = static_cast<OrderedTexts**>(sqlite3_aggregate_context(context, 0));
    if (slot == nullptr || *slot == nullptr) return;
    const FunctionCall call(context, 0, nullptr);
    Guarded(context, call.Services(), [&] {
        OrderedTexts& texts = **slot;
        std::stable_sort(
            texts.entries.begin(), texts.entries.end(), [&](const OrderedText& a, const OrderedText& b) {
                for (std::size_t i = 0; i < texts.kinds.size(); ++i) {
                    const int order = Compare(call.Collation(), texts.kinds[i], a.keys[i], b.keys[i]);
                    if (order != 0) return order < 0;
                }
                return false;
            });
        std::string joined;
        for (const OrderedText& entry : texts.entries) {
            if (&entry != &texts.entries.front()) joined += entry.separator;
            joined += entry.text;
        }
        call.Return(std::string_view(joined));
    });
    delete *slot;
    *slot = nullptr;
}

constexpr const SqlFunction* kOthers[] = {&kOrderedTextsCall};

}  // namespace

const SqlFunction kOrderedTextsCall = {"ts_ordered_texts", -1, nullptr, false, Step, Finish};

FunctionSet OrderedTextFunctions() {
    return {{}, kOthers};
}

}  // namespace vicenter::tsql::engine
