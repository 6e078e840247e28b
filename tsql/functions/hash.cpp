// HASHBYTES.

#include <algorithm>

#include "text/utf8.h"
#include "tsql/base/text_units.h"
#include "tsql/functions/call.h"
#include "tsql/functions/digest.h"

namespace vicenter::tsql::engine {

namespace {

constexpr int kLongestHash = 8000;

// The bytes that the server keeps a text as: two of each unit, or those of the code page, which is known here
// for ASCII alone.
std::string BytesOf(std::string_view characters, bool unicode) {
    std::string bytes;
    if (!unicode) {
        const bool plain =
            std::all_of(characters.begin(), characters.end(), [](char c) { return (c & 0x80) == 0; });
        if (!plain) throw MakeError(40510, {}, {"HASHBYTES of varchar beyond ASCII"});
        return std::string(characters);
    }
    const auto add = [&bytes](char32_t unit) {
        bytes += static_cast<char>(unit & 0xFF);
        bytes += static_cast<char>(unit >> 8);
    };
    for (std::size_t at = 0; at < characters.size();) {
        const text::CodePoint point = text::ReadUtf8(characters, at);
        at += point.length;
        if (text::CodeUnits(point.code) == 2) {
            add(0xD7C0 + (point.code >> 10));
            add(0xDC00 + (point.code & 0x3FF));
        } else {
            add(point.code);
        }
    }
    return bytes;
}

// ts_hash_bytes(algorithm, value, type)
void HashFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    const SqlType type = call.Type(2);
    const std::string bytes =
        type.IsBinary() ? std::string(call.Text(1)) : BytesOf(call.Text(1), type.IsUnicode());
    const std::string name = LowerAscii(WithoutTrailingBlanks(call.Text(0)));
    if (name == "md2" || name == "md4" || name == "sha2_512")
        throw MakeError(40510, {}, {"HASHBYTES " + UpperAscii(name)});
    const std::string digest = name == "md5"                     ? Md5(bytes)
                               : name == "sha" || name == "sha1" ? Sha1(bytes)
                               : name == "sha2_256"              ? Sha256(bytes)
                                                                 : std::string();
    // An algorithm of no name gives NULL.
    if (!digest.empty()) call.Return(Value(Bytes{digest}), SqlType::Of(TypeKind::kVarBinary, kLongestHash));
}

Bound BindHash(Binding& call) {
    call.Pin(1);
    const SqlType type = call.Type(1);
    if (!type.IsText() && !type.IsBinary() && !type.IsUnknown())
        throw MakeError(8116, call.Where(), {type.Name(), 2, "hashbytes"});
    return {call.Call({call.Text(0), call.Plain(1), Code(type)}),
            SqlType::Of(TypeKind::kVarBinary, kLongestHash)};
}

constexpr SqlFunction kHash = Scalar<HashFunction>("ts_hash_bytes", 3);

constexpr FunctionEntry kEntries[] = {
    {"hashbytes", 2, 2, BindHash, &kHash},
};

}  // namespace

FunctionSet HashFunctions() {
    return {kEntries, {}};
}

}  // namespace vicenter::tsql::engine
