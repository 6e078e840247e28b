// HASHBYTES.

#include "tsql/base/text_units.h"
#include "tsql/functions/call.h"
#include "tsql/functions/digest.h"
#include "tsql/types/convert_binary.h"

namespace vicenter::tsql::engine {

namespace {

constexpr int kLongestHash = 8000;

// ts_hash_bytes(algorithm, value, type)
void HashFunction(FunctionCall& call) {
    if (call.AnyNull()) return;
    const SqlType type = call.Type(2);
    const std::string bytes =
        type.IsBinary() ? std::string(call.Text(1))
                        : BytesOfText(call.Text(1), type.IsUnicode(), "HASHBYTES of varchar beyond ASCII");
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
