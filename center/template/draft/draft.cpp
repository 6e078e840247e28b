#include "center/template/draft/draft.h"

#include <charconv>
#include <utility>

#include "platform/scripting/dictionary.h"
#include "support/vbs_json.h"

namespace vicenter::center {

using automation::Error;
using automation::Variant;
using automation::VariantArray;
using scripting::Dictionary;

namespace {

constexpr const char* kFormat = "vicenter draft 1";

// The texts of a draft by the names that they have in its document.
struct NamedText {
    const char* name;
    std::string Draft::*text;
};
constexpr NamedText kTexts[] = {
    {"user", &Draft::userId},     {"FID", &Draft::templateId},  {"FName", &Draft::templateName},
    {"written", &Draft::written}, {"process", &Draft::process}, {"mark", &Draft::mark},
    {"window", &Draft::window},
};

std::string TextOf(const Dictionary& object, const std::string& name) {
    const Variant* value = object.Item(name);
    return value == nullptr ? std::string() : value->ToTextOrEmpty();
}

const Dictionary* AsObject(const Variant& value) {
    return value.IsObject() ? dynamic_cast<const Dictionary*>(value.AsObject().get()) : nullptr;
}

template <class Number>
std::optional<Number> NumberOf(const std::string& text) {
    Number number{};
    const auto [end, failed] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (failed != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

// "14:4,15:4": the columns whose texts were refused, and what was said of each.
std::string RefusalsText(const KeptLine& line) {
    std::string text;
    for (int c = 1; c <= kColumnCount; ++c) {
        const TextVerdict verdict = line.refusals[static_cast<std::size_t>(c - 1)];
        if (verdict == TextVerdict::Taken) continue;
        if (!text.empty()) text += ',';
        text += std::to_string(c) + ":" + std::to_string(static_cast<int>(verdict));
    }
    return text;
}

bool ReadRefusals(std::string text, KeptLine& line) {
    while (!text.empty()) {
        const std::size_t comma = text.find(',');
        const std::string piece = text.substr(0, comma);
        text = comma == std::string::npos ? std::string() : text.substr(comma + 1);
        const std::size_t colon = piece.find(':');
        if (colon == std::string::npos) return false;
        const auto gridColumn = NumberOf<int>(piece.substr(0, colon));
        const auto verdict = NumberOf<int>(piece.substr(colon + 1));
        if (!gridColumn || *gridColumn < 1 || *gridColumn > kColumnCount || !verdict || *verdict < 0 ||
            *verdict > static_cast<int>(TextVerdict::Last)) {
            return false;
        }
        line.refusals[static_cast<std::size_t>(*gridColumn - 1)] = static_cast<TextVerdict>(*verdict);
    }
    return true;
}

constexpr const char* kRefused = "refused";

// Cells without a text are left out.
Variant LineObject(const KeptLine& line) {
    const auto object = std::make_shared<Dictionary>();
    for (const ColumnSpec& spec : Columns()) {
        const std::string& text = line.texts[static_cast<std::size_t>(spec.column - 1)];
        if (!text.empty()) object->Add(spec.field, text);
    }
    if (const std::string refused = RefusalsText(line); !refused.empty()) object->Add(kRefused, refused);
    return Variant(automation::ObjectRef(object));
}

std::optional<KeptLine> LineOf(const Variant& value) {
    const Dictionary* object = AsObject(value);
    if (object == nullptr) return std::nullopt;
    KeptLine line;
    for (const ColumnSpec& spec : Columns())
        line.texts[static_cast<std::size_t>(spec.column - 1)] = TextOf(*object, std::string(spec.field));
    if (!ReadRefusals(TextOf(*object, kRefused), line)) return std::nullopt;
    return line;
}

}  // namespace

std::string EncodeDraft(const Draft& draft) {
    const auto document = std::make_shared<Dictionary>();
    document->Add("format", kFormat);
    for (const NamedText& named : kTexts)
        document->Add(named.name, draft.*named.text);
    document->Add("loadedLines", std::to_string(draft.loaded.lines));
    document->Add("loadedHash", std::to_string(draft.loaded.hash));
    VariantArray lines;
    lines.reserve(draft.lines.size());
    for (const KeptLine& line : draft.lines)
        lines.push_back(LineObject(line));
    document->Add("lines", lines);
    return support::VbsJson().Encode(Variant(automation::ObjectRef(document)));
}

std::optional<Draft> DecodeDraft(std::string_view text) {
    try {
        const Variant document = support::VbsJson().Decode(text);
        const Dictionary* object = AsObject(document);
        if (object == nullptr || TextOf(*object, "format") != kFormat) return std::nullopt;
        Draft draft;
        for (const NamedText& named : kTexts)
            draft.*named.text = TextOf(*object, named.name);
        const auto loadedLines = NumberOf<std::int64_t>(TextOf(*object, "loadedLines"));
        const auto loadedHash = NumberOf<std::uint64_t>(TextOf(*object, "loadedHash"));
        const Variant* lines = object->Item("lines");
        if (!loadedLines || !loadedHash || lines == nullptr || !lines->IsArray()) return std::nullopt;
        draft.loaded = {*loadedLines, *loadedHash};
        for (const Variant& value : lines->AsArray()) {
            std::optional<KeptLine> line = LineOf(value);
            if (!line) return std::nullopt;
            draft.lines.push_back(std::move(*line));
        }
        return draft;
    } catch (const Error&) {
        return std::nullopt;
    }
}

}  // namespace vicenter::center
